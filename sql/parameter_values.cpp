#include "sql/parameter_values.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

#include "base/error.h"
#include "base/text.h"
#include "platform/schema_fields.h"
#include "sql/lexer.h"
#include "sql/literals.h"
#include "sql/parameters.h"

namespace zrqrybld {
namespace {

struct TypeWord {
  std::string_view word;
  DataTypeCode code;
};
constexpr TypeWord kTypeWords[] = {
    {"bigint", DataTypeCode::BigInt},
    {"binary", DataTypeCode::VarBinary},
    {"bit", DataTypeCode::Boolean},
    {"blob", DataTypeCode::LongVarBinary},
    {"bool", DataTypeCode::Boolean},
    {"boolean", DataTypeCode::Boolean},
    {"byte", DataTypeCode::UnsignedTinyInt},
    {"char", DataTypeCode::VarChar},
    {"character", DataTypeCode::VarChar},
    {"clob", DataTypeCode::LongVarChar},
    {"counter", DataTypeCode::Integer},
    {"currency", DataTypeCode::Currency},
    {"date", DataTypeCode::DbDate},
    {"date/time", DataTypeCode::DbTimeStamp},
    {"datetime", DataTypeCode::DbTimeStamp},
    {"datetime2", DataTypeCode::DbTimeStamp},
    {"dec", DataTypeCode::Numeric},
    {"decimal", DataTypeCode::Numeric},
    {"double", DataTypeCode::Double},
    {"float", DataTypeCode::Double},
    {"guid", DataTypeCode::Guid},
    {"int", DataTypeCode::Integer},
    {"integer", DataTypeCode::Integer},
    {"long", DataTypeCode::Integer},
    {"memo", DataTypeCode::LongVarChar},
    {"money", DataTypeCode::Currency},
    {"nchar", DataTypeCode::VarWChar},
    {"ntext", DataTypeCode::LongVarWChar},
    {"number", DataTypeCode::Numeric},
    {"numeric", DataTypeCode::Numeric},
    {"nvarchar", DataTypeCode::VarWChar},
    {"real", DataTypeCode::Single},
    {"single", DataTypeCode::Single},
    {"smalldatetime", DataTypeCode::DbTimeStamp},
    {"smallint", DataTypeCode::SmallInt},
    {"string", DataTypeCode::VarChar},
    {"text", DataTypeCode::VarChar},
    {"time", DataTypeCode::DbTime},
    {"timestamp", DataTypeCode::DbTimeStamp},
    {"tinyint", DataTypeCode::TinyInt},
    {"uniqueidentifier", DataTypeCode::Guid},
    {"uuid", DataTypeCode::Guid},
    {"varbinary", DataTypeCode::VarBinary},
    {"varchar", DataTypeCode::VarChar},
    {"varchar2", DataTypeCode::VarChar},
    {"yesno", DataTypeCode::Boolean},
    {"yes/no", DataTypeCode::Boolean},
};

constexpr std::string_view kYes[] = {"true", "yes", "on", "1", "-1"};
constexpr std::string_view kNo[] = {"false", "no", "off", "0"};

[[noreturn]] void Refuse(std::string_view why) { throw Error(ErrorInvalidPropertyValue, std::string(why)); }

bool IsOneOf(std::string_view text, std::span<const std::string_view> words) {
  return std::ranges::any_of(words, [text](std::string_view word) { return EqualsNoCase(text, word); });
}

bool IsWhole(std::int32_t code) {
  constexpr std::int32_t kWhole[] = {2, 3, 16, 17, 18, 19, 20, 21};
  return std::ranges::find(kWhole, code) != std::end(kWhole);
}

std::int32_t CodeOf(std::string_view name) {
  const auto* found =
      std::ranges::find_if(kTypeWords, [name](const auto& row) { return EqualsNoCase(row.word, name); });
  if (found != std::end(kTypeWords)) return static_cast<std::int32_t>(found->code);
  const std::optional<double> code = ParseNumber(name);
  if (!code || *code < 0 || *code > 255) return 0;
  const auto number = static_cast<std::int32_t>(*code);
  return ValueKindOf(number) == ValueKind::Unknown ? 0 : number;
}

// --- One value ---

// A value as it stands inside quotes that are there already, and as a literal of its own.
struct Written {
  std::string bare;
  std::string literal;
};

Written WriteTextValue(std::string_view text, const CriteriaContext& context) {
  return {std::string(text), TextLiteral(text, context)};
}

Written WriteNumber(std::string_view text, std::int32_t code) {
  if (!ParseNumber(text)) {
    Refuse(text.find(',') == std::string_view::npos ? "This is no number."
                                                    : "This is no number. Write fractions with a point: 1.5.");
  }
  if (text.starts_with('+')) text.remove_prefix(1);
  if (IsWhole(code) && text.find_first_of(".eE") != std::string_view::npos) Refuse("This is no whole number.");
  return {std::string(text), std::string(text)};
}

Written WriteBoolean(std::string_view text, const Dialect& dialect) {
  const bool yes = IsOneOf(text, kYes);
  if (!yes && !IsOneOf(text, kNo)) Refuse("This is neither yes nor no.");
  const std::string word(yes ? dialect.yes : dialect.no);
  return {word, word};
}

Written WriteDate(std::string_view text, const CriteriaContext& context) {
  DateTime value;
  const bool hash = text.size() > 2 && text.starts_with('#') && text.ends_with('#');
  if (hash) text = text.substr(1, text.size() - 2);
  switch (ReadDateTime(text, context.dateFormat, hash, value)) {
    case DateReading::Ambiguous:
      Refuse("This can be two dates. Write it as 2020-01-31 or with the month's name.");
    case DateReading::NoDate:
      Refuse(IsTimeOfDay(context) ? "This is no time of day." : "This is no date.");
    case DateReading::Read:
      break;
  }
  if (!value.hasDate && !IsTimeOfDay(context)) Refuse("This has no date.");
  const std::optional<std::string> literal = DateLiteral(value, context);
  if (!literal) Refuse("This does not fit the date format, by which the source reads dates.");
  return {DateText(value, context), *literal};
}

Written WriteBinary(std::string_view text, CriteriaContext context) {
  if (StartsWithNoCase(text, "0x")) text.remove_prefix(2);
  if (!IsHexBytes(text)) Refuse("These are no bytes, each by two hexadecimal figures.");
  if (context.prefix.empty()) context.prefix = "X'";
  return WriteTextValue(text, context);
}

// Without a type: what is written as a plain number is one, but not what begins with a nought, such as a postal code.
Written WriteUntyped(std::string_view text, const CriteriaContext& context) {
  const std::string_view figures = text.substr(text.starts_with('-') ? 1 : 0);
  const bool plain =
      !figures.empty() && IsDigit(figures[0]) && (figures.size() == 1 || figures[0] != '0' || figures[1] == '.');
  if (plain && ParseNumber(text)) return WriteNumber(text, 0);
  return WriteTextValue(TypedDefault(text), context);
}

Written Write(const ParameterValue& value, const LiteralRules& rules) {
  CriteriaContext context;
  context.dataType = value.type.code;
  context.isLong = value.type.isLong;
  context.prefix = value.type.prefix;
  context.suffix = value.type.suffix;
  context.dateFormat = rules.dateFormat;
  context.dateFormatStyle = rules.dateFormatStyle;
  const Dialect& dialect = DialectFor(rules.syntax);
  const ValueKind kind = ValueKindOf(value.type.code);
  const std::string_view text = TrimWhite(value.text);
  if (text.empty() && kind != ValueKind::Text) Refuse("A value is needed.");
  switch (kind) {
    case ValueKind::Text:
      return WriteTextValue(value.text, context);
    case ValueKind::Number:
      return WriteNumber(text, value.type.code);
    case ValueKind::Boolean:
      return WriteBoolean(text, dialect);
    case ValueKind::Date:
      if (context.prefix.empty()) context.prefix = context.suffix = dialect.dateQuote;
      return WriteDate(text, context);
    case ValueKind::Guid:
      if (!IsGuid(text)) Refuse("This is no GUID.");
      return WriteTextValue(text, context);
    case ValueKind::Binary:
      return WriteBinary(text, context);
    case ValueKind::Unknown:
      break;
  }
  return WriteUntyped(text, context);
}

// --- The statement ---

// The tokens that hold the markers; an operator where none does. The markers count as white space.
std::vector<Token> EnclosingTokens(std::string_view sql, const std::vector<MarkerPlace>& markers) {
  std::string text(sql);
  for (const MarkerPlace& marker : markers) text.replace(marker.offset, marker.length, marker.length, ' ');
  std::vector<Token> enclosing(markers.size());
  std::size_t next = 0;
  Lexer lexer(text);
  for (Token token; next < enclosing.size() && lexer.Next(token);) {
    for (; next < enclosing.size() && markers[next].offset < token.offset + token.length; ++next) {
      if (markers[next].offset >= token.offset) enclosing[next] = token;
    }
  }
  return enclosing;
}

std::string WithBlanksFor(std::string text, std::string_view signs) {
  std::ranges::replace_if(
      text, [signs](char c) { return signs.find(c) != std::string_view::npos; }, ' ');
  return text;
}

// The bare value with what would end the token around it taken out or doubled.
std::string Inside(const Token& token, std::string_view statement, const std::string& bare) {
  const auto doubled = [&](char c) { return ReplaceAll(bare, std::string(1, c), std::string(2, c)); };
  switch (token.kind) {
    case TokenKind::String:
      return doubled('\'');
    case TokenKind::QuotedIdentifier:
      return doubled(statement[token.offset] == '[' ? ']' : statement[token.offset]);
    case TokenKind::Date:
      return WithBlanksFor(bare, "#\r\n");
    default:  // a comment
      return WithBlanksFor(bare, "*/\r\n");
  }
}

bool IsEnclosed(const Token& token) {
  return token.kind == TokenKind::String || token.kind == TokenKind::QuotedIdentifier ||
         token.kind == TokenKind::Date || token.kind == TokenKind::Comment;
}

// Two words, figures on both sides of a point, quotes, or signs that would begin a comment want a blank between them.
bool WouldMerge(char before, char after) {
  const auto isWord = [](char c) { return IsWordByte(c) || c == '@' || c == '#' || c == '$' || c == '.'; };
  return (isWord(before) && isWord(after)) || (before == '-' && after == '-') || (before == '\'' && after == '\'');
}

void AppendApart(std::string& text, std::string_view piece) {
  if (!text.empty() && !piece.empty() && WouldMerge(text.back(), piece.front())) text += ' ';
  text += piece;
}

}  // namespace

SnapshotType TypeOfParameter(std::string_view dataType, const qbDataTypes& types) {
  const std::string unquoted = TypedDefault(dataType);
  const std::string_view name = TrimWhite(unquoted);
  const auto take = [](const qbDataType& type) {
    return SnapshotType{type.Indicator, type.IsLong, type.PrefixLetters, type.SuffixLetters};
  };
  for (std::int32_t i = 1; !name.empty() && i <= types.Count(); ++i) {
    if (EqualsNoCase(types.Item(i)->Name, name)) return take(*types.Item(i));
  }
  std::int32_t code = CodeOf(name);
  if (code == 0) code = CodeOf(name.substr(0, name.find_first_of("( ")));
  if (code == 0) return {};
  const Ref<qbDataType> known = types.FindByIndicator(code);
  return known ? take(*known) : SnapshotType{.code = code, .isLong = false, .prefix = {}, .suffix = {}};
}

std::string_view TypeInWords(const SnapshotType& type) {
  switch (ValueKindOf(type.code)) {
    case ValueKind::Text:
      return "text";
    case ValueKind::Number:
      return IsWhole(type.code) ? "whole number" : "number";
    case ValueKind::Boolean:
      return "yes or no";
    case ValueKind::Date:
      if (type.code == static_cast<std::int32_t>(DataTypeCode::DbTime)) return "time of day";
      return type.code == static_cast<std::int32_t>(DataTypeCode::DbTimeStamp) ? "date and time" : "date";
    case ValueKind::Guid:
      return "GUID";
    case ValueKind::Binary:
      return "bytes in hexadecimal";
    case ValueKind::Unknown:
      break;
  }
  return {};
}

std::string TypedDefault(std::string_view argument) {
  const std::string_view text = TrimWhite(argument);
  constexpr std::string_view kQuotes = "'\"";
  if (text.size() < 2 || text.front() != text.back() || kQuotes.find(text.front()) == std::string_view::npos) {
    return std::string(text);
  }
  const std::string_view inside = text.substr(1, text.size() - 2);
  return ReplaceAll(inside, std::string(2, text.front()), std::string(1, text.front()));
}

std::string ProblemOf(const ParameterValue& value, const LiteralRules& rules) {
  try {
    Write(value, rules);
    return {};
  } catch (const Error& error) {
    return error.Description();
  }
}

std::string PutInLiterals(std::string_view sql, const std::vector<ParameterValue>& values, const LiteralRules& rules) {
  const std::vector<MarkerPlace> markers = ScanParameters(sql, nullptr).markers;
  if (values.size() != markers.size()) {
    Refuse("The statement has " + std::to_string(markers.size()) + " parameters, not " + std::to_string(values.size()) +
           ".");
  }
  const std::vector<Token> enclosing = EnclosingTokens(sql, markers);
  std::string result;
  std::size_t done = 0;
  bool literal = false;  // what was written last
  const auto copyUpTo = [&](std::size_t end) {
    const std::string_view piece = sql.substr(done, end - done);
    if (literal) {
      AppendApart(result, piece);
    } else {
      result += piece;
    }
  };
  for (std::size_t i = 0; i < values.size(); ++i) {
    copyUpTo(markers[i].offset);
    done = markers[i].offset + markers[i].length;
    literal = values[i].given && !IsEnclosed(enclosing[i]);
    if (literal) {
      AppendApart(result, Write(values[i], rules).literal);
    } else if (values[i].given) {
      result += Inside(enclosing[i], sql, Write(values[i], rules).bare);
    } else {
      result += sql.substr(markers[i].offset, markers[i].length);
    }
  }
  copyUpTo(sql.size());
  return result;
}

}  // namespace zrqrybld
