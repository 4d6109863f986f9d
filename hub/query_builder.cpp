#include "hub/query_builder.h"

#include "base/text.h"
#include "diagram/auto_joins.h"
#include "diagram/table_picker.h"
#include "host/connection_info.h"
#include "hub/snapshot_builder.h"
#include "platform/headless.h"
#include "sql/names.h"
#include "sql/source_rules.h"

namespace zrqrybld {

Ref<qbQueryBuilder> qbQueryBuilder::Create(std::shared_ptr<Toolkit> toolkit) {
  if (!toolkit) toolkit = std::make_shared<HeadlessToolkit>();
  return Ref<qbQueryBuilder>(new qbQueryBuilder(std::move(toolkit)));
}

qbQueryBuilder::~qbQueryBuilder() = default;

// --- Connection ---

void qbQueryBuilder::Connect(const std::string& connectionString) {
  const BusyPointer busy(GetToolkit());
  lastError_.reset();
  try {
    if (IsConnected()) Disconnect();
    const Ref<zrqrybld::Connection> connection = Connection();
    connection->SetConnectionString(connectionString);
    connection->SetProperty("Prompt", static_cast<std::int32_t>(PromptComplete));
    connection->Open({}, {});
    RetrieveInfo();
  } catch (const Error& error) {
    lastError_ = error;
  } catch (const std::exception& error) {
    lastError_ = Error(ErrorConnectionFailed, error.what());
  }
}

void qbQueryBuilder::SetConnection(const Ref<zrqrybld::Connection>& connection) {
  StoreConnection(connection);
  if (IsConnected()) RetrieveInfo();
}

void qbQueryBuilder::RetrieveInfo() {
  RetrieveConnectionInfo(*this, getTablesOnConnect_);
  QueryChanged();  // names may be quoted in another way now
}

// --- Tables and joins ---

Ref<qbEntity> qbQueryBuilder::AddTable(const std::string& tableName) {
  return TablePicker(RefTo(*this)).AddTable(RemoveIdentifierQuotes(tableName, CurrentNameRules(*this)));
}

bool qbQueryBuilder::HasTable(const std::string& tableName) {
  return TablePicker(RefTo(*this)).HasTable(RemoveIdentifierQuotes(tableName, CurrentNameRules(*this)));
}

void qbQueryBuilder::ShowTables() {
  TablePicker(RefTo(*this)).ShowTables();
  if (sqlPane_) sqlPane_->Refresh();
}

void qbQueryBuilder::RefreshAutoJoins() { RefreshRelationships(RefTo(*this)); }

// --- Options ---

void qbQueryBuilder::SetDistinctRecords(bool distinct) {
  if (distinct == distinctRecords_) return;
  distinctRecords_ = distinct;
  QueryChanged();
}

void qbQueryBuilder::SetSelectTopRecords(const std::string& value) {
  std::string stored(Trim(value));
  if (!stored.empty() && !ParseNumber(value)) {
    // The percent sign must be the very last character; blanks before it are dropped.
    const double percentage = LeadingNumber(ReplaceAll(value, " ", ""));
    const std::string digits = NumberText(percentage);
    const bool valid = value.ends_with('%') && percentage <= 100;
    if (!valid) throw Error(ErrorInvalidPropertyValue, "Invalid Property Value.");
    stored = digits + "%";
  }
  if (stored == selectTopRecords_) return;
  selectTopRecords_ = stored;
  QueryChanged();
}

void qbQueryBuilder::SetAliasMaxLen(std::int16_t characters) {
  aliasMaxLen_ = characters;
  if (gridPane_) gridPane_->ApplyAliasMaxLen();
}

bool qbQueryBuilder::LoadLanguageFile(const std::string& path) {
  try {
    Language().Load(path);
  } catch (const Error&) {
    if (gridPane_) gridPane_->ApplyGridCaptions();  // what was read before the faulty line counts
    throw;
  }
  if (gridPane_) gridPane_->ApplyGridCaptions();
  return false;
}

void qbQueryBuilder::SetLanguageString(std::int32_t id, const std::string& newValue) {
  Language().Set(id, newValue);
  if (gridPane_) gridPane_->ApplyGridCaptions();
}

// --- Panes ---

void qbQueryBuilder::SetDiagramPane(const Ref<qbDiagramPane>& pane) {
  if (diagramPane_ && diagramPane_ != pane) diagramPane_->SetContext(nullptr);
  diagramPane_ = pane;
  if (pane) pane->SetContext(RefTo(*this));
  EntitiesChanged();
}

void qbQueryBuilder::SetGridPane(const Ref<qbGridPane>& pane) {
  if (gridPane_ && gridPane_ != pane) gridPane_->SetContext(nullptr);
  gridPane_ = pane;
  if (pane) pane->SetContext(RefTo(*this));
}

void qbQueryBuilder::SetSQLPane(const Ref<qbSQLPane>& pane) {
  if (sqlPane_ && sqlPane_ != pane) sqlPane_->SetContext(nullptr);
  sqlPane_ = pane;
  if (pane) pane->SetContext(RefTo(*this));
}

std::string qbQueryBuilder::DateFormat() const { return gridPane_ ? gridPane_->DateFormat() : "dd-mmm-yyyy"; }

QuerySnapshot qbQueryBuilder::Snapshot() const {
  QuerySnapshot snapshot = TakeSnapshot(*this, Entities().get(), gridPane_.get());
  snapshot.distinct = distinctRecords_;
  snapshot.top = selectTopRecords_;
  return snapshot;
}

void qbQueryBuilder::RefreshStatement() {
  if (sqlPane_) sqlPane_->Refresh();
}

// --- What the panes tell ---

void qbQueryBuilder::ItemChecked(const std::string& entityCaption, const std::string& itemText, bool checked) {
  if (gridPane_) gridPane_->SetFieldOutput(itemText, checked, entityCaption);
}

void qbQueryBuilder::EntityRemoved(const std::string& caption) {
  if (gridPane_) gridPane_->RemoveRowsOf(caption);
  RaiseInfo(InfoTableRemoved, caption);
}

void qbQueryBuilder::EntityRenamed(const std::string& oldCaption, const std::string& newCaption) {
  if (gridPane_) gridPane_->RenameTable(oldCaption, newCaption);
}

void qbQueryBuilder::EntitiesChanged() {
  if (gridPane_) gridPane_->RefreshTableList();
}

void qbQueryBuilder::DiagramCleared() {
  if (gridPane_) gridPane_->ResetRows();
  QueryChanged();
}

void qbQueryBuilder::RelationshipActivated(const Ref<qbRelationship>&) {}

}  // namespace zrqrybld
