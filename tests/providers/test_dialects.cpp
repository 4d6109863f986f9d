// What is said of the databases' own languages, asked of the databases: their reserved words and their functions.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "tests/data_table.h"
#include "tests/providers/odbc_executor.h"
#include "tests/providers/provider_test.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/expression/placeholders.h"
#include "zrqrybld/sql/dialect_functions.h"
#include "zrqrybld/sql/dialect_words.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

struct Language {
  SQLSyntaxEnum syntax;
  std::span<const std::string_view> words;
  const char* keywords;    // asks for all words with any meaning
  std::size_t sampleCell;  // in the table of samples
};
const std::map<std::string, Language> kLanguages = {
    {"PostgreSql",
     {static_cast<SQLSyntaxEnum>(5), dialect_words::PostgreSql(), "SELECT upper(word) FROM pg_get_keywords()", 1}},
    {"MariaDb",
     {static_cast<SQLSyntaxEnum>(6), dialect_words::MySql(), "SELECT upper(word) FROM information_schema.keywords", 2}},
    {"Sqlite", {static_cast<SQLSyntaxEnum>(7), dialect_words::Sqlite(), nullptr, 3}},
};

class ProviderLanguage : public test::ProviderTest {
 protected:
  void SetUp() override {
    ProviderTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    if (language_.keywords) executor_.emplace(source_->connectionString);
  }

  // The answer, or the source's complaint.
  std::string Run(const std::string& statement) {
    try {
      const std::string answer = executor_ ? executor_->Query(statement) : source_->run(statement);
      return answer.substr(0, answer.find_last_not_of('\n') + 1);
    } catch (const std::exception& error) {
      return std::string("failed: ") + error.what();
    }
  }

  std::vector<std::string> AllKeywords() {
    std::vector<std::string> words;
    if (language_.keywords) {
      std::istringstream lines(Run(language_.keywords));
      for (std::string line; std::getline(lines, line);) words.push_back(line);
    } else {
      for (int i = 0; i < sqlite3_keyword_count(); ++i) {
        const char* text = nullptr;
        int length = 0;
        sqlite3_keyword_name(i, &text, &length);
        words.emplace_back(text, static_cast<std::size_t>(length));
      }
    }
    std::erase_if(words, [](const std::string& word) {
      return !std::ranges::all_of(word, [](char c) { return IsWordByte(c); });  // operators
    });
    return words;
  }

  // The syntax with samples for its placeholders.
  std::string Call(const DialectFunction& function) const {
    static const std::map<std::string, test::Row> samples = [] {
      std::map<std::string, test::Row> rows;
      for (const test::Row& row : test::ReadRows("function_samples.txt")) rows.emplace(row[0], row);
      return rows;
    }();
    const TextTemplate read = ReadTemplate(function.syntax);
    std::string call;
    std::size_t at = 0;
    for (const TextRange& field : read.fields) {
      const std::string placeholder = read.text.substr(field.start, field.length);
      auto sample = samples.find(std::string(function.name) + " " + placeholder);
      if (sample == samples.end()) sample = samples.find(placeholder);
      call += read.text.substr(at, field.start - at);
      call += sample == samples.end() ? placeholder : sample->second[language_.sampleCell];
      at = field.start + field.length;
    }
    return call + read.text.substr(at);
  }

  const Language& language_ = kLanguages.at(GetParam());
  std::optional<test::OdbcExecutor> executor_;
};

INSTANTIATE_TEST_SUITE_P(All, ProviderLanguage, testing::Values("PostgreSql", "MariaDb", "Sqlite"),
                         [](const auto& test) { return test.param; });

TEST_P(ProviderLanguage, AWordThatIsNotReservedNamesATableAndAColumnWithoutQuotes) {
  const std::vector<std::string> all = AllKeywords();
  ASSERT_GT(all.size(), 100U);
  std::size_t reserved = 0;
  for (const std::string& word : all) {
    if (std::ranges::binary_search(language_.words, std::string_view(word))) {
      ++reserved;
      continue;
    }
    const std::string statement = "WITH " + word + " AS (SELECT 7 AS " + word + ") SELECT " + word + " FROM " + word +
                                  " AS " + word + " WHERE " + word + " = 7 ORDER BY " + word;
    EXPECT_EQ(Run(statement), "7") << statement;
  }
  EXPECT_GT(reserved, 50U);
}

TEST_P(ProviderLanguage, EveryFunctionIsKnownAndGivesAValue) {
  for (const DialectFunction& function : DialectFunctions(language_.syntax)) {
    const std::string statement =
        "SELECT " + Call(function) +
        " AS x FROM (SELECT 1 AS n, 'a' AS t UNION ALL SELECT 2, 'a' UNION ALL SELECT 3, 'b') q";
    const std::string answer = Run(statement);
    EXPECT_FALSE(answer.starts_with("failed: ")) << statement << "\n" << answer;
    const std::string withoutNulls = ReplaceAll(ReplaceAll(answer, "NULL", ""), "\n", "");
    EXPECT_NE(withoutNulls, "") << statement << "\n" << answer;
  }
}

}  // namespace
}  // namespace zrqrybld
