#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/diagram/auto_joins.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_editing.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/diagram/whole_joins.h"
#include "zrqrybld/expression/expression_zoom.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/connection_info.h"
#include "zrqrybld/host/language.h"
#include "zrqrybld/hub/ask_as_join.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"
#include "zrqrybld/hub/snapshot_builder.h"
#include "zrqrybld/platform/connection_policy.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/text_reading.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/platform/while_alive.h"
#include "zrqrybld/sql/asked_tables.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/dialect_functions.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/join_list.h"
#include "zrqrybld/sql/names.h"
#include "zrqrybld/sql/outer_queries.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/rename.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

}  // namespace

Ref<qbQueryBuilder> qbQueryBuilder::Create(std::shared_ptr<Toolkit> toolkit) {
  if (!toolkit) toolkit = std::make_shared<HeadlessToolkit>();
  return Ref<qbQueryBuilder>(new qbQueryBuilder(std::make_unique<Parts>(std::move(toolkit))));
}

qbQueryBuilder::~qbQueryBuilder() = default;

void qbQueryBuilder::AboutBox() {
  GetToolkit().GetDialogs().ShowMessage("zrQryBld\r\n" + Say(text::AboutQueryBuilder), MessageIcon::Information);
}

// --- Connection ---

std::string qbQueryBuilder::Connect() {
  const auto chosen = std::make_shared<std::string>();
  AskForConnection([this, chosen](const std::string& connectionString) {
    *chosen = connectionString;
    Connect(connectionString, ConnectionOrigin::Person);
  });
  return *chosen;
}

std::optional<Error> qbQueryBuilder::RefusalOf(const std::string& connectionString, ConnectionOrigin origin) {
  const bool fromFile = origin == ConnectionOrigin::File;
  std::vector<std::string> drivers;
  if (origin != ConnectionOrigin::Program) drivers = GetToolkit().Providers()->Drivers();
  const ConnectionJudgement judgement = JudgeConnection(connectionString, origin, drivers);
  const bool asks = judgement.verdict == ConnectionVerdict::Warn && connectionString != confirmedConnection_;
  const bool confirmed =
      asks && GetToolkit().GetDialogs().Confirm(Say({text::AskDangerousConnection, judgement.reason, kLineBreak}));
  if (confirmed) confirmedConnection_ = connectionString;
  if (judgement.verdict == ConnectionVerdict::Refuse || (asks && !confirmed)) {
    return Error(ErrorConnectionFailed,
                 Phrase(fromFile ? text::FileConnectionRefused : text::ConnectionRefused, judgement.reason));
  }
  bool cancel = false;
  BeforeConnect.Raise(connectionString, fromFile, cancel);
  if (cancel) return Error(ErrorConnectionFailed, text::ConnectionNotAllowed);
  return std::nullopt;
}

// The message of the driver, "" when the source can be opened. The connection in use is left alone.
std::string qbQueryBuilder::TryConnection(const std::string& connectionString) {
  try {
    if (const std::optional<Error> refusal = RefusalOf(connectionString, ConnectionOrigin::Person)) throw *refusal;
    ProviderConnection connection(GetToolkit().Providers());
    connection.SetConnectionString(connectionString);
    connection.Open({}, {});
    return {};
  } catch (const std::exception& error) {
    return Say(error);
  }
}

std::string qbQueryBuilder::PromptForConnection() {
  const auto chosen = std::make_shared<std::string>();
  AskForConnection([chosen](const std::string& connectionString) { *chosen = connectionString; });
  return *chosen;
}

void qbQueryBuilder::AskForConnection(std::function<void(const std::string&)> accepted) {
  ConnectionDialog dialog;
  for (DataSourceName& configured : GetToolkit().Providers()->DataSources()) {
    dialog.dataSources.push_back(std::move(configured.name));
  }
  dialog.test = WhileAlive(weak_from_this(),
                           [this](const std::string& connectionString) { return TryConnection(connectionString); });
  GetToolkit().GetDialogs().AskConnection(std::move(dialog), WhileAlive(weak_from_this(), std::move(accepted)));
}

