// Names with their dots, and calls with their arguments.
#include <algorithm>
#include <array>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/expression_parser.h"
#include "zrqrybld/sql/query_begin.h"

namespace zrqrybld {
namespace {

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
  const std::size_t open = reader_.Offset();
  if (HoldsQuery(reader_.All(), open)) return ParseSubquery(start);
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

}  // namespace zrqrybld
