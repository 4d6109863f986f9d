// AlternativeColumns: the columns of a grid pane behind "criteria", each an alternative condition: the first three, and
// those that come when they are needed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "zrqrybld/grid/pane_rows.h"

namespace zrqrybld {

/// More alternatives than these are no columns any more: nobody could read them.
inline constexpr std::int32_t kMostOrColumns = 100;
/// How many a pane has at first, and at least.
inline constexpr std::int32_t kFirstOrColumns = kColumnOr3 - kColumnCriteria;

class AlternativeColumns {
 public:
  /// `rows` must outlive this.
  explicit AlternativeColumns(PaneRows& rows) : rows_(rows) {}

  /// How many there were to be at least.
  std::int32_t Least() const { return least_; }
  std::int32_t Count() const { return static_cast<std::int32_t>(rows_.LastColumn()) - kColumnCriteria; }
  /// How many there are to be at least; those that hold something stay.
  void Set(std::int32_t count);
  /// Whether an empty one always stands behind the last that holds something; False at first.
  bool Grows() const { return grows_; }
  void SetGrows(bool grows);

  /// At least so many are there from now on, as far as there may be.
  void Ensure(std::int32_t count);
  /// The position of the column with a key; one like "or7" is made when it may be. Error 9 when there is none.
  std::size_t PositionOf(std::string_view key);
  /// A cell of the column holds something else.
  void CellChanged(const zrGridRow& row, std::int32_t column);
  /// The rows are others: as many columns as they need, and as were asked for.
  void Fit();
  /// What stands above them.
  void ApplyCaption(std::string_view caption) const;
  /// How many the contents need.
  static std::int32_t NeededBy(const std::vector<SharedRowContent>& contents);

 private:
  std::int32_t Used() const;
  void Add();

  PaneRows& rows_;
  std::int32_t least_ = kFirstOrColumns;
  bool grows_ = false;
};

}  // namespace zrqrybld
