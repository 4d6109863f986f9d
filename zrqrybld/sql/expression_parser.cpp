#include "zrqrybld/sql/expression_parser.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/array_brackets.h"
#include "zrqrybld/sql/query_begin.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

// Operators that the lexer takes for more than one token, or that only some dialects have; the longest first.
constexpr std::array<std::string_view, 17> kFurtherSigns = {"->>", "#>>", "!~*", "->", "#>", "#-", "@>", "<@", "&&",
                                                            "?|",  "?&",  "@@",  "@?", "!~", "~*", "~",  "?"};
// Words that make the text behind them a literal.
constexpr std::array<std::string_view, 4> kLiteralTypes = {"DATE", "TIME", "TIMESTAMP", "DATETIME"};

}  // namespace

bool IsRareSign(std::string_view sign) {
  const bool isUsual = sign == "~" || sign.starts_with("->");  // every operand may have the one before it
  return !isUsual && std::ranges::find(kFurtherSigns, sign) != kFurtherSigns.end();
}

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

Expression* ExpressionParser::ParseSelected() {
  const std::size_t start = reader_.Offset();
  if (!reader_.TakeSign('*')) return ParseExpression();
  Expression* star = Make(ExpressionKind::Star, start);
  star->name = star->text;
  return star;
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
      expressions.depth_ = depth_;
      expressions.calls_ = calls_;
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
  const QueryBegin begin = LookForQuery(reader_.All(), reader_.Offset());
  const auto isQuery = [&] { return reader_.Offset() == begin.select || reader_.Offset() == begin.compound; };
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
  const bool isQuery = reader_.IsSign('(') && LookForQuery(reader_.All(), reader_.Offset()).query == reader_.Offset();
  reader_.ExpectSign('(');
  if (!isQuery && !reader_.Is(Keyword::Select) && !reader_.Is(Keyword::With)) reader_.FailExpected("SELECT");
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

}  // namespace zrqrybld
