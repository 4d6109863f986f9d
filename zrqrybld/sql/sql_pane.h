// qbSQLPane: the pane that shows the statement generated from the diagram and the grid.
//
// The text lives in a text area of the toolkit (a headless one until an adapter attaches its own).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/editors.h"
#include "zrqrybld/platform/property_store.h"
#include "zrqrybld/sql/diagnostics.h"
#include "zrqrybld/sql/joins.h"
#include "zrqrybld/sql/parameters.h"
#include "zrqrybld/sql/sql_pane_options.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

class qbQueryBuilder;
struct GeneratedQuery;
struct QueryContext;
struct TypedStatement;

class ZRQRYBLD_API qbSQLPane final : public Object {
 public:
  /// A pane with an empty text, in the generic dialect, linked to no hub.
  static Ref<qbSQLPane> Create();
  std::string_view TypeName() const override { return "qbSQLPane"; }

  // --- Events ---

  /// The text has changed, or the designer's own statement while the text is one that the user has typed.
  Event<> SQLChanged;
  /// A key in the text, before it acts: `KeyCode` (0 takes the key away from the text), `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyDown;
  /// A key is released in the text: `KeyCode`, `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyUp;
  /// A key that types something into the text: its Unicode character, which a handler may change; 0 types nothing.
  Event<char32_t&> KeyPress;
  /// A marker of `ParseParameters` wants its value: set the parameter's `Value`, or the second argument to true to
  /// stop.
  Event<const Ref<qbParameter>&, bool&> ParseParameter;
  /// A property was set: its key. The container marks it as changed.
  Event<std::string_view> PropertyChanged;
  /// `IsEdited` has changed.
  Event<> EditedChanged;
  /// `IsSqlOnly` has changed.
  Event<> SqlOnlyChanged;

  // --- Properties and methods ---

  /// Generates the statement anew and shows it, also over text that the user has typed and not applied. While the
  /// designer is busy the text becomes empty.
  void Refresh();

  /// The statement with two more conditions, each as it stands and each may be empty. The pane's own text
  /// does not change. "" while the designer is busy.
  std::string AddWhereClause(const std::string& orExpression = {}, const std::string& andExpression = {});

  /// Makes the designer's query what the statement says, and then writes the statement anew. Error 40002 when
  /// that cannot be done, with the place in the text when it cannot be read; nothing has changed then, but the
  /// designer's `state` stays `InfoParsingSQL`. Also without a hub, and for a dialect whose statements are not read.
  void ParseSQLStatement(const std::string& sql);

  /// Whether the user has changed the text and the designer has not taken it over.
  bool IsEdited() const { return edited_; }
  /// Makes the designer's query what the user has typed. When that fails, the text stays as it is, with its fault
  /// underlined and said beside it. True when nothing is left to apply. Ctrl+Enter, F5 and leaving the text do this,
  /// too; leaving does it once for what was typed.
  bool ApplyEditedText();
  /// Brings the designer's own text back.
  void RevertEditedText() { Refresh(); }

  /// Writes the statement in the designer's own layout, without what `KeepTypedText` keeps: a step that can be undone.
  void WriteAnew();

  /// Whether the text is one that the designer cannot hold and that stands for the query as it is, while the diagram
  /// and the grid have another: see `UseAsTyped`. Applying or reverting the text, and whatever writes it, ends this.
  bool IsSqlOnly() const { return sqlOnly_; }
  /// Lets the text stand for the query as it is, where `ApplyEditedText` has failed on it. False where it has not, and
  /// nothing is changed then.
  bool UseAsTyped();

  /// Shows the query of the statement that the caret stands in, the innermost one, also one in a condition. False where
  /// there is none but the one that is shown, and where the text is not applied yet.
  bool OpenQueryAtCaret();

  /// Whether the statement generated last holds a table that is joined to none before it.
  bool Cartesian() const { return cartesian_; }

  /// What there is to say about the statement generated last; empty while there is none.
  const std::vector<SQLDiagnostic>& Diagnostics() const { return diagnostics_; }

  /// The sentences of these, for a person.
  std::vector<std::string> Remarks() const;

  /// What can be done about each of these, as its button says it; "" where nothing safe can.
  std::vector<std::string> Cures() const;
  /// Does it for the remark at this position, from 1, as a step that can be undone. False where nothing is offered;
  /// error 9 when there is no such remark.
  bool CureRemark(std::int32_t index);

  /// The tables of the statement generated last, as they stand in FROM; the next statement has a list of its own.
  const Ref<qbJoins>& Joins() const;

  /// The statement with a value in the place of every ?PARAM marker: `ParseParameter` is raised for each, in their
  /// order, and a parameter without a value takes its default. No quotes are added. "" when a handler stops it.
  std::string ParseParameters();

  /// The word that criteria are written with where they compare with a pattern; "LIKE" at first, and again when it is
  /// set to "". The text follows at the next `Refresh`.
  const std::string& LikeOperator() const { return options_.likeOperator; }
  void SetLikeOperator(const std::string& word);

