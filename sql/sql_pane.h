// qbSQLPane: the pane that shows the statement generated from the diagram and the grid.
//
// The text lives in a text area of the toolkit (a headless one until an adapter attaches its own).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/event.h"
#include "base/object.h"
#include "host/query_context.h"
#include "platform/editors.h"
#include "sql/dialect.h"

namespace zrqrybld {

class qbSQLPane final : public Object {
 public:
  /// A pane with an empty text, in the generic dialect, linked to no hub.
  static Ref<qbSQLPane> Create();
  std::string_view TypeName() const override { return "qbSQLPane"; }

  /// The text of the statement has changed.
  Event<> SQLChanged;

  /// Generates the statement anew and shows it. While the designer is busy the text becomes empty.
  void Refresh();

  /// The statement with two more conditions, each as it stands and each may be empty. The pane's own text
  /// does not change. "" while the designer is busy.
  std::string AddWhereClause(const std::string& orExpression = {}, const std::string& andExpression = {});

  /// Whether the statement generated last holds a table that is joined to none before it.
  bool Cartesian() const { return cartesian_; }

  /// The dialect; the text follows at the next `Refresh`.
  SQLSyntaxEnum SQLSyntax() const { return syntax_; }
  void SetSQLSyntax(SQLSyntaxEnum syntax) { syntax_ = syntax; }

  /// The text shown, with CR LF line ends. Setting it parses nothing.
  std::string SQLStatement() const { return textArea_->Text(); }
  void SetSQLStatement(const std::string& text);

  /// The hub that the pane is linked to, or nothing.
  Ref<qbQueryBuilder> QueryBuilder() const;

  // --- For the hub and the adapter ---

  /// Links the pane to what the designer shares, or to nothing; the text follows at the next `Refresh`.
  void SetContext(const Ref<QueryContext>& context) { context_ = context; }

  /// Shows the text in a window. nullptr takes it out again; the text stays. The area must outlive the
  /// pane or be taken out first.
  void AttachTextArea(TextArea* area);

 private:
  qbSQLPane();
  std::string Generate(const std::string& orExpression, const std::string& andExpression);

  WeakRef<QueryContext> context_;
  std::unique_ptr<TextArea> headless_;
  TextArea* textArea_;
  EventConnection edited_;
  SQLSyntaxEnum syntax_ = SQLSyntaxGeneric;
  bool cartesian_ = false;
};

}  // namespace zrqrybld
