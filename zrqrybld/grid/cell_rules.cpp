#include "zrqrybld/grid/cell_rules.h"

#include "zrqrybld/grid/cell_values.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/near_names.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/field_rows.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/field_terms.h"
#include "zrqrybld/sql/name_checker.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

constexpr SortWord kNoSort{};

}  // namespace

// By position; the criteria columns share the last one.
const CellRules::Rule& CellRules::RuleOf(std::int32_t column) {
  static constexpr Rule kRules[] = {
      {&CellRules::ColumnEdited, &CellRules::FillColumns},
      {nullptr, nullptr},  // alias
      {&CellRules::TableEdited, &CellRules::FillAllTables},
      {nullptr, nullptr},  // output
      {&CellRules::SortTypeEdited, &CellRules::FillSortTypes},
      {&CellRules::SortOrderEdited, &CellRules::FillSortPlaces},
      {&CellRules::GroupByEdited, &CellRules::FillGroupings},
      {&CellRules::CriterionEdited, nullptr},
  };
  static_assert(std::size(kRules) == kColumnCriteria);
  return kRules[std::min<std::int32_t>(column, kColumnCriteria) - 1];
}

void CellRules::Edited(zrGridRow& row, std::int32_t column, const std::string& before) {
  if (const auto edited = RuleOf(column).edited) (this->*edited)({row, column, before});
}

void CellRules::FillList(const zrGridRow& row, std::int32_t column) {
  if (const auto fillList = RuleOf(column).fillList) (this->*fillList)(row);
}

zrGridComboItems& CellRules::EmptiedList(GridColumnIndex column) const {
  zrGridComboItems& list = *rows_.Grid().Columns()->Item(column)->ComboItems();
  list.Clear();
  return list;
}

// Tells the user once in a work on many cells; a hint stays beside every cell.
void CellRules::Complain(const Edit& edit, const std::string& text, MessageIcon icon) {
  RowWriter(edit.row).SetHint(static_cast<std::size_t>(edit.column), text);
  const Ref<QueryContext> context = rows_.Context();
  if (!context || std::exchange(complained_, true)) return;
  context->source.GetToolkit().GetDialogs().ShowMessageSoon(text, icon);
}

// --- Column and table ---

void CellRules::ColumnEdited(const Edit& edit) {
  zrGridRow& row = edit.row;
  const Ref<QueryContext> context = rows_.Context();
  const Ref<qbEntities> entities = rows_.Entities();
  if (!context || !entities || RowReader(row).IsBlank(kColumnColumn)) return;
  TakeAlias(row);
  const FieldName typed = FieldOf(row);
  const NameRules rules = CurrentNameRules(*context);
  const RowWriter writer(row);
  const Ref<qbEntity> entity = entities->FindExactly(typed.table);
  if (entity && !FindItemExactly(*entity, typed.column) && entity->Items()->Count() > 1) {
    const bool isName = std::ranges::all_of(typed.column, [](char c) { return IsWordByte(c) || c == ' '; });
    if (isName) {
      NearestName nearest(typed.column);
      for (const Ref<qbEntityItem>& item : *entity->Items()) nearest.Offer(item->Text());
      writer.SetHint(kColumnColumn,
                     context->source.Say(nearest.With({text::TableHasNoColumn, typed.table, typed.column})));
    } else {
      writer.SetText(kColumnTable, "");  // an expression stands for itself, not for a column of the table
    }
  }
  if (typed.table.empty()) {
    if (const std::optional<FieldName> field = FindOnlyField(*entities, typed.column, rules)) {
      writer.SetText(kColumnTable, field->table);
    }
  }
  // A column that is named in an empty row is wanted in the result.
  if (row.ValueAt(kColumnOutput).IsEmpty()) writer.SetOutput(true);
  CheckExpression(row);
}

// "N AS x" and "x: N" name the column of the result; what the diagram has under the whole text is a column.
void CellRules::TakeAlias(zrGridRow& row) const {
  const FieldName typed = FieldOf(row);
  const std::optional<AliasedText> split = SplitAlias(typed.column);
  const Ref<qbEntities> entities = rows_.Entities();
  const auto isColumn = [&](const Ref<qbEntity>& entity) { return FindItemExactly(*entity, typed.column) != nullptr; };
  if (!split || (entities && std::ranges::any_of(entities->begin(), entities->end(), isColumn))) return;
  const RowWriter writer(row);
  writer.SetText(kColumnAlias, split->alias);
  writer.SetText(kColumnColumn, split->expression);
}