namespace {

// Files are saved without their passwords, so one that is loaded may need what it does not hold.
Error WithPasswordHint(const Error& error, const std::string& connectionString) {
  const ConnectionString parsed(connectionString);
  constexpr std::string_view kLogins[] = {"DSN", "UID", "User", "Username", "User ID"};
  const bool logsIn = std::ranges::any_of(kLogins, [&](std::string_view key) { return parsed.Get(key).has_value(); });
  if (!logsIn || parsed.HoldsSecret()) return error;
  return Error(error.Number(), Phrase(text::NoPasswordInFile, error.What(), kLineBreak));
}

}  // namespace

void qbQueryBuilder::Connect(const std::string& connectionString) {
  Connect(connectionString, ConnectionOrigin::Program);
}

void qbQueryBuilder::Connect(const std::string& connectionString, ConnectionOrigin origin) {
  const BusyPointer busy(GetToolkit());
  lastError_.reset();
  try {
    if (const std::optional<Error> refusal = RefusalOf(connectionString, origin)) throw *refusal;
    if (IsConnected()) Disconnect();
    const Ref<zrqrybld::Connection> connection = Connection();
    connection->SetConnectionString(connectionString);
    connection->SetProperty("Prompt", static_cast<std::int32_t>(PromptComplete));
    connection->Open({}, {});
    RetrieveConnectionInfo(*this, options_.getTablesOnConnect);
    if (options_.autoSyntax) FollowSource();
    if (!IsConnected()) throw Error(ErrorConnectionFailed, text::SourceSilent);
  } catch (const Error& error) {
    lastError_ = origin == ConnectionOrigin::File ? WithPasswordHint(error, connectionString) : error;
  } catch (const std::exception& error) {
    lastError_ = Error(ErrorConnectionFailed, PhraseOf(error));
  }
}

void qbQueryBuilder::SetConnection(const Ref<zrqrybld::Connection>& connection) {
  source.StoreConnection(connection);
  if (!IsConnected()) return;
  RetrieveConnectionInfo(*this, options_.getTablesOnConnect);
  if (options_.autoSyntax) FollowSource();
}

void qbQueryBuilder::Disconnect() { Connection()->Close(); }

// --- Tables and joins ---

namespace {

// The name with its quotes taken off, unless the source has a table whose own name they are part of, and no other.
std::string NameToAdd(TablePicker& picker, const QueryContext& context, const std::string& tableName) {
  std::string plain = RemoveIdentifierQuotes(tableName, CurrentNameRules(context));
  if (plain == tableName || !context.source.IsConnected()) return plain;
  try {
    return !picker.HasTable(plain) && picker.HasTable(tableName) ? tableName : plain;
  } catch (const Error&) {
    return plain;  // the failure is told when the table is added
  }
}

}  // namespace

Ref<qbEntity> qbQueryBuilder::AddTable(const std::string& tableName) {
  TablePicker picker(RefTo(*this));
  return picker.AddTable(NameToAdd(picker, *this, tableName));
}

bool qbQueryBuilder::HasTable(const std::string& tableName) {
  TablePicker picker(RefTo(*this));
  return picker.HasTable(NameToAdd(picker, *this, tableName));
}

void qbQueryBuilder::ShowTables() {
  TablePicker(RefTo(*this)).ShowTables();
  if (sqlPane_) sqlPane_->ShowChange();
}

