#include "zrqrybld/sql/parameter_values.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/literals.h"
#include "zrqrybld/sql/parameters.h"
#include "zrqrybld/sql/value_places.h"

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

[[noreturn]] void Refuse(const Phrase& why) { throw Error(ErrorInvalidPropertyValue, why); }

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
  bool anyText = false;  // any characters may come
  std::string standIn;   // the literal of such a value, written in the same way, that is harmless
};

Written WriteTextValue(std::string_view text, const CriteriaContext& context) {
  return {std::string(text), TextLiteral(text, context), false, {}};
}

Written WriteAnyText(std::string_view text, const CriteriaContext& context) {
  if (text.find('\0') != std::string_view::npos) Refuse(text::ZeroCharacter);
  const std::string_view plain = text.find('\\') == std::string_view::npos ? "x" : "x\\x";
  return {std::string(text), TextLiteral(text, context), true, TextLiteral(plain, context)};
}

Written WriteNumber(std::string_view text, std::int32_t code) {
  if (!ParseNumber(text)) {
    Refuse(text.find(',') == std::string_view::npos ? text::NotANumber : text::NumberWithComma);
  }
  if (text.starts_with('+')) text.remove_prefix(1);
  if (IsWhole(code) && text.find_first_of(".eE") != std::string_view::npos) Refuse(text::NoWholeNumber);
  return {std::string(text), std::string(text), false, {}};
}

Written WriteBoolean(std::string_view text, const CriteriaContext& context) {
  std::optional<bool> truth = TruthIn(text, context);
  if (text == "1" || text == "-1") truth = true;
  if (text == "0") truth = false;
  if (!truth) Refuse(text::NeitherYesNorNo);
  const std::string word = TruthLiteral(*truth, context);
  return {word, word, false, {}};
}

Written WriteDate(std::string_view text, const CriteriaContext& context) {
  DateTime value;
  const bool hash = text.size() > 2 && text.starts_with('#') && text.ends_with('#');
  if (hash) text = text.substr(1, text.size() - 2);
  switch (ReadDateTime(text, context.dateFormat, hash, value)) {
    case DateReading::Ambiguous:
      Refuse(text::TwoDates);
    case DateReading::NoDate:
      Refuse(IsTimeOfDay(context) ? text::NoTimeOfDay : text::NoDate);
    case DateReading::Read:
      break;
  }
  if (!value.hasDate && !IsTimeOfDay(context)) Refuse(text::HasNoDate);
  const std::optional<std::string> literal = DateLiteral(value, context);
  if (!literal) Refuse(text::DoesNotFitDateFormat);
  return {DateText(value, context), *literal, false, {}};
}

Written WriteBinary(std::string_view text, CriteriaContext context) {
  if (StartsWithNoCase(text, "0x")) text.remove_prefix(2);
  if (!IsHexBytes(text)) Refuse(text::NoBytes);
  if (context.prefix.empty()) context.prefix = "X'";
  return WriteTextValue(text, context);
}

// Without a type: what is written as a plain number is one, but not what begins with a nought, such as a postal code.
Written WriteUntyped(std::string_view text, const CriteriaContext& context) {
  const std::string_view figures = text.substr(text.starts_with('-') ? 1 : 0);
  const bool plain =
      !figures.empty() && IsDigit(figures[0]) && (figures.size() == 1 || figures[0] != '0' || figures[1] == '.');
  if (plain && ParseNumber(text)) return WriteNumber(text, 0);
  return WriteAnyText(TypedDefault(text), context);
}

CriteriaContext ContextOf(const ParameterValue& value, const LiteralRules& rules, const TextReading* reading) {
  CriteriaContext context;
  context.dialect = &DialectFor(rules.syntax);
  if (reading) context.reading = *reading;
  context.dataType = value.type.code;
  context.isLong = value.type.isLong;
  context.prefix = value.type.prefix;
  context.suffix = value.type.suffix;
  context.dateFormat = rules.dateFormat;
  context.dateFormatChosen = rules.dateFormatChosen;
  context.dateFormatStyle = rules.dateFormatStyle;
  context.source = rules.source;
  return context;
}

Written Write(const ParameterValue& value, const CriteriaContext& context) {
  const ValueKind kind = ValueKindOf(value.type.code);
  const std::string_view text = TrimWhite(value.text);
  if (text.empty() && kind != ValueKind::Text) Refuse(text::ValueNeeded);
  switch (kind) {
    case ValueKind::Text:
      return WriteAnyText(value.text, context);
    case ValueKind::Number:
      return WriteNumber(text, value.type.code);
    case ValueKind::Boolean:
      return WriteBoolean(text, context);
    case ValueKind::Date:
      return WriteDate(text, context);
    case ValueKind::Guid:
      if (!IsGuid(text)) Refuse(text::NoGuid);
      return WriteTextValue(text, context);
    case ValueKind::Binary:
      return WriteBinary(text, context);
    case ValueKind::Unknown:
      break;
  }
  return WriteUntyped(text, context);
}

// --- The statement ---

