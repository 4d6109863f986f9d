// The comments of a statement by the clause that they stand in, so that a statement written anew can have them again.
//
// Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/platform/text_reading.h"
#include "zrqrybld/sql/keywords.h"

namespace zrqrybld {

/// A comment, written so that every source reads it as one and sees it end where it ends.
struct ClauseComment {
  /// The word that its clause begins with; `Keyword::None` behind all of them.
  Keyword clause = Keyword::Select;
  std::string text;
  friend bool operator==(const ClauseComment&, const ClauseComment&) = default;
};

/// The comments of a statement in their order. One on lines of its own in front of a clause belongs to that, any other
/// to the clause it stands in; comments within parentheses belong to the clause around them. `reading` tells what the
/// source takes for comments besides.
std::vector<ClauseComment> CommentsByClause(std::string_view sql, const std::optional<TextReading>& reading);

/// The statement with the comments on lines of their own, each in front of its clause; where that is missing, in front
/// of the next one.
std::string WithComments(std::string_view statement, const std::vector<ClauseComment>& comments);

}  // namespace zrqrybld
