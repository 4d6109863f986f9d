#include "zrqrybld/base/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/data_table.h"

namespace zrqrybld {
namespace {

using test::ReadRows;
using test::Row;

TEST(Text, CaseFollowsUnicodeSimpleFolding) {
  for (const Row& row : ReadRows("folding.txt")) {
    SCOPED_TRACE(row.place);
    EXPECT_EQ(EqualsNoCase(row[0], row[1]), row[2] == "=");
    EXPECT_EQ(EqualsNoCase(row[1], row[0]), row[2] == "=");
    EXPECT_EQ(FoldCase(row[0]) == FoldCase(row[1]), row[2] == "=");  // what look-ups by key compare
  }
}

TEST(Text, FoldingTheWholeOfUnicode) {
  int folded = 0;
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c < 0xE000) continue;
    std::string text;
    AppendUtf8(text, c);
    std::size_t end = 0;
    ASSERT_EQ(DecodeUtf8(text, end), c);
    ASSERT_EQ(end, text.size());
    const std::string once = FoldCase(text);
    ASSERT_EQ(FoldCase(once), once) << "U+" << std::hex << static_cast<std::uint32_t>(c);
    folded += once != text;
  }
  EXPECT_EQ(folded, 1454);  // the C and S rows of CaseFolding-15.0.0.txt
}

TEST(Text, BytesThatAreNoUtf8PassThrough) {
  std::mt19937 random(7);
  for (int i = 0; i < 20'000; ++i) {
    std::string text;
    for (std::size_t length = random() % 8; length > 0; --length) {
      text += static_cast<char>(random() % 3 ? 0x80 + random() % 0x80 : 'a' + random() % 26);
    }
    const std::string folded = FoldCase(text);
    ASSERT_EQ(FoldCase(folded), folded);
    ASSERT_EQ(CharacterCount(folded), CharacterCount(text));
    std::size_t previous = 0;
    for (std::size_t count = 0; count <= text.size(); ++count) {  // prefixes end between characters
      const std::size_t size = FirstCharacters(text, count).size();
      ASSERT_LE(size - previous, 4u);
      previous = size;
    }
    ASSERT_EQ(previous, text.size());
  }
}

TEST(Text, SplitsOutsideQuotesAndBrackets) {
  for (const Row& row : ReadRows("split.txt")) {
    SCOPED_TRACE(row.place);
    std::string joined;
    std::size_t bytes = 0;
    for (const std::string_view piece : SplitOutsideQuotes(row[1], row[0])) {
      joined += (bytes > 0 ? "¦" : "") + std::string(piece);
      bytes += piece.size() + row[0].size();
    }
    EXPECT_EQ(joined, row[2]);
    EXPECT_EQ(bytes, row[1].size() + row[0].size());  // nothing is lost
  }
  EXPECT_EQ(SplitOutsideQuotes("a.b", "").size(), 1u);
  // Far more brackets than a statement has, none of them closed, in no noticeable time.
  EXPECT_EQ(SplitOutsideQuotes(std::string(200'000, '(') + ".", ".").size(), 2u);
}

TEST(Text, NumbersAreReadStrictlyAndWrittenShortest) {
  for (const Row& row : ReadRows("numbers.txt")) {
    SCOPED_TRACE(row.place + " " + row[0]);
    const std::optional<double> number = ParseNumber(row[0]);
    EXPECT_EQ(number ? NumberText(*number) : "-", row[1]);
  }
}

TEST(Text, EveryDoubleReadsBackAsItself) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 50'000; ++i) {
    const std::uint64_t bits = i % 4 ? random() : random() & 0x800FFFFFFFFFFFFF;  // every fourth is denormal
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    const std::optional<double> back = ParseNumber(NumberText(value));
    ASSERT_TRUE(back) << NumberText(value);
    ASSERT_EQ(std::memcmp(&*back, &value, sizeof value), 0) << NumberText(value);
  }
}

TEST(Text, LeadingNumberStopsAtTheFirstOddCharacter) {
  const std::pair<const char*, double> cases[] = {{"12 rows", 12}, {"  -3.5%", -3.5}, {"1e2x", 100}, {"1e", 1},
                                                  {"0x10", 0},     {"+7", 7},         {"", 0},       {"x1", 0},
                                                  {"-", 0},        {"nan", 0}};
  for (const auto& [text, number] : cases) EXPECT_EQ(LeadingNumber(text), number) << text;
}

TEST(Text, ReplacesWithoutCaseButNeverItsOwnResult) {
  EXPECT_EQ(ReplaceNoCase("%Table1% = %TABLE1%.id", "%table1%", "%TABLE1%x"), "%TABLE1%x = %TABLE1%x.id");
  EXPECT_EQ(ReplaceNoCase("aAa", "aa", "b"), "ba");
  EXPECT_EQ(ReplaceNoCase("éÉ", "É", "e"), "ée");  // letters beyond ASCII exactly
  EXPECT_EQ(ReplaceNoCase("abc", "", "x"), "abc");
  EXPECT_EQ(ReplaceAll("''", "'", "''"), "''''");
  EXPECT_EQ(ReplaceAll("aA", "a", ""), "A");
}

TEST(Text, FindsWithoutCaseFromAnyPlace) {
  constexpr std::size_t kNone = std::string_view::npos;
  const std::tuple<const char*, const char*, std::size_t, std::size_t> cases[] = {
      {"from FROM", "from", 1, 5}, {"from", "FROM", 0, 0}, {"from", "m", 3, 3}, {"from", "m", 4, kNone},
      {"from", "", 4, 4},          {"from", "", 5, kNone}, {"", "a", 0, kNone}, {"ab", "abc", 0, kNone}};
  for (const auto& [text, needle, from, at] : cases) EXPECT_EQ(FindNoCase(text, needle, from), at) << text << needle;
}

TEST(Text, TrimsOnlyWhatItSays) {
  EXPECT_EQ(Trim(" \ta \t "), "\ta \t");
  EXPECT_EQ(TrimWhite(" \r\n\ta b\v\f "), "a b");
  EXPECT_EQ(Trim("   "), "");
  EXPECT_EQ(TrimWhite("\t\r\n"), "");
  EXPECT_EQ(Trim("\u00a0a"), "\u00a0a");
}

}  // namespace
}  // namespace zrqrybld
