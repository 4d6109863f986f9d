#include "zrqrybld/sql/expression_parser.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/array_brackets.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

// Links nodes in the order they come.
class List {
 public:
  explicit List(Expression*& first) : end_(&first) {}
  void Append(Expression* expression) {
    *end_ = expression;
    end_ = &expression->next;
  }

 private:
  Expression** end_;
};

// Operators that are words but no keywords.
constexpr std::array<std::string_view, 6> kWordOperators = {"GLOB", "ILIKE", "MATCH", "REGEXP", "RLIKE", "ALIKE"};
// Operators that the lexer takes for more than one token, or that only some dialects have; the longest first.
constexpr std::array<std::string_view, 17> kFurtherSigns = {"->>", "#>>", "!~*", "->", "#>", "#-", "@>", "<@", "&&",
                                                            "?|",  "?&",  "@@",  "@?", "!~", "~*", "~",  "?"};
// Words that make the text behind them a literal.
constexpr std::array<std::string_view, 4> kLiteralTypes = {"DATE", "TIME", "TIMESTAMP", "DATETIME"};
// Functions whose first argument is a part of a date, which is no name; and those that take a type there, or a value.
constexpr std::array<std::string_view, 10> kTakesPart = {"DATEADD",      "DATEDIFF",     "DATEDIFF_BIG", "DATENAME",
                                                         "DATEPART",     "DATETRUNC",    "DATE_BUCKET",  "EXTRACT",
                                                         "TIMESTAMPADD", "TIMESTAMPDIFF"};
constexpr std::array<std::string_view, 2> kTakesType = {"CONVERT", "TRY_CONVERT"};
constexpr std::array<std::string_view, 20> kTypes = {
    "BIGINT",   "BIT",  "CHAR",    "DATE",    "DATETIME",         "DATETIME2", "DECIMAL",
    "FLOAT",    "INT",  "INTEGER", "MONEY",   "NUMERIC",          "NVARCHAR",  "REAL",
    "SMALLINT", "TEXT", "TIME",    "TINYINT", "UNIQUEIDENTIFIER", "VARCHAR"};
// Functions with FROM inside.
constexpr std::array<std::string_view, 6> kTakesFrom = {"EXTRACT", "OVERLAY",   "POSITION",
                                                        "SUBSTR",  "SUBSTRING", "TRIM"};
// Words in front of the first argument of TRIM.
constexpr std::array<std::string_view, 3> kTrimWords = {"BOTH", "LEADING", "TRAILING"};

}  // namespace

bool IsRareSign(std::string_view sign) {
  const bool isUsual = sign == "~" || sign.starts_with("->");  // every operand may have the one before it
  return !isUsual && std::ranges::find(kFurtherSigns, sign) != kFurtherSigns.end();
}

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

void ExpressionParser::RequireDepth(bool tooDeep, int levels) const {
  if (!tooDeep) return;
  reader_.Refuse(reader_.Offset(), {text::NestedTooDeeply, levels});
}

Expression* ExpressionParser::Make(ExpressionKind kind, std::size_t start, Expression* first) {
  Expression* expression = arena_.Make<Expression>();
  expression->kind = kind;
  expression->text = reader_.TextFrom(start);
  expression->first = first;
  return expression;
}

Expression* ExpressionParser::Close(Expression* expression, std::size_t start) {
  expression->text = reader_.TextFrom(start);
  return expression;
}

// --- Conditions ---

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

// --- Operands ---

bool ExpressionParser::IsChainSign() const {
  if (!reader_.Is(TokenKind::Operator)) return !FurtherSign().empty();
  const std::string_view sign = reader_.CurrentText();
  if (!FurtherSign().empty()) return true;
  if (sign.size() == 2) return sign == "||" || sign == "<<" || sign == ">>";
  return std::string_view("+-*/%&|^").find(sign[0]) != std::string_view::npos;
}

// The one of those operators that stands here; "" for none. What begins a name, "@p" behind "<", is none.
std::string_view ExpressionParser::FurtherSign() const {
  const std::string_view token = reader_.CurrentText();
  const bool mayBegin = reader_.Is(TokenKind::Operator) || (reader_.Is(TokenKind::Word) && token.size() <= 2);
  if (!mayBegin || std::string_view("-#!@<&?~").find(token[0]) == std::string_view::npos) return {};
  const std::string_view rest = reader_.Rest();
  for (const std::string_view sign : kFurtherSigns) {
    if (!rest.starts_with(sign) || token.size() > sign.size()) continue;
    const bool isName = sign.back() == '@' && rest.size() > sign.size() && IsWordByte(rest[sign.size()]);
    return isName || (sign == "&&" && rules_.pipesMayBeOr) ? std::string_view() : sign;
  }
  return {};
}

