#include "zrqrybld/hub/query_conditions.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/expression/intelli_list.h"
#include "zrqrybld/grid/cell_values.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

// Of the hub's grid, which is there.
std::vector<QueryRow> RowsOf(const qbQueryBuilder& hub) {
  std::vector<QueryRow> rows;
  const qbGridPane& grid = *hub.GridPane();
  const qbDBFunctions* functions = grid.ShowGroupBy() ? hub.DBFunctions().get() : nullptr;
  rows.reserve(static_cast<std::size_t>(grid.RowCount()));
  for (std::size_t i = 1; i <= static_cast<std::size_t>(grid.RowCount()); ++i) {
    const RowReader row(grid.Grid()->Rows()->At(i));
    rows.push_back(row.Read(static_cast<std::size_t>(grid.ColumnCount()), functions));
  }
  return rows;
}

std::string SyntaxOf(const qbQueryBuilder& hub, const ConditionField& field) {
  return field.aggregate.empty() ? std::string() : ReadGrouping(field.aggregate, hub.DBFunctions().get()).syntax;
}

CriteriaContext RulesOf(const qbQueryBuilder& hub, const ConditionField& field) {
  return CriteriaRulesOf(hub, {field.table, field.column}, SyntaxOf(hub, field));
}

std::optional<ConditionField> ColumnIn(const qbQueryBuilder& hub, std::string_view name) {
  const Ref<qbEntities> entities = hub.Entities();
  if (!entities) return std::nullopt;
  const NameRules rules = CurrentNameRules(hub);
  std::optional<FieldName> field = FindQualifiedField(*entities, name, rules);
  if (!field) field = FindOnlyField(*entities, name, rules);
  if (!field) return std::nullopt;
  return ConditionField{field->table, field->column};
}

// The query is looked at once, however many conditions there are.
ConditionWords WordsOf(const Ref<qbQueryBuilder>& hub) {
  const auto query = std::make_shared<const QuerySnapshot>(hub->Snapshot());
  ConditionWords words;
  words.likeOperator = hub->CriteriaRules().likeOperator;
  words.fieldIn = [hub](std::string_view text) { return ColumnIn(*hub, text); };
  words.write = [hub, query](const ConditionField& field, const std::string& criterion) {
    const auto table = std::ranges::find_if(
        query->tables, [&field](const SnapshotTable& each) { return each.caption.Name() == field.table; });
    std::string term = table == query->tables.end() ? field.column : FieldTerm(*table, field.column, query->names);
    const std::string syntax = SyntaxOf(*hub, field);
    if (field.column == kAllColumns && !syntax.empty()) term = field.column;
    if (!syntax.empty()) term = ReplaceNoCase(syntax, "@field", term);
    try {
      return FormatCondition(term, criterion, RulesOf(*hub, field));
    } catch (const Error&) {
      return term + " " + criterion;  // as the statement has it, too
    }
  };
  return words;
}

// Makes a row that is there say what it is to say; a listener may have taken it away.
void WriteRow(const qbGridPane& grid, const Ref<zrGridRow>& row, const QueryRow& then) {
  const auto write = [&row](std::size_t column, const std::string& text) {
    if (row->Index() != 0 && RowReader(*row).Text(column) != text) RowWriter(*row).SetText(column, text);
  };
  const std::string grouping = RowReader(*row).Text(kColumnGroupBy);
  if (!then.column.empty()) write(kColumnColumn, then.column);
  write(kColumnGroupBy, grouping);  // another expression would be grouped by
  for (std::size_t column = kColumnCriteria; column <= static_cast<std::size_t>(grid.ColumnCount()); ++column) {
    const std::size_t cell = column - kColumnCriteria;
    write(column, cell < then.criteria.size() ? then.criteria[cell] : std::string());
  }
}

