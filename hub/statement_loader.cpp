// The loader: a typed statement becomes the query of the designer.
//
// The whole text is read and every name resolved before anything is changed; then the diagram, the grid and the options
// are made to say what the statement says.
#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/text.h"
#include "base/texts_hub.h"
#include "base/texts_values.h"
#include "diagram/join_properties.h"
#include "diagram/relationships.h"
#include "diagram/source_names.h"
#include "diagram/table_picker.h"
#include "grid/field_names.h"
#include "hub/query_builder.h"
#include "hub/snapshot_builder.h"
#include "sql/from_binder.h"
#include "sql/join_list.h"
#include "sql/source_lexer.h"
#include "sql/source_rules.h"
#include "sql/statement_binder.h"
#include "sql/statement_parser.h"
#include "sql/syntax_error.h"

namespace zrqrybld {
namespace {

std::string JoinedName(const std::vector<Identifier>& parts, const NameRules& rules) {
  const std::string separator = rules.schemaSeparator.empty() ? "." : rules.schemaSeparator;
  std::string name;
  for (const Identifier& part : parts) {
    if (!name.empty()) name += separator;
    name += part.Name();
  }
  return name;
}

// Whether one name ends as the other does: the schema may be left out.
bool IsSameTable(const std::vector<Identifier>& a, const std::vector<Identifier>& b) {
  if (a.empty() || b.empty()) return false;
  for (std::size_t i = 1; i <= std::min(a.size(), b.size()); ++i) {
    if (!EqualsNoCase(a[a.size() - i].Name(), b[b.size() - i].Name())) return false;
  }
  return true;
}

// A table of the statement and what it becomes.
struct PlannedTable {
  WrittenTable written;
  std::string name;                   // as the source is asked for it
  std::string caption;                // what it is called in the query
  Ref<qbEntity> entity;               // of the diagram; nothing when it is still to be added
  std::vector<Identifier> drawnName;  // the entity's
  std::int32_t position = std::numeric_limits<std::int32_t>::max();  // of the entity in the diagram
  std::vector<SourceColumn> columns;                                 // of one that is to be added
  std::unordered_map<std::string, std::size_t> byFoldedName;         // of its columns, the first of each
};

class Loader final : public QuerySource {
 public:
  Loader(qbQueryBuilder& hub, std::string_view sql)
      : hub_(hub), sql_(sql), rules_(CurrentNameRules(hub)), entities_(hub.Entities()) {}

  void Run() {
    const SQLSyntaxEnum syntax = hub_.SQLPane() ? hub_.SQLPane()->SQLSyntax() : SQLSyntaxGeneric;
    const Dialect& dialect = DialectFor(syntax);
    const CriteriaContext criteria = hub_.CriteriaRules();
    if (criteria.reading) {
      const std::optional<std::size_t> otherwise = FirstReadOtherwise(sql_, *criteria.reading);
      if (otherwise) throw SyntaxError(sql_, *otherwise, text::ReadsOtherwise);
    }
    const SelectStatement statement =
        ParseSelect(sql_, {.openParenthesesInFrom = dialect.fromParentheses == Dialect::FromParentheses::Nested});
    PlanTables(statement);
    BindOptions options;
    options.dialect = &dialect;
    options.functions = hub_.DBFunctions().get();
    options.names = rules_;
    options.criteria = criteria;
    options.arrange = [&](QuerySnapshot& query, std::size_t attempt) { return Arrange(query, attempt, dialect); };
    const QuerySnapshot query = BindStatement(statement, *this, options);
    Apply(query);
  }

  // --- What the binder asks ---

  std::optional<SnapshotTable> AddTable(const WrittenTable&) override {
    PlannedTable& table = tables_[added_++];
    SnapshotTable result;
    result.caption = Identifier(table.caption);
    if (table.entity) {
      result.name = std::move(table.drawnName);
      result.aliased = table.caption != table.entity->TagVariant().Text();
      return result;
    }
    result.name = table.written.parts;
    result.aliased = table.caption != table.name;
    if (!hub_.IsConnected()) return result;
    std::optional<std::vector<SourceColumn>> columns = TablePicker(RefTo(hub_)).ReadColumns(table.name);
    if (!columns) return std::nullopt;
    table.columns = std::move(*columns);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      table.byFoldedName.emplace(FoldCase(table.columns[i].name), i);
    }
    return result;
  }

