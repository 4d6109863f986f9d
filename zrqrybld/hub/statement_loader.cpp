// The loader: a typed statement becomes the queries of the designer.
//
// The whole text is read and every name resolved before anything is changed; then the diagram, the grid and the options
// are made to say what the statement says, for each query in its turn.
#include "zrqrybld/hub/statement_loader.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"
#include "zrqrybld/hub/read_queries.h"
#include "zrqrybld/hub/read_statement.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/query_text.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// Makes the designer say what a bound statement says.
class DesignWriter {
 public:
  DesignWriter(qbQueryBuilder& hub, std::vector<PlannedTable>& tables, const BoundStatement& bound,
               const std::vector<Ref<qbRelationship>>& drawnJoins)
      : hub_(hub), entities_(hub.Entities()), tables_(tables), query_(bound.query), arrangement_(bound.arrangement) {
    for (const std::size_t drawn : arrangement_.drawn) {
      kept_.push_back(drawn == JoinArrangement::kNew ? nullptr : drawnJoins[drawn]);
    }
  }

  void Write() {
    const StepScope step(RefTo(hub_), kStepApplyStatement);
    const Ref<qbGridPane> grid = hub_.GridPane();
    if (grid) grid->ResetRows();
    hub_.SetDistinctRecords(query_.distinct);
    hub_.SetSelectTopRecords(query_.top);
    hub_.SetSkipRecords(query_.skip);
    if (grid) grid->SetShowGroupBy(query_.groupByMode);
    if (entities_) {
      RemoveOtherTables();
      RemoveOtherJoins();
      RenameTables();
      AddNewTables();
      DrawJoins();
    }
    if (grid) FillGrid(*grid);
  }

 private:
  void RemoveOtherTables() {
    std::unordered_set<const qbEntity*> staying;
    for (const PlannedTable& table : tables_) staying.insert(table.entity.get());
    for (std::int32_t i = entities_->Count(); i >= 1; --i) {
      if (i > entities_->Count()) continue;  // a listener has removed others, too
      const Ref<qbEntity> entity = entities_->Item(i);
      if (!staying.contains(entity.get())) {
        entities_->Drop(entity);
        continue;
      }
      const qbEntityItems& items = *entity->Items();
      for (std::int32_t j = 1; j <= items.Count(); ++j) {
        if (items.Item(j)->Checked()) items.Item(j)->SetChecked(false);
      }
    }
  }

  void RemoveOtherJoins() {
    std::unordered_set<const qbRelationship*> staying;
    for (const Ref<qbRelationship>& kept : kept_) staying.insert(kept.get());
    for (const PlannedTable& table : tables_) {
      if (!table.entity) continue;
      qbRelationships& drawn = *table.entity->Relationships();
      for (std::int32_t j = drawn.Count(); j >= 1; --j) {
        if (j <= drawn.Count() && !staying.contains(drawn.Item(j).get())) drawn.Remove(j);
      }
    }
  }

  // Two tables may exchange their captions, so those that change first take one that nobody wants.
  void RenameTables() {
    std::vector<PlannedTable*> changing;
    for (PlannedTable& table : tables_) {
      if (table.entity && table.entity->Caption() != table.caption) changing.push_back(&table);
    }
    const auto isTaken = [this](const PlannedTable* table) {
      return entities_->FindExactly(table->caption) != nullptr;
    };
    if (std::ranges::any_of(changing, isTaken)) {
      for (PlannedTable* table : changing) table->entity->SetCaption(FreeCaption());
    }
    for (PlannedTable* table : changing) table->entity->SetCaption(table->caption);
  }

  std::string FreeCaption() const {
    for (int number = 1;; ++number) {
      std::string caption = "\x01" + std::to_string(number);
      if (!entities_->Item(caption)) return caption;
    }
  }

