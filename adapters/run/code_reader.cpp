#include "adapters/run/code_reader.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace zrqrybld {

void RefuseStatement(std::string reason, std::size_t offset) {
  throw Error(ErrorParsingText, std::move(reason), offset);
}

bool CodeReader::Next(Piece& piece) {
  while (at_ < text_.size() && SkipWhiteOrComment()) {
  }
  if (at_ >= text_.size()) return false;
  const std::size_t start = at_;
  const auto byte = static_cast<unsigned char>(text_[at_]);
  if (byte < ' ' || byte == 0x7f) RefuseStatement("A control character stands between the words here.", at_);
  if (IsDigit(text_[at_])) {
    SkipNumber();
  } else if (IsWordByte(text_[at_])) {
    SkipWord();
  } else if (AtLongVariable()) {
    RefuseStatement("A variable has no value here.", at_);
  } else if (!SkipQuoted()) {
    ++at_;
  }
  piece = {start, text_.substr(start, at_ - start)};
  return true;
}

// --- White space and comments ---

bool CodeReader::AtLineComment() const {
  if (reading_.hashComments && Ahead("#")) return true;
  if (!Ahead("--")) return false;
  return !reading_.blankAfterDashes || at_ + 2 >= text_.size() || IsWhite(text_[at_ + 2]);
}

bool CodeReader::SkipWhiteOrComment() {
  if (IsWhite(text_[at_])) {
    ++at_;
  } else if (AtLineComment()) {
    SkipLineComment();
  } else if (Ahead("/*")) {
    SkipComment();
  } else {
    return false;
  }
  return true;
}

void CodeReader::SkipLineComment() {
  at_ = std::min(text_.find_first_of(reading_.returnEndsComment ? "\r\n" : "\n", at_), text_.size());
}

void CodeReader::SkipComment() {
  if (reading_.commentsHoldCode && (Ahead("/*!") || Ahead("/*M!"))) {
    RefuseStatement("What stands in this comment is run by some servers. Write it without the comment.", at_);
  }
  std::size_t depth = 0;
  do {
    if (Ahead("/*") && (depth == 0 || reading_.commentsNest)) {
      ++depth;
      at_ += 2;
    } else if (Ahead("*/")) {
      --depth;
      at_ += 2;
    } else {
      ++at_;
    }
  } while (depth > 0 && at_ < text_.size());
}

// --- Words ---

// A point belongs to the number before it. Servers differ in where a number ends that has letters behind it (for some,
// "1INTO" is a name, for others a number and INTO), so nothing that a word is made of may follow.
void CodeReader::SkipNumber() {
  const auto skip = [this](auto fits) {
    while (fits(Here())) ++at_;
  };
  const auto hasSign = [this](char sign) { return at_ + 1 < text_.size() && UpperAscii(text_[at_ + 1]) == sign; };
  if (Here() == '0' && (hasSign('X') || hasSign('B'))) {
    at_ += 2;
    skip([](char c) { return IsDigit(c) || (UpperAscii(c) >= 'A' && UpperAscii(c) <= 'F'); });
  } else {
    skip([](char c) { return IsDigit(c) || c == '.'; });
    if (UpperAscii(Here()) == 'E' && at_ + 1 < text_.size() && IsDigit(text_[at_ + 1])) {
      ++at_;
      skip(IsDigit);
    } else if (Ahead("e+") || Ahead("E+") || Ahead("e-") || Ahead("E-")) {
      at_ += 2;
      skip(IsDigit);
    }
  }
  if (IsWordByte(Here()) || Here() == '\'' || Here() == '$') RefuseStatement("Put a blank behind the number.", at_);
}

void CodeReader::SkipWord() {
  const std::size_t start = at_;
  while (IsWordByte(Here()) || Here() == '$') ++at_;
  SkipPrefixed(text_.substr(start, at_ - start));
}

