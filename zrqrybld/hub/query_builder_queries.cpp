// The queries of the statement: which of them the panes show, how they change places, and the statement of all.
#include <algorithm>
#include <unordered_set>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/query_boxes.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"
#include "zrqrybld/hub/snapshot_builder.h"
#include "zrqrybld/sql/query_outline.h"
#include "zrqrybld/sql/query_outputs.h"
#include "zrqrybld/sql/query_text.h"
#include "zrqrybld/sql/rename.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

const QuerySet& qbQueryBuilder::QueriesNow() const { return parts_->querySet; }

// --- What they are to each other ---

std::optional<std::vector<QueryColumn>> qbQueryBuilder::ColumnsOfQuery(const std::string& name) const {
  const QuerySet& set = parts_->querySet;
  if (set.IsSingle()) return std::nullopt;
  const StoredQuery* named = set.FindNamed(set.shown, name);
  if (!named) return std::nullopt;
  return named->columns ? *named->columns : std::vector<QueryColumn>();
}

// --- The statement of all ---

namespace {

// The set of queries as a tree, with what the panes show in its place.
class TreeMaker {
 public:
  TreeMaker(const QuerySet& set, const QuerySnapshot& shown, std::vector<QueryColumn> outputs)
      : set_(set), shown_(shown), outputs_(std::move(outputs)) {}

  QueryTree Make(const StoredQuery& stored) const {
    QueryTree tree;
    tree.id = stored.id;
    tree.kind = stored.kind;
    tree.combined = stored.combined;
    tree.name = stored.name;
    tree.columnNames = stored.columnNames;
    if (stored.id == set_.shown) {
      tree.query = shown_;
      tree.columns = outputs_;
    } else {
      if (stored.snapshot) tree.query = *stored.snapshot;
      if (stored.columns) tree.columns = *stored.columns;
      FollowRenames(tree.query, stored.id);
    }
    tree.query.names = shown_.names;
    tree.query.criteria = shown_.criteria;
    for (const StoredQuery* inner : set_.InnerOf(stored.id)) {
      if (inner->kind != QueryInCell) tree.inner.push_back(Make(*inner));  // the cell says it
    }
    return tree;
  }

 private:
  // A column that was renamed in its query is named so at once; the boxes follow when they are shown.
  void FollowRenames(QuerySnapshot& query, std::int32_t id) const {
    for (std::size_t i = 0; i < query.tables.size() && query.columns; ++i) {
      if (query.tables[i].name.size() != 1) continue;
      const StoredQuery* named = set_.FindNamed(id, query.tables[i].name.front().Name());
      if (!named) continue;
      const bool isShown = named->id == set_.shown;
      if (!isShown && !named->columns) continue;
      const auto renamed = RenamedColumn(query.columns->Columns(i), isShown ? outputs_ : *named->columns);
      if (renamed) RenameColumn(query, i, renamed->first, renamed->second);
    }
  }

  const QuerySet& set_;
  const QuerySnapshot& shown_;
  const std::vector<QueryColumn> outputs_;
};

}  // namespace

std::vector<QueryColumn> qbQueryBuilder::OutputsOfShown(const QuerySnapshot& snapshot) const {
  const auto typeOf = [this](std::size_t table, const std::string& column) {
    const Ref<qbEntity> entity = Entities()->Item(static_cast<std::int32_t>(table) + 1);
    return TypeOfColumn(*entity, column, *DataTypes());
  };
  return OutputsOf(snapshot, typeOf, parts_->querySet.Shown().columnNames);
}

QueryTree qbQueryBuilder::TreeOf(std::int32_t id) const {
  const QuerySet& set = parts_->querySet;
  const QuerySnapshot shown = Snapshot();
  return TreeMaker(set, shown, OutputsOfShown(shown)).Make(*set.Find(id));
}

std::string qbQueryBuilder::StatementOf(std::int32_t id) const {
  if (!parts_->querySet.Find(id)) return {};
  return GenerateQuery(TreeOf(id), CurrentDialect(), parts_->querySet.shown).text;
}

