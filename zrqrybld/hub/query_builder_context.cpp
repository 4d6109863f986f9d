// The hub's own way to what it shares with the panes.
#include <utility>

#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

qbQueryBuilder::qbQueryBuilder(std::unique_ptr<Parts> parts)
    : QueryContext{parts->source, parts->steps, parts->queries, parts->reports}, parts_(std::move(parts)) {
  parts_->hub = this;
}

// --- The source and the language ---

Toolkit& qbQueryBuilder::GetToolkit() const { return source.GetToolkit(); }
Ref<zrqrybld::Connection> qbQueryBuilder::Connection() { return source.Connection(); }
bool qbQueryBuilder::IsConnected() const { return source.IsConnected(); }
const Ref<qbProperties>& qbQueryBuilder::Properties() const { return source.Properties(); }
const Ref<qbDataTypes>& qbQueryBuilder::DataTypes() const { return source.DataTypes(); }
const Ref<qbDBFunctions>& qbQueryBuilder::DBFunctions() const { return source.DBFunctions(); }
const Ref<qbDBKeywords>& qbQueryBuilder::DBKeywords() const { return source.DBKeywords(); }
const Ref<qbDBOperators>& qbQueryBuilder::DBOperators() const { return source.DBOperators(); }
const Ref<StringCollection>& qbQueryBuilder::QuotedIdentifiers() const { return source.QuotedIdentifiers(); }
std::vector<SourceTable>& qbQueryBuilder::SourceTables() { return source.SourceTables(); }
std::string qbQueryBuilder::GetLanguageString(std::int32_t id) const { return source.GetLanguageString(id); }
std::shared_ptr<const TextSource> qbQueryBuilder::Texts() const { return source.Texts(); }
std::string qbQueryBuilder::Say(const Phrase& phrase) const { return source.Say(phrase); }
std::string qbQueryBuilder::Say(const std::exception& failure) const { return source.Say(failure); }

// --- State, progress, steps ---

QueryBuilderInfoEnum qbQueryBuilder::state() const { return steps.state(); }
void qbQueryBuilder::SetState(QueryBuilderInfoEnum value) { steps.SetState(value); }
void qbQueryBuilder::RaiseInfo(QueryBuilderInfoEnum info, Variant parameters) {
  steps.RaiseInfo(info, std::move(parameters));
}
void qbQueryBuilder::RunOperation(const StepName& step, QueryBuilderInfoEnum operation,
                                  const std::function<void()>& work, const std::string& about) {
  steps.RunOperation(step, operation, work, about);
}
void qbQueryBuilder::BeginStep(const StepName& name, const std::string& about) { steps.BeginStep(name, about); }
void qbQueryBuilder::EndStep() { steps.EndStep(); }
void qbQueryBuilder::QueryChanged() { steps.QueryChanged(); }
void qbQueryBuilder::EntitiesChanged(std::int32_t from) { steps.EntitiesChanged(from); }
void qbQueryBuilder::CancelOperation() { steps.TakeBackState(); }

}  // namespace zrqrybld
