#include "zrqrybld/sql/query_outline.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// The tokens of a statement with the places of what closes each parenthesis.
struct Tokens {
  explicit Tokens(std::string_view sql) : text(sql) {
    std::vector<std::size_t> open;
    Lexer lexer(sql);
    for (Token token; lexer.Next(token);) {
      finished &= !token.unfinished;
      if (token.kind == TokenKind::Comment) continue;
      const std::size_t at = list.size();
      list.push_back(token);
      partner.push_back(kNone);
      if (IsSign(at, '(')) open.push_back(at);
      if (!IsSign(at, ')')) continue;
      if (open.empty()) {
        if (extra == kNone) extra = at;
        continue;
      }
      partner[open.back()] = at;
      open.pop_back();
    }
    if (!open.empty()) unclosed = open.back();
  }

  std::string_view WordAt(std::size_t at) const { return text.substr(list[at].offset, list[at].length); }
  bool IsSign(std::size_t at, char sign) const {
    return at < list.size() && list[at].kind == TokenKind::Operator && list[at].length == 1 &&
           text[list[at].offset] == sign;
  }
  // A word behind a dot is a name.
  Keyword KeywordAt(std::size_t at) const {
    return at < list.size() && !(at > 0 && IsSign(at - 1, '.')) ? list[at].keyword : Keyword::None;
  }
  std::size_t OffsetOf(std::size_t at) const { return at < list.size() ? list[at].offset : text.size(); }
  // From a token up to, and without, another.
  std::string_view Between(std::size_t begin, std::size_t end) const {
    if (begin >= end) return text.substr(OffsetOf(begin), 0);
    const Token& last = list[end - 1];
    return text.substr(OffsetOf(begin), last.offset + last.length - OffsetOf(begin));
  }

  std::string_view text;
  std::vector<Token> list;
  std::vector<std::size_t> partner;  // of each "(": its ")"
  bool finished = true;              // every literal, quoted name and comment ends
  std::size_t unclosed = kNone;      // the last "(" that nothing closes
  std::size_t extra = kNone;         // the first ")" that closes nothing
};

// MINUS is a name, too: what follows tells.
bool IsSetWord(const Tokens& tokens, std::size_t at) {
  const Keyword keyword = tokens.KeywordAt(at);
  if (keyword == Keyword::Union || keyword == Keyword::Intersect || keyword == Keyword::Except) return true;
  if (keyword != Keyword::Minus) return false;
  const Keyword next = tokens.KeywordAt(at + 1);
  return next == Keyword::Select || next == Keyword::All || next == Keyword::Distinct || tokens.IsSign(at + 1, '(');
}

class Outliner {
 public:
  Outliner(const Tokens& tokens, const Dialect& dialect) : tokens_(tokens), dialect_(dialect) {}

  QueryOutline Run() {
    if (tokens_.extra != kNone) FailExpected(tokens_.extra, text::StatementEnd);
    if (tokens_.unclosed != kNone) FailOpen(tokens_.unclosed);
    std::size_t end = tokens_.list.size();
    while (end > 0 && tokens_.IsSign(end - 1, ';')) --end;
    return Query(0, end);
  }

 private:
  [[noreturn]] void Refuse(std::size_t at, Phrase message) const {
    throw SyntaxError(tokens_.text, tokens_.OffsetOf(at), std::move(message));
  }
  [[noreturn]] void FailExpected(std::size_t at, const Phrase& expected) const {
    const bool ends = at >= tokens_.list.size();
    throw SyntaxError(tokens_.text, tokens_.OffsetOf(at),
                      ends ? Phrase(text::ExpectedAtEnd, expected)
                           : Phrase(text::ExpectedInstead, expected, '"' + std::string(tokens_.WordAt(at)) + '"'),
                      expected);
  }

  [[noreturn]] void FailOpen(std::size_t open) const {
    const TextPlace place = PlaceIn(tokens_.text, tokens_.OffsetOf(open));
    const Phrase expected("\")\"");
    throw SyntaxError(tokens_.text, tokens_.text.size(),
                      {text::ParenthesisOpen, Phrase(text::ExpectedAtEnd, expected), place.line, place.column},
                      expected);
  }

  QueryOutline Query(std::size_t begin, std::size_t end) {
    if (++depth_ > kDeepestQuery) Refuse(begin, {text::QueriesTooDeep, kDeepestQuery});
    if (++count_ > kMostQueries) Refuse(begin, {text::TooManyQueries, kMostQueries});
    QueryOutline query;
    if (tokens_.KeywordAt(begin) == Keyword::With) begin = With(query, begin, end);
    Compound(query, begin, end);
    --depth_;
    return query;
  }

  // --- WITH ---

