#include "zrqrybld/host/connection_info.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/host/foreign_keys.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/database.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kLiteralKeys[] = {
    "SCHEMA_SEPARATOR",  "LIKE_PERCENT",     "LIKE_UNDERSCORE",    "QUOTE", "QUOTE_PREFIX", "QUOTE_SUFFIX",
    kTextReadingLiteral, kSourceNameLiteral, kSourceVersionLiteral};
constexpr std::string_view kInvalidCharacters = "INVALID_TABLE_CHARS";
constexpr std::string_view kInvalidStartingCharacters = "INVALID_TABLE_STARTING_CHARS";

// A source that lacks a schema, or fails while it is read, keeps the others.
template <class Read>
void Trapped(Read read) {
  try {
    read();
  } catch (const std::exception&) {
    // Absent entries are the answer: everything that reads them has a default.
  }
}

void ForgetEarlierSource(QueryContext& context) {
  qbProperties& properties = *context.source.Properties();
  for (const std::string_view key : kLiteralKeys) properties.RemoveIfPresent(key);
  properties.RemoveIfPresent(kInvalidCharacters);
  properties.RemoveIfPresent(kInvalidStartingCharacters);
  properties.RemoveIfPresent("_QBDSFLAGS");
  properties.Add(std::int16_t{0}, "_QBDSFLAGS");
  context.source.DataTypes()->Clear();
  context.source.SourceTables().clear();
  context.source.ForeignKeys().Clear();
  context.source.SetSourceWords({});
}

void ReadLiterals(QueryContext& context) {
  qbProperties& properties = *context.source.Properties();
  const auto rows = context.source.Connection()->OpenSchema(SchemaKind::Literals);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string name = rows->Text("LiteralName");
    if (std::ranges::find(kLiteralKeys, name) != std::ranges::end(kLiteralKeys)) {
      properties.Set(name, rows->Value("LiteralValue"));
    } else if (name == "TABLE_NAME") {
      properties.Set(kInvalidCharacters, rows->Value("InvalidChars"));
      properties.Set(kInvalidStartingCharacters, rows->Value("InvalidStartingChars"));
    }
  }
}

void ReadTables(QueryContext& context) {
  const auto rows = context.source.Connection()->OpenSchema(SchemaKind::Columns);
  const std::size_t table = rows->FindField("TABLE_NAME").value();
  const std::size_t column = rows->FindField("COLUMN_NAME").value();
  std::vector<SourceTable>& tables = context.source.SourceTables();
  for (; !rows->Eof(); rows->MoveNext()) {
    std::string name = rows->Value(table).Text();
    if (tables.empty() || tables.back().name != name) tables.push_back({std::move(name), {}});
    tables.back().columns.push_back(rows->Value(column).Text());
  }
}

void RecogniseTextSource(QueryContext& context) {
  const std::string text = UpperAscii(context.source.Connection()->ConnectionString());
  if (text.find("MSDASQL") == std::string::npos || text.find("FIL=TEXT") == std::string::npos) return;
  qbProperties& properties = *context.source.Properties();
  const std::int32_t flags = properties.Item("_QBDSFLAGS")->Value().ToInt32() | DataSourceIsText;
  properties.Set("_QBDSFLAGS", static_cast<std::int16_t>(flags));
  properties.Set("QUOTE_PREFIX", "[");
  properties.Set("QUOTE_SUFFIX", "]");
}

void ReadTypes(QueryContext& context) {
  const auto rows = context.source.Connection()->OpenSchema(SchemaKind::ProviderTypes);
  for (; !rows->Eof(); rows->MoveNext()) {
    std::string prefix = rows->Text("LITERAL_PREFIX");
    std::string suffix = rows->Text("LITERAL_SUFFIX");
    // A date is converted by the grid's own format, so that it may be typed in that format.
    if (StartsWithNoCase(prefix, "TO_DATE(")) {
      prefix = "TO_DATE('";
      suffix = "','" + context.design.DateFormat() + "')";
    }
    const Ref<qbDataType> type = context.source.DataTypes()->Add(
        rows->Text("TYPE_NAME"), rows->Value("DATA_TYPE").ToInt32(), std::move(prefix), std::move(suffix));
    const Variant isLong = rows->Value("IS_LONG");
    type->IsLong = !isLong.IsBlank() && isLong.ToBoolean();
  }
}

}  // namespace

bool IsTextSource(const QueryContext& context) {
  const Variant* flags = context.source.Properties()->Find("_QBDSFLAGS");
  const std::optional<double> number = flags ? flags->Number() : std::nullopt;
  return number && *number >= 0 && *number < 65536 && (static_cast<std::int32_t>(*number) & DataSourceIsText) != 0;
}

std::optional<TextReading> SourceReading(const QueryContext& context) {
  const std::optional<std::string> words = context.source.Properties()->FindText(kTextReadingLiteral);
  return words ? ReadingFromWords(*words) : std::nullopt;
}

void RetrieveConnectionInfo(QueryContext& context, bool withTables) {
  if (!context.source.IsConnected()) return;
  context.steps.RunOperation(text::StepConnect, InfoRetrieveConnectionInfo, [&] {
    ForgetEarlierSource(context);
    Trapped([&] { ReadLiterals(context); });
    Trapped([&] { context.source.SetSourceWords(context.source.Connection()->Keywords()); });
    if (withTables) Trapped([&] { ReadTables(context); });
    Trapped([&] { RecogniseTextSource(context); });
    context.steps.RaiseInfo(InfoRetrieveConnectionInfo,
                            ConnectionString(context.source.Connection()->ConnectionString()).WithoutPassword());
    Trapped([&] { ReadTypes(context); });
    context.steps.QueryChanged();  // names may be quoted in another way now
  });
}

}  // namespace zrqrybld