  /// Whether the user can only read the text; False at first. `Refresh` and `SetSQLStatement` write it all the same.
  bool Locked() const { return options_.locked; }
  void SetLocked(bool locked);

  /// The dialect; the text follows at the next `Refresh`.
  SQLSyntaxEnum SQLSyntax() const { return options_.syntax; }
  void SetSQLSyntax(SQLSyntaxEnum syntax);

  /// The text shown, with CR LF line ends. Setting it parses nothing.
  std::string SQLStatement() const { return textArea_->Text(); }
  void SetSQLStatement(const std::string& text);

  /// Whether a statement that was read is shown as it was typed, with its layout and comments, for as long as the
  /// query is what it means; False at first. When the query has become another, the statement is written anew with the
  /// comments in front of their clauses. Setting it to False shows the designer's own text at the next `Refresh`.
  bool KeepTypedText() const { return keepTypedText_; }
  void SetKeepTypedText(bool keep);

  /// The statement as the designer writes it, without what `KeepTypedText` keeps; while the text is one that the user
  /// has typed and not applied, that text.
  std::string PlainStatement() const { return edited_ || !typed_ ? SQLStatement() : generated_; }

  /// The hub that the pane is linked to, or nothing.
  Ref<qbQueryBuilder> QueryBuilder() const;

  // --- For the form that stores the control's design-time properties ---

  /// Takes the options from a stored form; a missing key, or a value of the wrong kind, has the value of a new pane.
  void ReadProperties(const PropertyStore& store);
  /// Stores the options; those with the value of a new pane are left out.
  void WriteProperties(PropertyStore& store) const;

  // --- For the hub and the adapter ---

  /// Links the pane to what the designer shares, or to nothing; the text follows at the next `Refresh`.
  void SetContext(const Ref<QueryContext>& context) { context_ = context; }

  /// The query has changed: shows its statement. Text that the user has typed and not applied stays, unless the query
  /// has been replaced.
  void ShowChange();
  /// The language has changed: what is said beside the text is said in it.
  void ApplyTexts();
  /// The next change replaces the query: what the user has typed does not stay.
  void QueryReplaced() { replaced_ = true; }
  /// Whether the next change leaves the text that the user has typed.
  bool KeepsTyped() const { return edited_ && !replaced_; }

  /// Shows a text as one that the user has typed and not applied.
  void ShowTyped(const std::string& text);

  /// What is kept of the statement that was read last; nothing where nothing is. It belongs to the query.
  const std::shared_ptr<const TypedStatement>& Typed() const { return typed_; }
  /// Puts another in its place; the text follows at the next change or `Refresh`.
  void SetTyped(std::shared_ptr<const TypedStatement> typed) { typed_ = keepTypedText_ ? std::move(typed) : nullptr; }
  /// Keeps a statement with what it means, if `KeepTypedText` says so.
  void Keep(const std::string& sql, std::string meaning);

  /// Shows the text in a window. nullptr takes it out again; the text stays. The area must outlive the
  /// pane or be taken out first.
  void AttachTextArea(TextArea* area);

 private:
  qbSQLPane();
  std::string Generate(const std::string& orExpression, const std::string& andExpression);
  std::string Written(const QueryContext& context) const;
  void TakeWhole(GeneratedQuery whole, GeneratedSql& shown);
  std::string Present(std::string generated);
  void ListenToTextArea();
  void ShowRemarks();
  std::vector<TextCommand> CureCommands();
  void TextEdited();
  void SetEdited(bool edited);
  void ShowPart();
  void ShowFailure(const Error& failure);
  void TranslateDiagnostics();

  WeakRef<QueryContext> context_;
  std::unique_ptr<TextArea> headless_;
  TextArea* textArea_;
  std::vector<EventConnection> links_;  // to the text area
  SqlPaneOptions options_;
  bool busy_ = false;      // a statement is being parsed
  bool edited_ = false;    // the text is the user's
  bool outdated_ = false;  // the query has changed since
  bool replaced_ = false;  // a query that the text says nothing about takes its place
  bool sqlOnly_ = false;
  bool keepTypedText_ = false;
  std::shared_ptr<const TypedStatement> typed_;
  std::string generated_;    // where something is kept, the text as it was generated last
  bool asTyped_ = false;     // what is kept is shown
  bool tellsStale_ = false;  // since the last change it is not any more
  std::string written_;      // the text as it is shown when the user has typed no other
  Phrase failure_;           // why it could not be applied
  bool cartesian_ = false;
  std::shared_ptr<const GeneratedQuery> whole_;  // what was generated last, where it is made of several queries
  QuerySnapshot generatedFrom_;                  // the tables and joins of what was generated last
  mutable Ref<qbJoins> joins_;                   // of it; made when somebody asks
  std::vector<SQLDiagnostic> diagnostics_;
};

}  // namespace zrqrybld
