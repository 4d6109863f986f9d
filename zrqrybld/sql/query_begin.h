// Which of the parentheses that follow one another hold a query: "(SELECT ...)", "((SELECT ...) UNION ...)". Pure.
#pragma once

#include <cstddef>
#include <string_view>

namespace zrqrybld {

/// What parentheses that follow one another hold; the places are offsets, npos for none.
struct QueryBegin {
  std::size_t first = std::string_view::npos;   ///< of what stands behind all of them
  std::size_t select = std::string_view::npos;  ///< the innermost one, where SELECT or WITH stands behind it
  std::size_t query = std::string_view::npos;   ///< the outermost one that holds a query and nothing else
  /// The outermost one that holds a query whose first member has parentheses of its own.
  std::size_t compound = std::string_view::npos;
};

/// Looks at the parentheses from `open` on; of more than 250 none holds a query. Takes time in the length of what they
/// hold.
QueryBegin LookForQuery(std::string_view text, std::size_t open);

/// Whether the parenthesis holds a query where a value stands: one in further parentheses is a value in them, unless
/// UNION or its like goes on behind it.
bool HoldsQuery(std::string_view text, std::size_t open);

}  // namespace zrqrybld