std::optional<GeneratedQuery> qbQueryBuilder::WholeStatement(const ExtraConditions& extra) const {
  const QuerySet& set = parts_->querySet;
  if (set.IsSingle()) return std::nullopt;
  GeneratedQuery whole = GenerateQuery(TreeOf(set.queries.front().id), CurrentDialect(), set.shown, extra);
  if (set.StandsInCell(set.shown)) AddCells(whole);
  return whole;
}

namespace {

// The first place of the text in that of the query around it.
std::optional<QueryPart> PartOf(const StoredQuery& query, const GeneratedQuery& whole) {
  const auto outer = std::ranges::find(whole.parts, query.parent, &QueryPart::id);
  if (outer == whole.parts.end() || query.cell.text.empty()) return std::nullopt;
  const std::size_t at = std::string_view(whole.text).substr(0, outer->end).find(query.cell.text, outer->begin);
  if (at == std::string::npos) return std::nullopt;
  return QueryPart{query.id, at, at + query.cell.text.size()};
}

}  // namespace

// The queries in cells from the outermost to the one that is shown, or that it belongs to: where they stand, and why
// the last one cannot be written.
void qbQueryBuilder::AddCells(GeneratedQuery& whole) const {
  const QuerySet& set = parts_->querySet;
  for (const StoredQuery& query : set.queries) {
    if (query.kind != QueryInCell) continue;
    if (const std::optional<QueryPart> part = PartOf(query, whole)) whole.parts.push_back(*part);
    GeneratedQuery own = GenerateQuery(TreeOf(query.id), CurrentDialect(), set.shown);
    for (QueryFault& fault : own.faults) {
      fault.stops = false;
      whole.faults.push_back(std::move(fault));
    }
    if (OnLine(query.id).empty()) whole.faults.push_back({query.id, text::CellKeepsText, false});
  }
}

// --- Which one the panes show ---

Design qbQueryBuilder::TakeDesign() const {
  Design taken;
  if (const Ref<qbEntities> entities = Entities()) {
    taken.entities = entities->State(parts_->history.Known().entities, {}, true);
  }
  if (gridPane_) {
    zrGridRows& rows = *gridPane_->Grid()->Rows();
    for (std::size_t i = 1; i <= static_cast<std::size_t>(rows.Count()); ++i) {
      taken.rows.push_back(rows.At(i).Content());
    }
  }
  taken.options = CurrentOptions();
  return taken;
}

// What the panes show is kept, so that others can stand in its place.
void qbQueryBuilder::StoreShown() {
  StoredQuery& shown = *parts_->querySet.Find(parts_->querySet.shown);
  shown.design = std::make_shared<const Design>(TakeDesign());
  QuerySnapshot snapshot = Snapshot();
  shown.columns = std::make_shared<const std::vector<QueryColumn>>(OutputsOfShown(snapshot));
  if (snapshot.columns) snapshot.columns = CapturedColumns(*snapshot.columns, snapshot.tables.size());
  shown.snapshot = std::make_shared<const QuerySnapshot>(std::move(snapshot));
}

// The options that are not the query's own stay as they are.
void qbQueryBuilder::PutIntoPanes(const StoredQuery& query) {
  Design then;
  if (query.design) then = *query.design;
  DesignOptions options = CurrentOptions();
  options.query = then.options.query;
  if (query.design) options.showGroupBy = then.options.showGroupBy;
  then.options = std::move(options);
  const ScopedValue travelling(travelling_, true);  // the panes stay those that they are
  Restore(TakeDesign(), then);
  if (query.design) {
    parts_->history.Show(std::move(then));  // what a listener has changed besides is a step
    return;
  }
  if (gridPane_) GridPane()->ResetRows();
  KnowShown(TakeDesign());
}

void qbQueryBuilder::TouchQueries() {
  if (parts_->querySetBefore || travelling_) return;
  parts_->querySetBefore = QueriesKnown();
}

void qbQueryBuilder::SwitchTo(std::int32_t id) {
  QuerySet& set = parts_->querySet;
  if (id == set.shown || !set.Find(id)) return;
  if (steps.InStep()) TouchQueries();
  const StepScope step(RefTo(*this), kStepShowQuery);
  StoreShown();
  if (!travelling_) WriteIntoCells();  // otherwise what stands there is not complete
  id = Standing(id);
  set.shown = id;
  PutIntoPanes(*set.Find(id));
  FollowQueries();
  queriesChanged_ = true;
}