  void AddNewTables() {
    for (PlannedTable& table : tables_) {
      if (table.entity) continue;
      table.entity = TablePicker(RefTo(hub_)).AddTable(table.name);
      if (!table.entity) throw Error(ErrorAddingTable, {text::TableNotAdded, table.name});
      table.entity->SetCaption(table.caption);
    }
    std::vector<Ref<qbEntity>> order;
    for (const std::size_t table : arrangement_.order) order.push_back(tables_[table].entity);
    if (order.size() != static_cast<std::size_t>(entities_->Count())) return;  // listeners have added others
    entities_->Arrange(order);
    hub_.EntitiesChanged(1);
  }

  // A table whose columns are not known gets those that the statement names.
  static std::int32_t ItemIndex(const qbEntity& entity, const std::string& column) {
    Ref<qbEntityItem> item = entity.Items()->Item(column);
    if (!item) item = entity.Items()->Add(column, column);
    return item->Index();
  }

  void DrawJoins() {
    for (std::size_t i = 0; i < kept_.size(); ++i) {
      const SnapshotJoin& join = arrangement_.joins[i];
      const Ref<qbEntity>& source = tables_[join.source].entity;
      const Ref<qbEntity>& target = tables_[join.target].entity;
      const bool isNew = !kept_[i];
      const Ref<qbRelationship> drawn = isNew ? source->Relationships()->Add(target) : kept_[i];
      if (isNew || drawn->Kind() != join.kind) SetJoinKind(*drawn, join.kind);
      drawn->SetComparison(join.comparison);
      drawn->SetCondition(join.condition);
      drawn->SetGroupLevel(join.groupLevel);
      if (!isNew || !join.HasPair()) continue;
      drawn->SetSourceItemIndex(ItemIndex(*source, join.sourceColumn->Name()));
      drawn->SetTargetItemIndex(ItemIndex(*target, join.targetColumn->Name()));
      hub_.RaiseInfo(InfoRelationshipAdded, Ref<Object>(drawn));
    }
  }

  void FillGrid(qbGridPane& grid) {
    std::vector<QueryRow> rows;
    rows.reserve(query_.rows.size());
    for (const SnapshotRow& row : query_.rows) {
      const RowTerms& terms = row;
      QueryRow content{terms, row.alias.Name(), {}};
      if (row.table) content.table = tables_[*row.table].caption;
      if (row.table && entities_ && row.column != "*") ItemIndex(*tables_[*row.table].entity, row.column);
      rows.push_back(std::move(content));
    }
    grid.AddRows(rows);
  }

  qbQueryBuilder& hub_;
  Ref<qbEntities> entities_;
  std::vector<PlannedTable>& tables_;
  const QuerySnapshot& query_;
  const JoinArrangement& arrangement_;
  std::vector<Ref<qbRelationship>> kept_;  // for each join; nothing for one that is to be drawn
};

QueryLookup QueriesOf(const qbQueryBuilder& hub) {
  return [&hub](const std::string& name) { return hub.ColumnsOfQuery(name); };
}

void Write(qbQueryBuilder& hub, ReadStatement& statement) {
  DesignWriter(hub, statement.Tables(), statement.Bound(), statement.DrawnJoins()).Write();
}

QueryTree TreeOf(const ReadQuery& read) {
  QueryTree tree;
  tree.kind = read.facts.kind;
  tree.combined = read.facts.combined;
  tree.name = read.facts.name;
  tree.columnNames = read.facts.columnNames;
  tree.query = read.statement->Design();
  for (const ReadQuery& inner : read.inner) tree.inner.push_back(TreeOf(inner));
  return tree;
}

// Which query of the designer each query of the statement becomes: one that bears its name in the same place, or stands
// there by its number, so that it keeps its boxes where they are.
class QueryMatcher {
 public:
  explicit QueryMatcher(const QuerySet& drawn) : drawn_(drawn) { result_.lastId = drawn.lastId; }

  QuerySet Match(ReadQuery& main) {
    result_.queries.clear();
    StoredQuery facts = drawn_.queries.front();
    Take(main, std::move(facts));
    return std::move(result_);
  }

