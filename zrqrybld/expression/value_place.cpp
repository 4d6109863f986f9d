#include "zrqrybld/expression/value_place.h"

#include <algorithm>
#include <initializer_list>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

bool IsWordByte(char c) {
  const char lower = static_cast<char>(c | 0x20);
  return (lower >= 'a' && lower <= 'z') || IsDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::ranges::any_of(words, [word](std::string_view each) { return EqualsNoCase(word, each); });
}

// Reads a criterion up to the caret.
class Reader {
 public:
  Reader(std::string_view text, std::size_t caret) : text_(text), caret_(caret) {}

  std::optional<ValuePlace> Read() {
    for (std::size_t i = 0; i < caret_;) {
      if (text_[i] == '\'' || text_[i] == '"') {
        quote_ = i;
        i = EndOfLiteral(i);
        if (i > caret_ || !closed_) return InQuotes();
        inside_ = true;
      } else if (IsWordByte(text_[i])) {
        i = TakeWord(i);
      } else {
        TakeSign(i++);
      }
    }
    return Plain();
  }

 private:
  // Behind the closing quote, or the end of the text.
  std::size_t EndOfLiteral(std::size_t begin) {
    const char quote = text_[begin];
    for (std::size_t i = begin + 1; i < text_.size(); ++i) {
      if (text_[i] != quote) continue;
      closed_ = true;
      if (i + 1 < text_.size() && text_[i + 1] == quote) {
        ++i;
      } else {
        return i + 1;
      }
    }
    closed_ = false;
    return text_.size();
  }

  // What words open a place for a value, as soon as they are complete.
  std::size_t TakeWord(std::size_t begin) {
    std::size_t end = begin;
    while (end < text_.size() && IsWordByte(text_[end])) ++end;
    const std::string_view word = text_.substr(begin, end - begin);
    if (end >= caret_) return caret_;
    if (IsOneOf(word, {"AND", "OR", "NOT", "LIKE", "ILIKE", "BETWEEN"})) {
      Begin(end);
    } else if (IsOneOf(word, {"IS", "IN", "ESCAPE", "EXISTS", "SELECT"})) {
      inside_ = true;
    }
    return end;
  }

  void TakeSign(std::size_t at) {
    const char sign = text_[at];
    if (sign == '=' || sign == '<' || sign == '>' || sign == '(' || sign == ',') {
      Begin(at + 1);
    } else if (std::string_view("+*/|%&^)[]{}").find(sign) != std::string_view::npos) {
      inside_ = true;
    }
  }

  void Begin(std::size_t at) {
    begin_ = at;
    inside_ = false;
  }

  std::size_t From() const {
    std::size_t from = begin_;
    while (from < caret_ && IsWhite(text_[from])) ++from;
    return from;
  }

  std::optional<ValuePlace> InQuotes() const {
    if (inside_ || From() != quote_) return std::nullopt;
    const std::string quote(1, text_[quote_]);
    const std::string_view typed = text_.substr(quote_ + 1, caret_ - quote_ - 1);
    Reader whole(text_, caret_);
    return ValuePlace{quote_, whole.EndOfLiteral(quote_), ReplaceAll(std::string(typed), quote + quote, quote)};
  }

  std::optional<ValuePlace> Plain() const {
    if (inside_) return std::nullopt;
    std::size_t to = caret_;
    while (to < text_.size() && (IsWordByte(text_[to]) || text_[to] == '.' || text_[to] == '-')) ++to;
    return ValuePlace{From(), to, std::string(text_.substr(From(), caret_ - From()))};
  }

  std::string_view text_;
  std::size_t caret_;
  std::size_t begin_ = 0;  // behind what a value is compared by
  std::size_t quote_ = 0;  // of the last literal
  bool closed_ = true;
  bool inside_ = false;  // what stands there is complete, or no plain value
};

}  // namespace

std::optional<ValuePlace> FindValuePlace(std::string_view text, std::size_t caret) {
  return Reader(text, std::min(caret, text.size())).Read();
}

}  // namespace zrqrybld