// The boxes of queries show what those output now. That is no step.
void qbQueryBuilder::FollowQueries() {
  const Ref<qbEntities> entities = Entities();
  if (!entities) return;
  const bool isKnown = ShowsKnown();
  bool changed = false;
  for (const Ref<qbEntity>& entity : *entities) {
    const std::optional<std::vector<QueryColumn>> columns = ColumnsOfQuery(entity->TagVariant().Text());
    if (!columns) continue;
    const auto renamed = RenamedColumn(TextsOf(*entity), *columns);
    if (renamed) RenameItem(*entity, renamed->first, renamed->second);
    if (renamed && gridPane_) GridPane()->RenameColumn(entity->Caption(), renamed->first, renamed->second);
    // A box that showed all it has goes on to do so.
    const auto showsAll = [&] { return entity->EntityBox() && entity->EntityBox()->LastFirstRow() <= 1; };
    const bool showedAll = showsAll();
    const bool isOther = ShowColumns(*entities, *entity, *columns, *DataTypes());
    if (showedAll && !showsAll()) entities->Fit(*entity);
    changed |= isOther || renamed;
  }
  if (!changed) return;
  if (isKnown) return KnowShown(TakeDesign());
  DesignChange change;
  change.entities = entities->State(parts_->history.Known().entities, {}, true);
  change.options = CurrentOptions();
  parts_->history.Adopt(std::move(change));
}

// Whether the panes hold what is known, and no listener has changed more.
bool qbQueryBuilder::ShowsKnown() const {
  const Design taken = TakeDesign();
  const Design& known = parts_->history.Known();
  return taken.entities == known.entities && std::ranges::equal(taken.rows, known.rows, SaysTheSame);
}

// The panes hold this, and no step has made it.
void qbQueryBuilder::KnowShown(Design taken) {
  parts_->history.Show(std::move(taken));
  if (const Ref<qbEntities> entities = Entities()) entities->Remembered();
  if (gridPane_) gridPane_->Grid()->Rows()->Remembered();
}

void qbQueryBuilder::RequireIdle() const {
  if (steps.InStep() || travelling_ || (state() != InfoDone && state() != InfoParsingSQL)) {
    throw Error(ErrorInvalidCall, text::QueryInUse);
  }
}

// What was begun ends before the panes show another query.
void qbQueryBuilder::MakeIdle() {
  SetState(InfoDone);
  if (gridPane_) gridPane_->Grid()->CommitEdit();
  EndStepless();
}

bool qbQueryBuilder::ShowQuery(std::int32_t id) {
  if (!parts_->querySet.Find(id)) return false;
  RequireIdle();
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  MakeIdle();
  SwitchTo(id);
  return true;
}

void qbQueryBuilder::VisitQuery(std::int32_t id, const std::function<void(qbQueryBuilder&)>& visit) {
  const StoredQuery* query = parts_->querySet.Find(id);
  if (!query || id == parts_->querySet.shown) return visit(*this);
  const Ref<qbQueryBuilder> copy = Create();
  copy->SetDiagramPane(qbDiagramPane::Create());
  copy->SetGridPane(qbGridPane::Create());
  copy->SetSQLPane(qbSQLPane::Create());
  copy->options_ = options_;
  Design stored;
  if (query->design) stored = *query->design;
  DesignOptions options = CurrentOptions();
  options.query = stored.options.query;
  options.showGroupBy = stored.options.showGroupBy;
  options.typed = nullptr;
  copy->RestoreOptions(options);
  stored.options = std::move(options);
  copy->Restore(copy->TakeDesign(), stored);
  visit(*copy);
}

// --- What changes them, each a step ---

// While the panes are filled, a listener finds the queries between two states.
void qbQueryBuilder::RequireStill() const {
  if (travelling_) throw Error(ErrorInvalidCall, text::QueryInUse);
}