// A text that is no column of the row's table is an expression: what is wrong with it stands beside the cell. One with
// an aggregate has a value for the group already.
void CellRules::CheckExpression(zrGridRow& row) const {
  const Ref<QueryContext> context = rows_.Context();
  const FieldName typed = FieldOf(row);
  const Ref<qbEntities> entities = rows_.Entities();  // none once a listener has taken the diagram away
  if (!context || row.Index() == 0 || !entities || entities->FindExactly(typed.table) || TrimWhite(typed.column) == "*")
    return;
  const RowWriter writer(row);
  const Ref<qbDBFunctions> functions = context->source.DBFunctions();
  if (RowReader(row).Grouping(functions.get()).kind == GroupingKind::GroupBy &&
      CallsAggregate(typed.column, *functions)) {
    if (const auto choice = grouping_.ChoiceNamed("Expression", row)) writer.SetGrouping(*choice);
  }
  try {
    SyntaxArena arena(typed.column.size() * 8 + 256);
    ParseExpressionText(typed.column, arena);
  } catch (const SyntaxError& error) {
    return writer.SetHint(kColumnColumn, context->source.Say(error.Sentence()));
  }
  const QuerySnapshot query = context->design.Snapshot();
  const Phrase fault = DesignNames(query, context->design.CurrentDialect(), functions.get()).FaultIn(typed.column);
  if (!fault.Empty()) writer.SetHint(kColumnColumn, context->source.Say(fault));
}

void CellRules::TableEdited(const Edit& edit) {
  const Ref<qbEntities> entities = rows_.Entities();
  const std::string typed = RowReader(edit.row).Text(kColumnTable);
  if (!entities || typed.empty() || entities->FindExactly(typed)) return;
  const RowWriter writer(edit.row);
  writer.SetText(kColumnTable, "");
  Complain(edit, Say(rows_.Context(), text::NotInList), MessageIcon::Exclamation);
  writer.SetHint(kColumnTable, Say(rows_.Context(), {text::DiagramHasNoTable, typed}));
}

// The columns of the row's table; without one those of all tables, with their tables' captions.
void CellRules::FillColumns(const zrGridRow& row) {
  zrGridComboItems& list = EmptiedList(kColumnColumn);
  const Ref<qbEntities> entities = rows_.Entities();
  if (!entities) return;
  const Ref<qbEntity> only = entities->FindExactly(RowReader(row).Text(kColumnTable));
  for (std::int32_t i = 1; i <= entities->Count(); ++i) {
    const Ref<qbEntity> entity = entities->Item(i);
    if (only && entity != only) continue;
    const qbEntityItems& items = *entity->Items();
    const std::string prefix = only ? std::string() : entity->Caption() + ".";
    for (std::int32_t j = 1; j <= items.Count(); ++j) list.Add(prefix + items.Item(j)->Text());
  }
}

void CellRules::FillAllTables(const zrGridRow&) { FillTables(); }

// What stands at its place already stays: a table more is one entry more, a table less one entry less.
void CellRules::FillTables(std::int32_t from) {
  const Ref<zrGridColumn> column = rows_.Grid().Columns()->Find(KeyOf(kColumnTable));
  if (!column) return;
  zrGridComboItems& list = *column->ComboItems();
  const Ref<qbEntities> entities = rows_.Entities();
  const std::int32_t count = entities ? entities->Count() : 0;
  std::int32_t same = std::min({from - 1, count, list.Count()});
  const auto isSame = [&](std::int32_t entry) {
    return same < count && entry <= list.Count() && list.Item(entry)->Text() == entities->Item(same + 1)->Caption();
  };
  if (!isSame(same + 1) && isSame(same + 2)) list.Remove(same + 1);
  while (isSame(same + 1)) ++same;
  while (list.Count() > same) list.Remove(list.Count());
  for (std::int32_t i = same + 1; i <= count; ++i) list.Add(entities->Item(i)->Caption());
}

// --- Sorting ---

bool CellRules::WritesNullsPlace() const {
  const Ref<QueryContext> context = rows_.Context();
  return context && context->design.CurrentDialect().hasNullsPlace;
}

// The usual three, and what an application has added, stay as they are.
void CellRules::FillSortTypes(const zrGridRow&) {
  zrGridComboItems& list = *rows_.Grid().Columns()->Item(kColumnSortType)->ComboItems();
  const bool offered = WritesNullsPlace();
  for (const SortWord& word : OfferedSorts(true)) {
    if (word.nulls == NullsPlace::Usual) continue;
    std::int32_t at = list.Count();
    while (at > 0 && list.Item(at)->Text() != word.text) --at;
    if (offered && at == 0) list.Add(std::string(word.text));
    if (!offered && at != 0) list.Remove(at);
  }
}

void CellRules::SortTypeEdited(const Edit& edit) {
  const std::string cell = RowReader(edit.row).Text(kColumnSortType);
  const std::string_view typed = TrimWhite(cell);
  const SortWord* word = typed.empty() ? &kNoSort : FindTypedSort(typed, WritesNullsPlace());
  const auto busy = rows_.Busy();
  const RowWriter writer(edit.row);
  writer.SetText(kColumnSortType, word ? word->text : edit.before);
  if (!word) {
    writer.SetHint(kColumnSortType, Say(rows_.Context(), text::NotInList));
  } else if (word->direction == SortDirection::None) {
    sorting_.Place(edit.row, 0);
  } else if (RowReader(edit.row).IsBlank(kColumnSortOrder)) {
    sorting_.Place(edit.row, sorting_.Last(edit.row));
  }
}