  std::size_t With(QueryOutline& query, std::size_t at, std::size_t end) {
    if (!dialect_.queries.hasWith) Refuse(at, {text::DialectCannotSay, "WITH"});
    ++at;
    const bool namesItself = at < end && EqualsNoCase(tokens_.WordAt(at), "RECURSIVE") && !tokens_.IsSign(at + 1, '(');
    query.recursive = namesItself && tokens_.KeywordAt(at + 1) != Keyword::As;
    if (query.recursive) ++at;
    for (;; ++at) {
      QueryOutline::Named named;
      at = Head(named, at, end);
      const std::size_t close = at < end && tokens_.IsSign(at, '(') ? tokens_.partner[at] : kNone;
      if (close == kNone) FailExpected(at, "\"(\"");
      named.query = std::make_unique<QueryOutline>(Query(at + 1, close));
      query.named.push_back(std::move(named));
      at = close + 1;
      if (!tokens_.IsSign(at, ',')) return at;
    }
  }

  // A name, the names of the columns, and AS.
  std::size_t Head(QueryOutline::Named& named, std::size_t at, std::size_t end) {
    named.name = Name(at++, end);
    if (tokens_.IsSign(at, '(')) {
      do {
        named.columns.push_back(Name(at + 1, end));
        at += 2;
      } while (tokens_.IsSign(at, ','));
      if (!tokens_.IsSign(at, ')')) FailExpected(at, "\")\"");
      ++at;
    }
    if (tokens_.KeywordAt(at) != Keyword::As) FailExpected(at, "AS");
    ++at;
    const bool refuses = tokens_.KeywordAt(at) == Keyword::Not;
    const std::size_t hint = refuses ? at + 1 : at;
    if (hint < end && EqualsNoCase(tokens_.WordAt(hint), "MATERIALIZED"))
      Refuse(at, {text::CannotShow, "MATERIALIZED"});
    return at;
  }

  std::string_view Name(std::size_t at, std::size_t end) const {
    const bool isName = at < end && (tokens_.list[at].kind == TokenKind::QuotedIdentifier ||
                                     (tokens_.list[at].kind == TokenKind::Word && !IsReserved(tokens_.KeywordAt(at))));
    if (!isName) FailExpected(at, text::AName);
    return tokens_.WordAt(at);
  }

  // --- UNION and its like ---

  void Compound(QueryOutline& query, std::size_t begin, std::size_t end) {
    const std::size_t first = EndOfMember(begin, end);
    TakeHead(query, begin, first);
    const std::size_t inHead = query.members.size();  // these stand in parentheses
    for (std::size_t at = first; at < end && IsSetWord(tokens_, at);) {
      QueryOutline::Member member;
      member.word = tokens_.WordAt(at);
      const std::size_t word = at;
      at = Operator(member.combined, at);
      const std::size_t next = EndOfMember(at, end);
      member.query = std::make_unique<QueryOutline>(MemberAt(at, next, next >= end ? &query : nullptr));
      RequireOperator(member.combined, word);
      Add(query, std::move(member), inHead);
      at = next;
      if (at < end && IsTail(at)) {
        query.tail = tokens_.Between(at, end);
        return;
      }
    }
    if (query.members.empty() && first < end) {
      // Behind a whole in parentheses: the parser says what may stand there.
      query.select = tokens_.Between(begin, end);
    }
  }

  // A member ends at the next operator, or where it stands in parentheses, behind them.
  std::size_t EndOfMember(std::size_t begin, std::size_t end) const {
    if (tokens_.IsSign(begin, '(') && tokens_.partner[begin] != kNone) {
      const std::size_t behind = tokens_.partner[begin] + 1;
      if (behind >= end || IsSetWord(tokens_, behind) || IsTail(behind)) return behind;
    }
    for (std::size_t at = begin; at < end; ++at) {
      if (tokens_.IsSign(at, '(') && tokens_.partner[at] != kNone) at = tokens_.partner[at];
      if (IsSetWord(tokens_, at) && at > begin) return at;
    }
    return end;
  }

  bool IsTail(std::size_t at) const {
    switch (tokens_.KeywordAt(at)) {
      case Keyword::Order:
        return tokens_.KeywordAt(at + 1) == Keyword::By;
      case Keyword::Limit:
      case Keyword::Offset:
      case Keyword::Fetch:
        return true;
      default:
        return false;
    }
  }

  // Where ORDER BY or a limit begins outside of parentheses; `end` where none does.
  std::size_t TailOf(std::size_t begin, std::size_t end) const {
    for (std::size_t at = begin; at < end; ++at) {
      if (tokens_.IsSign(at, '(') && tokens_.partner[at] != kNone) at = tokens_.partner[at];
      if (IsTail(at)) return at;
    }
    return end;
  }

