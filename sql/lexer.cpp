#include "sql/lexer.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/text.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kLongOperators[] = {"<=", ">=", "<>", "!=", "!<", "!>", "||", "*=", "=*"};

// In ascending order, for binary search.
constexpr std::string_view kKeywords[] = {
    "ALL",   "AND",     "ANY",      "AS",          "ASC",    "BETWEEN", "BY",     "CASE",      "CAST",
    "CROSS", "DESC",    "DISTINCT", "DISTINCTROW", "ELSE",   "END",     "ESCAPE", "EXCEPT",    "EXISTS",
    "FALSE", "FROM",    "FULL",     "GROUP",       "HAVING", "IN",      "INNER",  "INTERSECT", "IS",
    "JOIN",  "LEFT",    "LIKE",     "NATURAL",     "NOT",    "NULL",    "ON",     "OR",        "ORDER",
    "OUTER", "PERCENT", "RIGHT",    "ROWNUM",      "ROWS",   "SELECT",  "SOME",   "THEN",      "TO",
    "TOP",   "TRUE",    "UNION",    "UP",          "USING",  "WHEN",    "WHERE",  "WITH"};
static_assert(std::ranges::is_sorted(kKeywords));

// Part of a word after its first character.
constexpr bool IsWordTail(char c) { return IsWordByte(c) || c == '$' || c == '#' || c == '@'; }
constexpr bool IsWordHead(char c) { return (IsWordByte(c) && !IsDigit(c)) || c == '@' || c == '#'; }

constexpr bool IsHexDigit(char c) { return IsDigit(c) || (UpperAscii(c) >= 'A' && UpperAscii(c) <= 'F'); }

}  // namespace

void Lexer::Take(Token& token, TokenKind kind, std::size_t end) {
  token.unfinished = end == std::string_view::npos;
  if (token.unfinished) end = text_.size();
  token.kind = kind;
  token.offset = at_;
  token.length = end - at_;
  at_ = end;
}

// A doubled closing quote stands for itself.
void Lexer::TakeQuoted(Token& token, TokenKind kind, std::size_t open, char closing) {
  std::size_t at = open + 1;
  while ((at = text_.find(closing, at)) != std::string_view::npos) {
    ++at;
    if (at >= text_.size() || text_[at] != closing) break;
    ++at;
  }
  Take(token, kind, at);
}

std::size_t Lexer::EndOfNumber() const {
  std::size_t end = at_;
  if (text_[end] == '0' && end + 2 < text_.size() && UpperAscii(text_[end + 1]) == 'X' && IsHexDigit(text_[end + 2])) {
    end += 2;
    while (end < text_.size() && IsHexDigit(text_[end])) ++end;
    return end;
  }
  const auto skipDigits = [&] {
    while (end < text_.size() && IsDigit(text_[end])) ++end;
  };
  skipDigits();
  if (end < text_.size() && text_[end] == '.') {
    ++end;
    skipDigits();
  }
  if (end < text_.size() && UpperAscii(text_[end]) == 'E') {
    std::size_t exponent = end + 1;
    if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) ++exponent;
    if (exponent < text_.size() && IsDigit(text_[exponent])) {
      end = exponent;
      skipDigits();
    }
  }
  return end;
}

// A date between "#" begins with a digit and ends on its line; otherwise "#" begins a name.
std::size_t Lexer::EndOfDate() const {
  if (at_ + 1 >= text_.size() || !IsDigit(text_[at_ + 1])) return std::string_view::npos;
  const std::size_t end = text_.find_first_of("#\r\n", at_ + 1);
  return end != std::string_view::npos && text_[end] == '#' ? end + 1 : std::string_view::npos;
}

bool Lexer::Next(Token& token) {
  while (at_ < text_.size() && IsWhite(text_[at_])) ++at_;
  if (at_ >= text_.size()) return false;
  const char c = text_[at_];
  const std::string_view rest = text_.substr(at_);

  if (rest.starts_with("--")) {
    Take(token, TokenKind::Comment, std::min(text_.find_first_of("\r\n", at_), text_.size()));
  } else if (rest.starts_with("/*")) {
    const std::size_t end = text_.find("*/", at_ + 2);
    Take(token, TokenKind::Comment, end == std::string_view::npos ? end : end + 2);
  } else if (c == '\'') {
    TakeQuoted(token, TokenKind::String, at_, '\'');
  } else if (c == '"' || c == '`' || c == '[') {
    TakeQuoted(token, TokenKind::QuotedIdentifier, at_, c == '[' ? ']' : c);
  } else if (rest.size() > 1 && rest[1] == '\'' &&
             std::string_view("NXB").find(UpperAscii(c)) != std::string_view::npos) {
    TakeQuoted(token, TokenKind::String, at_ + 1, '\'');
  } else if (StartsWithNoCase(rest, "?PARAM")) {
    // A marker ends at the first ")" behind it; without one the word alone is the token.
    const std::size_t close = text_.find(')', at_);
    Take(token, TokenKind::Parameter, close == std::string_view::npos ? at_ + 6 : close + 1);
  } else if (IsDigit(c) || (c == '.' && rest.size() > 1 && IsDigit(rest[1]))) {
    Take(token, TokenKind::Number, EndOfNumber());
  } else if (const std::size_t date = c == '#' ? EndOfDate() : std::string_view::npos; date != std::string_view::npos) {
    Take(token, TokenKind::Date, date);
  } else if (IsWordHead(c)) {
    std::size_t end = at_ + 1;
    while (end < text_.size() && IsWordTail(text_[end])) ++end;
    Take(token, TokenKind::Word, end);
  } else {
    const bool isLong = std::ranges::find(kLongOperators, rest.substr(0, 2)) != std::end(kLongOperators);
    Take(token, TokenKind::Operator, at_ + (isLong ? 2 : 1));
  }
  return true;
}

std::vector<Token> Tokenize(std::string_view text) {
  std::vector<Token> tokens;
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) tokens.push_back(token);
  return tokens;
}

bool IsSqlKeyword(std::string_view word) {
  return std::ranges::binary_search(kKeywords, std::string_view(UpperAscii(word)));
}

}  // namespace zrqrybld
