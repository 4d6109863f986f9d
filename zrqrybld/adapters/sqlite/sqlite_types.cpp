#include "zrqrybld/adapters/sqlite/sqlite_types.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>
#include <vector>

#include "zrqrybld/base/text.h"

namespace zrqrybld::sqlite {
namespace {

constexpr ProviderType kProviderTypes[] = {
    {"INTEGER", DataTypeCode::Integer, false, true, 10},
    {"SMALLINT", DataTypeCode::SmallInt, false, true, 5},
    {"TINYINT", DataTypeCode::TinyInt, false, true, 3},
    {"BIGINT", DataTypeCode::BigInt, false, true, 19},
    {"REAL", DataTypeCode::Double, false, true, 15},
    {"NUMERIC", DataTypeCode::Numeric, false, true, 15},
    {"BOOLEAN", DataTypeCode::Boolean, false, true, 1},
    {"DATE", DataTypeCode::DbDate, false, true, 10, "'", "'"},
    {"TIME", DataTypeCode::DbTime, false, true, 8, "'", "'"},
    {"DATETIME", DataTypeCode::DbTimeStamp, false, true, 19, "'", "'"},
    {"UUID", DataTypeCode::Guid, false, true, 36, "'", "'"},
    {"CHAR", DataTypeCode::WChar, false, true, 0, "'", "'"},
    {"VARCHAR", DataTypeCode::VarWChar, false, false, 0, "'", "'"},
    {"TEXT", DataTypeCode::LongVarWChar, true, false, 0, "'", "'"},
    {"BINARY", DataTypeCode::Binary, false, true, 0, "X'", "'"},
    {"VARBINARY", DataTypeCode::VarBinary, false, false, 0, "X'", "'"},
    {"BLOB", DataTypeCode::LongVarBinary, true, false, 0, "X'", "'"},
};

struct NamedCode {
  std::string_view name;
  DataTypeCode code;
};

// Names in use whose meaning SQLite's own rules do not see.
constexpr NamedCode kKnownNames[] = {
    {"SMALLINT", DataTypeCode::SmallInt},
    {"INT2", DataTypeCode::SmallInt},
    {"INT16", DataTypeCode::SmallInt},
    {"TINYINT", DataTypeCode::TinyInt},
    {"INT8", DataTypeCode::BigInt},  // eight bytes, as in the server that has this name
    {"BIGINT", DataTypeCode::BigInt},
    {"BIG INT", DataTypeCode::BigInt},
    {"INT64", DataTypeCode::BigInt},
    {"LONG", DataTypeCode::Integer},
    {"NUMERIC", DataTypeCode::Numeric},
    {"DECIMAL", DataTypeCode::Numeric},
    {"DEC", DataTypeCode::Numeric},
    {"NUMBER", DataTypeCode::Numeric},
    {"MONEY", DataTypeCode::Numeric},
    {"SMALLMONEY", DataTypeCode::Numeric},
    {"CURRENCY", DataTypeCode::Numeric},
    {"BOOLEAN", DataTypeCode::Boolean},
    {"BOOL", DataTypeCode::Boolean},
    {"BIT", DataTypeCode::Boolean},
    {"LOGICAL", DataTypeCode::Boolean},
    {"DATE", DataTypeCode::DbDate},
    {"TIME", DataTypeCode::DbTime},
    {"TIMETZ", DataTypeCode::DbTime},
    {"TIME WITH TIME ZONE", DataTypeCode::DbTime},
    {"TIME WITHOUT TIME ZONE", DataTypeCode::DbTime},
    {"DATETIME", DataTypeCode::DbTimeStamp},
    {"DATETIME2", DataTypeCode::DbTimeStamp},
    {"SMALLDATETIME", DataTypeCode::DbTimeStamp},
    {"TIMESTAMP", DataTypeCode::DbTimeStamp},
    {"TIMESTAMPTZ", DataTypeCode::DbTimeStamp},
    {"TIMESTAMP WITH TIME ZONE", DataTypeCode::DbTimeStamp},
    {"TIMESTAMP WITHOUT TIME ZONE", DataTypeCode::DbTimeStamp},
    {"UUID", DataTypeCode::Guid},
    {"GUID", DataTypeCode::Guid},
    {"UNIQUEIDENTIFIER", DataTypeCode::Guid},
    {"CHAR", DataTypeCode::WChar},
    {"CHARACTER", DataTypeCode::WChar},
    {"NCHAR", DataTypeCode::WChar},
    {"BPCHAR", DataTypeCode::WChar},
    {"LONG VARCHAR", DataTypeCode::LongVarWChar},
    {"MEMO", DataTypeCode::LongVarWChar},
    {"JSON", DataTypeCode::LongVarWChar},
    {"XML", DataTypeCode::LongVarWChar},
    {"BINARY", DataTypeCode::Binary},
    {"VARBINARY", DataTypeCode::VarBinary},
    {"BYTEA", DataTypeCode::LongVarBinary},
    {"IMAGE", DataTypeCode::LongVarBinary},
    {"LONG VARBINARY", DataTypeCode::LongVarBinary},
};

// SQLite's rules for a column's affinity: the first of these that the declaration holds, anywhere.
constexpr NamedCode kAffinityParts[] = {
    {"INT", DataTypeCode::Integer},   {"CLOB", DataTypeCode::LongVarWChar},  {"TEXT", DataTypeCode::LongVarWChar},
    {"CHAR", DataTypeCode::VarWChar}, {"BLOB", DataTypeCode::LongVarBinary}, {"REAL", DataTypeCode::Double},
    {"FLOA", DataTypeCode::Double},   {"DOUB", DataTypeCode::Double},
};

constexpr std::string_view kSignWords[] = {"UNSIGNED", "SIGNED", "ZEROFILL"};

// The words of `text` in upper case with one blank between them, without those that only say how an
// integer is signed.
std::string PlainName(std::string_view text) {
  std::string name;
  std::size_t position = 0;
  while (position < text.size()) {
    if (IsWhite(text[position])) {
      ++position;
      continue;
    }
    std::size_t end = position;
    while (end < text.size() && !IsWhite(text[end])) ++end;
    const std::string word = UpperAscii(text.substr(position, end - position));
    position = end;
    if (std::ranges::find(kSignWords, word) != std::end(kSignWords)) continue;
    if (!name.empty()) name += ' ';
    name += word;
  }
  return name;
}

DataTypeCode CodeOf(std::string_view name) {
  const auto* known = std::ranges::find(kKnownNames, name, &NamedCode::name);
  if (known != std::end(kKnownNames)) return known->code;
  const auto* part = std::ranges::find_if(
      kAffinityParts, [name](const NamedCode& row) { return name.find(row.name) != std::string_view::npos; });
  return part != std::end(kAffinityParts) ? part->code : DataTypeCode::VarWChar;
}

std::optional<std::int32_t> ReadInteger(std::string_view text) {
  text = TrimWhite(text);
  std::int32_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, failure] = std::from_chars(text.data(), end, value);
  if (failure != std::errc() || stop != end) return std::nullopt;
  return value;
}

bool HasLength(DataTypeCode code) {
  switch (code) {
    case DataTypeCode::WChar:
    case DataTypeCode::VarWChar:
    case DataTypeCode::LongVarWChar:
    case DataTypeCode::Binary:
    case DataTypeCode::VarBinary:
    case DataTypeCode::LongVarBinary:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::span<const ProviderType> ProviderTypes() { return kProviderTypes; }

DeclaredType ReadDeclaredType(std::string_view declaration) {
  const std::size_t open = std::min(declaration.find('('), declaration.size());
  const std::size_t close = std::min(declaration.find(')', open), declaration.size());
  std::string name(declaration.substr(0, open));
  if (close < declaration.size()) name.append(" ").append(declaration.substr(close + 1));  // INT(10) UNSIGNED

  const DataTypeCode code = CodeOf(PlainName(name));
  DeclaredType result{std::ranges::find(kProviderTypes, code, &ProviderType::code), {}, {}, {}};
  if (open == declaration.size()) return result;

  const std::vector<std::string_view> sizes = Split(declaration.substr(open + 1, close - open - 1), ",");
  const std::optional<std::int32_t> first = ReadInteger(sizes.front());
  if (!first || *first <= 0) return result;
  if (HasLength(code)) {
    result.length = first;
  } else if (code == DataTypeCode::Numeric) {
    result.precision = first;
    result.scale = sizes.size() > 1 ? ReadInteger(sizes[1]) : 0;
  }
  return result;
}

}  // namespace zrqrybld::sqlite
