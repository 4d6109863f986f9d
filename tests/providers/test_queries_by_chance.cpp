// Statements of several queries made by chance: they run on every server as they were typed, and as they are written.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

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
  void TearDown() override {
    if (IsSkipped() || HasFatalFailure()) return;
    for (const char* table : {"chance_qt", "chance_qu", "chance_qv"})
      source_->query("DROP TABLE " + std::string(table));
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, ProviderQueries, testing::Values("PostgreSql", "MariaDb"),
                         [](const auto& test) { return test.param; });

TEST_P(ProviderQueries, AreWrittenAnewWithTheRowsOfTheOriginal) {
  for (const std::string& line : test::QueryTables("chance_")) source_->query(line);
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  test::LinkPanes(*hub);
  test::RegisterProviders(*hub->GetToolkit().Providers());
  hub->Connect(source_->connectionString);
  ASSERT_FALSE(hub->LastError());
  const test::QueryTarget target{hub->SourceDialect()->syntax, true, "chance_", [this](const std::string& sql) {
                                   std::vector<std::string> lines;
                                   std::istringstream stream(source_->run(sql));
                                   for (std::string line; std::getline(stream, line);) lines.push_back(line);
                                   return lines;
                                 }};
  std::cout << test::TryQueries(*hub, target, 60, 1) << "\n";
}

}  // namespace
}  // namespace zrqrybld