std::int32_t qbQueryBuilder::AddQuery(QueryKindEnum kind, const std::string& name) {
  RequireStill();
  QuerySet& set = parts_->querySet;
  if (set.queries.size() >= static_cast<std::size_t>(kMostQueries)) {
    throw Error(ErrorInvalidCall, {text::TooManyQueries, kMostQueries});
  }
  const StepScope step(RefTo(*this), kStepAddQuery, name);
  TouchQueries();
  StoredQuery query;
  query.kind = kind == QueryMain ? QueryDerivedTable : kind;
  // What stands beside a member belongs to the same compound.
  query.parent = kind == QueryMember && set.Shown().kind == QueryMember ? set.Shown().parent : set.shown;
  if (query.kind != QueryMember) query.name = set.FreeName(set.shown, name.empty() ? Say(text::NewQueryName) : name);
  query.combined = QueryUnionAll;
  const std::string freeName = query.name;
  const std::int32_t id = set.Add(std::move(query));
  queriesChanged_ = true;
  if (!freeName.empty()) TablePicker(RefTo(*this)).AddTable(freeName);
  QueryChanged();
  return id;
}

void qbQueryBuilder::RemoveQuery(std::int32_t id) {
  RequireStill();
  QuerySet& set = parts_->querySet;
  const StoredQuery* query = set.Find(id);
  if (!query || query->kind == QueryMain) return;
  if (query->kind == QueryInCell) throw Error(ErrorInvalidPropertyValue, text::CellQueryStays);
  const std::string name = query->name;
  const std::int32_t parent = query->parent;
  const StepScope step(RefTo(*this), kStepRemoveQuery, name);
  TouchQueries();
  const bool isNamed = query->kind != QueryMember;
  const std::int32_t shown = set.IsWithin(set.shown, id) ? parent : set.shown;
  SwitchTo(parent);
  if (isNamed && Entities()) {
    std::vector<Ref<qbEntity>> leaving;
    for (const Ref<qbEntity>& entity : *Entities()) {
      if (set.FindNamed(parent, entity->TagVariant().Text()) == set.Find(id)) leaving.push_back(entity);
    }
    for (const Ref<qbEntity>& entity : leaving) Entities()->Drop(entity);
  }
  set.Remove(id);
  SwitchTo(shown);
  queriesChanged_ = true;
  QueryChanged();
}

namespace {

// The texts of the shown query's cells and joins name another query in FROM by its new name; its boxes are named so.
void RenameInTexts(qbQueryBuilder& hub, const std::string& before, const std::string& after) {
  const NameRules rules = CurrentNameRules(hub);
  const SqlText quoted = QuoteWhenNeeded(Identifier(after), rules);
  const auto renamed = [&](std::string_view text) { return RenameSource(text, before, quoted, rules); };
  for (const Ref<qbRelationship>& join : hub.Entities()->AskingJoins()) {
    if (!join->Condition().empty()) join->SetCondition(renamed(join->Condition()));
  }
  if (hub.GridPane()) hub.GridPane()->RenameTable({}, {}, renamed);  // no table of the rows, only what was typed
}

}  // namespace

// The boxes of the query bear the new name; those that are called by the old one are called by the new one.
void qbQueryBuilder::RenameQuery(std::int32_t id, const std::string& name) {
  RequireStill();
  QuerySet& set = parts_->querySet;
  const StoredQuery* query = set.Find(id);
  if (query && query->name == name) return;
  if (!query || !HasName(query->kind)) throw Error(ErrorInvalidPropertyValue, text::QueryKeepsKind);
  if (Trim(name).empty()) throw Error(ErrorInvalidPropertyValue, text::QueryNeedsName);
  const StoredQuery* other = set.FindNamed(query->parent, name);
  if (other && other->id != id) throw Error(ErrorInvalidPropertyValue, {text::QueryNameTaken, name});
  const std::string before = query->name;
  const StepScope step(RefTo(*this), kStepRenameQuery, before);
  TouchQueries();
  const std::int32_t shown = set.shown;
  std::vector<std::int32_t> naming;
  for (const StoredQuery& each : set.queries) {
    if (set.FindNamed(each.id, before) == query) naming.push_back(each.id);
  }
  std::ranges::reverse(naming);  // what stands in a cell is written there before the cell is looked at
  for (const std::int32_t each : naming) {
    SwitchTo(each);
    if (!Entities()) break;
    for (const Ref<qbEntity>& entity : *Entities()) {
      if (!EqualsNoCase(entity->TagVariant().Text(), before)) continue;
      const bool isCaption = entity->Caption() == entity->TagVariant().Text();
      entity->SetTagVariant(name);
      if (isCaption && !Entities()->FindExactly(name)) entity->SetCaption(name);
    }
    RenameInTexts(*this, before, name);
  }
  set.Find(id)->name = name;
  SwitchTo(shown);
  queriesChanged_ = true;
  QueryChanged();
}

