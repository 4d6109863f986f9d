// Conditions made by chance (the same in each run), up to five deep and full of Nulls: from the grid into the tree and
// back, turned round on the way, they choose the rows of the original.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/flow/queries_by_chance.h"

namespace zrqrybld::test {

class Chance;

/// A condition of AND, OR, NOT and parentheses, so deep at most, over the given comparisons.
std::string ConditionByChance(Chance& chance, int depth, const std::function<std::string()>& comparison);

/// The tables that the conditions name, as a script for any server.
std::vector<std::string> ConditionTables(const std::string& prefix);

/// Types statements with such conditions into the designer, which is connected to where they run. Adds a failure for
/// each whose tree, set as it is, changes the statement, which gives other rows when it is turned round, or does not
/// come back by undo. Returns a line of figures.
std::string TryConditions(qbQueryBuilder& hub, const QueryTarget& target, unsigned count);

}  // namespace zrqrybld::test
