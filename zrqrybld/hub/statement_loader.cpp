// The loader: a typed statement becomes the query of the designer.
//
// The whole text is read and every name resolved before anything is changed; then the diagram, the grid and the options
// are made to say what the statement says.
#include "zrqrybld/hub/statement_loader.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/table_plan.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/from_binder.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/question_reader.h"
#include "zrqrybld/sql/source_lexer.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/statement_binder.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

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

BindOptions OptionsOf(const qbQueryBuilder& hub) {
  BindOptions options;
  options.dialect = &hub.CurrentDialect();
  options.functions = hub.DBFunctions().get();
  options.names = CurrentNameRules(hub);
  options.criteria = hub.CriteriaRules();
  return options;
}

// The text with what only its source reads written for everybody, every character where it stood.
std::string Readable(std::string_view typed, const CriteriaContext& criteria) {
  if (!criteria.reading) return std::string(typed);
  std::string sql = WithDoubledQuotes(WithoutHashComments(typed, *criteria.reading), *criteria.reading);
  if (const std::optional<std::size_t> otherwise = FirstReadOtherwise(sql, *criteria.reading)) {
    throw SyntaxError(sql, *otherwise, text::ReadsOtherwise);
  }
  if (const std::optional<std::size_t> comment = FirstCommentReadOtherwise(sql, *criteria.reading)) {
    throw SyntaxError(sql, *comment, text::CommentReadsOtherwise);
  }
  return sql;
}

// What the diagram holds of the first tables; their joins are brought to the front.
DrawnDiagram OnlyTables(DrawnDiagram& drawn, std::vector<Ref<qbRelationship>>& joins, std::size_t tables) {
  DrawnDiagram own;
  std::vector<DrawnJoin> others;
  std::vector<Ref<qbRelationship>> ownJoins, otherJoins;
  for (const std::size_t table : drawn.order) {
    if (table < tables) own.order.push_back(table);
  }
  for (std::size_t i = 0; i < joins.size(); ++i) {
    const bool isOwn = std::max(drawn.joins[i].source, drawn.joins[i].target) < tables;
    (isOwn ? own.joins : others).push_back(drawn.joins[i]);
    (isOwn ? ownJoins : otherJoins).push_back(joins[i]);
  }
  drawn.joins = own.joins;
  drawn.joins.insert(drawn.joins.end(), others.begin(), others.end());
  joins = std::move(ownJoins);
  joins.insert(joins.end(), otherJoins.begin(), otherJoins.end());
  return own;
}

// A typed statement with every name resolved; nothing is changed yet.
class ReadStatement {
 public:
  ReadStatement(qbQueryBuilder& hub, std::string_view typed)
      : hub_(hub), options_(OptionsOf(hub)), sql_(Readable(typed, options_.criteria)) {
    if (!ReadWithQuestions()) Read();
  }

  void Load() { DesignWriter(hub_, plan_->Tables(), bound_, drawnJoins_).Write(); }

  // The query as the diagram and the grid would hold it.
  QuerySnapshot Design() const {
    const JoinArrangement& arrangement = bound_.arrangement;
    QuerySnapshot query = bound_.query;
    std::vector<std::size_t> places(query.tables.size());
    for (std::size_t place = 0; place < places.size(); ++place) {
      places[arrangement.order[place]] = place;
      query.tables[place] = bound_.query.tables[arrangement.order[place]];
    }
    query.joins = arrangement.joins;
    for (SnapshotJoin& join : query.joins) {
      join.source = places[join.source];
      join.target = places[join.target];
    }
    std::ranges::stable_sort(query.joins, {}, &SnapshotJoin::source);
    for (SnapshotRow& row : query.rows) {
      if (row.table) row.table = places[*row.table];
    }
    return query;
  }

 private:
  SelectStatement Parse() const {
    return ParseSelect(sql_, {.openParenthesesInFrom = options_.dialect->leavesParenthesesOpen,
                              .pipesMayBeOr = options_.dialect->pipesMayBeOr});
  }

  // The diagram's joins of all planned tables, and in the options those of the statement's own, which come first.
  DrawnDiagram TakeDrawn(std::size_t tables) {
    drawnJoins_.clear();
    DrawnDiagram drawn = plan_->Drawn(drawnJoins_);
    options_.drawn = OnlyTables(drawn, drawnJoins_, tables);
    return drawn;
  }

  void Read() {
    const SelectStatement statement = Parse();
    const std::vector<const FromItem*> tables = TablesOf(statement);
    plan_.emplace(hub_, tables, options_.names);
    TakeDrawn(tables.size());
    bound_ = BindStatement(statement, *plan_, options_);
  }

  // With EXISTS (...) as joins that ask; false when there is none, or what it asks is not for joins.
  bool ReadWithQuestions() {
    SelectStatement statement = Parse();
    const std::vector<ReadQuestion> questions = TakeQuestions(statement);
    if (questions.empty()) return false;
    std::vector<const FromItem*> tables = TablesOf(statement);
    const std::size_t own = tables.size();
    const std::vector<const FromItem*> asked = TablesOf(questions);
    tables.insert(tables.end(), asked.begin(), asked.end());
    try {
      plan_.emplace(hub_, tables, options_.names);
      const DrawnDiagram drawn = TakeDrawn(own);
      bound_ = BindStatement(statement, *plan_, options_);
      return BindQuestions(bound_, questions, *plan_, options_, drawn);
    } catch (const SyntaxError&) {
      return false;  // told where the whole is read
    }
  }

  qbQueryBuilder& hub_;
  BindOptions options_;
  std::string sql_;
  std::optional<TablePlan> plan_;
  std::vector<Ref<qbRelationship>> drawnJoins_;
  BoundStatement bound_;
};

}  // namespace

std::string MeaningOf(qbQueryBuilder& hub, std::string_view sql) {
  return GenerateSelect(ReadStatement(hub, sql).Design(), hub.CurrentDialect()).text;
}

void qbQueryBuilder::LoadStatement(const std::string& sql) {
  WholeOrNothing(RefTo(*this), [&] { ReadStatement(*this, sql).Load(); });
}

}  // namespace zrqrybld
