// Any bytes: the tokens and the white space between them are the text.
#include <cstdlib>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zrqrybld;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::size_t at = 0;
  const auto skipWhite = [&](std::size_t end) {
    while (at < end) {
      const std::size_t blank = IsWhite(text[at]) ? 1 : UnicodeBlankAt(text, at);
      if (blank == 0) std::abort();
      at += blank;
    }
  };
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    if (token.length == 0 || token.offset < at) std::abort();
    skipWhite(token.offset);
    at = token.offset + token.length;
    if (at > size || (token.unfinished && at != size)) std::abort();
  }
  skipWhite(size);
  return 0;
}
