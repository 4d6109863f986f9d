#include "hub/query_file_reader.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/error.h"
#include "base/text.h"
#include "diagram/relationships.h"
#include "diagram/source_names.h"
#include "diagram/table_picker.h"
#include "platform/schema_fields.h"

namespace zrqrybld {
namespace {

// Beyond these a file is none that anybody has designed.
constexpr std::size_t kMostEntities = 5000;
constexpr double kMostRows = 100'000;
constexpr double kFarthest = 10'000'000;  // twips

[[noreturn]] void ThrowUnreadable(std::string_view key, std::string_view value, std::string_view what) {
  std::string text(key);
  text += "=";
  text += FirstCharacters(value, 40);
  throw Error(ErrorTypeMismatch, text + ": " + std::string(what));
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// A position is a number, a key is a text; nothing was never set.
Variant ItemIndexOf(std::string_view text) {
  if (text.empty()) return {};
  const std::optional<double> number = ParseNumber(text);
  if (number && std::nearbyint(*number) == *number && std::abs(*number) <= 1'000'000) {
    return static_cast<std::int32_t>(*number);
  }
  return text;
}

}  // namespace

// --- Sections ---

void QueryFileReader::Section::Clear() {
  lines_.clear();
  index_.clear();
}

void QueryFileReader::Section::MakeIndex() {
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const std::string_view key = lines_[i].first;
    if (!key.empty() && !index_.emplace(UpperAscii(key), i).second) ThrowDuplicateKey(key);
  }
}

const std::string_view* QueryFileReader::Section::Find(std::string_view key) const {
  const auto found = index_.find(UpperAscii(key));
  return found == index_.end() ? nullptr : &lines_[found->second].second;
}

std::string QueryFileReader::Section::Text(std::string_view key) const {
  const std::string_view* value = Find(key);
  return value ? std::string(*value) : std::string();
}

// --- Lines ---

bool QueryFileReader::Read(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  std::size_t number = 0;
  try {
    while (!text.empty()) {
      ++number;
      if (!ReadLine(TakeLine(text))) return false;
    }
    ApplyPendingTicks();
  } catch (const Error& error) {
    throw Error(error.Number(), error.Description() + " (line " + std::to_string(number) + ")");
  }
  return true;
}

bool QueryFileReader::ReadLine(std::string_view line) {
  const std::size_t equals = line.find('=');
  std::string_view key = line.substr(0, equals);
  key.remove_prefix(std::min(key.find_first_not_of(' '), key.size()));
  const std::string_view value = equals == std::string_view::npos ? std::string_view() : line.substr(equals + 1);
  if (StartsWithNoCase(key, "BEGIN ") || StartsWithNoCase(key, "END ")) {
    ReadMarker(key);
  } else if (EqualsNoCase(key, "CONNECTIONSTRING") && !inSection_) {
    return TakeConnection(value);
  } else if (inSection_) {
    section_.Add(key, value);
  }
  return true;
}

void QueryFileReader::ReadMarker(std::string_view marker) {
  struct End {
    std::string_view section;
    void (QueryFileReader::*take)();
    bool withParametersOnly;
  };
  constexpr End kEnds[] = {
      {"ENTITY", &QueryFileReader::TakeEntity, false},
      {"ENTITYITEM", &QueryFileReader::TakeItem, false},
      {"RELATIONSHIP", &QueryFileReader::TakeRelationship, false},
      {"GRIDPANEDATA", &QueryFileReader::TakeGridOptions, false},
      {"GRIDDATA", &QueryFileReader::TakeGrid, false},
      {"SQLDATA", &QueryFileReader::TakeSQL, true},
  };
  const bool begins = StartsWithNoCase(marker, "BEGIN ");
  for (const End& end : kEnds) {
    if (!EqualsNoCase(marker.substr(begins ? 6 : 4), end.section)) continue;
    if (begins) {
      section_.Clear();
    } else if (end.withParametersOnly || !parametersOnly_) {
      section_.MakeIndex();
      (this->*end.take)();
    }
    inSection_ = begins;
    return;
  }
}

bool QueryFileReader::TakeConnection(std::string_view value) {
  parameters_.connectionString = value;
  if (parametersOnly_ || !hub_.ConnectOnLoad() || value.empty()) return true;
  hub_.Connect(std::string(value));
  return hub_.IsConnected();
}

// --- Values ---

double QueryFileReader::RequireNumber(std::string_view key, double smallest, double largest) const {
  const std::string_view* value = section_.Find(key);
  const std::optional<double> number = value ? ParseNumber(*value) : std::nullopt;
  if (!number) ThrowUnreadable(key, value ? *value : std::string_view(), "this is no number");
  if (!(*number >= smallest && *number <= largest)) ThrowUnreadable(key, *value, "this number is out of range");
  return *number;
}

bool QueryFileReader::RequireBoolean(std::string_view key) const {
  const std::string_view value = *section_.Find(key);
  try {
    return Variant(value).ToBoolean();
  } catch (const Error&) {
    ThrowUnreadable(key, value, "this is neither True nor False");
  }
}

Ref<qbEntity> QueryFileReader::RequireEntity(std::string_view key) const {
  const std::string caption = section_.Text(key);
  const Ref<qbEntities> entities = hub_.Entities();
  Ref<qbEntity> entity = entities ? entities->Item(caption) : nullptr;
  if (!entity) throw Error(ErrorNoSuchItem, "There is no table " + std::string(FirstCharacters(caption, 80)) + ".");
  return entity;
}

void QueryFileReader::CopyProperties(qbProperties& properties) const {
  if (!section_.Find("PropertyCount")) return;
  const double count = RequireNumber("PropertyCount", 0, static_cast<double>(section_.Lines().size()));
  for (int i = 1; i <= static_cast<int>(count); ++i) {
    const std::string name = "Property" + std::to_string(i);
    const std::string key = section_.Text(name + "Key");
    if (key.empty()) {
      properties.Add(section_.Text(name + "Value"));
    } else {
      properties.Set(key, section_.Text(name + "Value"));
    }
  }
}

// --- The diagram ---

void QueryFileReader::TakeEntity() {
  if (!hub_.Entities()) return;
  if (++entityCount_ > kMostEntities) throw Error(ErrorLoadingQuery, "There are too many tables.");
  const std::string table = section_.Text("TagVariant");
  const std::string caption = section_.Text("Caption");
  const Ref<qbEntity> entity = TablePicker(hub_.Hub()).AddTable(table.empty() ? caption : table);
  if (!entity) return;  // a listener prevents it
  schemaItems_.insert(entity.get());
  if (section_.Find("Caption")) entity->SetCaption(caption);
  if (section_.Find("TagVariant")) entity->SetTagVariant(table);
  const auto place = [&](std::string_view key, void (qbEntity::*set)(float)) {
    if (section_.Find(key)) ((*entity).*set)(static_cast<float>(RequireNumber(key, -kFarthest, kFarthest)));
  };
  place("Height", &qbEntity::SetHeight);
  place("Left", &qbEntity::SetLeft);
  place("Top", &qbEntity::SetTop);
  place("Width", &qbEntity::SetWidth);
  CopyProperties(*entity->Properties());
  if (!entity->EntityBox()) ThrowObjectRemoved();  // a listener has removed it
  entity->EntityBox()->SetIsView(
      EqualsNoCase(entity->Properties()->FindText(std::string(kSchemaFactPrefix) + "TABLE_TYPE").value_or(""), "VIEW"));
}

void QueryFileReader::TakeItem() {
  if (!hub_.SaveLoadEntityItems() || !hub_.Entities()) return;
  const Ref<qbEntity> entity = RequireEntity("EntityIndex");
  // The file's columns replace those of the source; an entity that has none in the file keeps them.
  if (schemaItems_.erase(entity.get()) != 0) entity->Items()->Clear();
  const Ref<qbEntityItem> item = entity->Items()->Add(section_.Text("Text"), section_.Text("Key"));
  if (section_.Find("Bold")) item->SetBold(RequireBoolean("Bold"));
  if (section_.Find("Checked") && RequireBoolean("Checked")) pendingTicks_.push_back(item);
  if (section_.Find("Color")) {
    const double color = RequireNumber("Color", -2147483648.0, 4294967295.0);
    item->SetColor({static_cast<std::uint32_t>(static_cast<std::int64_t>(color))});
  }
  if (const std::string icon = section_.Text("SmallIcon"); !icon.empty()) item->SetSmallIcon(ItemIndexOf(icon));
  if (section_.Find("ToolTipText")) item->SetToolTipText(section_.Text("ToolTipText"));
  CopyProperties(*item->Properties());
  if (const Variant* type = item->Properties()->Find("data_type"); type && type->Number()) {
    item->SetKind(KindOfType(type->ToInt32()));
  }
}

void QueryFileReader::TakeRelationship() {
  if (!hub_.Entities()) return;
  const Ref<qbEntity> source = RequireEntity("Source");
  const Ref<qbRelationship> join = source->Relationships()->Add(RequireEntity("Target"));
  const auto indicator = [&](std::string_view key) {
    const bool shown = section_.Find(key) && RequireNumber(key, IndicatorNone, IndicatorImage) != 0;
    return shown ? IndicatorImage : IndicatorNone;
  };
  join->SetItemData(ItemIndexOf(section_.Text("ItemData")));
  join->SetSourceItemIndex(ItemIndexOf(section_.Text("SourceItemIndex")));
  join->SetTargetItemIndex(ItemIndexOf(section_.Text("TargetItemIndex")));
  join->SetLeftIndicator(indicator("LeftIndicator"));
  join->SetRightIndicator(indicator("RightIndicator"));
}

// --- Grid and statement ---

void QueryFileReader::TakeGridOptions() {
  const Ref<qbGridPane> grid = hub_.GridPane();
  if (!grid) return;
  if (section_.Find("DateFormat")) grid->SetDateFormat(section_.Text("DateFormat"));
  if (section_.Find("DateFormatStyle")) {
    const double style = RequireNumber("DateFormatStyle", DateFormatNative, DateFormatEscapeSequence);
    grid->SetDateFormatStyle(static_cast<DateFormatEnum>(static_cast<int>(style)));
  }
  if (section_.Find("ShowGroupBy")) grid->SetShowGroupBy(RequireBoolean("ShowGroupBy"));
}

qbGridPane::LoadedCell QueryFileReader::CellOf(std::string_view key, std::string_view value) const {
  const std::size_t comma = key.rfind(',');
  const std::optional<double> row = comma == std::string_view::npos ? std::nullopt : ParseNumber(key.substr(comma + 1));
  if (!row || !(*row >= 1 && *row <= kMostRows) || std::nearbyint(*row) != *row) {
    ThrowUnreadable(key, value, "this names no row");
  }
  const std::size_t column = hub_.GridPane()->Grid()->Columns()->PositionOf(key.substr(0, comma));
  return {static_cast<std::int32_t>(*row), column, std::string(value)};
}

void QueryFileReader::TakeGrid() {
  if (!hub_.GridPane()) return;
  std::vector<qbGridPane::LoadedCell> cells;
  cells.reserve(section_.Lines().size());
  for (const auto& [key, value] : section_.Lines()) {
    if (!key.empty()) cells.push_back(CellOf(key, value));
  }
  hub_.GridPane()->LoadRows(cells);
  gridTaken_ = true;
}

void QueryFileReader::TakeSQL() {
  parameters_.sqlStatement = section_.Text("SQLStatement");
  if (parametersOnly_) return;
  if (section_.Find("SelectTopRecords")) hub_.SetSelectTopRecords(section_.Text("SelectTopRecords"));
  if (section_.Find("DistinctRecords")) hub_.SetDistinctRecords(RequireBoolean("DistinctRecords"));
  const Ref<qbSQLPane> pane = hub_.SQLPane();
  if (!pane) return;
  if (section_.Find("LikeOperator")) pane->SetLikeOperator(section_.Text("LikeOperator"));
  if (section_.Find("Locked")) pane->SetLocked(RequireBoolean("Locked"));
  if (section_.Find("SQLSyntax")) {
    const double syntax = RequireNumber("SQLSyntax", SQLSyntaxGeneric, SQLSyntaxOpenSQL);
    pane->SetSQLSyntax(static_cast<SQLSyntaxEnum>(static_cast<int>(syntax)));
  }
}

// Ticks follow the grid's rows; a file without them says itself what is ticked.
void QueryFileReader::ApplyPendingTicks() {
  if (gridTaken_) return;
  for (const Ref<qbEntityItem>& item : pendingTicks_) item->SetChecked(true);
}

}  // namespace zrqrybld
