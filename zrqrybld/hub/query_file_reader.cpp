#include "zrqrybld/hub/query_file_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/diagram/type_kind.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/hub/statement_loader.h"
#include "zrqrybld/platform/connection_policy.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_condition.h"
#include "zrqrybld/sql/query_outline.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// Beyond these a file is none that anybody has designed.
constexpr std::size_t kMostEntities = 5000;
constexpr std::size_t kMostJoins = 100'000;
constexpr double kMostRows = 100'000;
constexpr double kFarthest = 10'000'000;  // twips
constexpr std::size_t kMostRemarks = 100;

[[noreturn]] void ThrowUnreadable(std::string_view key, std::string_view value, const Phrase& what) {
  throw Error(ErrorTypeMismatch, Phrase(text::ValueUnreadable, key, FirstCharacters(value, 40), what));
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// A whole number where it is one: it counts as a position.
Variant NumberOf(double number) {
  if (std::nearbyint(number) == number && std::abs(number) <= 1'000'000) return static_cast<std::int32_t>(number);
  return number;
}

// A position is a number, a key is a text; nothing was never set.
Variant ImageIndexOf(std::string_view text) {
  if (text.empty()) return {};
  const std::optional<double> number = ParseNumber(text);
  return number ? NumberOf(*number) : Variant(text);
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

// What a file may hold: the sections, the keys of each that are read, and what takes it in.
struct QueryFileReader::SectionKind {
  std::string_view name;
  std::string_view keys;  // each between blanks; none where any key is one
  void (QueryFileReader::*take)();
  bool withParametersOnly;
};

const QueryFileReader::SectionKind* QueryFileReader::KindOf(std::string_view name) {
  static constexpr SectionKind kKinds[] = {
      {"ENTITY", " CAPTION TAGVARIANT TOP LEFT WIDTH HEIGHT PROPERTYCOUNT ", &QueryFileReader::TakeEntity, false},
      {"ENTITYITEM", " ENTITYINDEX BOLD CHECKED COLOR INDEX KEY SMALLICON TEXT TOOLTIPTEXT PROPERTYCOUNT ",
       &QueryFileReader::TakeItem, false},
      {"RELATIONSHIP",
       " ITEMDATA LEFTINDICATOR RIGHTINDICATOR SOURCE SOURCEITEMINDEX TARGET TARGETITEMINDEX "
       "COMPARISON CONDITION GROUPLEVEL ",
       &QueryFileReader::TakeRelationship, false},
      {"GRIDPANEDATA", " DATEFORMAT DATEFORMATSTYLE SHOWGROUPBY ", &QueryFileReader::TakeGridOptions, false},
      {"GRIDDATA", "", &QueryFileReader::TakeGrid, false},
      {"SQLDATA",
       " SELECTTOPRECORDS DISTINCTRECORDS LIKEOPERATOR LOCKED SQLSYNTAX SQLSTATEMENT "
       "SKIPRECORDS SORTNULLS ",
       &QueryFileReader::TakeSQL, true},
      {"TYPEDSTATEMENT", "", &QueryFileReader::TakeTyped, false},
      {"INNERQUERY", "", &QueryFileReader::PassOver, false},  // read before the others
  };
  const auto found =
      std::ranges::find_if(kKinds, [name](const SectionKind& kind) { return EqualsNoCase(name, kind.name); });
  return found == std::end(kKinds) ? nullptr : found;
}

namespace {

constexpr double kLargestId = 1'000'000;

// The values of a section's keys, by the key in capitals.
using Values = std::unordered_map<std::string, std::string_view>;

double NumberIn(const Values& values, const std::string& key, double smallest, double largest, double missing) {
  const auto found = values.find(key);
  if (found == values.end()) return missing;
  const std::optional<double> number = ParseNumber(found->second);
  if (!number || std::nearbyint(*number) != *number) ThrowUnreadable(key, found->second, text::NoNumber);
  if (!(*number >= smallest && *number <= largest)) ThrowUnreadable(key, found->second, text::OutOfRange);
  return *number;
}

InnerQueryInFile InnerFrom(const Values& values) {
  const auto textOf = [&](const std::string& key) {
    const auto found = values.find(key);
    return found == values.end() ? std::string() : std::string(found->second);
  };
  const auto most = static_cast<double>(values.size());
  InnerQueryInFile inner;
  inner.id = static_cast<std::int32_t>(NumberIn(values, "ID", 1, kLargestId, 0));
  inner.parent = static_cast<std::int32_t>(NumberIn(values, "PARENT", 0, kLargestId, 0));
  inner.kind = static_cast<QueryKindEnum>(
      static_cast<int>(NumberIn(values, "KIND", QueryDerivedTable, QueryMember, QueryDerivedTable)));
  inner.combined = static_cast<QueryOperatorEnum>(
      static_cast<int>(NumberIn(values, "OPERATOR", QueryUnion, QueryExceptAll, QueryUnion)));
  inner.name = textOf("NAME");
  const auto columns = static_cast<int>(NumberIn(values, "COLUMNCOUNT", 0, most, 0));
  for (int i = 1; i <= columns; ++i) inner.columnNames.push_back(textOf("COLUMN" + std::to_string(i)));
  const auto lines = static_cast<int>(NumberIn(values, "LINECOUNT", 0, most, 0));
  for (int i = 1; i <= lines; ++i) inner.text += textOf("LINE" + std::to_string(i)) + "\r\n";
  return inner;
}

}  // namespace

std::vector<InnerQueryInFile> QueryFileReader::FindInner(std::string_view text) {
  std::vector<InnerQueryInFile> found;
  std::unordered_set<std::int32_t> known{0};
  std::optional<Values> open;
  std::size_t begin = 0;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = Trim(TakeLine(text));
    if (EqualsNoCase(line, "BEGIN INNERQUERY")) {
      open.emplace();
      begin = number;
    } else if (!open) {
      continue;
    } else if (!EqualsNoCase(line, "END INNERQUERY")) {
      const std::size_t equals = line.find('=');
      const std::string key = UpperAscii(line.substr(0, equals));
      if (key == "LINE1") begin = number - 1;
      if (equals != std::string_view::npos) open->emplace(key, line.substr(equals + 1));
    } else {
      try {
        InnerQueryInFile inner = InnerFrom(*open);
        inner.line = begin;
        const bool belongs = known.contains(inner.parent) && known.insert(inner.id).second;
        if (!belongs || found.size() + 1 >= static_cast<std::size_t>(kMostQueries)) {
          throw Error(ErrorLoadingQuery, text::QueryOutOfPlace);
        }
        found.push_back(std::move(inner));
      } catch (const Error& error) {
        throw Error(error.Number(), Phrase(text::InLine, error.What(), number));
      }
      open.reset();
    }
  }
  return found;
}

bool QueryFileReader::Read(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  try {
    while (!text.empty()) {
      ++line_;
      if (!ReadLine(TakeLine(text))) return false;
    }
    ApplyPendingTicks();
    KeepTyped();
  } catch (const Error& error) {
    throw Error(error.Number(), Phrase(text::InLine, error.What(), line_));
  }
  RemarkOpenSection();
  if (!anySection_) Remark(line_, text::NoSectionInText);
  return true;
}

bool QueryFileReader::ReadLine(std::string_view line) {
  if (!encodingRemarked_ && (!IsUtf8(line) || line.find('\0') != std::string_view::npos)) {
    encodingRemarked_ = true;
    Remark(line_, text::NotUtf8);
  }
  const std::size_t equals = line.find('=');
  std::string_view key = line.substr(0, equals);
  key.remove_prefix(std::min(key.find_first_not_of(' '), key.size()));
  const std::string_view value = equals == std::string_view::npos ? std::string_view() : line.substr(equals + 1);
  if (StartsWithNoCase(key, "BEGIN ") || StartsWithNoCase(key, "END ")) {
    ReadMarker(key);
  } else if (open_) {
    section_.Add(key, value);
  } else if (EqualsNoCase(key, "CONNECTIONSTRING") && !unknown_) {
    return TakeConnection(value);
  } else if (!unknown_ && !TrimWhite(line).empty() && !EqualsNoCase(key, "VERSION")) {
    Remark(line_, text::LineInNoSection, key);
  }
  return true;
}

void QueryFileReader::ReadMarker(std::string_view marker) {
  if (StartsWithNoCase(marker, "BEGIN ")) {
    Begin(marker.substr(6));
  } else {
    End(marker.substr(4));
  }
}

// Inside a section that is known, one that is not is passed over as a key would be.
void QueryFileReader::Begin(std::string_view name) {
  const SectionKind* kind = KindOf(name);
  if (!kind) {
    Remark(line_, text::SectionUnknown, name);
    PassOverMarker();
    if (!open_) unknown_ = line_;
    return;
  }
  RemarkOpenSection();
  anySection_ = true;
  if (std::function<void()> work = std::exchange(beforeSections_, nullptr); work && !parameters_.only) work();
  section_.Clear();
  section_.line = line_;
  open_ = kind;
  unknown_.reset();
}

// A line of the open section, which counts its lines.
void QueryFileReader::PassOverMarker() {
  if (open_) section_.Add({}, {});
}

void QueryFileReader::End(std::string_view name) {
  const SectionKind* kind = KindOf(name);
  if (!kind) {
    PassOverMarker();
    unknown_.reset();
    return;
  }
  if (open_ != kind) Remark(line_, text::SectionNotBegun, name);
  if (kind->withParametersOnly || !parameters_.only) {
    section_.MakeIndex();
    (this->*kind->take)();
  }
  if (open_) RemarkUnknownKeys();
  open_ = nullptr;
  unknown_.reset();
}

// --- Remarks ---

void QueryFileReader::Remark(std::size_t line, TextId what, std::string_view about) {
  if (remarks_.size() > kMostRemarks) return;
  if (remarks_.size() == kMostRemarks) {
    remarks_.push_back(hub_.Say(text::MorePassedOver));
    return;
  }
  const bool isText = IsUtf8(about) && std::ranges::none_of(about, [](unsigned char c) { return c < ' '; });
  remarks_.push_back(hub_.Say(about.empty() || !isText
                                  ? Phrase(text::SentenceInLine, what, line)
                                  : Phrase(text::AboutInLine, what, FirstCharacters(about, 80), line)));
}

// Properties are numbered: `Property1Key`, `Property1Value` and so on.
void QueryFileReader::RemarkUnknownKeys() {
  if (open_->keys.empty()) return;
  const bool hasProperties = open_->keys.find(" PROPERTYCOUNT ") != std::string_view::npos;
  std::size_t line = section_.line;
  for (const auto& [key, value] : section_.Lines()) {
    ++line;
    const std::string name = UpperAscii(key);
    const bool isKnown = name.empty() || open_->keys.find(" " + name + " ") != std::string_view::npos ||
                         (hasProperties && name.starts_with("PROPERTY"));
    if (!isKnown) Remark(line, text::KeyNotKnown, key);
  }
}

void QueryFileReader::RemarkOpenSection() {
  if (open_) Remark(section_.line, text::SectionHasNoEnd, open_->name);
  if (unknown_) Remark(*unknown_, text::SectionHasNoEnd);
}

bool QueryFileReader::TakeConnection(std::string_view value) {
  if (parameters_.connectionString) *parameters_.connectionString = value;
  if (parameters_.only || !hub_.ConnectOnLoad() || value.empty()) return true;
  hub_.Connect(std::string(value), ConnectionOrigin::File);
  return !hub_.LastError() && hub_.IsConnected();
}

// --- Values ---

double QueryFileReader::RequireNumber(std::string_view key, double smallest, double largest) const {
  const std::string_view* value = section_.Find(key);
  const std::optional<double> number = value ? ParseNumber(*value) : std::nullopt;
  if (!number) ThrowUnreadable(key, value ? *value : std::string_view(), text::NoNumber);
  if (!(*number >= smallest && *number <= largest)) ThrowUnreadable(key, *value, text::OutOfRange);
  return *number;
}

bool QueryFileReader::RequireBoolean(std::string_view key) const {
  const std::string_view value = *section_.Find(key);
  try {
    return Variant(value).ToBoolean();
  } catch (const Error&) {
    ThrowUnreadable(key, value, text::NeitherTrueNorFalse);
  }
}

Ref<qbEntity> QueryFileReader::RequireEntity(std::string_view key) const {
  const std::string caption = section_.Text(key);
  const Ref<qbEntities> entities = hub_.Entities();
  Ref<qbEntity> entity = entities ? entities->Item(caption) : nullptr;
  if (!entity) throw Error(ErrorNoSuchItem, Phrase(text::NoSuchTable, FirstCharacters(caption, 80)));
  return entity;
}

// A number is a position; anything else is a key, whose position counts from now on. Nothing was never set.
Variant QueryFileReader::RequireItemIndex(std::string_view key, const qbEntity& entity) const {
  const std::string text = section_.Text(key);
  if (text.empty()) return {};
  if (const std::optional<double> number = ParseNumber(text)) return NumberOf(*number);
  const Ref<qbEntityItem> item = entity.Items()->Item(text);
  if (!item) ThrowUnreadable(key, text, {text::NoSuchColumnIn, entity.Caption()});
  return item->Index();
}

void QueryFileReader::CopyProperties(qbProperties& properties) const {
  if (!section_.Find("PropertyCount")) return;
  const double count = RequireNumber("PropertyCount", 0, static_cast<double>(section_.Lines().size()));
  for (int i = 1; i <= static_cast<int>(count); ++i) {
    const std::string name = "Property" + std::to_string(i);
    const std::string key = section_.Text(name + "Key");
    // Exactly this key: another that differs in letter case only is another property.
    if (!key.empty() && properties.HasExactly(key)) {
      properties.Set(key, section_.Text(name + "Value"));
    } else {
      properties.Add(section_.Text(name + "Value"), key);
    }
  }
}

// --- The diagram ---

void QueryFileReader::TakeEntity() {
  if (!hub_.Entities()) return;
  if (++entityCount_ > kMostEntities) throw Error(ErrorLoadingQuery, text::TooManyTables);
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
  TakeHeight(*entity);
  place("Left", &qbEntity::SetLeft);
  place("Top", &qbEntity::SetTop);
  place("Width", &qbEntity::SetWidth);
  CopyProperties(*entity->Properties());
  if (!entity->EntityBox()) ThrowObjectRemoved();  // a listener has removed it
  entity->EntityBox()->SetIsView(
      EqualsNoCase(entity->Properties()->FindText(std::string(kSchemaFactPrefix) + "TABLE_TYPE").value_or(""), "VIEW"));
}

// A minimised box is minimised again, and opens to the height that fits.
void QueryFileReader::TakeHeight(qbEntity& entity) const {
  if (!section_.Find("Height")) return;
  const double height = RequireNumber("Height", -kFarthest, kFarthest);
  if (height <= entity.EntityBox()->MinimizedHeight().Value()) {
    entity.EntityBox()->SetMinimized(true);
  } else {
    entity.SetHeight(static_cast<float>(height));
  }
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
  if (const std::string icon = section_.Text("SmallIcon"); !icon.empty()) item->SetSmallIcon(ImageIndexOf(icon));
  if (section_.Find("ToolTipText")) item->SetToolTipText(section_.Text("ToolTipText"));
  CopyProperties(*item->Properties());
  if (const Variant* type = item->Properties()->Find("data_type"); type && type->Number()) {
    item->SetKind(KindOfType(type->ToInt32()));
  }
}

void QueryFileReader::TakeRelationship() {
  if (!hub_.Entities()) return;
  if (++joinCount_ > kMostJoins) throw Error(ErrorLoadingQuery, text::TooManyJoins);
  const Ref<qbEntity> source = RequireEntity("Source");
  const Ref<qbEntity> target = RequireEntity("Target");
  const Variant sourceIndex = RequireItemIndex("SourceItemIndex", *source);
  const Variant targetIndex = RequireItemIndex("TargetItemIndex", *target);
  // All is read before the join is there: what is refused leaves no half of a join.
  const auto read = [this](std::string_view key, double smallest, double largest) {
    return section_.Find(key) ? std::optional(static_cast<std::int32_t>(RequireNumber(key, smallest, largest)))
                              : std::nullopt;
  };
  const auto indicator = [this](std::string_view key) {
    const bool shown = section_.Find(key) && RequireNumber(key, IndicatorNone, IndicatorImage) != 0;
    return shown ? IndicatorImage : IndicatorNone;
  };
  const std::optional<std::int32_t> comparison = read("Comparison", JoinEqual, JoinSame);
  const std::optional<std::int32_t> groupLevel = read("GroupLevel", 0, qbRelationship::kDeepestGroup);
  const std::optional<std::int32_t> existence = read("Existence", JoinReturnsRows, JoinSourceMissing);
  const std::string condition = JoinConditionText(section_.Text("Condition"));
  const RelationshipIndicatorStyle left = indicator("LeftIndicator");
  const RelationshipIndicatorStyle right = indicator("RightIndicator");
  const Ref<qbRelationship> join = source->Relationships()->Add(target);
  // What is no number counts as 0.
  const std::string kind = section_.Text("ItemData");
  join->SetItemData(kind.empty() ? Variant() : NumberOf(ParseNumber(kind).value_or(0)));
  if (comparison) join->SetComparison(JoinComparisonAt(*comparison));
  if (!condition.empty()) join->SetCondition(condition);
  if (groupLevel) join->SetGroupLevel(*groupLevel);
  if (existence) join->SetExistence(JoinExistenceAt(*existence));
  join->SetSourceItemIndex(sourceIndex);
  join->SetTargetItemIndex(targetIndex);
  join->SetLeftIndicator(left);
  join->SetRightIndicator(right);
}

// --- Grid and statement ---

void QueryFileReader::TakeGridOptions() {
  const Ref<qbGridPane> grid = hub_.GridPane();
  if (!grid) return;
  if (section_.Find("DateFormat")) grid->LoadDateFormat(section_.Text("DateFormat"));
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
    ThrowUnreadable(key, value, text::NamesNoRow);
  }
  const std::size_t column = hub_.GridPane()->ColumnOfKey(key.substr(0, comma));
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

// "2 first, 5 last": rows that are there and sorted.
void QueryFileReader::TakeSortNulls(const std::string& value) {
  const Ref<qbGridPane> grid = hub_.GridPane();
  if (!grid || !gridTaken_) return;
  for (const std::string_view part : Split(value, ",")) {
    const std::string_view entry = Trim(part);
    const std::vector<std::string_view> words = Split(entry, " ");
    const std::optional<double> row = ParseNumber(words.front());
    const bool first = words.size() == 2 && EqualsNoCase(words[1], "FIRST");
    const bool known = first || (words.size() == 2 && EqualsNoCase(words[1], "LAST"));
    if (!known || !row || !(*row >= 1 && *row <= grid->RowCount()) || std::nearbyint(*row) != *row) {
      ThrowUnreadable("SortNulls", entry, text::NamesNoRow);
    }
    grid->LoadNullsPlace(static_cast<std::int32_t>(*row), first ? NullsPlace::First : NullsPlace::Last);
  }
}

void QueryFileReader::TakeSQL() {
  if (parameters_.sqlStatement && section_.Find("SQLStatement"))
    *parameters_.sqlStatement = section_.Text("SQLStatement");
  const auto syntax = [this] {
    return static_cast<SQLSyntaxEnum>(static_cast<int>(RequireNumber("SQLSyntax", 0, AllDialects().back().syntax)));
  };
  if (parameters_.syntax && section_.Find("SQLSyntax")) *parameters_.syntax = syntax();
  if (parameters_.only) return;
  if (section_.Find("SelectTopRecords")) hub_.SetSelectTopRecords(section_.Text("SelectTopRecords"));
  if (section_.Find("SkipRecords")) {
    hub_.SetSkipRecords(
        static_cast<std::int32_t>(RequireNumber("SkipRecords", 0, std::numeric_limits<std::int32_t>::max())));
  }
  if (section_.Find("SortNulls")) TakeSortNulls(section_.Text("SortNulls"));
  if (section_.Find("DistinctRecords")) hub_.SetDistinctRecords(RequireBoolean("DistinctRecords"));
  const Ref<qbSQLPane> pane = hub_.SQLPane();
  if (!pane) return;
  if (section_.Find("LikeOperator")) pane->SetLikeOperator(section_.Text("LikeOperator"));
  if (section_.Find("Locked")) pane->SetLocked(RequireBoolean("Locked"));
  if (section_.Find("SQLSyntax")) pane->SetSQLSyntax(syntax());
}

void QueryFileReader::TakeTyped() {
  const double count = RequireNumber("LineCount", 1, static_cast<double>(section_.Lines().size()));
  for (int i = 1; i <= static_cast<int>(count); ++i) {
    typed_ += (i == 1 ? "" : "\r\n") + section_.Text("Line" + std::to_string(i));
  }
  applied_ = !section_.Find("Applied") || RequireBoolean("Applied");
}

// What it means is read from itself: a file that says otherwise could show one statement and design another.
void QueryFileReader::KeepTyped() const {
  const Ref<qbSQLPane> pane = hub_.SQLPane();
  if (typed_.empty() || !applied_ || !pane || !pane->KeepTypedText()) return;
  try {
    pane->Keep(typed_, MeaningOf(hub_, typed_));
  } catch (const Error&) {
    pane->Keep(typed_, {});  // its comments are left
  }
}

// Ticks follow the grid's rows; a file without them says itself what is ticked.
void QueryFileReader::ApplyPendingTicks() {
  if (gridTaken_) return;
  for (const Ref<qbEntityItem>& item : pendingTicks_) item->SetChecked(true);
}

}  // namespace zrqrybld
