// WebTextArea: the SQL text in an element of the page, with predictive text.
//
// The element has LF line ends and counts UTF-16 units; the library has CR LF and counts bytes. Both are translated
// here.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/adapters/web/numbered.h"
#include "zrqrybld/adapters/web/web_editors.h"
#include "zrqrybld/expression/expression_zoom.h"
#include "zrqrybld/expression/predictive_typing.h"
#include "zrqrybld/platform/editors.h"

namespace zrqrybld {

class frmExpressionBuilder;

class WebTextArea final : public TextArea, public Numbered<WebTextArea>, private SuggestedText {
 public:
  explicit WebTextArea(std::shared_ptr<const WebHome> home)
      : Numbered(std::move(home)), list_(std::make_shared<WebPopupList>(Home(), Number())) {}

  /// What is offered at the caret.
  void Suggest(Ref<qbIntelliList> list);
  /// Asks for the fault in what is written, at each edit: it is marked and said.
  void CheckBy(std::function<std::optional<ExpressionFault>(const std::string& text)> check);
  /// Writes the chosen piece of a builder in place of what is selected, and selects its first parameter without a
  /// value.
  void Insert(const frmExpressionBuilder& builder);

  // --- What the page tells ---

  /// The user has made the text this, with the caret or selection there; `typed` by typing a character.
  void Input(std::string_view text, int start, int length, bool typed);
  /// The caret has moved, or something is selected.
  void SelectionIs(int start, int length);
  /// A key, before it acts. Returns whether it is used here.
  bool OnKey(const KeyEvent& key, bool down);
  /// The keyboard has come, or gone to another part of the page.
  void FocusIs(bool focused);
  void RunCommand(std::size_t command);
  /// The pieces with a colour, as "start length role" with blanks between all.
  std::string Highlighting() const;
  /// The places of the bracket beside the caret and of its partner, with a blank between; the first alone when it has
  /// none; "" where there is no bracket, or only one within a text, a quoted name or a comment.
  std::string Brackets() const;

  // --- TextArea ---

  std::string Text() const override { return text_; }
  void SetText(std::string_view text) override;
  void SetReadOnly(bool readOnly) override;
  void SetRemarks(const std::vector<std::string>& remarks) override;
  void SetFault(std::size_t offset, std::size_t length) override;
  void SetCommands(std::vector<TextCommand> commands) override;

 private:
  TextRange Selection() const override;
  void Select(TextRange part) override;
  void Replace(TextRange part, const std::string& text) override;
  void ShowList(const qbIntelliList& list) override;

  std::size_t ByteOf(int unit) const;
  int UnitOf(std::size_t byte) const;

  std::string text_;  // CR LF
  int start_ = 0;
  int length_ = 0;
  bool readOnly_ = false;
  std::vector<TextCommand> commands_;
  const std::shared_ptr<WebPopupList> list_;
  std::unique_ptr<PredictiveTyping> typing_;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
