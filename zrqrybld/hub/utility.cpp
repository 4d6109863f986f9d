#include "zrqrybld/hub/utility.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/names.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {

Ref<qbUtility> qbUtility::Create(std::shared_ptr<Toolkit> toolkit) {
  if (!toolkit) toolkit = std::make_shared<HeadlessToolkit>();
  return Ref<qbUtility>(new qbUtility(std::move(toolkit)));
}

std::vector<std::string> qbUtility::GetAvailableDSNs(const std::optional<std::string>& driverName) const {
  std::vector<std::string> names;
  for (const DataSourceName& source : toolkit_->Providers()->DataSources()) {
    if (!driverName || EqualsNoCase(source.driver, *driverName)) names.push_back(source.name);
  }
  return names;
}

std::string qbUtility::RemoveQuotedIdentifiers(const qbQueryBuilder& queryBuilder,
                                               const std::string& expression) const {
  return RemoveIdentifierQuotes(expression, CurrentNameRules(queryBuilder));
}

}  // namespace zrqrybld
