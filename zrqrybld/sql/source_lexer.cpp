#include "zrqrybld/sql/source_lexer.h"

#include <algorithm>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

bool SourceLexer::Next(SourceToken& token) {
  while (at_ < text_.size() && IsWhite(text_[at_])) ++at_;
  if (at_ >= text_.size()) return false;
  token = {.begin = at_};
  const char c = text_[at_];
  if (SkipComment(token)) {
    // It is one token.
  } else if (c == '\'' || c == '"') {
    const bool isText = c == '\'' || reading_.doubleQuotesAreTexts;
    ReadQuoted(token, isText ? SourcePart::Text : SourcePart::Name, c, isText && reading_.backslashEscapes);
  } else if (c == '`' && reading_.backticks) {
    ReadQuoted(token, SourcePart::Name, '`', false);
  } else if (c == '[' && reading_.brackets) {
    ReadQuoted(token, SourcePart::Name, ']', false);
  } else if (IsWordByte(c)) {
    ReadWord(token);
  } else if (!(c == '$' && ReadDollars(token)) && !(c == '#' && ReadDate(token))) {
    ++at_;
  }
  token.end = at_;
  return true;
}

// --- Comments ---

bool SourceLexer::AtDashes() const {
  if (!Ahead("--")) return false;
  return !reading_.blankAfterDashes || at_ + 2 >= text_.size() || static_cast<unsigned char>(text_[at_ + 2]) <= ' ';
}

bool SourceLexer::SkipComment(SourceToken& token) {
  token.part = SourcePart::Comment;
  if (AtDashes() || (reading_.hashComments && Ahead("#"))) {
    SkipLine();
  } else if (reading_.commentsHoldCode && (Ahead("/*!") || Ahead("/*M!"))) {
    token.part = SourcePart::CodeComment;
    at_ = text_.find('!', at_) + 1;
    while (at_ < text_.size() && IsDigit(text_[at_])) ++at_;
  } else if (Ahead("/*")) {
    SkipBlock();
  } else {
    token.part = SourcePart::Code;
    return false;
  }
  return true;
}

void SourceLexer::SkipLine() {
  at_ = std::min(text_.find_first_of(reading_.returnEndsLine ? "\r\n" : "\n", at_), text_.size());
}

void SourceLexer::SkipBlock() {
  int depth = 0;
  do {
    const bool opens = Ahead("/*") && (depth == 0 || reading_.commentsNest);
    const bool closes = !opens && Ahead("*/");
    depth += opens ? 1 : closes ? -1 : 0;
    at_ += opens || closes ? 2 : 1;
  } while (depth > 0 && at_ < text_.size());
}

// --- Quotes ---

void SourceLexer::ReadQuoted(SourceToken& token, SourcePart part, char closing, bool escapes) {
  token.part = part;
  token.closing = closing;
  token.escapes = escapes;
  SkipQuoted(token);
  while (part == SourcePart::Text && reading_.literalsJoin && !token.unfinished && SkipToJoined()) SkipQuoted(token);
}

// From the opening quote to behind the closing one; doubled it stands for itself.
void SourceLexer::SkipQuoted(SourceToken& token) {
  const bool backslash = token.escapes && !token.unicode;
  for (++at_; at_ < text_.size(); ++at_) {
    if (backslash && text_[at_] == '\\') {
      ++at_;
    } else if (text_[at_] == token.closing) {
      ++at_;
      const bool single = token.closing == ']' && reading_.bracketsEndAtFirst;
      if (single || at_ >= text_.size() || text_[at_] != token.closing) return;
    }
  }
  at_ = text_.size();
  token.unfinished = true;
}

// To a quote behind a line end, with blanks and comments between, that goes on with the text before.
bool SourceLexer::SkipToJoined() {
  const std::size_t before = at_;
  bool newLine = false;
  for (;;) {
    while (at_ < text_.size() && IsWhite(text_[at_])) {
      newLine = newLine || text_[at_] == '\n' || text_[at_] == '\r';
      ++at_;
    }
    if (!AtDashes()) break;
    SkipLine();
  }
  if (newLine && Ahead("'")) return true;
  at_ = before;
  return false;
}

// $tag$ ... $tag$; "$1" is none.
bool SourceLexer::ReadDollars(SourceToken& token) {
  if (!reading_.dollarLiterals) return false;
  std::size_t end = at_ + 1;
  while (end < text_.size() && IsWordByte(text_[end])) ++end;
  if (end >= text_.size() || text_[end] != '$' || IsDigit(text_[at_ + 1])) return false;
  const std::string_view tag = text_.substr(at_, end + 1 - at_);
  const std::size_t close = text_.find(tag, end + 1);
  token.part = SourcePart::Raw;
  token.unfinished = close == std::string_view::npos;
  at_ = token.unfinished ? text_.size() : close + tag.size();
  return true;
}

bool SourceLexer::ReadDate(SourceToken& token) {
  if (!reading_.hashDates) return false;
  const std::size_t close = text_.find_first_of("#\r\n", at_ + 1);
  if (close == std::string_view::npos || text_[close] != '#') return false;
  token.part = SourcePart::Date;
  at_ = close + 1;
  return true;
}