namespace {

void ListTables(const std::vector<FromEntry>& from, std::vector<std::size_t>& tables) {
  for (const FromEntry& entry : from) {
    if (entry.group.empty()) tables.push_back(entry.table);
    ListTables(entry.group, tables);
  }
}

// Those of the query within the query, and those around it.
std::vector<std::size_t> TablesForQuestion(const QuerySnapshot& query, const qbRelationship& join) {
  const QueryParts parts = PartsOf(query);
  const Ref<qbEntity> asked = join.Kind().AsksTarget() ? join.Target() : join.Source();
  std::size_t part = QueryParts::kRows;
  for (std::size_t table = 0; asked && table < query.tables.size(); ++table) {
    if (query.tables[table].caption.Name() == asked->Caption()) part = parts.partOf[table];
  }
  std::vector<std::size_t> tables;
  for (std::size_t table = 0; table < query.tables.size(); ++table) {
    if (parts.Sees(part, table)) tables.push_back(table);
  }
  return tables;
}

// The two tables of a join and all that stand before them in FROM, by their positions: what its condition can name.
std::vector<std::size_t> TablesForCondition(const QuerySnapshot& query, const qbRelationship& join) {
  if (join.Kind().Asks()) return TablesForQuestion(query, join);
  std::vector<std::size_t> tables;
  ListTables(PlaceTables(query, PartsOf(query).rows), tables);
  const Ref<qbEntity> source = join.Source();
  const Ref<qbEntity> target = join.Target();
  const auto isEnd = [&](std::size_t table) {
    const std::string& caption = query.tables[table].caption.Name();
    return (source && source->Caption() == caption) || (target && target->Caption() == caption);
  };
  tables.erase(std::ranges::find_if(tables.rbegin(), tables.rend(), isEnd).base(), tables.end());
  return tables;
}

// Helps to type the condition of a join, which names no table that is joined later.
Ref<frmExpressionZoom> FormForCondition(const Ref<QueryContext>& context, const qbRelationship& join) {
  const QuerySnapshot query = context->design.Snapshot();
  const std::vector<std::size_t> known = TablesForCondition(query, join);
  std::vector<std::string> captions;
  captions.reserve(known.size());
  for (const std::size_t table : known) captions.push_back(query.tables[table].caption.Name());
  const Ref<frmExpressionZoom> form = frmExpressionZoom::Create(context, EditedText::Expression);
  form->Suggestions()->SetTables(captions);
  form->SetReader([known, tables = query.tables](std::string_view text) {
    const std::string condition = JoinConditionText(text);
    for (const std::size_t table : TablesNamed(condition, tables).tables) {
      if (std::ranges::find(known, table) != known.end()) continue;
      throw Error(ErrorInvalidCall, {text::ConditionNamesOther, tables[table].caption.Name()});
    }
  });
  return form;
}

}  // namespace

bool qbQueryBuilder::ShowJoinProperties(const Ref<qbRelationship>& relationship) {
  if (!relationship) return false;
  const StepScope step(RefTo(*this), kStepEditJoin);
  const Ref<qbEntity> from = relationship->Source();
  const Ref<qbEntity> to = relationship->Target();
  const bool selected = diagramPane_ && DiagramPane()->SelectedObject() == relationship;
  const auto accepted = std::make_shared<bool>(false);
  const auto goOn = [this, from, to, selected, accepted] {
    *accepted = true;
    // Its own pair may be the one that was taken out: the join stays selected.
    const Ref<qbDiagramPane> pane = selected ? DiagramPane() : nullptr;
    const Ref<qbWholeJoin> whole = pane ? pane->WholeJoins()->Between(from, to) : nullptr;
    if (whole && !pane->SelectedObject()) pane->SelectObject(whole->First());
    QueryChanged();
  };
  const Ref<qbQueryBuilder> self = RefTo(*this);
  EditJoin(self, *relationship, FormForCondition(self, *relationship), goOn);
  return *accepted;
}

void qbQueryBuilder::RefreshAutoJoins() { RefreshRelationships(RefTo(*this)); }

// --- Captions ---

void qbQueryBuilder::LoadLanguageFile(const std::string& path) {
  try {
    source.Language().Load(path);
  } catch (const Error&) {
    ApplyTexts();  // what was read before the faulty line counts
    throw;
  }
  ApplyTexts();
}

void qbQueryBuilder::SetLanguageString(std::int32_t id, const std::string& newValue) {
  source.Language().Set(id, newValue);
  ApplyTexts();
}

// Panes and windows show texts that have changed at once.
void qbQueryBuilder::ApplyTexts() {
  if (diagramPane_) diagramPane_->Refresh();
  if (gridPane_) gridPane_->ApplyGridCaptions();
  if (sqlPane_) sqlPane_->ApplyTexts();
  TextsChanged.Raise();
}

