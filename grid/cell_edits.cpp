// What the grid pane does after a cell was edited in place, by its column.
#include <algorithm>

#include "base/error.h"
#include "base/scoped_value.h"
#include "base/text.h"
#include "base/texts_grid.h"
#include "diagram/entities.h"
#include "expression/expression_builder.h"
#include "grid/field_names.h"
#include "grid/grid_pane.h"
#include "sql/criteria_formatter.h"
#include "sql/source_rules.h"

namespace zrqrybld {
namespace {

// The sort type that a typed text means, by its first letters; none when it means none.
std::optional<std::string> ReadSortType(std::string_view typed) {
  const std::string_view text = TrimWhite(typed);
  if (text.empty()) return std::string();
  for (const std::string_view type : {"Ascending", "Descending", "Unsorted"}) {
    if (StartsWithNoCase(type, text)) return std::string(type);
  }
  return std::nullopt;
}

}  // namespace

void qbGridPane::FinishEdit() {
  if (grdPane_->IsEditing()) {
    grdPane_->CommitEdit();
    return;
  }
  const std::int32_t row = grdPane_->Row();
  const std::int32_t column = grdPane_->Column();
  if (row <= 0 || column <= 0) return;
  const StepScope step(context_.lock(), kStepEditCell, CaptionOf(column));
  complained_ = false;
  ProcessEdit(row, column, currentText_);
  AfterEdit.Raise(row, column);
  ReportChange();
}

// An edit that has changed nothing is complete as it stands.
void qbGridPane::GridEdited(std::int32_t row, std::int32_t column) {
  const std::optional<Change> change = std::exchange(change_, std::nullopt);
  const bool changed = change && change->column == column && change->row.lock() == HoldRow(row);
  if (changed) ProcessEdit(row, column, change->text);
  change_.reset();
  AfterEdit.Raise(row, column);
  if (changed) ReportChange();
}

void qbGridPane::ProcessEdit(std::int32_t row, std::int32_t column, const std::string& before) {
  const Ref<zrGridRow> cells = grdPane_->Rows()->Item(row);
  switch (column) {
    case kColumnColumn:
      ColumnEdited(*cells);
      break;
    case kColumnTable:
      TableEdited(*cells);
      break;
    case kColumnSortType:
      SortTypeEdited(*cells, before);
      break;
    case kColumnSortOrder:
      SortOrderEdited(*cells, before);
      break;
    case kColumnGroupBy:
      GroupByEdited(*cells, before);
      break;
    default:
      if (column >= kColumnCriteria) CriterionEdited(*cells, column);
      break;
  }
  if (row == grdPane_->Row() && column == grdPane_->Column() && cells->Index() != 0) {
    currentText_ = Text(*cells, static_cast<std::size_t>(column));
  }
}

// --- Column and table ---

void qbGridPane::ColumnEdited(zrGridRow& row) {
  const Ref<QueryContext> context = context_.lock();
  const Ref<qbEntities> entities = Entities();
  if (!context || !entities || row.ValueAt(kColumnColumn).IsBlank()) return;
  const Field typed = FieldOf(row);
  const NameRules rules = CurrentNameRules(*context);
  const Ref<qbEntity> entity = entities->FindExactly(typed.table);
  if (entity && !FindItemExactly(*entity, typed.name) && entity->Items()->Count() > 1) {
    const bool isName = std::ranges::all_of(typed.name, [](char c) { return IsWordByte(c) || c == ' '; });
    if (isName) {
      row.SetHint("column", context->Say({text::TableHasNoColumn, typed.table, typed.name}));
    } else {
      row.SetValue("table", "");  // an expression stands for itself, not for a column of the table
    }
  }
  if (typed.table.empty()) {
    if (const std::optional<FieldName> field = FindOnlyField(*entities, typed.name, rules)) {
      row.SetValue("table", field->table);
    }
  }
  // A column that is named in an empty row is wanted in the result.
  if (row.ValueAt(kColumnOutput).IsEmpty()) row.SetValue("output", true);
}

void qbGridPane::TableEdited(zrGridRow& row) {
  const Ref<qbEntities> entities = Entities();
  const std::string typed = Text(row, kColumnTable);
  if (!entities || typed.empty() || entities->FindExactly(typed)) return;
  row.SetValue("table", "");
  Complain(row, kColumnTable, Say(context_.lock(), text::NotInList), MessageIcon::Exclamation);
  row.SetHint("table", Say(context_.lock(), {text::DiagramHasNoTable, typed}));
}

// --- Grouping ---

// A choice is found by what the list shows, then by its name, and takes its text and tag from there.
void qbGridPane::GroupByEdited(zrGridRow& row, const std::string& before) {
  const std::string typed(TrimWhite(Text(row, kColumnGroupBy)));
  const ScopedValue busy(busy_, true);
  if (typed.empty()) {
    row.SetTagVariant("group_by", "");
    row.SetValue("group_by", "");
    return;
  }
  const Ref<QueryContext> context = context_.lock();
  const bool isAll = Text(row, kColumnColumn) == "*";
  if (isAll && EqualsNoCase(typed, "Count")) {
    row.SetTagVariant("group_by", "COUNT(@field)");
    row.SetValue("group_by", "Count");
    return;
  }
  const Ref<qbDBFunction> function = context && !isAll ? context->DBFunctions()->FindGroupBy(typed) : nullptr;
  if (function) {
    SetGroupByFunction(row.Index(), *function);
    return;
  }
  // A tag without its text would group by something that is not shown.
  row.SetValue("group_by", before);
  row.SetHint("group_by", Say(context, {text::NoGrouping, typed}));
}

// --- Sorting ---

void qbGridPane::SortTypeEdited(zrGridRow& row, const std::string& before) {
  const std::optional<std::string> type = ReadSortType(Text(row, kColumnSortType));
  const ScopedValue busy(busy_, true);
  row.SetValue("sort_type", type ? *type : before);
  if (!type) {
    row.SetHint("sort_type", Say(context_.lock(), text::NotInList));
    return;
  }
  if (type->empty() || *type == "Unsorted") {
    SetSortOrder(row, 0);
  } else if (row.ValueAt(kColumnSortOrder).IsBlank()) {
    SetSortOrder(row, NextSortOrder(row.Index()));
  }
}

// Numbers above the number of sorted rows are the last place; what is no place at all restores the old text.
void qbGridPane::SortOrderEdited(zrGridRow& row, const std::string& before) {
  const std::string typed(TrimWhite(Text(row, kColumnSortOrder)));
  const ScopedValue busy(busy_, true);
  if (typed.empty()) {
    row.SetValue("sort_type", "");
    SetSortOrder(row, 0);
    return;
  }
  const std::optional<double> number = ParseNumber(typed);
  if (!number || *number < 1) {
    row.SetValue("sort_order", before);
    row.SetHint("sort_order", Say(context_.lock(), {text::NoSortPlace, typed}));
    return;
  }
  const std::string type = Text(row, kColumnSortType);
  if (type.empty() || EqualsNoCase(type, "UNSORTED")) row.SetValue("sort_type", "Ascending");
  SetSortOrder(row, static_cast<std::int32_t>(std::min(*number, static_cast<double>(RowCount()))));
}

// --- Criteria ---

// How a criterion of the row is read and written.
CriteriaContext qbGridPane::CriteriaRules(const QueryContext& context, const zrGridRow& row) const {
  const Field field = FieldOf(row);
  const Ref<qbEntities> entities = Entities();
  const Ref<qbEntity> entity = entities ? entities->FindExactly(field.table) : nullptr;
  const SnapshotType type = entity ? TypeOfColumn(*entity, field.name, *context.DataTypes()) : SnapshotType{};
  const NameRules names = CurrentNameRules(context);
  CriteriaContext rules = context.CriteriaRules();
  rules.dataType = type.code;
  rules.isLong = type.isLong;
  rules.prefix = type.prefix;
  rules.suffix = type.suffix;
  rules.aggregate = row.TagAt(kColumnGroupBy).Text();
  rules.quotePrefix = names.quotePrefix;
  if (entities) {
    rules.isColumn = [entities, names](const std::vector<std::string>& parts) {
      std::string text;
      for (const std::string& part : parts) text += (text.empty() ? "" : ".") + part;
      return FindQualifiedField(*entities, text, names) || FindOnlyField(*entities, text, names);
    };
  }
  return rules;
}

void qbGridPane::CriterionEdited(zrGridRow& row, std::int32_t column) {
  const Ref<QueryContext> context = context_.lock();
  if (!context) return;
  const Field field = FieldOf(row);
  CriteriaContext rules = CriteriaRules(*context, row);
  std::string expression = Text(row, static_cast<std::size_t>(column));
  bool cancel = false;
  AfterEditExpressionFormat.Raise(row.Index(), column, field.table, field.name, rules.dataType, rules.isLong,
                                  rules.prefix, rules.suffix, expression, cancel);
  if (row.Index() == 0) return;  // a listener has removed it
  rules.aggregate = row.TagAt(kColumnGroupBy).Text();
  const ScopedValue busy(busy_, true);
  try {
    if (!cancel) expression = Trim(FormatCriterion(expression, rules));
    row.SetValue(column, expression);
  } catch (const Error& error) {
    row.SetValue(column, expression);  // as it was typed, or as the listener has left it
    Complain(row, column, context->Say(error), MessageIcon::Critical);
  }
}

// Tells the user once in a change of many cells; a hint stays beside every cell.
void qbGridPane::Complain(zrGridRow& row, std::int32_t column, const std::string& text, MessageIcon icon) {
  row.SetHint(column, text);
  const Ref<QueryContext> context = context_.lock();
  if (!context || std::exchange(complained_, true)) return;
  context->GetToolkit().GetDialogs().ShowMessageSoon(text, icon);
}

// --- Predictive text and larger editors ---

// Nothing for cells that hold names and choices.
Ref<qbIntelliList> qbGridPane::SuggestionsFor(const WeakRef<QueryContext>& link, std::int32_t column) {
  const Ref<QueryContext> context = link.lock();
  if (!context || (column != kColumnColumn && column < kColumnCriteria)) return nullptr;
  return qbIntelliList::Create(context, column == kColumnColumn ? EditedText::Expression : EditedText::Criterion);
}

void qbGridPane::EditInWindow(bool builder) {
  const Ref<QueryContext> context = context_.lock();
  grdPane_->CommitEdit();
  const std::int32_t row = grdPane_->Row();
  const std::int32_t column = grdPane_->Column();
  if (!context || row <= 0 || column <= 0 || column == kColumnOutput) return;
  const Ref<zrGridRow> cells = grdPane_->Rows()->Item(row);
  if (cells->Locked()) return;
  const EditedText kind = column >= kColumnCriteria ? EditedText::Criterion : EditedText::Expression;
  const Ref<frmExpressionZoom> form = builder ? Ref<frmExpressionZoom>(frmExpressionBuilder::Create(context, kind))
                                              : frmExpressionZoom::Create(context, kind);
  if (kind == EditedText::Criterion) {
    form->SetReader([rules = CriteriaRules(*context, *cells)](std::string_view text) { FormatCriterion(text, rules); });
  } else if (column != kColumnColumn) {
    form->SetReader([](std::string_view) {});  // a name, or a choice
  }
  ExpressionDialog dialog{form->Caption(), Text(*cells, static_cast<std::size_t>(column)), form};
  if (!context->GetToolkit().GetDialogs().ShowExpression(dialog) || cells->Index() == 0) return;
  SetCellAsEdit(cells->Index(), column, dialog.text);
}

void qbGridPane::SetCellAsEdit(std::int32_t row, std::int32_t column, const std::string& text) {
  const StepScope step(context_.lock(), kStepEditCell, CaptionOf(column));
  complained_ = false;
  const Ref<zrGridRow> cells = HoldRow(row);
  cells->SetValue(column, text);
  if (cells->Index() != 0) GridEdited(cells->Index(), column);
}

}  // namespace zrqrybld
