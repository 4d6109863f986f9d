// Conditions: what AND, OR and NOT put together, and comparisons.
#include <algorithm>
#include <array>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/expression_parser.h"

namespace zrqrybld {
namespace {

// Operators that are words but no keywords.
constexpr std::array<std::string_view, 6> kWordOperators = {"GLOB", "ILIKE", "MATCH", "REGEXP", "RLIKE", "ALIKE"};

}  // namespace

// One level of nesting for the length of a scope.
class ExpressionParser::Level {
 public:
  explicit Level(ExpressionParser& parser) : parser_(parser) {
    parser.RequireDepth(++parser.depth_ > kDeepest, kDeepest);
    parser.RequireDepth(++parser.calls_ > kDeepestCalls, kDeepestCalls);
  }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  ~Level() {
    --parser_.depth_;
    --parser_.calls_;
  }

 private:
  ExpressionParser& parser_;
};

Expression* ExpressionParser::ParseExpression() {
  const Level level(*this);
  const std::size_t start = Start();
  const std::optional<std::size_t> outer = pipe_;
  Expression* result = ParseAnd();
  if (reader_.Is(Keyword::Or)) {
    result = Make(ExpressionKind::Or, start, result);
    List operands(result->first->next);
    while (reader_.Take(Keyword::Or)) operands.Append(ParseAnd());
    Close(result, start);
  }
  pipe_ = outer;
  return result;
}

void ExpressionParser::RefusePipe() const {
  if (pipe_) reader_.Refuse(*pipe_, text::PipesMayBeOr);
}

Expression* ExpressionParser::ParseAnd() {
  const std::size_t start = Start();
  pipe_.reset();
  Expression* first = ParseNot();
  if (!reader_.Is(Keyword::And)) return first;
  Expression* result = Make(ExpressionKind::And, start, first);
  List operands(first->next);
  while (reader_.Take(Keyword::And)) operands.Append(ParseNot());
  RefusePipe();
  return Close(result, start);
}

Expression* ExpressionParser::ParseNot() {
  if (begun_ || !reader_.Is(Keyword::Not)) return ParsePredicate();
  const Level level(*this);
  const std::size_t start = reader_.Offset();
  reader_.Advance();
  Expression* operand = ParseNot();
  RefusePipe();
  Expression* test = operand;
  while (test->kind == ExpressionKind::Parentheses) test = test->first;
  if (!TakesNot(*test)) return Make(ExpressionKind::Not, start, operand);
  test->negated = true;  // NOT a LIKE b is a NOT LIKE b
  return Close(test, start);
}

// Whether NOT may stand inside, before the operator, and does not yet.
bool ExpressionParser::TakesNot(const Expression& test) {
  const bool isWord =
      test.kind == ExpressionKind::Comparison && IsWordByte(test.name.front()) && !StartsWithNoCase(test.name, "IS");
  return !test.negated && (isWord || test.kind == ExpressionKind::Between || test.kind == ExpressionKind::In ||
                           test.kind == ExpressionKind::IsNull);
}

bool ExpressionParser::IsComparisonSign() const {
  if (!reader_.Is(TokenKind::Operator)) return false;
  const std::string_view sign = reader_.CurrentText();
  switch (sign[0]) {
    case '=':
      return true;
    case '<':
    case '>':
      return sign != "<<" && sign != ">>";
    case '!':
      return sign.size() == 2;
    case '*':
      return sign == "*=";
    default:
      return false;
  }
}

bool ExpressionParser::IsWordOperator() const {
  if (reader_.Is(Keyword::Between) || reader_.Is(Keyword::In) || reader_.Is(Keyword::Like)) return true;
  return reader_.Is(TokenKind::Word) && !reader_.Is(Keyword::Not) && reader_.Current().keyword == Keyword::None &&
         std::ranges::any_of(kWordOperators, [&](std::string_view word) { return reader_.IsWord(word); });
}

// Comparisons in a row (a = b = c) are read from the left; each costs a level, for the tree grows with it.
Expression* ExpressionParser::ParsePredicate() {
  const std::size_t start = Start();
  const int depth = depth_;
  Expression* left = ParseChain();
  for (;; ++depth_) {
    if (depth_ > kDeepest) reader_.Refuse(start, text::TooManyComparisons);
    if (IsComparisonSign()) {
      left = ParseComparison(left, start);
    } else if (reader_.Is(Keyword::Is)) {
      left = ParseIs(left, start);
    } else if (reader_.Is(Keyword::Not)) {
      reader_.Advance();
      if (!IsWordOperator()) reader_.FailExpected(text::BetweenInOrLike);
      left = ParseWordOperator(left, start, true);
    } else if (IsWordOperator()) {
      left = ParseWordOperator(left, start, false);
    } else if (reader_.IsWord("ISNULL") || reader_.IsWord("NOTNULL")) {
      const bool negated = reader_.IsWord("NOTNULL");
      reader_.Advance();
      left = Make(ExpressionKind::IsNull, start, left);
      left->negated = negated;
    } else {
      depth_ = depth;
      return left;
    }
  }
}

Expression* ExpressionParser::ParseComparison(Expression* left, std::size_t start) {
  const std::string_view sign = reader_.CurrentText();
  reader_.Advance();
  const bool isRowLimit = left->kind == ExpressionKind::Column && EqualsNoCase(left->text, NameOf(Keyword::Rownum));
  left->next = isRowLimit ? ParseLimitNumber() : ParseChain();
  Expression* result = Make(ExpressionKind::Comparison, start, left);
  result->name = sign;
  return result;
}

// A row limit may be a percentage where the dialect cannot say so: "ROWNUM <= 25%".
Expression* ExpressionParser::ParseLimitNumber() {
  const std::size_t start = reader_.Offset();
  if (!reader_.Is(TokenKind::Number) || !reader_.NextIsSign('%')) return ParseChain();
  const TokenReader before = reader_;
  reader_.Advance();
  reader_.Advance();
  const bool ends =
      reader_.AtEnd() || reader_.IsSign(')') || reader_.IsSign(';') || IsReserved(reader_.Current().keyword);
  if (ends) return Make(ExpressionKind::Literal, start);
  reader_ = before;
  return ParseChain();
}

Expression* ExpressionParser::ParseIs(Expression* left, std::size_t start) {
  const std::size_t word = reader_.Offset();
  reader_.Advance();
  const bool negated = reader_.Take(Keyword::Not);
  if (reader_.Take(Keyword::Null)) {
    Expression* result = Make(ExpressionKind::IsNull, start, left);
    result->negated = negated;
    return result;
  }
  if (reader_.Take(Keyword::Distinct)) reader_.Expect(Keyword::From);
  const std::string_view name = reader_.TextFrom(word);
  left->next = ParseChain();
  Expression* result = Make(ExpressionKind::Comparison, start, left);
  result->name = name;
  return result;
}

Expression* ExpressionParser::ParseWordOperator(Expression* left, std::size_t start, bool negated) {
  Expression* result = Make(ExpressionKind::Comparison, start, left);
  result->negated = negated;
  result->name = reader_.CurrentText();
  List operands(left->next);
  if (reader_.Take(Keyword::Between)) {
    result->kind = ExpressionKind::Between;
    operands.Append(ParseChain());
    reader_.Expect(Keyword::And);
    operands.Append(ParseChain());
  } else if (reader_.Take(Keyword::In)) {
    result->kind = ExpressionKind::In;
    Expression* list = ParseChain();
    if (list->kind == ExpressionKind::Parentheses) list->kind = ExpressionKind::Row;  // a list of one
    operands.Append(list);
  } else {
    reader_.Advance();
    operands.Append(ParseChain());
    if (reader_.Is(Keyword::Escape)) {
      const std::size_t escape = reader_.Offset();
      reader_.Advance();
      ParseChain();
      operands.Append(Make(ExpressionKind::Opaque, escape));
    }
  }
  return Close(result, start);
}

}  // namespace zrqrybld