// --- Panes ---

// A pane has one hub: the one that it was linked to lets go of it.
template <class Pane>
void qbQueryBuilder::Link(Ref<Pane>& place, const Ref<Pane>& pane, void (qbQueryBuilder::*set)(const Ref<Pane>&)) {
  if (travelling_) throw Error(ErrorInvalidCall, text::PanesInTravel);
  const Ref<qbQueryBuilder> other = pane ? pane->QueryBuilder() : nullptr;
  if (other && other.get() != this) ((*other).*set)(nullptr);
  const Ref<Pane> before = std::exchange(place, pane);
  if (before && before != pane) before->SetContext(nullptr);
  if (pane) pane->SetContext(RefTo(*this));
}

void qbQueryBuilder::SetDiagramPane(const Ref<qbDiagramPane>& pane) {
  Link(diagramPane_, pane, &qbQueryBuilder::SetDiagramPane);
  RememberAll();  // at once: the steps of the pane before are of no use even if what follows fails
  EntitiesChanged(1);
  OutputTicked();
}

void qbQueryBuilder::SetGridPane(const Ref<qbGridPane>& pane) {
  Link(gridPane_, pane, &qbQueryBuilder::SetGridPane);
  gridMenu_ = OfferAskAsJoin(*this);
  RememberAll();
  OutputTicked();
}

void qbQueryBuilder::SetSQLPane(const Ref<qbSQLPane>& pane) {
  Link(sqlPane_, pane, &qbQueryBuilder::SetSQLPane);
  DialectChanged();
  RememberAll();
}

// Columns that were ticked before diagram and grid knew of each other are output, too. That is no step: there is
// nothing to go back to.
void qbQueryBuilder::OutputTicked() {
  if (gridPane_ && GridPane()->OutputTicked()) RememberAll();
}

Ref<qbEntities> qbQueryBuilder::Entities() const { return diagramPane_ ? diagramPane_->Entities() : nullptr; }

const Dialect& qbQueryBuilder::CurrentDialect() const {
  return DialectFor(sqlPane_ ? sqlPane_->SQLSyntax() : SQLSyntaxGeneric);
}

bool qbQueryBuilder::HasFullJoin() const { return !sqlPane_ || CurrentDialect().hasFullJoin; }

// The source tells what it is by the properties that were read when it was connected.
const Dialect* qbQueryBuilder::SourceDialect() const {
  const std::optional<std::string> name = IsConnected() ? Properties()->FindText(kSourceNameLiteral) : std::nullopt;
  return name ? DialectOfSource(*name, Properties()->FindText(kSourceVersionLiteral).value_or("")) : nullptr;
}

bool qbQueryBuilder::FollowSource() {
  const Dialect* dialect = SourceDialect();
  if (!dialect || !sqlPane_) return false;
  if (dialect->syntax == sqlPane_->SQLSyntax()) return true;
  const StepScope step(RefTo(*this), kStepDialect);
  sqlPane_->SetSQLSyntax(dialect->syntax);
  QueryChanged();
  return true;
}

namespace {

template <class Catalog, class Entry>
void Withdraw(Catalog& catalog, std::vector<Ref<Entry>>& entries) {
  for (const Ref<Entry>& entry : std::exchange(entries, {})) {
    if (catalog.FindByName(entry->Name()) == entry) catalog.Remove(entry->Name());
  }
}

}  // namespace

// The functions and words of the dialect stand behind those of every dialect and those of the application.
void qbQueryBuilder::DialectChanged() {
  qbDBFunctions& functions = *DBFunctions();
  Withdraw(functions, dialectFunctions_);
  Withdraw(*DBKeywords(), dialectKeywords_);
  for (const DialectFunction& row : DialectFunctions(CurrentDialect().syntax)) {
    const std::string name(row.name);
    if (functions.FindByName(name)) continue;
    const Ref<qbDBFunction> function = functions.Add(name, std::string(row.syntax), std::string(row.description),
                                                     std::string(row.shortDescription), row.flags);
    function->SetReserved(false);
    dialectFunctions_.push_back(function);
  }
  if (!CurrentDialect().offersWords) return;
  for (const std::string_view word : CurrentDialect().words) {
    if (functions.FindByName(word) || DBOperators()->FindByName(word) || DBKeywords()->FindByName(word)) continue;
    dialectKeywords_.push_back(DBKeywords()->Add(std::string(word)));
  }
}

