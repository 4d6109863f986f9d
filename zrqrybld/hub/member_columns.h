// What the members of a UNION output, side by side.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

class qbQueryBuilder;

/// A column at its place among those of a member.
struct MemberColumn {
  std::string name;      ///< its alias, its name, or the expression
  bool differs = false;  ///< whether it holds values of another kind than the first member's at this place
};

/// A member of a UNION, or of its like, and what it outputs.
struct MemberColumns {
  std::int32_t id = 0;
  bool isCounted = true;  ///< false where "*" stands for columns that nobody knows: some may be missing here
  std::vector<MemberColumn> columns;
};

/// The members of the compound that the shown query belongs to, the first one first; empty where it belongs to none.
/// What kinds of values there are is told of columns whose type is known on both sides.
ZRQRYBLD_API std::vector<MemberColumns> ColumnsOfMembers(const qbQueryBuilder& hub);

}  // namespace zrqrybld