  bool KnowsColumns(std::size_t table) const override {
    const Ref<qbEntity>& entity = tables_[table].entity;
    if (!entity) return !tables_[table].columns.empty();
    // Without a source the boxes show no more columns than statements have named.
    const qbEntityItems& items = *entity->Items();
    return hub_.IsConnected() && (items.Count() > 1 || (items.Count() == 1 && items.Item(1)->Text() != "*"));
  }

  std::optional<std::string> FindColumn(std::size_t table, const std::string& name) const override {
    const PlannedTable& planned = tables_[table];
    if (planned.entity) {
      const Ref<qbEntityItem> item = planned.entity->Items()->Item(name);
      if (!item || name == "*") return std::nullopt;
      return item->Text();
    }
    const auto found = planned.byFoldedName.find(FoldCase(name));
    if (found == planned.byFoldedName.end()) return std::nullopt;
    for (std::size_t i = found->second; i < planned.columns.size(); ++i) {
      if (planned.columns[i].name == name) return name;
      if (planned.byFoldedName.size() == planned.columns.size()) break;  // no two differ in case alone
    }
    return planned.columns[found->second].name;
  }

  std::vector<std::string> Columns(std::size_t table) const override {
    std::vector<std::string> names;
    const PlannedTable& planned = tables_[table];
    for (const SourceColumn& column : planned.columns) names.push_back(column.name);
    if (!planned.entity) return names;
    const qbEntityItems& items = *planned.entity->Items();
    for (std::int32_t i = 1; i <= items.Count(); ++i) {
      if (items.Item(i)->Text() != "*") names.push_back(items.Item(i)->Text());
    }
    return names;
  }

  SnapshotType TypeOf(std::size_t table, const std::string& column) const override {
    const PlannedTable& planned = tables_[table];
    if (planned.entity) return TypeOfColumn(*planned.entity, column, *hub_.DataTypes());
    const auto found = planned.byFoldedName.find(FoldCase(column));
    if (found == planned.byFoldedName.end()) return {};
    const SourceColumn& facts = planned.columns[found->second];
    return DescribeType(facts.type, facts.isLong, *hub_.DataTypes());
  }

 private:
  // --- Which tables of the diagram stay ---

