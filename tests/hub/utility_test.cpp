#include "zrqrybld/hub/utility.h"

#include <gtest/gtest.h>

#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"

namespace zrqrybld {
namespace {

class ConfiguredProvider final : public Provider {
 public:
  std::string_view Name() const override { return "Configured"; }
  bool Accepts(const ConnectionString&) const override { return false; }
  std::unique_ptr<Session> Open(const ConnectionString&, std::string_view, std::string_view) override {
    return nullptr;
  }
  std::vector<DataSourceName> DataSources() override { return {{"shop", "SQLite3"}, {"stock", "PostgreSQL Unicode"}}; }
};

TEST(Utility, ListsTheDataSourcesOfADriverInAnyLetterCase) {
  const auto toolkit = std::make_shared<HeadlessToolkit>();
  const Ref<qbUtility> utility = qbUtility::Create(toolkit);
  EXPECT_TRUE(utility->GetAvailableDSNs().empty());
  toolkit->Providers()->Register(std::make_shared<ConfiguredProvider>());
  EXPECT_EQ(utility->GetAvailableDSNs(), (std::vector<std::string>{"shop", "stock"}));
  EXPECT_EQ(utility->GetAvailableDSNs("sqlite3"), std::vector<std::string>{"shop"});
  EXPECT_TRUE(utility->GetAvailableDSNs("").empty());
}

TEST(Utility, TakesTheHubsQuotesOffIdentifiersButNotOffLiterals) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  const Ref<qbUtility> utility = qbUtility::Create();
  EXPECT_EQ(utility->RemoveQuotedIdentifiers(*hub, "[Order Details].\"Unit \"\"Price\" = '[x]' + `a"),
            "Order Details.Unit \"Price = '[x]' + `a");
  hub->Properties()->Set("QUOTE_PREFIX", "<");
  hub->Properties()->Set("QUOTE_SUFFIX", ">");
  EXPECT_EQ(utility->RemoveQuotedIdentifiers(*hub, "<a>>b>.<c>"), "a>b.c");
}

}  // namespace
}  // namespace zrqrybld
