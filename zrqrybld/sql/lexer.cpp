#include "zrqrybld/sql/lexer.h"

#include <algorithm>
#include <array>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/array_brackets.h"

namespace zrqrybld {
namespace {

// The signs of two characters.
constexpr bool IsLongOperator(char first, char second) {
  switch (first) {
    case '<':
      return second == '=' || second == '>' || second == '<';
    case '>':
      return second == '=' || second == '>';
    case '!':
      return second == '=' || second == '<' || second == '>';
    case '=':
      return second == '*' || second == '=';
    case '*':
      return second == '=';
    case '|':
      return second == '|';
    default:
      return false;
  }
}

constexpr bool IsBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }

// Part of a word after its first character.
constexpr bool IsWordTail(char c) { return IsWordByte(c) || c == '$' || c == '#' || c == '@'; }
constexpr bool IsWordHead(char c) { return (IsWordByte(c) && !IsDigit(c)) || c == '@' || c == '#'; }
constexpr auto kWordTails = [] {
  std::array<bool, 256> tails{};
  for (std::size_t i = 0; i < tails.size(); ++i) tails[i] = IsWordTail(static_cast<char>(i));
  for (const std::size_t i : {0xC2u, 0xE2u, 0xE3u, 0xEFu}) tails[i] = false;  // a blank may begin with these
  return tails;
}();

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

// A marker ends at the first ")" behind its "("; without these the word alone is the token.
std::size_t Lexer::EndOfMarker() {
  const std::size_t word = at_ + std::string_view("?PARAM").size();
  std::size_t open = word;
  while (open < text_.size() && IsWhite(text_[open])) ++open;
  if (open >= unclosedFrom_ || open == text_.size() || text_[open] != '(') return word;
  const std::size_t close = text_.find(')', open);
  if (close != std::string_view::npos) return close + 1;
  unclosedFrom_ = open;  // many such markers must not search the rest of the text each
  return word;
}

void Lexer::TakeWord(Token& token) {
  std::size_t end = at_ + 1;
  while (end < text_.size() && (kWordTails[static_cast<unsigned char>(text_[end])] ||
                                (IsBeyondAscii(text_[end]) && UnicodeBlankAt(text_, end) == 0))) {
    ++end;
  }
  const std::string_view word = text_.substr(at_, end - at_);
  if (word.size() == 1 && end < text_.size() && text_[end] == '\'' &&
      std::string_view("NXB").find(UpperAscii(word[0])) != std::string_view::npos) {
    return TakeQuoted(token, TokenKind::String, end, '\'');
  }
  Take(token, TokenKind::Word, end);
  token.keyword = KeywordOf(word);
}

void Lexer::TakeOperator(Token& token) {
  const bool isLong = at_ + 1 < text_.size() && IsLongOperator(text_[at_], text_[at_ + 1]);
  Take(token, TokenKind::Operator, at_ + (isLong ? 2 : 1));
}

bool Lexer::Next(Token& token) {
  while (at_ < text_.size()) {
    const std::size_t blank = IsWhite(text_[at_]) ? 1 : IsBeyondAscii(text_[at_]) ? UnicodeBlankAt(text_, at_) : 0;
    if (blank == 0) break;
    at_ += blank;
  }
  if (at_ >= text_.size()) return false;
  token.keyword = Keyword::None;
  const char c = text_[at_];
  const char next = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
  if (c != '#' && IsWordHead(c)) {
    TakeWord(token);
  } else if (IsDigit(c) || (c == '.' && IsDigit(next))) {
    Take(token, TokenKind::Number, EndOfNumber());
  } else if (c == '\'') {
    TakeQuoted(token, TokenKind::String, at_, '\'');
  } else if (c == '[' && BeginsArray(text_, at_)) {
    Take(token, TokenKind::QuotedIdentifier, EndOfArray(text_, at_));
  } else if (c == '"' || c == '`' || c == '[') {
    TakeQuoted(token, TokenKind::QuotedIdentifier, at_, c == '[' ? ']' : c);
  } else if (c == '-' && next == '-') {
    Take(token, TokenKind::Comment, std::min(text_.find_first_of("\r\n", at_), text_.size()));
  } else if (c == '/' && next == '*') {
    const std::size_t end = text_.find("*/", at_ + 2);
    Take(token, TokenKind::Comment, end == std::string_view::npos ? end : end + 2);
  } else if (c == '?' && StartsWithNoCase(text_.substr(at_), "?PARAM")) {
    Take(token, TokenKind::Parameter, EndOfMarker());
  } else if (c == '#') {
    const std::size_t date = EndOfDate();
    if (date != std::string_view::npos) {
      Take(token, TokenKind::Date, date);
    } else {
      TakeWord(token);
    }
  } else {
    TakeOperator(token);
  }
  return true;
}

void OneLine::Add(const Token& token, std::string_view instead) {
  if (token.kind == TokenKind::Comment) return;
  if (!first_ && token.offset != end_) line_ += ' ';
  first_ = false;
  end_ = token.offset + token.length;
  line_ += instead;
}

std::vector<Token> Tokenize(std::string_view text) {
  std::vector<Token> tokens;
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) tokens.push_back(token);
  return tokens;
}

}  // namespace zrqrybld
