// TypedStatement: a statement as the user has written it, kept beside the query that it means.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/sql/clause_comments.h"

namespace zrqrybld {

struct TypedStatement {
  /// As it was typed, with CR LF line ends.
  std::string text;
  /// What the designer writes for the query it means; "" when that is not known.
  std::string meaning;
  std::vector<ClauseComment> comments;
};

}  // namespace zrqrybld
