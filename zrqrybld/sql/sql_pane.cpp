#include "zrqrybld/sql/sql_pane.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/stored_values.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/query_text.h"
#include "zrqrybld/sql/same_words.h"
#include "zrqrybld/sql/typed_statement.h"

namespace zrqrybld {
namespace {

bool ReadSyntax(const Variant& stored, SQLSyntaxEnum& syntax) {
  const std::optional<double> number = stored.Number();
  for (const Dialect& dialect : AllDialects()) {
    if (number != static_cast<double>(dialect.syntax)) continue;
    syntax = dialect.syntax;
    return true;
  }
  return false;
}

// A word of whatever kind.
bool ReadLikeOperator(const Variant& stored, std::string& word) {
  const std::string text = stored.Text();
  if (Trim(text).empty()) return false;
  word = text;
  return true;
}

std::string WithCrLf(std::string_view text) {
  return ReplaceAll(ReplaceAll(ReplaceAll(text, "\r\n", "\n"), "\r", "\n"), "\n", "\r\n");
}

using F = SqlPaneOptions;
constexpr StoredTable kStored = {
    Stored<F, &F::syntax, &ReadSyntax>("SQLSyntax"),
    Stored<F, &F::locked>("Locked"),
    Stored<F, &F::likeOperator, &ReadLikeOperator>("LikeOperator"),
};

}  // namespace

qbSQLPane::qbSQLPane() : headless_(std::make_unique<HeadlessTextArea>()), textArea_(headless_.get()) {
  ListenToTextArea();
}

Ref<qbSQLPane> qbSQLPane::Create() { return Ref<qbSQLPane>(new qbSQLPane()); }

Ref<qbQueryBuilder> qbSQLPane::QueryBuilder() const {
  const Ref<QueryContext> context = context_.lock();
  return context ? context->design.Hub() : nullptr;
}

// --- The text area ---

void qbSQLPane::AttachTextArea(TextArea* area) {
  const std::string text = textArea_->Text();
  textArea_ = area ? area : headless_.get();
  textArea_->SetText(text);
  textArea_->SetReadOnly(options_.locked);
  textArea_->SetRemarks(Remarks());
  ListenToTextArea();
}

void qbSQLPane::ListenToTextArea() {
  links_.clear();
  links_.push_back(textArea_->Edited.Connect([this] { TextEdited(); }));
  links_.push_back(textArea_->Left.Connect([this] {
    if (failure_.Empty()) ApplyEditedText();
  }));
  links_.push_back(textArea_->KeyDown.Connect([this](std::int32_t& keyCode, std::int32_t shift) {
    const Ref<Object> alive = shared_from_this();  // a listener may let go of it
    KeyDown.Raise(keyCode, shift);
    const Key key{keyCode, shift};
    // The second key runs the statement where there is nothing to apply.
    const bool waits = edited_ && !sqlOnly_;
    const bool applies = key == RowOf(Command::ApplyText).key || (waits && Asks(key, Command::ApplyText));
    const bool goes = Asks(key, Command::GoToQueryAtCaret);
    const bool leaves = Asks(key, Command::LeaveQuery);
    if (!applies && !goes && !leaves) return;
    keyCode = 0;
    const Ref<QueryContext> context = context_.lock();
    if (applies) {
      ApplyEditedText();
    } else if (goes) {
      OpenQueryAtCaret();
    } else if (context) {
      context->reports.LeaveQuery();
    }
  }));
  links_.push_back(
      textArea_->KeyUp.Connect([this](std::int32_t& keyCode, std::int32_t shift) { KeyUp.Raise(keyCode, shift); }));
  links_.push_back(textArea_->KeyPress.Connect([this](char32_t& character) { KeyPress.Raise(character); }));
}

std::vector<std::string> qbSQLPane::Remarks() const {
  std::vector<std::string> remarks;
  remarks.reserve(diagnostics_.size());
  for (const SQLDiagnostic& diagnostic : diagnostics_) remarks.push_back(diagnostic.text);
  return remarks;
}

std::vector<std::string> qbSQLPane::Cures() const {
  std::vector<std::string> cures;
  cures.reserve(diagnostics_.size());
  for (const SQLDiagnostic& diagnostic : diagnostics_) cures.push_back(Say(context_.lock(), diagnostic.cureName));
  return cures;
}

bool qbSQLPane::CureRemark(std::int32_t index) {
  if (index < 1 || static_cast<std::size_t>(index) > diagnostics_.size()) ThrowNoSuchItem();
  const SQLDiagnostic remark = diagnostics_[static_cast<std::size_t>(index) - 1];
  const Ref<QueryContext> context = context_.lock();
  if (remark.cure == CureNone || edited_ || !context) return false;
  context->reports.CureRemark(remark);
  return true;
}

// A button for each of the first remarks that something can be done about.
std::vector<TextCommand> qbSQLPane::CureCommands() {
  constexpr std::size_t kMost = 2;  // they share a line with the remark itself
  std::vector<TextCommand> commands;
  const std::vector<std::string> cures = Cures();
  for (std::size_t i = 0; i < cures.size() && commands.size() < kMost; ++i) {
    const auto index = static_cast<std::int32_t>(i + 1);
    if (!cures[i].empty()) commands.push_back({cures[i], [this, index] { CureRemark(index); }});
  }
  return commands;
}

// What is typed and not applied comes before what there is to say about the designer's statement.
void qbSQLPane::ShowRemarks() {
  std::vector<std::string> remarks;
  std::vector<TextCommand> commands;
  if (edited_) {
    const Ref<QueryContext> context = context_.lock();
    const Phrase waits(outdated_ ? text::EditedOutdated : text::EditedNotApplied, KeyTextOf(Command::ApplyText));
    remarks.push_back(failure_.Empty() ? Say(context, sqlOnly_ ? Phrase(text::SqlOnly) : waits)
                      : sqlOnly_       ? Say(context, {text::SqlOnlyBecause, failure_})
                                       : Say(context, failure_));
    commands.push_back({Say(context, text::CommandApply), [this] { ApplyEditedText(); }});
    commands.push_back({Say(context, text::CommandRevert), [this] { RevertEditedText(); }});
    if (!failure_.Empty() && !sqlOnly_) {
      commands.push_back({Say(context, text::CommandUseAsTyped), [this] { UseAsTyped(); }});
    }
  } else {
    remarks = Remarks();
    commands = CureCommands();
    if (tellsStale_) remarks.push_back(Say(context_.lock(), text::TypedTextStale));
  }
  textArea_->SetRemarks(remarks);
  textArea_->SetCommands(std::move(commands));
}

// --- What the user types ---

void qbSQLPane::TextEdited() {
  // What is typed back, or undone in the editor, leaves nothing to apply.
  const bool edited = textArea_->Text() != written_;
  // What stands beside the text changes with few keys only.
  if (edited != edited_ || !failure_.Empty()) {
    failure_ = {};
    textArea_->SetFault(0, 0);
    SetEdited(edited);
  }
  SQLChanged.Raise();
}

void qbSQLPane::ShowTyped(const std::string& text) {
  textArea_->SetText(text);
  TextEdited();
}

void qbSQLPane::SetEdited(bool edited) {
  const bool changed = edited != edited_;
  edited_ = edited;
  outdated_ &= edited;
  const bool wasSqlOnly = sqlOnly_;
  sqlOnly_ &= edited;
  ShowRemarks();
  if (changed) EditedChanged.Raise();
  if (wasSqlOnly && !sqlOnly_) SqlOnlyChanged.Raise();
}

void qbSQLPane::WriteAnew() {
  const Ref<QueryContext> context = context_.lock();
  if (!typed_ || !context) return Refresh();
  const StepScope step(context, kStepWriteAnew);
  typed_.reset();
  context->steps.QueryChanged();
}

bool qbSQLPane::UseAsTyped() {
  if (!edited_ || failure_.Empty()) return sqlOnly_;
  if (sqlOnly_) return true;
  sqlOnly_ = true;
  ShowRemarks();
  SqlOnlyChanged.Raise();
  return true;
}

bool qbSQLPane::ApplyEditedText() {
  const Ref<Object> alive = shared_from_this();
  if (!edited_ || busy_) return !edited_;
  const Ref<QueryContext> context = context_.lock();
  if (!context) return false;
  try {
    ParseSQLStatement(textArea_->Text());
    return true;
  } catch (const Error& error) {
    context->steps.SetState(InfoDone);
    ShowFailure(error);
  } catch (const std::exception& error) {
    context->steps.SetState(InfoDone);
    ShowFailure(Error(ErrorParsingText, PhraseOf(error)));
  }
  return false;
}

// The cause, and the word where it lies.
void qbSQLPane::ShowFailure(const Error& failure) {
  failure_ = failure.Cause();
  ShowRemarks();
  if (!failure.Offset()) return;
  const std::string text = textArea_->Text();
  Lexer lexer(text);
  Token faulty;
  for (Token token; lexer.Next(token) && token.offset <= *failure.Offset();) faulty = token;
  textArea_->SetFault(faulty.offset, faulty.length);
}

// --- Properties ---

void qbSQLPane::SetSQLStatement(const std::string& text) {
  if (text == textArea_->Text()) return;
  textArea_->SetText(text);
  SQLChanged.Raise();
}

void qbSQLPane::SetSQLSyntax(SQLSyntaxEnum syntax) {
  options_.syntax = syntax;
  if (const Ref<QueryContext> context = context_.lock()) context->reports.DialectChanged();
  PropertyChanged.Raise(StoredKey<&F::syntax>(kStored));
}

void qbSQLPane::SetLikeOperator(const std::string& word) {
  const std::string before = options_.likeOperator;
  options_.likeOperator = Trim(word).empty() ? SqlPaneOptions().likeOperator : word;
  const Ref<QueryContext> context = context_.lock();
  if (context && before != options_.likeOperator) context->reports.LikeOperatorChanged(before);
  PropertyChanged.Raise(StoredKey<&F::likeOperator>(kStored));
}

void qbSQLPane::SetLocked(bool locked) {
  options_.locked = locked;
  textArea_->SetReadOnly(locked);
  PropertyChanged.Raise(StoredKey<&F::locked>(kStored));
}

void qbSQLPane::ReadProperties(const PropertyStore& store) {
  ReadStored(kStored, store, options_);
  textArea_->SetReadOnly(options_.locked);
}

void qbSQLPane::WriteProperties(PropertyStore& store) const { WriteStored(kStored, store, options_); }

// --- The statement ---

std::string qbSQLPane::Generate(const std::string& orExpression, const std::string& andExpression) {
  const Ref<QueryContext> context = context_.lock();
  if (busy_ || !context) return {};
  context->steps.TakeBackState();
  if (context->steps.state() != InfoDone) return {};
  QuerySnapshot query = context->design.Snapshot();
  const Dialect& dialect = DialectFor(options_.syntax);
  const ExtraConditions extra{orExpression, andExpression};
  GeneratedSql generated = GenerateSelect(query, dialect, extra);
  diagnostics_ = Diagnose(query, dialect, generated);
  whole_.reset();
  if (std::optional<GeneratedQuery> whole = context->design.WholeStatement(extra))
    TakeWhole(*std::move(whole), generated);
  TranslateDiagnostics();
  cartesian_ = generated.cartesian;
  generatedFrom_.tables = std::move(query.tables);
  generatedFrom_.joins = std::move(query.joins);
  joins_.reset();
  return std::move(generated.text);
}

// The statement is that of all queries; what there is to say about the others stands behind the remarks of the one
// shown.
void qbSQLPane::TakeWhole(GeneratedQuery whole, GeneratedSql& shown) {
  shown.text = whole.text;
  for (QueryRemark& remark : whole.remarks) {
    const Phrase who = !remark.name.empty() ? Phrase(remark.name)
                       : remark.member > 0  ? Phrase(text::MemberTitle, remark.member)
                                            : Phrase(text::MainQueryTitle);
    SQLDiagnostic& diagnostic = diagnostics_.emplace_back(std::move(remark.diagnostic));
    diagnostic.what = Phrase(text::RemarkOfQuery, who, diagnostic.what);
  }
  for (QueryFault& fault : whole.faults) {
    if (fault.what.Empty()) continue;
    SQLDiagnostic& remark = diagnostics_.emplace_back();
    remark.kind = DiagnosticQueryNotWritten;
    remark.what = std::move(fault.what);
  }
  whole_ = std::make_shared<const GeneratedQuery>(std::move(whole));
}

namespace {

// Where the queries stand in a text that says in the same words what was generated, whatever its layout and comments;
// none in another text.
std::vector<QueryPart> PartsIn(std::string_view text, const GeneratedQuery& whole) {
  if (text == whole.text) return whole.parts;
  const std::vector<Token> tokens = WordsOf(text);
  const std::vector<Token> written = WordsOf(whole.text);
  if (tokens.empty() || !SameWords(text, tokens, whole.text, written)) return {};
  std::vector<QueryPart> parts = whole.parts;
  for (QueryPart& part : parts) {
    const auto first = std::ranges::lower_bound(written, part.begin, {}, &Token::offset) - written.begin();
    const auto last = std::ranges::lower_bound(written, part.end, {}, &Token::offset) - written.begin() - 1;
    if (last < first) return {};
    part.begin = tokens[static_cast<std::size_t>(first)].offset;
    const Token& end = tokens[static_cast<std::size_t>(last)];
    part.end = end.offset + end.length;
  }
  return parts;
}

}  // namespace

// The main query is all of the text: nothing of it is set off.
void qbSQLPane::ShowPart() {
  if (!whole_ || edited_) return textArea_->SetPart(0, 0);
  const std::vector<QueryPart> parts = PartsIn(textArea_->Text(), *whole_);
  const auto shown = std::ranges::find(parts, whole_->extended, &QueryPart::id);
  if (shown == parts.end() || shown->id == 0) return textArea_->SetPart(0, 0);
  textArea_->SetPart(shown->begin, shown->end - shown->begin);
}

bool qbSQLPane::OpenQueryAtCaret() {
  const Ref<QueryContext> context = context_.lock();
  if (!context) return false;
  const std::string text = textArea_->Text();
  const std::size_t caret = textArea_->Caret();
  const bool saysDesign = !edited_ && !sqlOnly_;
  if (!whole_) return saysDesign && context->reports.ShowQueryAt(0, text, caret);
  const QueryPart* innermost = nullptr;
  const std::vector<QueryPart> parts = PartsIn(text, *whole_);
  if (parts.empty()) return saysDesign && context->reports.ShowQueryAt(whole_->extended, text, caret);
  for (const QueryPart& part : parts) {
    const bool holds = part.begin <= caret && caret <= part.end;
    if (holds && (!innermost || part.end - part.begin < innermost->end - innermost->begin)) innermost = &part;
  }
  if (!innermost) return false;
  return context->reports.ShowQueryAt(innermost->id, text.substr(innermost->begin, innermost->end - innermost->begin),
                                      caret - innermost->begin);
}

void qbSQLPane::TranslateDiagnostics() {
  const Ref<QueryContext> context = context_.lock();
  for (SQLDiagnostic& diagnostic : diagnostics_) diagnostic.text = Say(context, diagnostic.what);
}

void qbSQLPane::ApplyTexts() {
  TranslateDiagnostics();
  ShowRemarks();
}

const Ref<qbJoins>& qbSQLPane::Joins() const {
  if (!joins_) joins_ = BuildJoinList(generatedFrom_);
  return joins_;
}

std::string qbSQLPane::Written(const QueryContext& context) const {
  if (std::optional<GeneratedQuery> whole = context.design.WholeStatement({})) return std::move(whole->text);
  return GenerateSelect(context.design.Snapshot(), DialectFor(options_.syntax)).text;
}

// The text that stands for a generated one.
std::string qbSQLPane::Present(std::string generated) {
  const bool mayComment = DialectFor(options_.syntax).hasComments;
  const bool keeps = typed_ && !generated.empty() && (mayComment || typed_->comments.empty());
  const bool wasTyped = std::exchange(asTyped_, keeps && generated == typed_->meaning);
  tellsStale_ = keeps && wasTyped && !asTyped_;
  generated_ = generated;
  if (!keeps) return generated;
  return asTyped_ ? typed_->text : WithComments(generated_, typed_->comments);
}

void qbSQLPane::SetKeepTypedText(bool keep) {
  keepTypedText_ = keep;
  if (!keep) typed_.reset();
}

void qbSQLPane::Keep(const std::string& sql, std::string meaning) {
  const Ref<QueryContext> context = context_.lock();
  if (!keepTypedText_ || !context) return;
  TypedStatement typed{WithCrLf(sql), std::move(meaning), {}};
  typed_.reset();
  if (typed.text == typed.meaning) return;
  typed.comments = CommentsByClause(typed.text, context->design.CriteriaRules().reading);
  typed_ = std::make_shared<const TypedStatement>(std::move(typed));
}

void qbSQLPane::Refresh() {
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  diagnostics_.clear();                          // where nothing is generated there is nothing to say
  const std::string text = Present(Generate({}, {}));
  failure_ = {};
  replaced_ = false;
  textArea_->SetFault(0, 0);
  SetEdited(false);
  written_ = text;
  SetSQLStatement(text);
  ShowPart();
}

void qbSQLPane::ShowChange() {
  if (!KeepsTyped()) return Refresh();
  std::string text = Present(Generate({}, {}));
  if (text == written_) return;
  written_ = std::move(text);
  outdated_ = true;
  ShowRemarks();
  SQLChanged.Raise();
}

std::string qbSQLPane::AddWhereClause(const std::string& orExpression, const std::string& andExpression) {
  return Generate(orExpression, andExpression);
}

void qbSQLPane::ParseSQLStatement(const std::string& sql) {
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  const Ref<QueryContext> context = context_.lock();
  if (!context) throw Error(ErrorParsingText, text::NotLinked);
  if (!DialectFor(options_.syntax).canBeParsed) {
    throw Error(ErrorParsingText, text::CannotParseSyntax);
  }
  {
    const StepScope step(context, kStepApplyStatement);
    context->steps.SetState(InfoParsingSQL);
    try {
      const ScopedValue busy(busy_, true);
      context->steps.RaiseInfo(InfoParsingSQL, sql);
      context->reports.LoadStatement(sql);
      if (keepTypedText_) Keep(sql, Written(*context));
    } catch (const std::exception& cause) {
      context->steps.LeaveState();
      throw WrapError(ErrorParsingText, text::ParsingFailed, cause);
    }
    QueryReplaced();
    context->steps.SetState(InfoDone);
    context->steps.QueryChanged();
  }
  context->steps.RaiseInfo(InfoDone, static_cast<std::int32_t>(InfoParsingSQL));
}

// --- Parameters ---

std::string qbSQLPane::ParseParameters() {
  const ScannedStatement scanned = ScanParameters(SQLStatement(), context_.lock());
  std::vector<std::string> values;
  for (const Ref<qbParameter>& parameter : *scanned.parameters) {
    bool cancel = false;
    ParseParameter.Raise(parameter, cancel);
    if (cancel) return {};
    values.push_back((parameter->Value.IsBlank() ? parameter->Default : parameter->Value).Text());
  }
  return PutInValues(scanned.text, values);
}

}  // namespace zrqrybld