 private:
  void Take(ReadQuery& read, StoredQuery facts) {
    const std::int32_t id = read.facts.id = facts.id;
    result_.queries.push_back(std::move(facts));
    std::vector<const StoredQuery*> free = drawn_.Find(id) ? drawn_.InnerOf(id) : std::vector<const StoredQuery*>();
    for (ReadQuery& inner : read.inner) {
      const auto found = std::ranges::find_if(free, [&](const StoredQuery* drawn) {
        const bool isMember = inner.facts.kind == QueryMember;
        return isMember == (drawn->kind == QueryMember) && (isMember || EqualsNoCase(drawn->name, inner.facts.name));
      });
      StoredQuery next = inner.facts;
      next.parent = id;
      if (found == free.end()) {
        next.id = ++result_.lastId;
      } else {
        next.id = (*found)->id;
        next.design = (*found)->design;
        free.erase(found);
      }
      Take(inner, std::move(next));
    }
  }

  const QuerySet& drawn_;
  QuerySet result_;
};

// The statement of queries that were read. Error 40002 where the dialect could not write it.
std::string WrittenAnew(const qbQueryBuilder& hub, const ReadQuery& main) {
  GeneratedQuery written = GenerateQuery(TreeOf(main), hub.CurrentDialect());
  for (const QueryFault& fault : written.faults) {
    if (fault.stops && !fault.what.Empty()) throw Error(ErrorParsingText, fault.what);
  }
  if (written.text.empty()) throw Error(ErrorParsingText, {text::DialectCannotSay, "SELECT"});
  return std::move(written.text);
}

}  // namespace

void RequireWritable(const qbQueryBuilder& hub, const ReadQuery& main) {
  if (!main.inner.empty()) WrittenAnew(hub, main);
}

std::string MeaningOf(qbQueryBuilder& hub, std::string_view sql) {
  ReadQueries read(hub, sql);
  if (read.Main().inner.empty()) return GenerateSelect(read.Main().statement->Design(), hub.CurrentDialect()).text;
  return WrittenAnew(hub, read.Main());
}

void qbQueryBuilder::LoadStatement(const std::string& sql) {
  WholeOrNothing(RefTo(*this), [&] {
    ReadQueries read(*this, sql);
    if (read.Main().inner.empty() && parts_->querySet.IsSingle()) return Write(*this, *read.Main().statement);
    RequireWritable(*this, read.Main());
    LoadQueries(read.Main());
  });
}

// What stands in the panes is kept first, and comes back when a query cannot be loaded after all.
void qbQueryBuilder::LoadQueries(ReadQuery& main) {
  RequireStill();
  const StepScope step(RefTo(*this), kStepApplyStatement);
  const bool isFirst = !parts_->querySetBefore;
  TouchQueries();
  const QuerySet before = *parts_->querySetBefore;
  const ScopedValue loading(loadsQueries_, true);
  try {
    StoreShown();
    QuerySet& set = parts_->querySet;
    const std::int32_t shown = set.shown;
    set = QueryMatcher(set).Match(main);
    set.shown = set.Find(shown) ? shown : 0;
    if (set.shown != shown) PutIntoPanes(set.Shown());
    LoadOneQuery(main);
    SwitchTo(set.Find(shown) ? shown : 0);
    queriesChanged_ = true;
  } catch (...) {
    const ScopedValue travelling(travelling_, true);
    RestoreQueries(parts_->querySet, before);
    if (isFirst) parts_->querySetBefore.reset();
    throw;
  }
}

// First the queries that it can name, last those that can name it.
void qbQueryBuilder::LoadOneQuery(ReadQuery& read) {
  for (ReadQuery& inner : read.inner) {
    if (inner.facts.kind != QueryMember) LoadOneQuery(inner);
  }
  SwitchTo(read.facts.id);
  if (parts_->querySet.shown != read.facts.id) return;  // a listener has removed it
  ReadStatement statement(*this, read.text, OuterOf(read.facts.id));
  statement.Bind(*this, QueriesOf(*this), true, parts_->querySet.BeginsCompound(read.facts.id));
  Write(*this, statement);
  for (ReadQuery& inner : read.inner) {
    if (inner.facts.kind == QueryMember) LoadOneQuery(inner);
  }
}

}  // namespace zrqrybld
