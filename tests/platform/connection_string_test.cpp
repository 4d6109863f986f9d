#include "zrqrybld/platform/connection_string.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/data_table.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/connection_policy.h"

namespace zrqrybld {
namespace {

std::string Describe(const ConnectionString& parsed) {
  std::string text;
  for (const auto& [key, value] : parsed.Parts()) text += (text.empty() ? "" : "¦") + key + "=" + value;
  return text;
}

TEST(ConnectionString, ReadsAnyTextAndLosesPasswords) {
  for (const test::Row& row : test::ReadRows("connection_strings.txt")) {
    SCOPED_TRACE(row.place + " " + row[0]);
    const ConnectionString parsed(row[0]);
    EXPECT_EQ(Trim(Describe(parsed)), row[1]);
    EXPECT_EQ(parsed.WithoutPassword(), row[2]);
    for (const std::string& shown : {parsed.WithoutPassword(), parsed.Masked()}) {
      EXPECT_EQ(shown.find("s3cret"), std::string::npos) << shown;
    }
    EXPECT_EQ(parsed.HoldsSecret(), parsed.Masked().find("***") != std::string::npos);
  }
}

TEST(ConnectionPolicy, JudgesByWhoWroteTheString) {
  const std::vector<std::string> drivers = {"PostgreSQL Unicode", "MariaDB Unicode", "SQLite3",
                                            "Access (*.mdb, *.accdb)"};
  constexpr const char* kVerdicts[] = {"open", "warn", "refuse"};
  for (const test::Row& row : test::ReadRows("connection_policy.txt")) {
    SCOPED_TRACE(row.place + " " + row[0]);
    for (const auto origin : {ConnectionOrigin::File, ConnectionOrigin::Person, ConnectionOrigin::Program}) {
      const ConnectionJudgement judgement = JudgeConnection(row[1], origin, drivers);
      EXPECT_EQ(kVerdicts[static_cast<int>(judgement.verdict)], row[2 + static_cast<std::size_t>(origin)])
          << judgement.reason.English();
      EXPECT_EQ(judgement.reason.Empty(), judgement.verdict == ConnectionVerdict::Open);
      EXPECT_EQ(judgement.reason.English().find("victim"), std::string::npos) << "a value is shown";
    }
  }
  const std::string longest = "DSN=" + std::string(1 << 20, '=');
  EXPECT_EQ(JudgeConnection(longest, ConnectionOrigin::File, drivers).verdict, ConnectionVerdict::Refuse);
}

TEST(ConnectionString, KeysHaveNoCaseAndTheFirstWins) {
  const ConnectionString parsed("Data Source=a;DATA SOURCE=b;empty");
  EXPECT_EQ(parsed.Get("data source"), "a");
  EXPECT_EQ(parsed.Get("Empty"), "");
  EXPECT_EQ(parsed.Get("Data"), std::nullopt);
}

TEST(ConnectionString, EveryQuotedValueReadsBackAsItself) {
  constexpr std::string_view kCharacters = "ab \t\r\n;='\"{}[]";
  std::mt19937 random(5);
  for (int i = 0; i < 20'000; ++i) {
    std::string value;
    for (std::size_t length = random() % 6; length > 0; --length) value += kCharacters[random() % kCharacters.size()];
    const ConnectionString parsed("A=" + ConnectionString::QuoteValue(value) + ";B=1");
    ASSERT_EQ(parsed.Get("A"), value) << ConnectionString::QuoteValue(value);
    ASSERT_EQ(parsed.Get("B"), "1") << ConnectionString::QuoteValue(value);
  }
}

}  // namespace
}  // namespace zrqrybld
