#include "zrqrybld/sql/clause_comments.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"
#include "zrqrybld/sql/source_lexer.h"

namespace zrqrybld {
namespace {

// In the order in which they stand in a statement.
constexpr Keyword kClauses[] = {Keyword::With,    Keyword::Select,    Keyword::From,   Keyword::Where,  Keyword::Start,
                                Keyword::Connect, Keyword::Group,     Keyword::Having, Keyword::Window, Keyword::Union,
                                Keyword::Except,  Keyword::Intersect, Keyword::Minus,  Keyword::Order,  Keyword::Limit,
                                Keyword::Offset,  Keyword::Fetch,     Keyword::None};

std::ptrdiff_t RankOf(Keyword clause) { return std::ranges::find(kClauses, clause) - std::begin(kClauses); }

// Tells the words that begin the clauses of a statement; its tokens come in their order.
class ClauseFinder {
 public:
  // Whether the token, which is no comment, begins a clause.
  bool Begins(std::string_view text, const Token& token) {
    const std::string_view sign = text.substr(token.offset, token.length);
    if (sign == "(") ++depth_;
    if (sign == ")") --depth_;
    if (depth_ != 0 || token.keyword == Keyword::None) return false;
    const std::ptrdiff_t rank = RankOf(token.keyword);
    if (rank >= RankOf(Keyword::None) || rank <= rank_) return false;
    rank_ = rank;
    return true;
  }

 private:
  int depth_ = 0;
  std::ptrdiff_t rank_ = -1;
};

struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;
};

std::vector<Span> CommentsOf(std::string_view sql, const std::optional<TextReading>& reading) {
  std::vector<Span> comments;
  if (reading) {
    SourceLexer lexer(sql, *reading);
    for (SourceToken token; lexer.Next(token);) {
      if (token.part == SourcePart::Comment) comments.push_back({token.begin, token.end});
    }
    return comments;
  }
  Lexer lexer(sql);
  for (Token token; lexer.Next(token);) {
    if (token.kind == TokenKind::Comment) comments.push_back({token.offset, token.offset + token.length});
  }
  return comments;
}

bool BeginsItsLine(std::string_view sql, std::size_t at) {
  const std::size_t before = sql.substr(0, at).find_last_not_of(" \t");
  return before == std::string_view::npos || sql[before] == '\n' || sql[before] == '\r';
}

// Some sources want a blank behind the dashes, some count the openings of a block, and some run blocks that begin with
// a sign. What a source reads as one comment may hold what ends it for another.
std::string ForEverySource(std::string_view comment) {
  if (!comment.starts_with("/*")) {
    return "-- " + std::string(TrimWhite(comment.substr(comment.starts_with('#') ? 1 : 2)));
  }
  comment.remove_prefix(2);
  if (comment.ends_with("*/")) comment.remove_suffix(2);
  std::string inner = ReplaceAll(ReplaceAll(comment, "*/", "* /"), "/*", "/ *");
  if (inner.ends_with('/')) inner += ' ';
  const bool plain = inner.empty() || inner[0] == ' ' || inner[0] == '\r' || inner[0] == '\n' || inner[0] == '*';
  return (plain ? "/*" : "/* ") + inner + "*/";
}

}  // namespace

std::vector<ClauseComment> CommentsByClause(std::string_view sql, const std::optional<TextReading>& reading) {
  std::vector<ClauseComment> found;
  const std::vector<Span> comments = CommentsOf(sql, reading);
  if (comments.empty()) return found;
  const std::string plain = reading ? WithoutHashComments(sql, *reading) : std::string(sql);
  Lexer lexer(plain);
  ClauseFinder finder;
  Keyword clause = Keyword::Select;
  auto next = comments.begin();
  std::size_t waiting = 0;  // so many of those found last wait for the clause behind them
  for (Token token; lexer.Next(token);) {
    if (token.kind == TokenKind::Comment) continue;
    for (; next != comments.end() && next->begin < token.offset; ++next) {
      const std::string_view text = sql.substr(next->begin, next->end - next->begin);
      if (waiting > 0 || BeginsItsLine(sql, next->begin)) ++waiting;
      found.push_back({clause, ForEverySource(text)});
    }
    if (finder.Begins(plain, token)) {
      clause = token.keyword;
      for (auto it = found.end() - static_cast<std::ptrdiff_t>(waiting); it != found.end(); ++it) it->clause = clause;
    }
    waiting = 0;
  }
  for (; next != comments.end(); ++next) {
    const std::string_view text = sql.substr(next->begin, next->end - next->begin);
    found.push_back({BeginsItsLine(sql, next->begin) ? Keyword::None : clause, ForEverySource(text)});
  }
  return found;
}

std::string WithComments(std::string_view statement, const std::vector<ClauseComment>& comments) {
  std::string text;
  std::size_t written = 0;
  auto next = comments.begin();
  const auto writeUpTo = [&](std::ptrdiff_t rank) {
    for (; next != comments.end() && RankOf(next->clause) <= rank; ++next) text += next->text + "\r\n";
  };
  Lexer lexer(statement);
  ClauseFinder finder;
  for (Token token; next != comments.end() && lexer.Next(token);) {
    if (token.kind == TokenKind::Comment || !finder.Begins(statement, token)) continue;
    text += statement.substr(written, token.offset - written);
    written = token.offset;
    writeUpTo(RankOf(token.keyword));
  }
  text += statement.substr(written);
  if (next == comments.end()) return text;
  if (!text.ends_with('\n')) text += "\r\n";
  writeUpTo(RankOf(Keyword::None));
  text.resize(text.size() - 2);
  return text;
}

}  // namespace zrqrybld