void qbQueryBuilder::SetQueryKind(std::int32_t id, QueryKindEnum kind) {
  RequireStill();
  StoredQuery* query = parts_->querySet.Find(id);
  if (query && query->kind == kind) return;
  if (!query || !HasName(query->kind) || !HasName(kind)) {
    throw Error(ErrorInvalidPropertyValue, text::QueryKeepsKind);
  }
  const StepScope step(RefTo(*this), kStepQueryKind, query->name);
  TouchQueries();
  query->kind = kind;
  queriesChanged_ = true;
  QueryChanged();
}

void qbQueryBuilder::SetQueryOperator(std::int32_t id, QueryOperatorEnum combined) {
  RequireStill();
  StoredQuery* query = parts_->querySet.Find(id);
  if (query && query->combined == combined) return;
  if (!query || query->kind != QueryMember) throw Error(ErrorInvalidPropertyValue, text::QueryKeepsKind);
  const StepScope step(RefTo(*this), kStepQueryOperator);
  TouchQueries();
  query->combined = combined;
  queriesChanged_ = true;
  QueryChanged();
}

// A query in FROM lives as long as its boxes do.
void qbQueryBuilder::DropUnnamedQueries() {
  QuerySet& set = parts_->querySet;
  if (set.IsSingle() || travelling_ || loadsQueries_ || !Entities()) return;
  std::vector<std::int32_t> unnamed;
  for (const StoredQuery* inner : set.InnerOf(set.shown)) {
    if (inner->kind != QueryDerivedTable) continue;
    const bool stands = std::ranges::any_of(*Entities(), [&](const Ref<qbEntity>& entity) {
      return EqualsNoCase(entity->TagVariant().Text(), inner->name);
    });
    if (!stands) unnamed.push_back(inner->id);
  }
  if (unnamed.empty()) return;
  TouchQueries();
  for (const std::int32_t id : unnamed) set.Remove(id);
  queriesChanged_ = true;
}

// What is empty holds no queries.
void qbQueryBuilder::DropInnerQueries() {
  QuerySet& set = parts_->querySet;
  const std::vector<const StoredQuery*> inner = set.InnerOf(set.shown);
  if (inner.empty() || travelling_ || loadsQueries_) return;
  TouchQueries();
  std::vector<std::int32_t> ids;
  ids.reserve(inner.size());
  for (const StoredQuery* query : inner) ids.push_back(query->id);
  for (const std::int32_t id : ids) set.Remove(id);
  queriesChanged_ = true;
}

// Each is shown in its turn, as a part of a step.
void qbQueryBuilder::ForEachOther(const std::function<void()>& work) {
  const std::int32_t shown = parts_->querySet.shown;
  std::vector<std::int32_t> ids;
  for (const StoredQuery& query : parts_->querySet.queries) {
    if (query.id != shown) ids.push_back(query.id);
  }
  for (const std::int32_t id : ids) {
    SwitchTo(id);
    work();
  }
  SwitchTo(shown);
}

// --- Undo ---

// Each query takes the design that it has in `then`, where the step has changed it; what was done since to one that the
// step has left alone stays.
void qbQueryBuilder::RestoreQueries(const QuerySet& now, const QuerySet& then) {
  StoreShown();
  QuerySet restored = then;
  for (StoredQuery& query : restored.queries) {
    const StoredQuery* was = now.Find(query.id);
    const StoredQuery* is = parts_->querySet.Find(query.id);
    if (!was || !is || was->design != query.design) continue;
    query.design = is->design;
    query.snapshot = is->snapshot;
    query.columns = is->columns;
  }
  restored.lastId = std::max(restored.lastId, parts_->querySet.lastId);
  parts_->querySet = std::move(restored);
  PutIntoPanes(parts_->querySet.Shown());
  FollowQueries();
  queriesChanged_ = true;
}

}  // namespace zrqrybld
