// What a join is called, and its kind with the signs that show it.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/diagram/relationship.h"

namespace zrqrybld {

/// What a join of this kind returns, in words: "All rows from Orders, and the matching rows from Customers."
Phrase DescribeJoin(const std::string& source, const std::string& target, JoinKind kind);

/// The two ends of a relationship with its comparison: "Order.CustomerID = Customers.CustomerID". Captions alone for
/// columns not set.
std::string DescribeEnds(const qbRelationship& relationship);

/// Whether it compares no columns and asks only a condition, as typed statements may.
bool IsConditionAlone(const qbRelationship& relationship);

/// All that the relationships of a whole ask besides their columns, together.
std::string ConditionOf(const std::vector<Ref<qbRelationship>>& pairs);

/// The relationships of a whole in words: "Orders.ID = Lines.OrderID and Orders.Date >= Lines.Since, and: Lines.Open =
/// 1". Of very many pairs the number of those that are left out.
Phrase DescribePairs(const std::vector<Ref<qbRelationship>>& pairs);

/// Sets the kind of a join and the signs at its line's ends.
void SetJoinKind(qbRelationship& relationship, JoinKind kind);

}  // namespace zrqrybld
