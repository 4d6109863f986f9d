#include "zrqrybld/sql/lexer.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/data_table.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

char LetterOf(const Token& token) { return "WISDNOPC"[static_cast<std::size_t>(token.kind)]; }

// Each token as its kind's letter, "!" when it is unfinished, and its text.
std::string Described(std::string_view text) {
  std::string result;
  for (const Token& token : Tokenize(text)) {
    if (!result.empty()) result += '~';
    result += LetterOf(token);
    if (token.unfinished) result += '!';
    result += text.substr(token.offset, token.length);
  }
  return result;
}

TEST(Lexer, ReadsEachKindOfToken) {
  for (const test::Row& row : test::ReadRows("tokens.txt")) {
    SCOPED_TRACE(row.place);
    EXPECT_EQ(Described(row[0]), row[1]);
  }
}

// Whatever the bytes, the tokens and the white space between them are the text.
TEST(Lexer, CoversAnyBytes) {
  constexpr std::string_view kPieces[] = {"'",    "\"", "[", "]",  "`",  "--",    "/*", "*/", "\r",  "\n",   "#",
                                          "1",    "0x", "e", ".",  "?P", "ARAM(", ")",  "N'", "||",  "\xE2", "\0",
                                          "\xFF", "ab", " ", "\t", "@",  "$",     "<",  ">",  "1e+", "{d",   "\v"};
  std::mt19937 random(5);
  for (int i = 0; i < 20'000; ++i) {
    std::string text;
    for (std::size_t n = random() % 12; n > 0; --n) text += kPieces[random() % std::size(kPieces)];
    if (i % 4 == 0) text += static_cast<char>(random() % 256);
    std::size_t at = 0;
    const auto expectWhite = [&](std::size_t end) {
      for (; at < end; ++at) ASSERT_TRUE(IsWhite(text[at])) << "lost: " << text;
    };
    for (const Token& token : Tokenize(text)) {
      ASSERT_GT(token.length, 0u) << text;
      ASSERT_GE(token.offset, at) << text;
      expectWhite(token.offset);
      at = token.offset + token.length;
      ASSERT_LE(at, text.size());
      ASSERT_TRUE(!token.unfinished || at == text.size()) << text;
    }
    expectWhite(text.size());
  }
}

}  // namespace
}  // namespace zrqrybld
