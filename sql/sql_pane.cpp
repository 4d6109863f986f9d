#include "sql/sql_pane.h"

#include "platform/headless.h"
#include "sql/generator.h"
#include "sql/query_snapshot.h"

namespace zrqrybld {

qbSQLPane::qbSQLPane() : headless_(std::make_unique<HeadlessTextArea>()), textArea_(headless_.get()) {}

Ref<qbSQLPane> qbSQLPane::Create() { return Ref<qbSQLPane>(new qbSQLPane()); }

Ref<qbQueryBuilder> qbSQLPane::QueryBuilder() const {
  const Ref<QueryContext> context = context_.lock();
  return context ? context->Hub() : nullptr;
}

void qbSQLPane::AttachTextArea(TextArea* area) {
  const std::string text = textArea_->Text();
  textArea_ = area ? area : headless_.get();
  textArea_->SetText(text);
  edited_ = textArea_->Edited.Connect([this] { SQLChanged.Raise(); });
}

void qbSQLPane::SetSQLStatement(const std::string& text) {
  if (text == textArea_->Text()) return;
  textArea_->SetText(text);
  SQLChanged.Raise();
}

std::string qbSQLPane::Generate(const std::string& orExpression, const std::string& andExpression) {
  const Ref<QueryContext> context = context_.lock();
  if (!context || context->state() != InfoDone) return {};
  GeneratedSql generated = GenerateSelect(context->Snapshot(), DialectFor(syntax_), {orExpression, andExpression});
  cartesian_ = generated.cartesian;
  return std::move(generated.text);
}

void qbSQLPane::Refresh() { SetSQLStatement(Generate({}, {})); }

std::string qbSQLPane::AddWhereClause(const std::string& orExpression, const std::string& andExpression) {
  return Generate(orExpression, andExpression);
}

}  // namespace zrqrybld
