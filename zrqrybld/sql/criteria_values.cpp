#include "zrqrybld/sql/criteria_values.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <span>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_values.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/date_literal.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/literals.h"
#include "zrqrybld/sql/query_begin.h"

namespace zrqrybld {
namespace {

// Functions that are called without parentheses.
constexpr std::string_view kBareFunctions[] = {
    "CURRENT_DATE",   "CURRENT_TIME", "CURRENT_TIMESTAMP", "CURRENT_USER", "LOCALTIME",
    "LOCALTIMESTAMP", "ROWNUM",       "SESSION_USER",      "SYSDATE",      "SYSTIMESTAMP"};

// What follows "{" in an escape: dates, times and functions.
constexpr std::string_view kEscapes[] = {"d", "t", "ts", "fn"};

// Aggregates that give a number, whatever they are taken of, by how their names begin.
constexpr std::string_view kNumericAggregates[] = {"COUNT", "SUM", "AVG", "STD", "VAR"};

// A server without booleans keeps them in its smallest number.
bool MayBeTruth(const CriteriaContext& context) {
  return context.dataType == static_cast<std::int32_t>(DataTypeCode::TinyInt) && context.aggregate.empty();
}

bool IsOneOf(std::string_view word, std::span<const std::string_view> words) {
  return std::ranges::any_of(words, [word](std::string_view other) { return EqualsNoCase(word, other); });
}

// A name's text without its quotes.
std::string Bare(std::string_view name) {
  if (name.size() < 2 || (name[0] != '"' && name[0] != '[' && name[0] != '`')) return std::string(name);
  const char closing = name.back();
  return ReplaceAll(name.substr(1, name.size() - 2), std::string(2, closing), std::string(1, closing));
}

}  // namespace

// --- Types ---

CriterionValues::CriterionValues(const CriterionTokens& tokens, const CriteriaContext& context, bool forStatement)
    : tokens_(tokens), context_(context), kind_(KindOf(context)), forStatement_(forStatement) {}

CriterionValues::Kind CriterionValues::KindOf(const CriteriaContext& context) {
  for (const std::string_view name : kNumericAggregates) {
    if (StartsWithNoCase(context.aggregate, name)) return Kind::Number;
  }
  const Kind kind = ValueKindOf(context.dataType);
  if (kind != Kind::Unknown) return kind;
  return context.isLong || !context.prefix.empty() ? Kind::Text : Kind::Unknown;
}

const std::string* CriterionValues::HashDateFormat(const CriteriaContext& context) {
  return KindOf(context) == Kind::Date ? &context.dateFormat : nullptr;
}

std::string CriterionValues::LiteralWord(const CriteriaContext& context) {
  const std::string& prefix = context.prefix;
  return !prefix.empty() && prefix.back() == '\'' ? prefix.substr(0, prefix.size() - 1) : std::string();
}

// --- Expressions ---

bool CriterionValues::IsQuery(std::size_t parenthesis) const {
  return tokens_.Is(parenthesis, '(') && HoldsQuery(tokens_.All(), tokens_.Offset(parenthesis));
}

// What a host puts a value in for: ?, :name. (@name is a word.)
bool CriterionValues::IsPlaceholder(std::size_t at, std::size_t to) const {
  return tokens_.Is(at, '?') ||
         (tokens_.Is(at, ':') && at + 1 < to && tokens_.Adjoins(at + 1) && tokens_[at + 1].kind == TokenKind::Word);
}

// A name with its dots, or a call. Returns the token behind it.
std::size_t CriterionValues::ReadName(Kind kind, std::size_t at, std::size_t to, Expression& expression) const {
  const std::size_t first = at;
  std::vector<std::string> parts;
  bool quoted = false;
  for (;;) {
    quoted = quoted || tokens_[at].kind == TokenKind::QuotedIdentifier;
    parts.push_back(Bare(tokens_.Text(at)));
    ++at;
    // "Dr. Smith" is no name: the point joins only what it touches.
    if (at + 1 >= to || !tokens_.Is(at, '.') || !tokens_.Adjoins(at) || !tokens_.Adjoins(at + 1)) break;
    const TokenKind next = tokens_[at + 1].kind;
    if (next != TokenKind::Word && next != TokenKind::QuotedIdentifier) break;
    ++at;
  }
  const std::string_view word = tokens_.Text(first);
  const bool plain = parts.size() == 1 && !quoted;
  const bool canBeCall = !plain || CanBeCalled(tokens_[first].keyword);
  if (canBeCall && at < to && tokens_.Is(at, '(') &&
      (tokens_.Adjoins(at) || (kind != Kind::Text && kind != Kind::Unknown))) {
    expression.hasSql = true;
    return tokens_.After(at);
  }
  if (plain && at < to && tokens_[at].kind == TokenKind::String &&
      (IsLiteralWord(word) || (tokens_.Adjoins(at) && EqualsNoCase(word, LiteralWord(context_))))) {
    expression.hasSql = true;
    return at + 1;
  }
  bool known = false;
  if (plain) {
    const bool truth = EqualsNoCase(word, "TRUE") || EqualsNoCase(word, "FALSE");
    if (EqualsNoCase(word, "NULL") || word.starts_with('@') || IsOneOf(word, kBareFunctions)) {
      known = true;
    } else if (kind != Kind::Text && truth) {
      return at;
    } else if (kind == Kind::Text || kind == Kind::Unknown || IsSqlKeyword(word)) {
      known = false;
    } else {
      known = !context_.isColumn || context_.isColumn(parts);
    }
  } else if (parts.size() == 1 && word.front() != '"') {
    known = true;  // brackets and accents quote nothing but names
  } else {
    const bool isName = parts.size() > 1 || context_.quotePrefix == "\"";
    known = isName && (!context_.isColumn || context_.isColumn(parts));
  }
  if (known) {
    expression.hasSql = true;
  } else if (expression.unknown == CriterionTokens::kNone) {
    expression.unknown = first;
  }
  return at;
}

// An operand without its signs. Returns the token behind it; `to` and not valid when there is none.
std::size_t CriterionValues::ReadOperand(Kind kind, std::size_t at, std::size_t to, Expression& expression) const {
  switch (tokens_[at].kind) {
    case TokenKind::Number:
      return at + 1;
    case TokenKind::Date:
      // What is no date would end the statement where it holds a comment or a quote.
      if (!IsHashDate(tokens_.Text(at), context_.dateFormat)) break;
      expression.hasSql = true;
      return at + 1;
    case TokenKind::String:
    case TokenKind::Parameter:
      expression.hasSql = true;
      return at + 1;
    case TokenKind::Word:
    case TokenKind::QuotedIdentifier:
      if (tokens_.Partner(at) != CriterionTokens::kNone) break;  // CASE to END
      return ReadName(kind, at, to, expression);
    default:
      break;
  }
  bool whole = tokens_.Partner(at) != CriterionTokens::kNone;
  if (tokens_.Is(at, '{')) whole = at + 1 < to && IsOneOf(tokens_.Text(at + 1), kEscapes);
  if (whole || IsPlaceholder(at, to)) {
    expression.hasSql = true;
    return whole ? tokens_.After(at) : at + (tokens_.Is(at, '?') ? 1 : 2);
  }
  expression.valid = false;
  return to;
}

// What joins two operands, or follows one. Returns the token behind it; the same when it is none.
std::size_t CriterionValues::ReadOperator(std::size_t at, std::size_t to) const {
  constexpr std::string_view kSigns = "+-*/%&|^";
  if (tokens_[at].kind != TokenKind::Operator || tokens_.IsApostrophe(at)) return at;
  const std::string_view sign = tokens_.Text(at);
  if (sign == "||" || (sign.size() == 1 && kSigns.find(sign[0]) != std::string_view::npos)) return at + 1;
  return std::min(at, to);
}

CriterionValues::Expression CriterionValues::Examine(Kind kind, std::size_t from, std::size_t to) const {
  Expression expression;
  bool expectsOperand = true;
  const auto isName = [&](std::size_t at) {
    return at < to && (tokens_[at].kind == TokenKind::Word || tokens_[at].kind == TokenKind::QuotedIdentifier);
  };
  for (std::size_t at = from; at < to && expression.valid;) {
    if (tokens_[at].kind == TokenKind::Comment) {
      ++at;
    } else if (expectsOperand && tokens_.Is(at, '(') && !IsQuery(at)) {
      ++at;
    } else if (expectsOperand && (tokens_.Is(at, '+') || tokens_.Is(at, '-') || tokens_.Is(at, '~'))) {
      ++at;
    } else if (expectsOperand) {
      at = ReadOperand(kind, at, to, expression);
      expectsOperand = false;
    } else if (tokens_.Is(at, ')')) {
      ++at;
    } else if (tokens_.IsWord(at, "COLLATE") && isName(at + 1)) {
      at += 2;
    } else if (tokens_.Is(at, ':') && tokens_.Is(at + 1, ':') && isName(at + 2)) {
      at += 3;  // ::type
      if (at < to && tokens_.Is(at, '(')) at = tokens_.After(at);
    } else {
      const std::size_t next = ReadOperator(at, to);
      expression.valid = next > at;
      expectsOperand = true;
      at = next;
    }
  }
  expression.valid = expression.valid && !expectsOperand;
  return expression;
}

// Whether the value stands as it is. Figures alone are SQL only where the type has numbers.
bool CriterionValues::IsSql(Kind kind, std::size_t from, std::size_t to) const {
  const Expression expression = Examine(kind, from, to);
  const bool takesFigures = kind == Kind::Number || kind == Kind::Boolean || kind == Kind::Unknown;
  return expression.valid && expression.unknown == CriterionTokens::kNone && (takesFigures || expression.hasSql);
}

// A number or a truth value in parentheses, which stays one whatever the type of the column.
bool CriterionValues::IsLiteralApart(std::size_t from, std::size_t to) const {
  if (!tokens_.Is(from, '(') || tokens_.After(from) != to) return false;
  std::size_t at = from + 1;
  if (tokens_.Is(at, '-') || tokens_.Is(at, '+')) ++at;
  if (at + 2 != to) return false;
  return tokens_[at].kind == TokenKind::Number ||
         (at == from + 1 && (tokens_.IsWord(at, "TRUE") || tokens_.IsWord(at, "FALSE")));
}

// --- Literals ---

void CriterionValues::Refuse(std::size_t at, const Phrase& what) const {
  ThrowCriterionError(tokens_.All(), tokens_.Offset(at), what);
}

std::string CriterionValues::WriteText(std::size_t from, std::size_t to, bool pattern) const {
  tokens_.RequireFinished(from, to);
  const std::string_view bare = tokens_.Slice(from, to);
  const bool inDoubleQuotes = to == from + 1 && tokens_[from].kind == TokenKind::QuotedIdentifier && bare[0] == '"';
  return TextLiteral(inDoubleQuotes ? Bare(bare) : std::string(bare), context_, pattern && kind_ != Kind::Text);
}

// The text in the quotes of a date that is a literal already: '2020-01-31', DATE '2020-01-31'. A dialect or a source
// with literals of its own gets it as one of them; "" otherwise.
std::string_view CriterionValues::QuotedDate(std::size_t from, std::size_t to) const {
  if (!DateForms(context_)) return {};
  const std::size_t quoted = to - 1;
  if (tokens_[quoted].kind != TokenKind::String || tokens_[quoted].unfinished) return {};
  const bool named = to == from + 2 && IsLiteralWord(tokens_.Text(from));
  const std::string_view text = tokens_.Text(quoted);
  return (to == from + 1 || named) && text.front() == '\'' && text.size() > 2 ? text.substr(1, text.size() - 2)
                                                                              : std::string_view();
}

// Writes a date in the chosen form: a bare one, one between "#", in an escape or between quotes. False when it is none
// of these.
bool CriterionValues::WriteDate(std::size_t from, std::size_t to, std::string& text) const {
  std::string_view bare = tokens_.Slice(from, to);
  const std::string_view literal = QuotedDate(from, to);
  if (!literal.empty()) bare = literal;
  const bool hash = to == from + 1 && tokens_[from].kind == TokenKind::Date;
  const bool escape = tokens_.Is(from, '{') && tokens_.After(from) == to && to == from + 4 &&
                      tokens_[from + 2].kind == TokenKind::String && tokens_[from + 1].kind == TokenKind::Word;
  if (hash) bare = bare.substr(1, bare.size() - 2);
  if (escape) {
    const std::string_view quoted = tokens_.Text(from + 2);
    if (tokens_[from + 2].unfinished || quoted.size() < 2) return false;
    bare = quoted.substr(1, quoted.size() - 2);
  }
  DateTime value;
  switch (ReadDateTime(bare, context_.dateFormat, hash, value)) {
    case DateReading::Ambiguous:
      if (!literal.empty()) return false;
      Refuse(from, text::TwoDates);
    case DateReading::NoDate:
      if (hash) Refuse(from, text::NoDate);
      return false;
    case DateReading::Read:
      break;
  }
  if (!value.hasDate && !IsTimeOfDay(context_)) {
    if (!literal.empty()) return false;
    Refuse(from, text::HasNoDate);
  }
  const std::optional<std::string> written = DateLiteral(value, context_);
  if (!written) Refuse(from, text::DoesNotFitDateFormat);
  text = *written;
  return true;
}

// A truth value: in a cell the same in every dialect, in a statement as the dialect writes it. "" when the text is none
// for a column of this type.
std::string CriterionValues::Truth(std::string_view text) const {
  const bool isBoolean = kind_ == Kind::Boolean;
  CriteriaContext words;  // without the dialect's own: its figures are numbers for other types
  const std::optional<bool> truth = TruthIn(text, isBoolean ? context_ : words);
  if (!truth) return {};
  const bool isWord = EqualsNoCase(text, "TRUE") || EqualsNoCase(text, "FALSE");
  if (!isBoolean && !(kind_ == Kind::Unknown ? isWord : MayBeTruth(context_))) return {};
  return TruthLiteral(*truth, forStatement_ ? context_ : words);
}

// --- Values ---

std::string CriterionValues::Write(std::size_t from, std::size_t to) const {
  std::string text;
  std::size_t last = to;
  while (tokens_[last - 1].kind == TokenKind::Comment) --last;
  const std::string_view bare = tokens_.Slice(from, last);
  switch (kind_) {
    case Kind::Boolean:
    case Kind::Unknown:
      if (std::string truth = Truth(bare); !truth.empty()) return truth;
      // A date is no subtraction of figures.
      if (DateTime date; last > from + 1 && ReadDateTime(bare, context_.dateFormat, true, date) == DateReading::Read) {
        return WriteText(from, to, false);
      }
      break;
    case Kind::Date:
      if (WriteDate(from, last, text)) return text;
      break;
    case Kind::Guid:
      if (IsGuid(bare)) return TextLiteral(bare, context_);
      break;
    case Kind::Binary:
      if (!context_.prefix.empty()) {
        const std::string_view figures = StartsWithNoCase(bare, "0x") ? bare.substr(2) : bare;
        if (!figures.empty() && IsHexBytes(figures)) return TextLiteral(figures, context_);
      }
      if (last == from + 1 && StartsWithNoCase(bare, "0x")) return std::string(bare);
      break;
    case Kind::Number:
      if (std::string truth = Truth(bare); !truth.empty()) return truth;
      break;
    case Kind::Text:
      break;
  }
  if (IsSql(kind_, from, to) || IsLiteralApart(from, last)) return tokens_.Kept(from, to);
  if (kind_ == Kind::Text || kind_ == Kind::Unknown) return WriteText(from, to, false);

  tokens_.RequireFinished(from, to);
  const Expression expression = Examine(kind_, from, to);
  const std::size_t at = expression.valid && expression.unknown != CriterionTokens::kNone ? expression.unknown : from;
  switch (kind_) {
    case Kind::Date:
      Refuse(at, text::NoDate);
    case Kind::Boolean:
      Refuse(at, text::NeitherTrueNorColumn);
    case Kind::Guid:
    case Kind::Binary:
      Refuse(at, text::NotOfColumnType);
    default:
      Refuse(at, text::NeitherNumberNorColumn);
  }
}

std::string CriterionValues::WritePattern(std::size_t from, std::size_t to) const {
  if (IsSql(Kind::Text, from, to)) return tokens_.Kept(from, to);
  return WriteText(from, to, true);
}

}  // namespace zrqrybld