  // A table keeps the entity that is called as it is in the statement, otherwise it takes one of the same table that no
  // other wants.
  void PlanTables(const SelectStatement& statement) {
    for (const FromItem* item : TablesOf(statement)) {
      PlannedTable table;
      table.written = {NameParts(item->table), Identifier(PlainName(item->alias))};
      table.name = JoinedName(table.written.parts, rules_);
      table.caption = table.written.alias.Empty() ? table.name : table.written.alias.Name();
      tables_.push_back(std::move(table));
    }
    if (!entities_) return;
    constexpr auto kNone = static_cast<std::size_t>(-1);
    struct Drawn {
      Ref<qbEntity> entity;
      std::vector<Identifier> writtenName;
      std::vector<Identifier> name;   // with its schema, where the source told it
      std::size_t nextAlike = kNone;  // the next whose name has the same last part
      bool claimed = false;
    };
    std::vector<Drawn> drawn(static_cast<std::size_t>(entities_->Count()));
    std::unordered_map<std::string_view, std::size_t, HashNoCase, EqualNoCase> firstOf;  // by the last part of the name
    for (std::size_t i = drawn.size(); i-- > 0;) {
      drawn[i].entity = entities_->Item(static_cast<std::int32_t>(i + 1));
      drawn[i].writtenName = WrittenName(*drawn[i].entity, rules_);
      drawn[i].name = SourceName(*drawn[i].entity, drawn[i].writtenName);
      const auto [first, added] = firstOf.emplace(drawn[i].name.back().Name(), i);
      if (!added) drawn[i].nextAlike = std::exchange(first->second, i);
    }
    enum class Called : std::uint8_t { Exactly, Alike, Anything };
    const auto claim = [&](PlannedTable& table, Called called) {
      if (table.entity) return;
      const auto found = firstOf.find(table.written.parts.back().Name());
      for (std::size_t i = found == firstOf.end() ? kNone : found->second; i != kNone; i = drawn[i].nextAlike) {
        const Ref<qbEntity>& entity = drawn[i].entity;
        if (drawn[i].claimed) continue;
        if (called == Called::Exactly && entity->Caption() != table.caption) continue;
        if (called == Called::Alike && !IsCalled(*entity, table)) continue;
        if (!IsSameTable(drawn[i].name, table.written.parts)) continue;
        drawn[i].claimed = true;
        table.entity = entity;
        table.drawnName = drawn[i].writtenName;
        table.position = static_cast<std::int32_t>(i + 1);
        // An alias is kept as it is written; a table's own name is spelt as the source does.
        if (table.written.alias.Empty()) table.caption = entity->TagVariant().Text();
        return;
      }
    };
    for (const Called called : {Called::Exactly, Called::Alike, Called::Anything}) {
      for (PlannedTable& table : tables_) claim(table, called);
    }
  }

  // A table without alias is called by its own name, with or without its schema.
  bool IsCalled(const qbEntity& entity, const PlannedTable& table) const {
    if (EqualsNoCase(entity.Caption(), table.caption)) return true;
    return table.written.alias.Empty() && entity.Caption() == entity.TagVariant().Text() &&
           IsSameTable(WrittenName(entity, rules_), table.written.parts);
  }

  // --- Joins ---

  struct PlannedJoin {
    std::size_t source;
    std::size_t target;
    std::string sourceColumn;
    std::string targetColumn;
    JoinKind kind;
    Ref<qbRelationship> kept;  // nothing when it is still to be drawn
  };

  using JoinsByColumns = std::unordered_map<ColumnPair, std::size_t, HashColumnPair>;

  // The same whichever end comes first.
  static ColumnPair KeyOf(std::size_t table1, const std::string& column1, std::size_t table2,
                          const std::string& column2) {
    if (table2 < table1) return {table2, column2, table1, column1};
    return {table1, column1, table2, column2};
  }

  // The order of tables and joins in the diagram, best first: the one it has when FROM is generated from it as the
  // statement has it, so that a statement read back changes nothing; that of the statement; and that with all joins
  // drawn anew. Then one that begins with another table: what is joined to a group of tables that may be missing can be
  // written behind the group.
  std::vector<std::size_t> Arrange(QuerySnapshot& query, std::size_t attempt, const Dialect& dialect) {
    std::vector<std::size_t> written(tables_.size());
    std::iota(written.begin(), written.end(), 0);
    std::vector<std::size_t> drawn = written;
    std::ranges::stable_sort(drawn, {}, [this](std::size_t i) { return tables_[i].position; });
    const std::vector<SnapshotJoin> joins = std::move(query.joins);
    const auto arrange = [&](std::vector<std::size_t> order, bool keepsDrawn) {
      query.joins = joins;
      ArrangeJoins(query, order, keepsDrawn, written);
      return order;
    };
    if (dialect.joins == Dialect::Joins::Conditions && attempt > 0) ++attempt;  // FROM is in the diagram's order
    if (attempt == 0 && dialect.joins == Dialect::Joins::Clauses) {
      std::vector<std::size_t> order = arrange(drawn, true);
      if (GeneratedOrder(query, order) == written) return order;
    }
    if (attempt <= 1) return arrange(attempt == 0 ? written : drawn, true);
    if (attempt == 2) return arrange(written, false);
    constexpr std::size_t kMostBeginnings = 16;
    const std::size_t first = attempt - 3;
    if (dialect.joins == Dialect::Joins::Conditions || first >= std::min(tables_.size(), kMostBeginnings)) return {};
    query.joins = joins;
    const std::vector<std::size_t> order = OrderFrom(first, query);
    std::vector<std::size_t> places(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) places[order[i]] = i;
    for (SnapshotJoin& join : query.joins) {
      if (places[join.source] > places[join.target]) join = Reversed(std::move(join));
    }
    ArrangeJoins(query, order, false, places);
    return order;
  }