// A word, or the literal whose letters it is.
void SourceLexer::ReadWord(SourceToken& token) {
  const bool isNumber = IsDigit(text_[at_]);
  while (at_ < text_.size() && (IsWordByte(text_[at_]) || (text_[at_] == '$' && !isNumber))) ++at_;
  const std::string_view word = text_.substr(token.begin, at_ - token.begin);
  if (reading_.escapeLiterals && EqualsNoCase(word, "E") && Ahead("'")) {
    ReadQuoted(token, SourcePart::Text, '\'', true);
  } else if (reading_.escapeLiterals && (EqualsNoCase(word, "B") || EqualsNoCase(word, "X")) && Ahead("'")) {
    ReadQuoted(token, SourcePart::Text, '\'', false);  // of bits, in whatever mode
  } else if (reading_.unicodeLiterals && EqualsNoCase(word, "U") && (Ahead("&'") || Ahead("&\""))) {
    ++at_;
    token.unicode = true;
    const char quote = text_[at_];
    ReadQuoted(token, quote == '"' ? SourcePart::Name : SourcePart::Text, quote, true);
  } else if (reading_.delimitedLiterals && (EqualsNoCase(word, "Q") || EqualsNoCase(word, "NQ")) && Ahead("'")) {
    ReadDelimited(token);
  }
}

void SourceLexer::ReadDelimited(SourceToken& token) {
  constexpr std::string_view kOpening = "[{(<";
  constexpr std::string_view kClosing = "]})>";
  token.part = SourcePart::Raw;
  const char opening = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
  const std::size_t pair = kOpening.find(opening);
  const char end[] = {pair == std::string_view::npos ? opening : kClosing[pair], '\''};
  const std::size_t close = text_.find(std::string_view(end, 2), at_ + 2);
  token.unfinished = close == std::string_view::npos;
  at_ = token.unfinished ? text_.size() : close + 2;
}

bool ReadsAlike(std::string_view text, const Token& literal, const TextReading& reading) {
  const std::size_t before = literal.offset - (literal.offset > 0 && UpperAscii(text[literal.offset - 1]) == 'E' &&
                                                       (literal.offset < 2 || !IsWordByte(text[literal.offset - 2]))
                                                   ? 1
                                                   : 0);
  SourceLexer lexer(text, reading, before);
  const std::size_t end = literal.offset + literal.length;
  SourceToken token;
  while (lexer.Next(token) && token.part == SourcePart::Code && token.end <= end) {
    // The letters before the quotes.
  }
  // What another literal goes on with ends as it does itself.
  return !token.unfinished && (token.end == end || (reading.literalsJoin && token.end > end && !token.escapes));
}

std::string WithoutHashComments(std::string_view text, const TextReading& reading) {
  std::string plain(text);
  if (!reading.hashComments || text.find('#') == std::string_view::npos) return plain;
  SourceLexer lexer(text, reading);
  for (SourceToken token; lexer.Next(token);) {
    if (token.part == SourcePart::Comment && text[token.begin] == '#') {
      plain.replace(token.begin, token.end - token.begin, token.end - token.begin, ' ');
    }
  }
  return plain;
}

std::string WithDoubledQuotes(std::string_view text, const TextReading& reading) {
  std::string plain(text);
  if (text.find('\\') == std::string_view::npos) return plain;
  SourceLexer lexer(text, reading);
  for (SourceToken token; lexer.Next(token);) {
    if (token.part != SourcePart::Text || !token.escapes || token.unicode || token.unfinished) continue;
    for (std::size_t i = token.begin; i + 1 < token.end; ++i) {
      if (text[i] != '\\') continue;
      if (text[i + 1] == token.closing) plain[i] = token.closing;
      ++i;
    }
  }
  return plain;
}

std::optional<std::size_t> FirstReadOtherwise(std::string_view text, const TextReading& reading) {
  if (text.find('\\') == std::string_view::npos) return std::nullopt;
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    const bool isText = token.kind == TokenKind::String || (reading.doubleQuotesAreTexts && text[token.offset] == '"');
    if (isText && !token.unfinished && !ReadsAlike(text, token, reading)) return token.offset;
  }
  return std::nullopt;
}

std::optional<std::size_t> FirstCommentReadOtherwise(std::string_view text, const TextReading& reading) {
  if (text.find("--") == std::string_view::npos && text.find("/*") == std::string_view::npos) return std::nullopt;
  Lexer lexer(text);
  SourceLexer source(text, reading);
  for (;;) {
    Token token;
    SourceToken seen;
    bool found = false;
    bool foundToo = false;
    while (!found && lexer.Next(token)) found = token.kind == TokenKind::Comment;
    while (!foundToo && source.Next(seen)) {
      foundToo = seen.part == SourcePart::Comment || seen.part == SourcePart::CodeComment;
    }
    if (!found && !foundToo) return std::nullopt;
    if (!found || !foundToo) return found ? token.offset : seen.begin;
    std::size_t end = seen.end;
    if (end < text.size() && text[end] == '\n' && text[end - 1] == '\r') --end;
    if (seen.part == SourcePart::CodeComment || seen.begin != token.offset || end != token.offset + token.length) {
      return std::min(token.offset, seen.begin);
    }
  }
}

}  // namespace zrqrybld
