#include "zrqrybld/expression/placeholders.h"

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

std::size_t EndOfWord(std::string_view text, std::size_t from) {
  while (from < text.size() && IsWordByte(text[from])) ++from;
  return from;
}

// The end of the notes that follow a placeholder: ":" word "=" word.
std::size_t EndOfNotes(std::string_view text, std::size_t from) {
  while (from < text.size() && text[from] == ':') {
    const std::size_t name = EndOfWord(text, from + 1);
    if (name == from + 1 || name >= text.size() || text[name] != '=') break;
    from = EndOfWord(text, name + 1);
  }
  return from;
}

}  // namespace

TextTemplate ReadTemplate(std::string_view syntax) {
  TextTemplate result;
  char quote = 0;
  for (std::size_t at = 0; at < syntax.size();) {
    const char c = syntax[at];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '@' && EndOfWord(syntax, at + 1) > at + 1) {
      const std::size_t end = EndOfWord(syntax, at + 1);
      result.fields.push_back({result.text.size(), end - at});
      result.text += syntax.substr(at, end - at);
      at = EndOfNotes(syntax, end);
      continue;
    }
    result.text += c;
    ++at;
  }
  return result;
}

}  // namespace zrqrybld