  // The joins as the diagram will hold them: those that it has stay where they are and as they were drawn, new ones
  // follow in the order of `places`, which says of each table where it stands in FROM.
  void ArrangeJoins(QuerySnapshot& query, const std::vector<std::size_t>& order, bool keepsDrawn,
                    const std::vector<std::size_t>& places) {
    JoinsByColumns wanted;
    for (std::size_t i = 0; i < query.joins.size(); ++i) {
      const SnapshotJoin& join = query.joins[i];
      wanted.emplace(KeyOf(join.source, join.sourceColumn->Name(), join.target, join.targetColumn->Name()), i);
    }
    std::vector<std::vector<PlannedJoin>> bySource(tables_.size());
    std::vector<bool> taken(query.joins.size());
    if (keepsDrawn) KeepDrawnJoins(query, wanted, taken, bySource);
    for (const std::size_t i : WalkingOrder(query.joins, places)) {
      const SnapshotJoin& join = query.joins[i];
      if (taken[i]) continue;
      bySource[join.source].push_back(
          {join.source, join.target, join.sourceColumn->Name(), join.targetColumn->Name(), join.kind, nullptr});
    }
    joins_.clear();
    query.joins.clear();
    for (const std::size_t table : order) {
      for (PlannedJoin& join : bySource[table]) {
        query.joins.push_back(
            {join.source, join.target, Identifier(join.sourceColumn), Identifier(join.targetColumn), join.kind});
        joins_.push_back(std::move(join));
      }
    }
    order_ = order;
  }

  // FROM is generated by walking along the joins of each table, and a table that is met is placed immediately behind
  // the one it is met from. So the joins to the tables that come last are walked first; and a table that is joined to
  // several is to be met from the last of these, so the other joins come at the end.
  static std::vector<std::size_t> WalkingOrder(const std::vector<SnapshotJoin>& joins,
                                               const std::vector<std::size_t>& places) {
    std::vector<std::size_t> lastPartner(places.size());
    for (const SnapshotJoin& join : joins) {
      lastPartner[join.target] = std::max(lastPartner[join.target], places[join.source]);
    }
    std::vector<std::size_t> order(joins.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) {
      const bool aMeets = lastPartner[joins[a].target] == places[joins[a].source];
      const bool bMeets = lastPartner[joins[b].target] == places[joins[b].source];
      return aMeets != bMeets ? aMeets : places[joins[a].target] > places[joins[b].target];
    });
    return order;
  }

  void KeepDrawnJoins(const QuerySnapshot& query, const JoinsByColumns& wanted, std::vector<bool>& taken,
                      std::vector<std::vector<PlannedJoin>>& bySource) const {
    std::unordered_map<const qbEntity*, std::size_t> positions;
    for (std::size_t i = 0; i < tables_.size(); ++i) {
      if (tables_[i].entity) positions.emplace(tables_[i].entity.get(), i);
    }
    for (std::size_t i = 0; i < tables_.size(); ++i) {
      if (!tables_[i].entity) continue;
      const qbRelationships& drawn = *tables_[i].entity->Relationships();
      for (std::int32_t j = 1; j <= drawn.Count(); ++j) {
        const Ref<qbRelationship> kept = drawn.Item(j);
        const auto target = positions.find(kept->Target().get());
        const Ref<qbEntityItem> from = kept->SourceItem();
        const Ref<qbEntityItem> to = kept->TargetItem();
        if (target == positions.end() || !from || !to) continue;
        const auto found = wanted.find(KeyOf(i, from->Text(), target->second, to->Text()));
        if (found == wanted.end() || taken[found->second]) continue;
        taken[found->second] = true;
        const SnapshotJoin& join = query.joins[found->second];
        const JoinKind kind = join.source == i ? join.kind : join.kind.Reversed();
        bySource[i].push_back({i, target->second, from->Text(), to->Text(), kind, kept});
      }
    }
  }

