// The options of the query: their rules, and how a form stores them.
#include <limits>
#include <optional>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/property_store.h"
#include "zrqrybld/platform/stored_values.h"

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

std::int32_t ReadInteger(const PropertyStore& store, std::string_view key, std::int32_t smallest,
                         std::int32_t largest) {
  const std::optional<double> number = store.Read(key, 0).Number();
  return number && *number >= smallest && *number <= largest ? static_cast<std::int32_t>(*number) : 0;
}

}  // namespace

// --- Options ---

void qbQueryBuilder::SetDistinctRecords(bool distinct) {
  const StepScope step(RefTo(*this), kStepDistinct);
  const bool changed = distinct != distinctRecords_;
  Store(distinctRecords_, distinct, "DistinctRecords");
  if (changed) QueryChanged();
}

void qbQueryBuilder::SetSelectTopRecords(const std::string& value) {
  const std::optional<std::string> limit = LimitToStore(value);
  if (!limit) throw Error(ErrorInvalidPropertyValue, text::InvalidPropertyValue);
  const StepScope step(RefTo(*this), kStepRowLimit);
  const bool changed = *limit != selectTopRecords_;
  Store(selectTopRecords_, *limit, "SelectTopRecords");
  if (changed) QueryChanged();
}

void qbQueryBuilder::SetSkipRecords(std::int32_t rows) {
  if (rows < 0) throw Error(ErrorInvalidPropertyValue, text::InvalidPropertyValue);
  const StepScope step(RefTo(*this), kStepRowLimit);
  const bool changed = rows != skipRecords_;
  Store(skipRecords_, rows, "SkipRecords");
  if (changed) QueryChanged();
}

void qbQueryBuilder::SetAliasMaxLen(std::int16_t characters) {
  if (characters < 0) throw Error(ErrorInvalidPropertyValue, text::InvalidPropertyValue);
  const bool changed = characters != aliasMaxLen_;
  Store(aliasMaxLen_, characters, "AliasMaxLen");
  if (gridPane_) gridPane_->ApplyAliasMaxLen();
  if (changed) QueryChanged();
}

// --- Stored properties ---

void qbQueryBuilder::InitProperties() {
  connectOnLoad_ = true;
  saveLoadEntityItems_ = false;
}

void qbQueryBuilder::ReadProperties(const PropertyStore& store) {
  const StepScope step(RefTo(*this), text::StepReadProperties);
  allowJoinProperties_ = ReadBoolean(store, "AllowJoinProperties", false);
  connectOnLoad_ = ReadBoolean(store, "ConnectOnLoad", true);
  distinctRecords_ = ReadBoolean(store, "DistinctRecords", false);
  selectTopRecords_ = LimitToStore(store.Read("SelectTopRecords", "").Text()).value_or("");
  getTablesOnConnect_ = ReadBoolean(store, "GetTablesOnConnect", true);
  retrieveFieldOrder_ =
      static_cast<FieldOrderEnum>(ReadInteger(store, "RetrieveFieldOrder", FieldOrderDefault, FieldOrderOrdinal));
  saveLoadEntityItems_ = ReadBoolean(store, "SaveLoadEntityItems", false);
  saveConnectionString_ = ReadBoolean(store, "SaveConnectionString", true);
  aliasMaxLen_ = static_cast<std::int16_t>(ReadInteger(store, "AliasMaxLen", 0, 32767));
  skipRecords_ = ReadInteger(store, "SkipRecords", 0, std::numeric_limits<std::int32_t>::max());
  autoSyntax_ = ReadBoolean(store, "AutoSyntax", false);
  if (gridPane_) gridPane_->ApplyAliasMaxLen();
  QueryChanged();
}

void qbQueryBuilder::WriteProperties(PropertyStore& store) const {
  store.Write("AllowJoinProperties", allowJoinProperties_);
  store.Write("ConnectOnLoad", connectOnLoad_, true);
  store.Write("DistinctRecords", distinctRecords_, false);
  store.Write("SelectTopRecords", selectTopRecords_, "");
  store.Write("GetTablesOnConnect", getTablesOnConnect_, true);
  store.Write("RetrieveFieldOrder", static_cast<std::int32_t>(retrieveFieldOrder_), 0);
  store.Write("SaveLoadEntityItems", saveLoadEntityItems_, false);
  store.Write("SaveConnectionString", saveConnectionString_, true);
  store.Write("AliasMaxLen", aliasMaxLen_, std::int16_t{0});
  store.Write("SkipRecords", skipRecords_, 0);
  store.Write("AutoSyntax", autoSyntax_, false);
}

}  // namespace zrqrybld