Expression* ExpressionParser::ParseChain() {
  const std::size_t start = Start();
  const auto isPrefix = [&] { return !begun_ && (reader_.IsSign('-') || reader_.IsSign('+') || reader_.IsSign('~')); };
  const auto takeSign = [&] {
    const std::size_t sign = reader_.Offset();
    const std::size_t end = sign + FurtherSign().size();
    do {
      reader_.Advance();
    } while (!reader_.AtEnd() && reader_.Offset() < end);
    return Make(ExpressionKind::Sign, sign);
  };
  Expression* first = isPrefix() ? takeSign() : ParseOperand();
  Expression* postfix = first->kind == ExpressionKind::Sign ? nullptr : ParsePostfix();
  if (first->kind != ExpressionKind::Sign && !postfix && !IsChainSign()) return first;
  Expression* chain = Make(ExpressionKind::Chain, start, first);
  List pieces(first->next);
  bool needsOperand = first->kind == ExpressionKind::Sign;
  for (;;) {
    if (postfix) pieces.Append(postfix);
    while (needsOperand && isPrefix()) pieces.Append(takeSign());
    if (needsOperand) {
      pieces.Append(ParseOperand());
      needsOperand = false;
    } else if (!postfix) {
      if (!IsChainSign()) return Close(chain, start);
      if (rules_.pipesMayBeOr && reader_.CurrentText() == "||") pipe_ = reader_.Offset();
      pieces.Append(takeSign());
      needsOperand = true;
      postfix = nullptr;
      continue;
    }
    postfix = ParsePostfix();
  }
}

// What may follow an operand; nothing when nothing does.
Expression* ExpressionParser::ParsePostfix() {
  const std::size_t start = reader_.Offset();
  if (IsSubscript()) return ParseSubscript(start);
  if (reader_.Is(TokenKind::Operator)) {
    if (!reader_.IsSign(':') || !reader_.NextIsSign(':')) return nullptr;  // a::type
    reader_.Advance();
    reader_.Advance();
    ParseName(text::AType);
    if (reader_.TakeSign('(')) {
      reader_.SkipTo(')');
      reader_.Advance();
    }
    while (reader_.Adjoins() && reader_.CurrentText().starts_with('[')) reader_.Advance();  // an array of it
  } else if (!reader_.Is(TokenKind::Word)) {
    return nullptr;
  } else if (reader_.Take(Keyword::Collate)) {
    ParseName(text::ACollation);
  } else if (reader_.Is(Keyword::Over) || (reader_.Current().keyword == Keyword::None && reader_.IsWord("FILTER"))) {
    if (!reader_.NextIsSign('(')) return nullptr;
    reader_.Advance();
    return ParseRowsOf(start);
  } else if (reader_.Current().keyword == Keyword::None && reader_.IsWord("WITHIN") &&
             reader_.Peek().keyword == Keyword::Group) {
    reader_.Advance();
    reader_.Advance();
    return ParseRowsOf(start);
  } else {
    return nullptr;
  }
  return Make(ExpressionKind::Opaque, start);
}

// Which rows are meant, in the parentheses of OVER, FILTER and WITHIN GROUP. The expressions in there are those of the
// query; what else stands there is passed on as it is.
Expression* ExpressionParser::ParseRowsOf(std::size_t start) {
  Expression* result = Make(ExpressionKind::Opaque, start);
  Expression** end = &result->first;
  reader_.ExpectSign('(');
  const auto isFrame = [this] {
    return reader_.Is(Keyword::Rows) || reader_.IsWord("RANGE") || reader_.IsWord("GROUPS");
  };
  const bool isName = reader_.Is(TokenKind::QuotedIdentifier) ||
                      (reader_.Is(TokenKind::Word) && reader_.Current().keyword == Keyword::None);
  if (isName && !reader_.IsWord("PARTITION") && !isFrame()) reader_.Advance();  // a window that is called so
  if (reader_.Take(Keyword::Where)) {
    *end = ParseExpression();
    end = &(*end)->next;
  } else if (reader_.IsWord("PARTITION")) {
    reader_.Advance();
    ParseOrder(end);
  }
  if (reader_.Take(Keyword::Order)) ParseOrder(end);
  reader_.SkipTo(')');
  reader_.Advance();
  return Close(result, start);
}