void WriteRows(qbGridPane& grid, const std::vector<ConditionedRow>& then) {
  std::vector<Ref<zrGridRow>> rows;
  for (const Ref<zrGridRow>& row : *grid.Grid()->Rows()) rows.push_back(row);
  std::size_t widest = 1;
  for (const ConditionedRow& each : then) widest = std::max(widest, each.row.criteria.size());
  const auto columns = static_cast<std::int32_t>(widest) - 1;
  if (grid.OrColumns() < columns) grid.SetOrColumns(columns);
  std::vector<Ref<zrGridRow>> unused;
  for (std::size_t i = 0; i < std::min(rows.size(), then.size()); ++i) {
    WriteRow(grid, rows[i], then[i].row);
    if (then[i].unused) unused.push_back(rows[i]);
  }
  grid.Grid()->Rows()->RemoveAll(unused);
  std::vector<QueryRow> added;
  for (std::size_t i = rows.size(); i < then.size(); ++i) added.push_back(then[i].row);
  grid.AddRows(added);
}

}  // namespace

ConditionTree QueryConditions::Tree() const {
  const Ref<qbQueryBuilder> hub = hub_.lock();
  return hub && hub->GridPane() ? TreeOf(RowsOf(*hub), WordsOf(hub)) : ConditionTree();
}

bool QueryConditions::Groups() const {
  const Ref<qbQueryBuilder> hub = hub_.lock();
  return hub && hub->GridPane() && hub->GridPane()->ShowGroupBy();
}

void QueryConditions::Set(const ConditionTree& tree) const {
  const Ref<qbQueryBuilder> hub = hub_.lock();
  const Ref<qbGridPane> grid = hub ? hub->GridPane() : nullptr;
  if (!grid || tree == Tree()) return;
  const std::vector<ConditionedRow> then = WithConditions(RowsOf(*hub), tree, WordsOf(hub), Groups());
  const StepScope step(hub, kStepEditCell, grid->Grid()->Columns()->Item(kColumnCriteria)->Caption());
  WholeOrNothing(hub, [&] { WriteRows(*grid, then); });
}

std::vector<std::string> QueryConditions::Fields() const {
  std::vector<std::string> fields;
  const Ref<qbQueryBuilder> hub = hub_.lock();
  const Ref<qbEntities> entities = hub ? hub->Entities() : nullptr;
  if (!entities) return fields;
  for (const Ref<qbEntity>& entity : *entities) {
    for (const Ref<qbEntityItem>& item : *entity->Items()) {
      if (item->Text() != kAllColumns) fields.push_back(TextOf({entity->Caption(), item->Text()}));
    }
  }
  return fields;
}

std::string QueryConditions::TextOf(const ConditionField& field) {
  const std::string name = (field.table.empty() ? "" : field.table + ".") + field.column;
  return field.aggregate.empty() ? name : field.aggregate + "(" + name + ")";
}

ConditionField QueryConditions::FieldIn(const std::string& text, bool groups) const {
  const Ref<qbQueryBuilder> hub = hub_.lock();
  const std::string typed(TrimWhite(text));
  if (!hub) return {{}, typed};
  if (std::optional<ConditionField> field = ColumnIn(*hub, typed)) return *field;
  const std::size_t open = typed.find('(');
  if (!groups || open == std::string::npos || !typed.ends_with(')')) return {{}, typed};
  const Ref<qbDBFunction> function = hub->DBFunctions()->FindGroupBy(typed.substr(0, open));
  const std::string_view inside = std::string_view(typed).substr(open + 1, typed.size() - open - 2);
  std::optional<ConditionField> field = function ? ColumnIn(*hub, Trim(inside)) : std::nullopt;
  if (!field) return {{}, typed};
  field->aggregate = function->DisplayText();
  return *field;
}

std::string QueryConditions::Formatted(const ConditionField& field, const std::string& criterion) const {
  const Ref<qbQueryBuilder> hub = hub_.lock();
  return hub ? std::string(Trim(FormatCriterion(criterion, RulesOf(*hub, field)))) : criterion;
}

Ref<qbIntelliList> QueryConditions::SuggestionsFor(const ConditionField& field,
                                                   std::shared_ptr<ValueSource> values) const {
  const Ref<qbQueryBuilder> hub = hub_.lock();
  if (!hub) return nullptr;
  const Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Criterion);
  list->SetValues(ValuesFor(hub, {field.table, field.column}, RulesOf(*hub, field), std::move(values)));
  return list;
}

}  // namespace zrqrybld
