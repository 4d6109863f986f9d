// RowCounter: who counts the rows of a statement in the background, for windows that say how many a choice returns.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zrqrybld {

/// A count that runs. It is given up when this goes, and nobody is told then.
class RowCount {
 public:
  RowCount() = default;
  RowCount(const RowCount&) = delete;
  RowCount& operator=(const RowCount&) = delete;
  virtual ~RowCount() = default;
};

/// Starts to run the statement, whose only row is a number, and returns at once. Tells the number in the window's
/// thread, later; none when there is no answer, or not soon enough. Nothing where nobody can count.
using RowCounter = std::function<std::unique_ptr<RowCount>(const std::string& statement,
                                                           std::function<void(std::optional<std::int64_t>)> tell)>;

}  // namespace zrqrybld