// Behind PARTITION and ORDER.
void ExpressionParser::ParseOrder(Expression**& end) {
  reader_.Expect(Keyword::By);
  do {
    *end = ParseExpression();
    end = &(*end)->next;
    if (!reader_.Take(Keyword::Asc)) reader_.Take(Keyword::Desc);
    if (!reader_.IsWord("NULLS")) continue;
    reader_.Advance();
    if (reader_.IsWord("FIRST") || reader_.IsWord("LAST")) reader_.Advance();
  } while (reader_.TakeSign(','));
}

bool ExpressionParser::IsSubscript() const {
  return rules_.hasSubscripts && reader_.Is(TokenKind::QuotedIdentifier) && reader_.CurrentText()[0] == '[' &&
         reader_.Adjoins();
}

// On "[...]", which the lexer reads up to the first "]", of an array up to its own. Arrays within an array are written
// without its word.
Expression* ExpressionParser::ParseSubscript(std::size_t start) {
  const std::size_t open = reader_.Offset();
  const std::string_view text = reader_.CurrentText();
  reader_.Advance();
  Expression* result = Make(ExpressionKind::Opaque, start);
  List parts(result->first);
  constexpr std::size_t kMostDimensions = 16;
  const bool isArray = open != start;
  std::vector<std::pair<std::string_view, std::size_t>> left{{text.substr(1, text.size() - 2), 1}};
  try {
    while (!left.empty()) {
      const auto [untrimmed, depth] = left.back();
      const std::string_view part = TrimWhite(untrimmed);
      left.pop_back();
      if (isArray && part.starts_with('[') && depth < kMostDimensions) {
        const std::size_t end = std::min(EndOfArray(part, 0), part.size());
        std::string_view rest = TrimWhite(part.substr(end));
        if (rest.starts_with(',')) rest.remove_prefix(1);
        left.emplace_back(rest, depth);
        left.emplace_back(part.substr(1, end - 2), depth + 1);
        continue;
      }
      TokenReader inside(part);
      ExpressionParser expressions(inside, arena_, rules_);
      while (!inside.AtEnd()) {
        if (!inside.TakeSign(',') && !inside.TakeSign(':')) parts.Append(expressions.ParseExpression());
      }
    }
  } catch (const SyntaxError& error) {
    reader_.Refuse(open, error.Sentence());
  }
  return result;
}

Expression* ExpressionParser::ParseOperand() {
  if (begun_) return std::exchange(begun_, nullptr);
  const Token& token = reader_.Current();
  if (reader_.AtEnd()) reader_.FailExpected(text::AnExpression);
  switch (token.kind) {
    case TokenKind::Number:
    case TokenKind::String:
    case TokenKind::Date:
    case TokenKind::Parameter:
      return ParseLiteral();
    case TokenKind::Operator:
      if (reader_.IsSign('(')) return ParseParentheses();
      return ParseLiteral();
    default:
      break;
  }
  switch (token.keyword) {
    case Keyword::None:
      break;
    case Keyword::Case:
      return ParseCase();
    case Keyword::Exists: {
      const std::size_t start = reader_.Offset();
      if (!reader_.NextIsSign('(')) break;
      reader_.Advance();
      Expression* subquery = ParseSubquery(reader_.Offset());
      return Make(ExpressionKind::Exists, start, subquery);
    }
    case Keyword::Null:
    case Keyword::True:
    case Keyword::False:
      if (reader_.NextIsSign('.')) break;  // a table that is called so
      return ParseLiteral();
    case Keyword::Interval:
      if (reader_.Peek().kind == TokenKind::String || reader_.Peek().kind == TokenKind::Number) return ParseInterval();
      break;
    default:
      break;
  }
  const bool isText = rules_.doubleQuotesAreTexts && reader_.CurrentText().starts_with('"');
  if (isText && !reader_.NextIsSign('.') && !reader_.NextIsSign('!')) return ParseLiteral();
  if (rules_.hasSubscripts && reader_.IsWord("ARRAY")) {
    const std::size_t start = reader_.Offset();
    const TokenReader before = reader_;
    reader_.Advance();
    if (IsSubscript()) return ParseSubscript(start);
    reader_ = before;
  }
  return IsTypedLiteral() ? ParseLiteral() : ParseNamed();
}