// A cell that was written with the former word for LIKE would be a text that begins with that word.
void qbQueryBuilder::LikeOperatorChanged(const std::string& before) {
  if (!gridPane_ || steps.InStep()) return;
  const StepScope step(RefTo(*this), kStepEditCells);
  gridPane_->RewriteLike(before);
  ForEachOther([&] { gridPane_->RewriteLike(before); });
}

std::string qbQueryBuilder::DateFormat() const { return gridPane_ ? gridPane_->DateFormat() : "dd-mmm-yyyy"; }

CriteriaContext qbQueryBuilder::CriteriaRules() const {
  CriteriaContext rules;
  if (gridPane_) {
    rules.dateFormatStyle = gridPane_->DateFormatStyle();
    rules.dateFormat = gridPane_->DateFormat();
    rules.dateFormatChosen = gridPane_->Dates().chosen;
  }
  if (sqlPane_) rules.likeOperator = sqlPane_->LikeOperator();
  rules.dialect = &CurrentDialect();
  rules.source = SourceDialect();
  rules.reading = SourceReading(*this);
  if (!Properties()->FindText(kTextReadingLiteral)) rules.reading = UsualReading(rules.dialect->readsAs);
  return rules;
}

QuerySnapshot qbQueryBuilder::Snapshot() const {
  QuerySnapshot snapshot = TakeSnapshot(*this, Entities().get(), gridPane_.get());
  snapshot.distinct = options_.distinctRecords;
  snapshot.top = options_.selectTopRecords;
  snapshot.skip = options_.skipRecords;
  snapshot.criteria = CriteriaRules();
  const QuerySet& set = parts_->querySet;
  snapshot.beginsCompound = set.BeginsCompound(set.shown);
  snapshot.isAmongOthers = !set.IsSingle();
  snapshot.outer = Outer();
  return snapshot;
}

std::shared_ptr<SchemaCache> qbQueryBuilder::Schema() {
  if (!schema_) schema_ = std::make_shared<SchemaCache>(*this);
  return schema_;
}

void qbQueryBuilder::RefreshStatement() {
  if (sqlPane_) SQLPane()->ShowChange();
  NoteColumns();
}

// --- What the panes tell ---

namespace {

// Whether the columns of the table cannot be shown because it is only asked about.
bool IsOnlyAsked(const qbQueryBuilder& hub, const std::string& caption) {
  const auto asks = [](const Ref<qbRelationship>& join) { return join->Kind().Asks(); };
  const Ref<qbEntities> entities = hub.Entities();
  if (!entities || std::ranges::none_of(entities->AskingJoins(), asks)) return false;
  const QuerySnapshot query = hub.Snapshot();
  const auto table =
      std::ranges::find_if(query.tables, [&](const SnapshotTable& one) { return one.caption.Name() == caption; });
  return table != query.tables.end() && PartsOf(query).IsAsked(static_cast<std::size_t>(table - query.tables.begin()));
}

}  // namespace

void qbQueryBuilder::ItemChecked(const std::string& entityCaption, const std::string& itemText, bool checked) {
  if (checked && state() == InfoDone && IsOnlyAsked(*this, entityCaption)) {
    const Ref<qbEntity> entity = Entities()->FindExactly(entityCaption);
    const Ref<qbEntityItem> item = entity ? entity->Items()->FindByText(itemText, true) : nullptr;
    if (item) item->SetChecked(false);
    throw Error(ErrorInvalidCall, {text::TickOfAsked, entityCaption});
  }
  if (gridPane_) GridPane()->SetFieldOutput(itemText, checked, entityCaption);
}

