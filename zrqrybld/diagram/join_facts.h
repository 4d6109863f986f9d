// JoinFacts: all that a join says, as a value.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/platform/image.h"
#include "zrqrybld/sql/join_comparison.h"
#include "zrqrybld/sql/join_kind.h"

namespace zrqrybld {

class qbRelationship;

/// Whether an end of a join line shows a picture.
enum RelationshipIndicatorStyle : std::int32_t { IndicatorNone = 0, IndicatorImage = 1 };

/// What a join says, besides its ends.
struct JoinFacts {
  Variant itemData;
  Variant sourceItemIndex;
  Variant targetItemIndex;
  RelationshipIndicatorStyle leftIndicator = IndicatorNone;
  RelationshipIndicatorStyle rightIndicator = IndicatorNone;
  Ref<Image> leftPicture;
  Ref<Image> rightPicture;
  JoinComparisonEnum comparison = JoinEqual;
  std::string condition;        ///< what else the join asks, as SQL on one line
  std::int32_t groupLevel = 0;  ///< in how many groups of tables that are joined first it stands
  JoinExistenceEnum existence = JoinReturnsRows;

  /// Whether it asks more than how two columns compare.
  bool AsksMore() const { return !condition.empty() || existence != JoinReturnsRows; }
  friend bool operator==(const JoinFacts&, const JoinFacts&) = default;
};

/// A join of the diagram, also while it is not there.
struct JoinIdentity {
  WeakRef<qbRelationship> live;  ///< nothing while it is removed
};

}  // namespace zrqrybld
