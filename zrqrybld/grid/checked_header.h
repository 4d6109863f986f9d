// CheckedHeader: what the check box in the header of a column says of the cells below it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "zrqrybld/grid/rows.h"

namespace zrqrybld {

/// None when no cell was ever set.
enum class CheckState : std::uint8_t { None, Off, On, Mixed };

class CheckedHeader {
 public:
  /// Counts the cells of a column, unless none has changed since they were counted last.
  CheckState StateOf(const zrGridRows& rows, std::size_t column) const;
  /// A cell has changed, or rows or columns have.
  void Forget() { counted_.reset(); }

 private:
  mutable std::optional<std::pair<std::size_t, CheckState>> counted_;
};

}  // namespace zrqrybld
