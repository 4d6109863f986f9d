// Statements of several queries, and conditions, made by chance: they run on every server as they were typed, and as
// they are written.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

#include "tests/flow/conditions_by_chance.h"
#include "tests/flow/queries_by_chance.h"
#include "tests/link_panes.h"
#include "tests/providers/provider_test.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

using test::Difference;

class ProviderQueries : public test::ProviderTest {
 protected:
  // A designer over the tables of the script, which go with the test.
  test::QueryTarget Open(const std::vector<std::string>& script) {
    for (const std::string& line : script) source_->query(line);
    test::LinkPanes(*hub_);
    test::RegisterProviders(*hub_->GetToolkit().Providers());
    hub_->Connect(source_->connectionString);
    EXPECT_FALSE(hub_->LastError());
    const Dialect& dialect = *hub_->SourceDialect();
    return {.syntax = dialect.syntax,
            .hasParentheses = true,
            .hasAnyAndAll = true,
            .namesColumns = dialect.queries.namesColumns,
            .prefix = "chance_",
            .run = [this](const std::string& sql) {
              std::vector<std::string> lines;
              std::istringstream stream(source_->run(sql));
              for (std::string line; std::getline(stream, line);) lines.push_back(line);
              return lines;
            }};
  }

  void TearDown() override {
    if (IsSkipped() || HasFatalFailure()) return;
    hub_->Disconnect();
    for (const char* table : {"qt", "qu", "qv", "t", "u", "v"}) {
      source_->query("DROP TABLE IF EXISTS chance_" + std::string(table));
    }
  }

  Ref<qbQueryBuilder> hub_ = qbQueryBuilder::Create();
};

INSTANTIATE_TEST_SUITE_P(Servers, ProviderQueries, testing::Values("PostgreSql", "MariaDb"),
                         [](const auto& test) { return test.param; });

unsigned CountIn(const char* variable) {
  const char* const wished = std::getenv(variable);
  return wished ? static_cast<unsigned>(std::atoi(wished)) : 40;
}

// ZRQRYBLD_QUERIES=3000 goes on, and so does ZRQRYBLD_CONDITIONS.
TEST_P(ProviderQueries, AreWrittenAnewWithTheRowsOfTheOriginal) {
  const test::QueryTarget target = Open(test::QueryTables("chance_"));
  std::cout << test::TryQueries(*hub_, target, CountIn("ZRQRYBLD_QUERIES"), 1) << "\n";
}

TEST_P(ProviderQueries, MeanTheSameInGridAndTree) {
  const test::QueryTarget target = Open(test::ConditionTables("chance_"));
  std::cout << test::TryConditions(*hub_, target, CountIn("ZRQRYBLD_CONDITIONS")) << "\n";
}

}  // namespace
}  // namespace zrqrybld
