// The join properties dialog: its texts, and what they say about a choice. The window is the toolkit's.
#pragma once

#include <string>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/diagram/relationship.h"

namespace zrqrybld {

struct QueryContext;

/// What a join of this kind returns, in words: "All rows from Orders, and the matching rows from Customers."
Phrase DescribeJoin(const std::string& source, const std::string& target, JoinKind kind);

/// The two ends of a join, in words: "Order.CustomerID = Customers.CustomerID". Captions alone for columns not set.
std::string DescribeEnds(const qbRelationship& relationship);

/// Lets the user edit the join's kind. Returns whether it was accepted; the kind and the signs at the line's ends are
/// set then.
bool EditJoin(QueryContext& context, qbRelationship& relationship);

/// Sets the kind of a join and the signs at its line's ends.
void SetJoinKind(qbRelationship& relationship, JoinKind kind);

}  // namespace zrqrybld