bool ExpressionParser::IsTypedLiteral() const {
  if (!reader_.Is(TokenKind::Word)) return false;
  const Token next = reader_.Peek();
  if (next.kind != TokenKind::String) return false;
  // E'...' is one literal; a column may be called e, with a text behind it for its alias.
  const bool adjoins = next.offset == reader_.Offset() + reader_.CurrentText().size();
  return (adjoins && reader_.IsWord("E")) ||
         std::ranges::any_of(kLiteralTypes, [&](std::string_view type) { return reader_.IsWord(type); });
}

Expression* ExpressionParser::ParseLiteral() {
  const std::size_t start = reader_.Offset();
  if (!reader_.Is(TokenKind::Operator)) {
    const bool typed = reader_.Is(TokenKind::Word) && reader_.Current().keyword == Keyword::None;
    reader_.Advance();
    if (typed) reader_.Advance();
    return Make(ExpressionKind::Literal, start);
  }
  if (reader_.TakeSign('{')) {
    reader_.SkipTo('}');
    reader_.Advance();
  } else if (reader_.TakeSign('?')) {
    // The marker of a parameter without a name.
  } else if (reader_.IsSign(':') || reader_.IsSign('$') || reader_.IsSign('&')) {
    reader_.Advance();
    if (!reader_.Is(TokenKind::Word) && !reader_.Is(TokenKind::Number)) reader_.FailExpected(text::AParameterName);
    reader_.Advance();
  } else {
    reader_.FailExpected(text::AnExpression);
  }
  return Make(ExpressionKind::Literal, start);
}

// INTERVAL '1' DAY, INTERVAL '1' YEAR TO MONTH.
Expression* ExpressionParser::ParseInterval() {
  const std::size_t start = reader_.Offset();
  reader_.Advance();
  reader_.Advance();
  const auto isUnit = [&] { return reader_.Is(TokenKind::Word) && reader_.Current().keyword == Keyword::None; };
  if (isUnit()) {
    reader_.Advance();
    if (reader_.Take(Keyword::To) && isUnit()) reader_.Advance();
  }
  return Make(ExpressionKind::Literal, start);
}

// ( expression ), ( a, b ) or ( SELECT ... ). Parentheses that begin together are read in a loop, from the inside: each
// is the first operand of what the next one holds.
Expression* ExpressionParser::ParseParentheses() {
  const auto isQuery = [this] {
    const Keyword next = reader_.Peek().keyword;
    return next == Keyword::Select || next == Keyword::With;
  };
  if (isQuery()) return ParseSubquery(reader_.Offset());
  const std::size_t outside = open_.size();
  for (; reader_.IsSign('(') && !isQuery(); reader_.Advance()) {
    RequireDepth(++depth_ > kDeepest, kDeepest);
    open_.push_back(reader_.Offset());
  }
  Expression* inside = nullptr;
  while (open_.size() > outside) {
    const std::size_t start = open_.back();
    open_.pop_back();
    inside = ParseInParentheses(start, inside);
    begunAt_ = start;
    --depth_;
  }
  return inside;
}

// Behind the "(" that stands at `start`, or behind the operand that is read already.
Expression* ExpressionParser::ParseInParentheses(std::size_t start, Expression* begun) {
  Expression* result = Make(ExpressionKind::Row, start);
  if (!begun && reader_.TakeSign(')')) return Close(result, start);
  List operands(result->first);
  begun_ = begun;
  operands.Append(ParseExpression());
  if (!reader_.IsSign(',')) result->kind = ExpressionKind::Parentheses;
  while (reader_.TakeSign(',')) operands.Append(ParseExpression());
  if (!reader_.TakeSign(')')) reader_.FailOpen(start, text::OperatorOrClosing);
  return Close(result, start);
}

// On the "(" before SELECT.
Expression* ExpressionParser::ParseSubquery(std::size_t start) {
  reader_.ExpectSign('(');
  if (!reader_.Is(Keyword::Select) && !reader_.Is(Keyword::With)) reader_.FailExpected("SELECT");
  queries_.push_back(reader_.Offset());
  reader_.SkipTo(')');
  reader_.Advance();
  return Make(ExpressionKind::Subquery, start);
}