void qbQueryBuilder::ItemRenamed(const std::string& entityCaption, const std::string& before,
                                 const std::string& after) {
  if (gridPane_) GridPane()->RenameColumn(entityCaption, before, after);
}

namespace {

void RewriteConditions(qbEntities& entities, const std::function<std::string(std::string_view)>& rewrite) {
  for (const Ref<qbRelationship>& join : entities.AskingJoins()) {
    if (!join->Condition().empty()) join->SetCondition(rewrite(join->Condition()));
  }
}

}  // namespace

// In a query within another one, names without a table keep meaning what they meant around.
void qbQueryBuilder::TableAdded(const std::string& caption) {
  if (travelling_ || !Outer()) return;
  const auto taken = NamesTakenByLastTable(Snapshot());
  if (taken.empty()) return;
  const auto qualified = [&](std::string_view text) { return QualifyColumns(text, taken); };
  if (const Ref<qbEntities> entities = Entities()) RewriteConditions(*entities, qualified);
  if (gridPane_) GridPane()->RenameTable(caption, caption, qualified);  // rewrites what was typed
}

void qbQueryBuilder::EntityRemoved(const std::string& caption) {
  if (gridPane_) GridPane()->RemoveRowsOf(caption);
  DropUnnamedQueries();
  RaiseInfo(InfoTableRemoved, caption);
}

void qbQueryBuilder::EntityRenamed(const std::string& oldCaption, const std::string& newCaption) {
  const NameRules rules = CurrentNameRules(*this);
  // As the statement names it: a table under its own name by its schema and name, otherwise by its caption.
  const Ref<qbEntity> entity = Entities() ? Entities()->Item(newCaption) : nullptr;
  const bool ownName = entity && entity->TagVariant().Text() == newCaption && !ColumnsOfQuery(newCaption);
  const SqlText after =
      ownName ? RenderQualified(SplitName(newCaption, rules), rules) : QuoteWhenNeeded(Identifier(newCaption), rules);
  const auto renamed = [&](std::string_view text) { return RenameQualifier(text, oldCaption, after, rules); };
  const Ref<qbEntities> entities = Entities();
  if (entities) RewriteConditions(*entities, renamed);
  if (gridPane_) GridPane()->RenameTable(oldCaption, newCaption, renamed);
}

void qbQueryBuilder::RefreshTableList(std::int32_t from) {
  if (gridPane_) GridPane()->RefreshTableList(from);
}

void qbQueryBuilder::DiagramCleared() {
  DropInnerQueries();
  if (gridPane_) GridPane()->ResetRows();
  if (sqlPane_) {
    sqlPane_->QueryReplaced();
    sqlPane_->SetTyped(nullptr);
  }
  QueryChanged();
}

void qbQueryBuilder::RelationshipActivated(const Ref<qbRelationship>& relationship) {
  if (options_.allowJoinProperties) ShowJoinProperties(relationship);
}

// --- Names ---

void qbQueryBuilder::QueryDataSource(std::vector<DataSourceQuestion>& questions) const {
  constexpr std::string_view kReservedWord = "IS_RESERVEDWORD:";
  NameRules names;
  names.reservedWords = source.ReservedWords();
  names.dialectWords = CurrentDialect().words;
  for (DataSourceQuestion& question : questions) {
    const std::string_view text = question.question;
    if (StartsWithNoCase(text, kReservedWord)) {
      question.answer = IsReservedWord(text.substr(kReservedWord.size()), names);
    } else if (text == "QUOTE_PREFIX" || text == "QUOTE_SUFFIX") {
      const std::optional<NameQuotes> quotes = SourceQuotes(*this);
      question.answer = !quotes ? "\"" : text == "QUOTE_PREFIX" ? quotes->prefix : quotes->suffix;
    }
  }
}

std::string qbQueryBuilder::QuoteIdentifier(const std::string& name) const {
  return QuoteWhenNeeded(Identifier(name), CurrentNameRules(*this)).Text();
}

}  // namespace zrqrybld
