// The options of the query: their rules, how a form stores them, and those that are undone.
#include <optional>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/history.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/property_store.h"
#include "zrqrybld/platform/stored_values.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// The row limit as it is stored; none when the text is no limit. The percent sign must be the very last character;
// blanks before it are dropped.
std::optional<std::string> LimitToStore(const std::string& value) {
  const std::string trimmed(Trim(value));
  if (trimmed.empty() || ParseNumber(value)) return trimmed;
  const double percentage = LeadingNumber(ReplaceAll(value, " ", ""));
  if (!value.ends_with('%') || percentage > 100) return std::nullopt;
  return NumberText(percentage) + "%";
}

bool ReadLimit(const Variant& stored, std::string& limit) {
  const std::optional<std::string> read = LimitToStore(stored.Text());
  if (read) limit = *read;
  return read.has_value();
}

using F = HubOptions;
constexpr StoredTable kStored = {
    Stored<F, &F::allowJoinProperties>("AllowJoinProperties", kStoredAlways),
    Stored<F, &F::connectOnLoad>("ConnectOnLoad"),
    Stored<F, &F::distinctRecords>("DistinctRecords"),
    Stored<F, &F::selectTopRecords, &ReadLimit>("SelectTopRecords"),
    Stored<F, &F::getTablesOnConnect>("GetTablesOnConnect"),
    Stored<F, &F::retrieveFieldOrder>("RetrieveFieldOrder"),
    Stored<F, &F::saveLoadEntityItems>("SaveLoadEntityItems"),
    Stored<F, &F::saveConnectionString>("SaveConnectionString"),
    Stored<F, &F::aliasMaxLen>("AliasMaxLen"),
    Stored<F, &F::skipRecords>("SkipRecords"),
    Stored<F, &F::autoSyntax>("AutoSyntax"),
};

// What a form leaves out is not in each case what a newly placed control has.
HubOptions FormDefaults() {
  HubOptions defaults;
  defaults.getTablesOnConnect = true;
  defaults.saveConnectionString = true;
  return defaults;
}

}  // namespace

// --- Options ---

// Whether the option has changed. It is marked in any case.
template <auto Field, class T>
bool qbQueryBuilder::Store(const T& value) {
  const bool changes = options_.*Field != value;
  options_.*Field = value;
  PropertyChanged.Raise(StoredKey<Field>(kStored));
  return changes;
}

void qbQueryBuilder::SetAllowJoinProperties(bool allow) { Store<&F::allowJoinProperties>(allow); }

void qbQueryBuilder::SetConnectOnLoad(bool connect) { Store<&F::connectOnLoad>(connect); }

void qbQueryBuilder::SetGetTablesOnConnect(bool get) { Store<&F::getTablesOnConnect>(get); }

void qbQueryBuilder::SetRetrieveFieldOrder(FieldOrderEnum order) { Store<&F::retrieveFieldOrder>(order); }

void qbQueryBuilder::SetSaveLoadEntityItems(bool save) { Store<&F::saveLoadEntityItems>(save); }

void qbQueryBuilder::SetSaveConnectionString(bool save) { Store<&F::saveConnectionString>(save); }

void qbQueryBuilder::SetAutoSyntax(bool follow) { Store<&F::autoSyntax>(follow); }

void qbQueryBuilder::SetDistinctRecords(bool distinct) {
  const StepScope step(RefTo(*this), kStepDistinct);
  if (Store<&F::distinctRecords>(distinct)) QueryChanged();
}

void qbQueryBuilder::SetSelectTopRecords(const std::string& value) {
  const std::optional<std::string> limit = LimitToStore(value);
  if (!limit) throw Error(ErrorInvalidPropertyValue, text::InvalidPropertyValue);
  const StepScope step(RefTo(*this), kStepRowLimit);
  if (Store<&F::selectTopRecords>(*limit)) QueryChanged();
}

void qbQueryBuilder::SetSkipRecords(std::int32_t rows) {
  if (rows < 0) throw Error(ErrorInvalidPropertyValue, text::InvalidPropertyValue);
  const StepScope step(RefTo(*this), kStepRowLimit);
  if (Store<&F::skipRecords>(rows)) QueryChanged();
}

void qbQueryBuilder::SetAliasMaxLen(std::int16_t characters) {
  if (characters < 0) throw Error(ErrorInvalidPropertyValue, text::InvalidPropertyValue);
  const bool changed = Store<&F::aliasMaxLen>(characters);
  if (gridPane_) gridPane_->ApplyAliasMaxLen();
  if (changed) QueryChanged();
}

// --- Stored properties ---

void qbQueryBuilder::InitProperties() {
  const HubOptions placed;
  options_.connectOnLoad = placed.connectOnLoad;
  options_.saveLoadEntityItems = placed.saveLoadEntityItems;
}

void qbQueryBuilder::ReadProperties(const PropertyStore& store) {
  const StepScope step(RefTo(*this), text::StepReadProperties);
  ReadStored(kStored, store, options_, FormDefaults());
  if (gridPane_) gridPane_->ApplyAliasMaxLen();
  QueryChanged();
}

void qbQueryBuilder::WriteProperties(PropertyStore& store) const {
  WriteStored(kStored, store, options_, FormDefaults());
}

// --- Undone options ---

DesignOptions qbQueryBuilder::CurrentOptions() const {
  DesignOptions options;
  options.query = static_cast<const QueryOptions&>(options_);
  if (gridPane_) {
    options.showGroupBy = gridPane_->ShowGroupBy();
    options.dates = gridPane_->Dates();
  }
  if (sqlPane_) {
    options.sql = {sqlPane_->SQLSyntax(), sqlPane_->Locked(), sqlPane_->LikeOperator()};
    options.typed = sqlPane_->Typed();
  }
  return options;
}

void qbQueryBuilder::RestoreOptions(const DesignOptions& options) {
  const QueryOptions& query = options.query;
  if (query.distinctRecords != options_.distinctRecords) Store<&F::distinctRecords>(query.distinctRecords);
  if (query.selectTopRecords != options_.selectTopRecords) Store<&F::selectTopRecords>(query.selectTopRecords);
  if (query.skipRecords != options_.skipRecords) Store<&F::skipRecords>(query.skipRecords);
  if (gridPane_) {
    gridPane_->RestoreShowGroupBy(options.showGroupBy);
    gridPane_->RestoreDates(options.dates);
  }
  if (sqlPane_) {
    const SqlPaneOptions& sql = options.sql;
    if (sql.syntax != sqlPane_->SQLSyntax()) sqlPane_->SetSQLSyntax(sql.syntax);
    if (sql.likeOperator != sqlPane_->LikeOperator()) sqlPane_->SetLikeOperator(sql.likeOperator);
    if (sql.locked != sqlPane_->Locked()) sqlPane_->SetLocked(sql.locked);
    sqlPane_->SetTyped(options.typed);
  }
}

}  // namespace zrqrybld