// Numbers above the number of sorted rows are the last place; what is no place at all restores the old text.
void CellRules::SortOrderEdited(const Edit& edit) {
  const std::string cell = RowReader(edit.row).Text(kColumnSortOrder);
  const std::string typed(TrimWhite(cell));
  const auto busy = rows_.Busy();
  const RowWriter writer(edit.row);
  if (typed.empty()) {
    writer.SetText(kColumnSortType, "");
    sorting_.Place(edit.row, 0);
    return;
  }
  const std::optional<double> place = ReadSortPlace(typed);
  if (!place || *place < 1) {
    writer.SetText(kColumnSortOrder, edit.before);
    writer.SetHint(kColumnSortOrder, Say(rows_.Context(), {text::NoSortPlace, typed}));
    return;
  }
  if (RowReader(edit.row).Direction() == SortDirection::None) {
    writer.SetText(kColumnSortType, TextOf(SortDirection::Ascending));
  }
  sorting_.Place(edit.row, static_cast<std::int32_t>(std::min(*place, static_cast<double>(rows_.Count()))));
}

void CellRules::FillSortPlaces(const zrGridRow& row) {
  zrGridComboItems& list = EmptiedList(kColumnSortOrder);
  const std::int32_t places = sorting_.Last(row);
  for (std::int32_t i = 1; i <= places; ++i) list.Add(std::to_string(i));
}

// --- Grouping ---

void CellRules::FillGroupings(const zrGridRow& row) { grouping_.FillList(EmptiedList(kColumnGroupBy), row); }

void CellRules::GroupByEdited(const Edit& edit) {
  const std::string cell = RowReader(edit.row).Text(kColumnGroupBy);
  const std::string typed(TrimWhite(cell));
  const auto busy = rows_.Busy();
  const RowWriter writer(edit.row);
  if (const auto choice = grouping_.ChoiceNamed(typed, edit.row)) return writer.SetGrouping(*choice);
  // A tag without its text would group by something that is not shown.
  writer.SetText(kColumnGroupBy, edit.before);
  writer.SetHint(kColumnGroupBy, Say(rows_.Context(), {text::NoGrouping, typed}));
}

// --- Criteria ---

CriteriaContext CellRules::CriteriaOf(const QueryContext& context, const zrGridRow& row) const {
  return CriteriaRulesOf(context, FieldOf(row), grouping_.AggregateOf(row));
}

void CellRules::CriterionEdited(const Edit& edit) {
  zrGridRow& row = edit.row;
  const Ref<QueryContext> context = rows_.Context();
  if (!context) return;
  const FieldName field = FieldOf(row);
  CriteriaContext rules = CriteriaOf(*context, row);
  const auto cell = static_cast<std::size_t>(edit.column);
  std::string expression = RowReader(row).Text(cell);
  bool cancel = false;
  formatting_.Raise(row.Index(), edit.column, field.table, field.column, rules.dataType, rules.isLong, rules.prefix,
                    rules.suffix, expression, cancel);
  if (row.Index() == 0) return;  // a listener has removed it
  rules.aggregate = grouping_.AggregateOf(row);
  const auto busy = rows_.Busy();
  try {
    if (!cancel) expression = Trim(FormatCriterion(expression, rules));
    RowWriter(row).SetText(cell, expression);
    CheckCriterion(edit);
  } catch (const Error& error) {
    RowWriter(row).SetText(cell, expression);  // as it was typed, or as the listener has left it
    Complain(edit, error.Description(), MessageIcon::Critical);
  }
}

// What the statement will not say, or a server will not find, stands beside the cell; the text stays.
void CellRules::CheckCriterion(const Edit& edit) const {
  const Ref<QueryContext> context = rows_.Context();
  const auto cell = static_cast<std::size_t>(edit.column);
  const std::string text = RowReader(edit.row).Text(cell);
  if (!context || edit.row.Index() == 0 || TrimWhite(text).empty()) return;  // a listener may have taken it away
  const RowWriter writer(edit.row);
  if (RowReader(edit.row).IsBlank(kColumnColumn)) {
    return writer.SetHint(cell, context->source.Say(text::CriterionOfNothing));
  }
  const QuerySnapshot query = context->design.Snapshot();
  SnapshotRow row;
  const CriteriaContext rules = CriteriaOf(*context, edit.row);
  row.type = {rules.dataType, rules.isLong, rules.prefix, rules.suffix};
  const DesignNames names(query, context->design.CurrentDialect(), context->source.DBFunctions().get());
  const Phrase fault = names.FaultInCriterion(text, row);
  if (!fault.Empty()) writer.SetHint(cell, context->source.Say(fault));
}

}  // namespace zrqrybld
