// frmExpressionZoom: a larger editor for one expression, with predictive text and a check while one types.
//
// What its window shows and does, without the window: the toolkit shows it (`Dialogs::ShowExpression`).
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/expression/intelli_list.h"
#include "zrqrybld/host/language_ids.h"

namespace zrqrybld {

struct QueryContext;

/// Why an expression cannot be read, and where, in bytes from 0.
struct ExpressionFault {
  std::string message;
  std::size_t offset = 0;
};

class ZRQRYBLD_API frmExpressionZoom : public Object {
 public:
  /// Reads the text and throws an Error, with its place where it knows it.
  using Reader = std::function<void(std::string_view text)>;

  static Ref<frmExpressionZoom> Create(const Ref<QueryContext>& context, EditedText kind);
  std::string_view TypeName() const override { return "frmExpressionZoom"; }

  /// The texts of the window, from the language table; an ampersand in a button's marks the access key.
  virtual std::string Caption() const { return Language(LanguageZoomExprCaption); }
  virtual std::string AcceptButton() const { return Language(LanguageZoomExprAcceptButton); }
  virtual std::string CancelButton() const { return Language(LanguageZoomExprCancelButton); }

  /// The predictive text of its editor.
  const Ref<qbIntelliList>& Suggestions() const { return suggestions_; }

  /// Replaces how the text is checked. Without a reader an expression is read as one, and anything else is not checked.
  void SetReader(Reader reader) { reader_ = std::move(reader); }
  /// Why the text cannot be taken as it is; none for one that can, and for an empty one.
  std::optional<ExpressionFault> Check(std::string_view text) const;

  /// The text as it stands in a cell: on one line. Line ends become blanks, outside of literals, and a comment to the
  /// end of its line one that ends.
  static std::string OnOneLine(std::string_view text);

 protected:
  frmExpressionZoom(const Ref<QueryContext>& context, EditedText kind);
  std::string Language(std::int32_t id) const;
  Ref<QueryContext> Context() const { return context_.lock(); }

 private:
  WeakRef<QueryContext> context_;
  EditedText kind_;
  Ref<qbIntelliList> suggestions_;
  Reader reader_;
};

}  // namespace zrqrybld