// As it may stand in the statement; one that cannot be taken has a problem, and its marker stays.
PlacedText TextOf(const ParameterValue& value, const LiteralRules& rules, const TextReading* reading, Phrase& problem) {
  PlacedText text;
  text.given = value.given;
  if (!value.given) return text;
  try {
    const CriteriaContext context = ContextOf(value, rules, reading);
    Written written = Write(value, context);
    text.escapes = BackslashEscapes(written.literal.substr(0, written.literal.find_first_of("'\"") + 1), context);
    text.anyText = written.anyText;
    text.standIn = written.anyText ? written.standIn : written.literal;
    text.bare = std::move(written.bare);
    text.literal = std::move(written.literal);
  } catch (const Error& error) {
    text.given = false;
    problem = error.What();
  }
  return text;
}

PlacedStatement PlaceFor(std::string_view sql, const std::vector<MarkerPlace>& markers,
                         const std::vector<ParameterValue>& values, const LiteralRules& rules,
                         const TextReading* reading) {
  std::vector<Phrase> problems(values.size());
  std::vector<PlacedText> texts;
  texts.reserve(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) texts.push_back(TextOf(values[i], rules, reading, problems[i]));
  PlacedStatement placed = reading ? PlaceTexts(sql, markers, texts, *reading) : PlaceTexts(sql, markers, texts);
  for (std::size_t i = 0; i < problems.size(); ++i) {
    if (!values[i].given) placed.problems[i] = {};
    if (!problems[i].Empty()) placed.problems[i] = std::move(problems[i]);
  }
  return placed;
}

// By a source that has not told how it reads only what every source reads alike is taken.
PlacedStatement PlaceForAll(std::string_view sql, const std::vector<MarkerPlace>& markers,
                            const std::vector<ParameterValue>& values, const LiteralRules& rules) {
  PlacedStatement first = PlaceFor(sql, markers, values, rules, &rules.readings.front());
  for (std::size_t reading = 1; reading < rules.readings.size(); ++reading) {
    const PlacedStatement other = PlaceFor(sql, markers, values, rules, &rules.readings[reading]);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const bool differs = values[i].given && (!other.problems[i].Empty() || other.text != first.text);
      if (differs && first.problems[i].Empty()) first.problems[i] = text::ReadInSeveralWays;
    }
  }
  return first;
}

PlacedStatement Place(std::string_view sql, const std::vector<ParameterValue>& values, const LiteralRules& rules) {
  const std::vector<MarkerPlace> markers = ScanParameters(sql, nullptr).markers;
  if (values.size() != markers.size()) {
    Refuse({text::OtherNumberOfValues, markers.size(), values.size()});
  }
  return rules.readings.empty() ? PlaceFor(sql, markers, values, rules, nullptr)
                                : PlaceForAll(sql, markers, values, rules);
}

}  // namespace

SnapshotType TypeOfParameter(std::string_view dataType, const qbDataTypes& types) {
  const std::string unquoted = TypedDefault(dataType);
  const std::string_view name = TrimWhite(unquoted);
  const auto take = [](const qbDataType& type) {
    return SnapshotType{type.Indicator, type.IsLong, type.PrefixLetters, type.SuffixLetters};
  };
  if (name.empty()) return {};
  for (const Ref<qbDataType>& type : types) {
    if (EqualsNoCase(type->Name, name)) return take(*type);
  }
  std::int32_t code = CodeOf(name);
  if (code == 0) code = CodeOf(name.substr(0, name.find_first_of("( ")));
  if (code == 0) return {};
  const Ref<qbDataType> known = types.FindByIndicator(code);
  return known ? take(*known) : SnapshotType{.code = code, .isLong = false, .prefix = {}, .suffix = {}};
}

Phrase TypeInWords(const SnapshotType& type) {
  switch (ValueKindOf(type.code)) {
    case ValueKind::Text:
      return text::TypeText;
    case ValueKind::Number:
      return IsWhole(type.code) ? text::TypeWholeNumber : text::TypeNumber;
    case ValueKind::Boolean:
      return text::TypeYesOrNo;
    case ValueKind::Date:
      if (type.code == static_cast<std::int32_t>(DataTypeCode::DbTime)) return text::TypeTimeOfDay;
      return type.code == static_cast<std::int32_t>(DataTypeCode::DbTimeStamp) ? text::TypeDateAndTime : text::TypeDate;
    case ValueKind::Guid:
      return text::TypeGuid;
    case ValueKind::Binary:
      return text::TypeBytes;
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

Phrase ProblemOf(const ParameterValue& value, const LiteralRules& rules) {
  try {
    Write(value, ContextOf(value, rules, nullptr));
    return {};
  } catch (const Error& error) {
    return error.What();
  }
}

std::vector<Phrase> ProblemsOf(std::string_view sql, const std::vector<ParameterValue>& values,
                               const LiteralRules& rules) {
  return Place(sql, values, rules).problems;
}

std::string PutInLiterals(std::string_view sql, const std::vector<ParameterValue>& values, const LiteralRules& rules) {
  PlacedStatement placed = Place(sql, values, rules);
  for (const Phrase& problem : placed.problems) {
    if (!problem.Empty()) Refuse(problem);
  }
  return std::move(placed.text);
}

}  // namespace zrqrybld
