// qbUtility: helpers that an application may use without a designer.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

class qbQueryBuilder;

class ZRQRYBLD_API qbUtility final : public Object {
 public:
  /// `toolkit` knows the providers whose data sources are listed; without one there are none.
  static Ref<qbUtility> Create(std::shared_ptr<Toolkit> toolkit = nullptr);
  std::string_view TypeName() const override { return "qbUtility"; }

  /// The names of the data sources configured on this machine, of all providers or of the drivers with
  /// this name in any letter case.
  std::vector<std::string> GetAvailableDSNs(const std::optional<std::string>& driverName = std::nullopt) const;

  /// The expression with the quotes around its identifiers taken off, by the hub's quoting characters and the usual
  /// ones. String literals are left alone.
  std::string RemoveQuotedIdentifiers(const qbQueryBuilder& queryBuilder, const std::string& expression) const;

 private:
  explicit qbUtility(std::shared_ptr<Toolkit> toolkit) : toolkit_(std::move(toolkit)) {}

  std::shared_ptr<Toolkit> toolkit_;
};

}  // namespace zrqrybld
