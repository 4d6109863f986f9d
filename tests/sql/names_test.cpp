#include "zrqrybld/sql/names.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/data_table.h"
#include "tests/sql/name_rules.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

std::string Joined(const std::vector<Identifier>& parts) {
  std::string text;
  for (const Identifier& part : parts) text += (&part == &parts.front() ? "" : "¦") + part.Name();
  return text;
}

TEST(Names, AreWrittenSplitAndBared) {
  for (const test::Row& row : test::ReadRows("names.txt")) {
    SCOPED_TRACE(row.place);
    const NameRules rules = test::RulesOf(row[1]);
    std::string result = "no such action";
    if (row[0] == "write") result = QuoteWhenNeeded(Identifier(row[2]), rules).Text();
    if (row[0] == "split") result = Joined(SplitName(row[2], rules));
    if (row[0] == "bare") result = RemoveIdentifierQuotes(row[2], rules);
    EXPECT_EQ(result, row[3]);
  }
}

std::string HostileName(std::mt19937& random) {
  constexpr std::string_view kPieces[] = {"a",  "Z", "_", "7",  ".",  "[",    "]",  "\"", "`",     "'",        " ",
                                          "\t", "*", "-", "--", "/*", "\r\n", "¦",  "ß",  "count", "\xC3\x28", "(",
                                          ")",  ",", ";", "$",  "#",  "@",    "?P", "]]", "\"\"",  "order"};
  std::string name;
  for (std::size_t n = random() % 6; n > 0; --n) name += kPieces[random() % std::size(kPieces)];
  return name;
}

TEST(Names, AnyNameMakesTheRoundTrip) {
  std::mt19937 random(11);
  for (const char* kind : {"brackets", "ansi", "backticks", "picky", "none"}) {
    const NameRules rules = test::RulesOf(kind);
    for (int i = 0; i < 4000; ++i) {
      std::vector<Identifier> parts;
      const std::size_t count = rules.schemaSeparator.empty() ? 1 : 1 + random() % 3;
      while (parts.size() < count) parts.emplace_back(HostileName(random));
      const std::string written = RenderQualified(parts, rules).Text();
      ASSERT_EQ(SplitName(written, rules), parts) << kind << ": " << written;
      // What reads SQL sees the same names: one token each, with "." between them.
      if (parts.front().Name() == "*") continue;
      const std::vector<Token> tokens = Tokenize(written);
      ASSERT_EQ(tokens.size(), parts.size() * 2 - 1) << written;
    }
  }
}

}  // namespace
}  // namespace zrqrybld