Expression* ExpressionParser::ParseCase() {
  const std::size_t start = reader_.Offset();
  reader_.Advance();
  Expression* result = Make(ExpressionKind::Case, start);
  List pieces(result->first);
  const auto takeWord = [&](Keyword word) {
    const std::size_t place = reader_.Offset();
    if (!reader_.Take(word)) return false;
    pieces.Append(Make(ExpressionKind::Sign, place));
    pieces.Append(ParseExpression());
    return true;
  };
  if (!reader_.Is(Keyword::When)) pieces.Append(ParseExpression());
  if (!reader_.Is(Keyword::When)) reader_.FailExpected("WHEN");
  while (takeWord(Keyword::When)) {
    if (!takeWord(Keyword::Then)) reader_.FailExpected("THEN");
  }
  takeWord(Keyword::Else);
  reader_.Expect(Keyword::End);
  return Close(result, start);
}

// --- Names ---

// A keyword before a "." is a name; "#" alone is none, for it may be half of a date.
bool ExpressionParser::IsNamePart() const {
  if (reader_.Is(TokenKind::QuotedIdentifier)) return true;
  if (!reader_.Is(TokenKind::Word)) return false;
  if (reader_.CurrentText() == "#") return false;
  return !IsReserved(reader_.Current().keyword) || reader_.NextIsSign('.');
}

// A word of the grammar is a name where it touches the point; otherwise the name was left out.
void ExpressionParser::RequireNameBehindPoint(std::size_t start, TextId what) const {
  const std::string_view before = reader_.TextFrom(start);
  const bool adjoins = before.data() + before.size() == reader_.CurrentText().data();
  if (!adjoins && reader_.Is(TokenKind::Word) && IsReserved(reader_.Current().keyword)) reader_.FailExpected(what);
}

bool ExpressionParser::IsPoint() const { return reader_.IsSign('.') || (reader_.IsSign('!') && FurtherSign().empty()); }

std::string_view ExpressionParser::ParseName(TextId what) {
  const std::size_t start = reader_.Offset();
  if (!IsNamePart()) reader_.FailExpected(what);
  reader_.Advance();
  while (IsPoint()) {
    reader_.Advance();
    if (reader_.IsSign('.')) continue;  // a part may be left out: database..table
    RequireNameBehindPoint(start, what);
    if (!reader_.Is(TokenKind::Word) && !reader_.Is(TokenKind::QuotedIdentifier)) reader_.FailExpected(what);
    reader_.Advance();
  }
  return reader_.TextFrom(start);
}

// A column, "t.*" or a call.
Expression* ExpressionParser::ParseNamed() {
  const std::size_t start = reader_.Offset();
  const Keyword keyword = reader_.Current().keyword;
  const bool isCall = (keyword == Keyword::Left || keyword == Keyword::Right) && reader_.NextIsSign('(');
  if (!IsNamePart() && !isCall) reader_.FailExpected(text::AnExpression);
  std::size_t part = start;
  const bool groups = reader_.IsWord("GROUPING");
  reader_.Advance();
  if (groups && reader_.IsWord("SETS") && reader_.NextIsSign('(')) reader_.Advance();
  while (IsPoint()) {
    reader_.Advance();
    part = reader_.Offset();
    if (reader_.IsSign('.')) continue;
    RequireNameBehindPoint(start, text::AColumn);
    if (reader_.TakeSign('*')) {
      Expression* star = Make(ExpressionKind::Star, start);
      star->name = reader_.TextFrom(part);
      return star;
    }
    if (!reader_.Is(TokenKind::Word) && !reader_.Is(TokenKind::QuotedIdentifier)) reader_.FailExpected(text::AColumn);
    reader_.Advance();
  }
  const std::string_view name = reader_.TextFrom(part);
  if (reader_.IsSign('(')) {
    if (!reader_.NextIsSign('+')) return ParseCall(start, reader_.TextFrom(start));
    const TokenReader before = reader_;
    Expression* column = Make(ExpressionKind::Column, start);
    column->name = name;
    reader_.Advance();
    reader_.Advance();
    if (reader_.TakeSign(')')) {
      column->optional = true;
      return column;
    }
    reader_ = before;
    return ParseCall(start, reader_.TextFrom(start));
  }
  Expression* column = Make(ExpressionKind::Column, start);
  column->name = name;
  return column;
}