  bool IsInParentheses(std::size_t begin, std::size_t end) const {
    return begin < end && tokens_.IsSign(begin, '(') && tokens_.partner[begin] == end - 1;
  }

  // What is combined from the left needs no parentheses around what comes first; only what they sort or limit would be
  // that of the whole.
  void TakeHead(QueryOutline& query, std::size_t begin, std::size_t end) {
    const bool isWhole = end >= tokens_.list.size() || !IsSetWord(tokens_, end);
    if (!IsInParentheses(begin, end)) {
      const std::size_t tail = TailOf(begin, end);
      if (!isWhole && tail < end) Refuse(tail, text::MemberSorted);
      query.select = tokens_.Between(begin, end);
      return;
    }
    QueryOutline inner = Query(begin + 1, end - 1);
    if (inner.IsPlain() && isWhole) {
      query.select = tokens_.Between(begin, end);
      return;
    }
    const std::size_t ownTail = inner.members.empty() ? TailOf(begin + 1, end - 1) : end;
    if (!inner.tail.empty() || ownTail < end - 1) {
      if (!isWhole) Refuse(ownTail < end ? ownTail : begin, text::FirstMemberSorted);
    }
    for (QueryOutline::Named& named : inner.named) query.named.push_back(std::move(named));
    query.recursive |= inner.recursive;
    query.select = inner.select;
    query.members = std::move(inner.members);
    query.tail = inner.tail;
  }

  // `whole` is given for the last: what is sorted and limited by behind it belongs to all.
  QueryOutline MemberAt(std::size_t begin, std::size_t end, QueryOutline* whole) {
    if (begin >= end) FailExpected(begin, "SELECT");
    if (IsInParentheses(begin, end)) return Query(begin + 1, end - 1);
    if (tokens_.KeywordAt(begin) != Keyword::Select) FailExpected(begin, "SELECT");
    const std::size_t tail = TailOf(begin, end);
    if (tail < end) {
      if (!whole) Refuse(tail, text::MemberSorted);
      whole->tail = tokens_.Between(tail, end);
    }
    return Query(begin, tail);
  }

  std::size_t Operator(QueryOperatorEnum& combined, std::size_t at) const {
    const Keyword word = tokens_.KeywordAt(at++);
    combined = word == Keyword::Union ? QueryUnion : word == Keyword::Intersect ? QueryIntersect : QueryExcept;
    if (tokens_.KeywordAt(at) == Keyword::All) {
      combined = static_cast<QueryOperatorEnum>(combined + 1);
      return at + 1;
    }
    return tokens_.KeywordAt(at) == Keyword::Distinct ? at + 1 : at;
  }

  void RequireOperator(QueryOperatorEnum combined, std::size_t at) const {
    if (WordOf(combined, dialect_.queries).empty()) Refuse(at, {text::DialectCannotSay, NameOf(combined)});
  }

  // INTERSECT binds closer than the others where the dialect has it so.
  void Add(QueryOutline& query, QueryOutline::Member member, std::size_t inHead) const {
    const bool joinsLast = dialect_.queries.intersectFirst && Intersects(member.combined) &&
                           query.members.size() > inHead && !Intersects(query.members.back().combined);
    if (!joinsLast) {
      query.members.push_back(std::move(member));
      return;
    }
    query.members.back().query->members.push_back(std::move(member));
  }

  const Tokens& tokens_;
  const Dialect& dialect_;
  int depth_ = 0;
  int count_ = 0;
};

}  // namespace

namespace {

// Most statements hold none of the words, and are not looked at twice.
bool MayHoldQueries(std::string_view sql) {
  Lexer lexer(sql);
  for (Token token; lexer.Next(token);) {
    switch (token.keyword) {
      case Keyword::With:
      case Keyword::Union:
      case Keyword::Intersect:
      case Keyword::Except:
      case Keyword::Minus:
        return true;
      default:
        break;
    }
  }
  return false;
}

}  // namespace

QueryOutline OutlineQuery(std::string_view sql, const Dialect& dialect) {
  QueryOutline plain;
  plain.select = sql;
  if (!MayHoldQueries(sql)) return plain;
  const Tokens tokens(sql);
  bool holds = tokens.KeywordAt(0) == Keyword::With;
  for (std::size_t at = 0; at < tokens.list.size() && !holds; ++at) holds = IsSetWord(tokens, at);
  if (!holds || !tokens.finished) return plain;
  QueryOutline outline = Outliner(tokens, dialect).Run();
  return outline.IsPlain() ? std::move(plain) : std::move(outline);
}

std::string TextOfSelect(const QueryOutline& query) {
  std::string text(query.select);
  if (query.tail.empty()) return text;
  text.append(static_cast<std::size_t>(query.tail.data() - query.select.data()) - text.size(), ' ');
  return text.append(query.tail);
}

}  // namespace zrqrybld