  // --- Changing the designer ---

  void Apply(const QuerySnapshot& query) {
    const StepScope step(RefTo(hub_), kStepApplyStatement);
    const Ref<qbGridPane> grid = hub_.GridPane();
    if (grid) grid->ResetRows();
    hub_.SetDistinctRecords(query.distinct);
    hub_.SetSelectTopRecords(query.top);
    if (grid) grid->SetShowGroupBy(query.groupByMode);
    if (entities_) {
      RemoveOtherTables();
      RemoveOtherJoins();
      RenameTables();
      AddNewTables();
      DrawJoins();
    }
    if (grid) FillGrid(*grid, query);
  }

  void RemoveOtherTables() {
    std::unordered_set<const qbEntity*> staying;
    for (const PlannedTable& table : tables_) staying.insert(table.entity.get());
    for (std::int32_t i = entities_->Count(); i >= 1; --i) {
      if (i > entities_->Count()) continue;  // a listener has removed others, too
      const Ref<qbEntity> entity = entities_->Item(i);
      if (!staying.contains(entity.get())) {
        entities_->Remove(i);
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
    for (const PlannedJoin& join : joins_) staying.insert(join.kept.get());
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
      if (!table.entity) throw Error(ErrorAddingTable, Phrase(text::TableNotAdded, table.name));
      table.entity->SetCaption(table.caption);
    }
    std::vector<Ref<qbEntity>> order;
    for (const std::size_t table : order_) order.push_back(tables_[table].entity);
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
    for (PlannedJoin& join : joins_) {
      const Ref<qbEntity>& source = tables_[join.source].entity;
      const Ref<qbEntity>& target = tables_[join.target].entity;
      const bool isNew = !join.kept;
      const Ref<qbRelationship> drawn = isNew ? source->Relationships()->Add(target) : join.kept;
      if (isNew || drawn->Kind() != join.kind) SetJoinKind(*drawn, join.kind);
      if (!isNew) continue;
      drawn->SetSourceItemIndex(ItemIndex(*source, join.sourceColumn));
      drawn->SetTargetItemIndex(ItemIndex(*target, join.targetColumn));
      hub_.RaiseInfo(InfoRelationshipAdded, Ref<Object>(drawn));
    }
  }

  void FillGrid(qbGridPane& grid, const QuerySnapshot& query) {
    std::vector<qbGridPane::RowContent> rows;
    rows.reserve(query.rows.size());
    for (const SnapshotRow& row : query.rows) {
      qbGridPane::RowContent content;
      content.column = row.column;
      content.alias = row.alias.Name();
      if (row.table) content.table = tables_[*row.table].caption;
      if (row.table && entities_ && row.column != "*") ItemIndex(*tables_[*row.table].entity, row.column);
      content.output = row.output;
      content.sortType = row.sortType;
      content.sortOrder = row.sortOrder;
      content.groupBy = row.groupBy;
      content.criteria = row.criteria;
      rows.push_back(std::move(content));
    }
    grid.AddRows(rows);
  }

  qbQueryBuilder& hub_;
  std::string_view sql_;
  NameRules rules_;
  Ref<qbEntities> entities_;
  std::vector<PlannedTable> tables_;
  std::size_t added_ = 0;
  std::vector<PlannedJoin> joins_;
  std::vector<std::size_t> order_;  // of the tables in the diagram
};

}  // namespace

void qbQueryBuilder::LoadStatement(const std::string& sql) {
  WholeOrNothing(RefTo<QueryContext>(*this), [&] { Loader(*this, sql).Run(); });
}

}  // namespace zrqrybld
