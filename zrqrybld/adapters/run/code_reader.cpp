#include "zrqrybld/adapters/run/code_reader.h"

#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld {
namespace {

bool IsControl(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

}  // namespace

void RefuseStatement(Phrase reason, std::size_t offset) { throw Error(ErrorParsingText, std::move(reason), offset); }

CodeReader::CodeReader(std::string_view text, const KnownReading& reading)
    : text_(text), family_(reading.family), reading_(reading.text) {
  reading_.hashDates = false;  // what stands between number signs is looked at, too
}

bool CodeReader::Next(Piece& piece) {
  SourceLexer lexer(text_, reading_, at_);
  SourceToken token;
  do {
    if (!lexer.Next(token)) return false;
    RequireClear(token);
    if (MakesComment(token)) RefuseStatement(text::BlankBetweenDashes, at_ - 1);
  } while (token.part == SourcePart::Comment);
  at_ = IsDigit(text_[token.begin]) ? EndOfNumber(token.begin) : token.end;
  piece = {token.begin, text_.substr(token.begin, at_ - token.begin)};
  return true;
}

void CodeReader::RequireClear(const SourceToken& token) const {
  switch (token.part) {
    case SourcePart::CodeComment:
      RefuseStatement(text::RunByComment, token.begin);
    case SourcePart::Comment:
      if (token.end > token.begin + 2 && IsControl(text_[token.begin + 2]) && !IsWhite(text_[token.begin + 2])) {
        RefuseStatement(text::ControlInComment, token.begin + 2);
      }
      return;
    case SourcePart::Name:
      if (!token.unicode) return;
      RefuseStatement(text::NameUnclear, token.begin);
    case SourcePart::Raw:
      if (text_[token.begin] == '$') return;
      RefuseStatement(text::LiteralUnclear, text_.find('\'', token.begin));
    case SourcePart::Code:
      return RequireClearCode(token.begin);
    default:
      return;
  }
}

void CodeReader::RequireClearCode(std::size_t begin) const {
  if (IsControl(text_[begin])) RefuseStatement(text::ControlInCode, begin);
  if (family_ == SourceFamily::Sqlite && IsLongVariable(begin)) {
    RefuseStatement(text::VariableWithoutValue, begin);
  }
}

// Whether this is sent as a blank and stands right behind two minus signs: where a blank makes a comment of them, the
// rest of the line would be lost.
bool CodeReader::MakesComment(const SourceToken& token) const {
  const bool vanishes = token.part == SourcePart::Comment || text_[token.begin] == ';';
  return vanishes && reading_.blankAfterDashes && token.begin == at_ && text_.substr(0, at_).ends_with("--");
}

// $name(...) is one variable of SQLite, whatever the parentheses hold.
bool CodeReader::IsLongVariable(std::size_t begin) const {
  if (std::string_view("$@#:").find(text_[begin]) == std::string_view::npos) return false;
  if (begin > 0 && text_[begin - 1] == ':') return false;  // "::" is no variable
  std::size_t end = begin + 1;
  while (end < text_.size() && (IsWordByte(text_[end]) || text_[end] == ':')) ++end;
  return end > begin + 1 && end < text_.size() && text_[end] == '(';
}

// A point belongs to the number before it. Servers differ in where a number ends that has letters behind it (for some,
// "1INTO" is a name, for others a number and INTO), so nothing that a word is made of may follow.
std::size_t CodeReader::EndOfNumber(std::size_t begin) const {
  std::size_t end = begin;
  const auto here = [&](std::size_t ahead = 0) { return end + ahead < text_.size() ? text_[end + ahead] : '\0'; };
  const auto skip = [&](auto fits) {
    while (fits(here())) ++end;
  };
  const char sign = UpperAscii(here(1));
  if (here() == '0' && (sign == 'X' || sign == 'B')) {
    end += 2;
    skip([](char c) { return IsDigit(c) || (UpperAscii(c) >= 'A' && UpperAscii(c) <= 'F'); });
  } else {
    skip([](char c) { return IsDigit(c) || c == '.'; });
    const bool isSigned = here(1) == '+' || here(1) == '-';
    if (UpperAscii(here()) == 'E' && (isSigned || IsDigit(here(1)))) {
      end += isSigned ? 2 : 1;
      skip(IsDigit);
    }
  }
  if (IsWordByte(here()) || here() == '\'' || here() == '$') RefuseStatement(text::BlankBehindNumber, end);
  return end;
}

}  // namespace zrqrybld