// The literal or name that the word is the prefix of.
void CodeReader::SkipPrefixed(std::string_view word) {
  const bool literal = Here() == '\'';
  if (literal && reading_.freeLiterals && (EqualsNoCase(word, "Q") || EqualsNoCase(word, "NQ"))) {
    RefuseStatement("Write this literal between plain apostrophes.", at_);
  }
  if (!reading_.prefixedLiterals) return;
  if (literal && EqualsNoCase(word, "E")) {
    SkipText(true);
  } else if (literal && (EqualsNoCase(word, "B") || EqualsNoCase(word, "X"))) {
    SkipText(false);
  } else if (EqualsNoCase(word, "U") && Ahead("&'")) {
    ++at_;
    SkipText(false);
  } else if (EqualsNoCase(word, "U") && Ahead("&\"")) {
    RefuseStatement("Write this name in plain quotes: what it means cannot be told.", at_ - 1);
  }
}

bool CodeReader::AtLongVariable() const {
  if (!reading_.variables || std::string_view("$@#:").find(text_[at_]) == std::string_view::npos) return false;
  if (at_ > 0 && text_[at_ - 1] == ':') return false;  // "::" is no variable
  std::size_t end = at_ + 1;
  while (end < text_.size() && (IsWordByte(text_[end]) || text_[end] == ':')) ++end;
  return end > at_ + 1 && end < text_.size() && text_[end] == '(';
}

// --- Literals and quoted names ---

bool CodeReader::SkipQuoted() {
  switch (text_[at_]) {
    case '\'':
      SkipText(reading_.backslashes);
      return true;
    case '"':
      SkipToClosing('"', reading_.backslashesInQuotes);
      return true;
    case '`':
      if (reading_.backticks) SkipToClosing('`', false);
      return reading_.backticks;
    case '[':
      if (reading_.brackets) SkipToClosing(']', false, reading_.bracketsDouble);
      return reading_.brackets;
    case '$':
      return reading_.dollarLiterals && SkipDollarLiteral();
    default:
      return false;
  }
}

// A literal with what continues it on further lines.
void CodeReader::SkipText(bool backslashes) {
  do {
    SkipToClosing('\'', backslashes);
  } while (reading_.literalsContinue && SkipToNextLinesLiteral());
}

// From the opening character to behind the closing one; doubled it may stand for itself.
void CodeReader::SkipToClosing(char closing, bool backslashes, bool doubled) {
  for (++at_; at_ < text_.size(); ++at_) {
    if (backslashes && text_[at_] == '\\') {
      ++at_;
    } else if (text_[at_] == closing) {
      if (!doubled || at_ + 1 >= text_.size() || text_[at_ + 1] != closing) break;
      ++at_;
    }
  }
  at_ = std::min(at_ + 1, text_.size());
}

// Only white space with a line break in it, and comments to the end of a line, may lie between.
bool CodeReader::SkipToNextLinesLiteral() {
  const std::size_t start = at_;
  bool newLine = false;
  while (at_ < text_.size() && (IsWhite(text_[at_]) || Ahead("--"))) {
    if (Ahead("--")) {
      SkipLineComment();
      continue;
    }
    newLine = newLine || text_[at_] == '\n' || text_[at_] == '\r';
    ++at_;
  }
  if (newLine && Here() == '\'') return true;
  at_ = start;
  return false;
}

bool CodeReader::SkipDollarLiteral() {
  std::size_t end = at_ + 1;
  while (end < text_.size() && IsWordByte(text_[end])) ++end;
  const bool parameter = end > at_ + 1 && IsDigit(text_[at_ + 1]);
  if (end >= text_.size() || text_[end] != '$' || parameter) return false;
  const std::string_view tag = text_.substr(at_, end + 1 - at_);
  const std::size_t close = text_.find(tag, end + 1);
  at_ = close == std::string_view::npos ? text_.size() : close + tag.size();
  return true;
}

}  // namespace zrqrybld