// On the "(" behind the name.
Expression* ExpressionParser::ParseCall(std::size_t start, std::string_view name) {
  const Keyword inside = reader_.Peek().keyword;
  if (inside == Keyword::Select || inside == Keyword::With) return ParseSubquery(start);
  const std::size_t open = reader_.Offset();
  reader_.Advance();
  Expression* call = Make(ExpressionKind::Call, start);
  call->name = name;
  call->negated = reader_.Take(Keyword::Distinct);
  if (!call->negated && reader_.Is(Keyword::All) && !reader_.NextIsSign(',') && !reader_.NextIsSign(')'))
    reader_.Advance();
  List arguments(call->first);
  if (!reader_.IsSign(')')) {
    arguments.Append(BeginsWithWord(name) ? ParseWordArgument() : ParseArgument(name));
    while (reader_.TakeSign(',')) arguments.Append(ParseArgument(name));
  }
  if (!reader_.TakeSign(')')) reader_.FailOpen(open, text::OperatorCommaOrClosing);
  return Close(call, start);
}

// Whether the word at which the arguments of the function begin is no name: DAY in DATEADD(DAY, 1, d), DATE in
// CONVERT(DATE, d), YEAR in EXTRACT(YEAR FROM d).
bool ExpressionParser::BeginsWithWord(std::string_view function) const {
  const auto isOneOf = [](std::string_view word, const auto& words) {
    return std::ranges::any_of(words, [word](std::string_view other) { return EqualsNoCase(other, word); });
  };
  if (!reader_.Is(TokenKind::Word) || !(reader_.NextIsSign(',') || reader_.Peek().keyword == Keyword::From))
    return false;
  return isOneOf(function, kTakesPart) || (isOneOf(function, kTakesType) && isOneOf(reader_.CurrentText(), kTypes));
}

// Such a word; with FROM and the expression behind it.
Expression* ExpressionParser::ParseWordArgument() {
  const std::size_t start = reader_.Offset();
  reader_.Advance();
  if (!reader_.Take(Keyword::From)) return Make(ExpressionKind::Opaque, start);
  Expression* part = Make(ExpressionKind::Opaque, start);
  part->next = ParseExpression();
  return Make(ExpressionKind::Chain, start, part);
}

// Whether what stands here belongs to the argument and not to the clause behind a parenthesis that was left open: that
// would come before the next closing one.
bool ExpressionParser::ClosesBehind(std::string_view function) const {
  const auto takesFrom = [function](std::string_view name) { return EqualsNoCase(name, function); };
  if (reader_.Is(Keyword::From) && std::ranges::none_of(kTakesFrom, takesFrom)) return false;
  TokenReader ahead = reader_;
  int depth = 0;
  for (ahead.Advance(); !ahead.AtEnd(); ahead.Advance()) {
    if (ahead.IsSign('(')) ++depth;
    if (ahead.IsSign(')') && depth-- == 0) return true;
    const bool isClause =
        ahead.Is(Keyword::From) || ahead.Is(Keyword::Where) || ahead.Is(Keyword::Having) || ahead.Is(Keyword::Join);
    if (depth == 0 && isClause) return false;
  }
  return false;
}

// An expression; what a keyword adds to it (CAST(a AS type), EXTRACT(YEAR FROM d)) is passed on as it stands.
Expression* ExpressionParser::ParseArgument(std::string_view function) {
  const std::size_t start = reader_.Offset();
  if (reader_.TakeSign('*')) return Make(ExpressionKind::Star, start);
  const bool trims = reader_.Is(TokenKind::Word) && reader_.Current().keyword == Keyword::None &&
                     std::ranges::any_of(kTrimWords, [&](std::string_view word) { return reader_.IsWord(word); });
  if (trims) {
    reader_.SkipTo(')');
    return Make(ExpressionKind::Opaque, start);
  }
  Expression* first = ParseExpression();
  const bool hasMore =
      reader_.Is(TokenKind::Word) && (reader_.Current().keyword != Keyword::None || reader_.IsWord("SEPARATOR"));
  if (!hasMore || !ClosesBehind(function)) return first;
  const std::size_t rest = reader_.Offset();
  reader_.SkipTo(')');
  first->next = Make(ExpressionKind::Opaque, rest);
  return Make(ExpressionKind::Chain, start, first);
}

Expression* ExpressionParser::ParseSelected() {
  const std::size_t start = reader_.Offset();
  if (!reader_.TakeSign('*')) return ParseExpression();
  Expression* star = Make(ExpressionKind::Star, start);
  star->name = star->text;
  return star;
}

}  // namespace zrqrybld
