// What the grid pane does after a cell was edited, in place or in a window.
#include <utility>

#include "zrqrybld/expression/expression_builder.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/platform/while_alive.h"
#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/criteria_formatter.h"

namespace zrqrybld {

void qbGridPane::FinishEdit() {
  if (grdPane_->IsEditing()) {
    grdPane_->CommitEdit();
    return;
  }
  const std::int32_t row = grdPane_->Row();
  const std::int32_t column = grdPane_->Column();
  if (row <= 0 || column <= 0) return;
  const StepScope step(rows_.Context(), kStepEditCell, CaptionOf(column));
  rules_.BeginWork();
  ProcessEdit(row, column, currentText_);
  AfterEdit.Raise(row, column);
  rows_.ReportChange();
}

// An edit that has changed nothing is complete as it stands.
void qbGridPane::GridEdited(std::int32_t row, std::int32_t column) {
  const std::optional<Change> change = std::exchange(change_, std::nullopt);
  const bool changed = change && change->column == column && change->row.lock() == rows_.Hold(row);
  if (changed) ProcessEdit(row, column, change->text);
  change_.reset();
  AfterEdit.Raise(row, column);
  if (changed) rows_.ReportChange();
}

void qbGridPane::ProcessEdit(std::int32_t row, std::int32_t column, const std::string& before) {
  const Ref<zrGridRow> cells = rows_.Hold(row);
  rules_.Edited(*cells, column, before);
  if (row == grdPane_->Row() && column == grdPane_->Column() && cells->Index() != 0) {
    currentText_ = RowReader(*cells).Text(static_cast<std::size_t>(column));
  }
}

void qbGridPane::RewriteLike(const std::string& before) {
  const Ref<QueryContext> context = rows_.Context();
  if (!context) return;
  const auto busy = rows_.Busy();
  for (std::int32_t i = 1; i <= rows_.Count(); ++i) {
    const Ref<zrGridRow> row = rows_.Hold(i);
    for (std::size_t column = kColumnCriteria; column <= rows_.LastColumn(); ++column) {
      const std::string cell = RowReader(*row).Text(column);
      if (FindNoCase(cell, before) == std::string_view::npos) continue;
      CriteriaContext criteria = rules_.CriteriaOf(*context, *row);
      criteria.formerLike = before;
      try {
        RowWriter(*row).SetText(column, FormatCriterion(cell, criteria));
      } catch (const Error&) {
        // What cannot be read stays as it was typed.
      }
    }
  }
}

// --- Larger editors ---

void qbGridPane::EditInWindow(bool builder) {
  const Ref<QueryContext> context = rows_.Context();
  grdPane_->CommitEdit();
  const std::int32_t row = grdPane_->Row();
  const std::int32_t column = grdPane_->Column();
  if (!context || row <= 0 || column <= 0 || column == kColumnOutput) return;
  const Ref<zrGridRow> cells = rows_.Hold(row);
  if (cells->Locked()) return;
  const EditedText kind = column >= kColumnCriteria ? EditedText::Criterion : EditedText::Expression;
  const Ref<frmExpressionZoom> form = builder ? Ref<frmExpressionZoom>(frmExpressionBuilder::Create(context, kind))
                                              : frmExpressionZoom::Create(context, kind);
  if (kind == EditedText::Criterion) {
    form->SetReader(
        [rules = rules_.CriteriaOf(*context, *cells)](std::string_view text) { FormatCriterion(text, rules); });
  } else if (column != kColumnColumn) {
    form->SetReader([](std::string_view) {});  // a name, or a choice
  }
  ExpressionDialog dialog{form->Caption(), RowReader(*cells).Text(static_cast<std::size_t>(column)), form};
  context->source.GetToolkit().GetDialogs().AskExpression(
      std::move(dialog), WhileAlive(weak_from_this(), [this, cells, column](const ExpressionDialog& answer) {
        if (cells->Index() != 0) SetCellAsEdit(cells->Index(), column, answer.text);
      }));
}

void qbGridPane::SetCellAsEdit(std::int32_t row, std::int32_t column, const std::string& text) {
  const StepScope step(rows_.Context(), kStepEditCell, CaptionOf(column));
  rules_.BeginWork();
  const Ref<zrGridRow> cells = rows_.Hold(row);
  cells->SetValue(column, text);
  if (cells->Index() != 0) GridEdited(cells->Index(), column);
}

}  // namespace zrqrybld
