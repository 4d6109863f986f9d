// GridAccess: what a grid tells assistive technology.
//
// It is a table. Its children are the headers of the columns that are shown, then row by row the row's header and its
// cells. An id's object is the row, its part the column of a cell; a column header's object is the column.
#pragma once

#include <vector>

#include "zrqrybld/grid/grid.h"
#include "zrqrybld/platform/accessible.h"

namespace zrqrybld {

class GridAccess final : public AccessibleTree {
 public:
  /// `grid` owns this.
  explicit GridAccess(zrGrid& grid) : grid_(grid) {}

  bool Contains(const AccessibleId& id) const override;
  std::size_t ChildCount(const AccessibleId& id) const override;
  AccessibleId ChildAt(const AccessibleId& id, std::size_t index) const override;
  AccessibleId ParentOf(const AccessibleId&) const override { return {}; }
  std::optional<std::size_t> IndexOf(const AccessibleId& id) const override;
  AccessibleInfo Describe(const AccessibleId& id) const override;
  AccessibleId ObjectAt(PixelPoint point) const override;
  AccessibleId Current() const override;
  bool Perform(const AccessibleId& id, AccessibleAction action) override;
  TableSize CellCounts() const override;
  AccessibleId CellAt(std::size_t row, std::size_t column) const override;
  AccessibleId ColumnHeader(std::size_t column) const override;
  AccessibleId RowHeader(std::size_t row) const override;
  std::optional<CellPlace> PlaceOf(const AccessibleId& id) const override;

 private:
  std::vector<std::size_t> ShownColumns() const;
  AccessibleInfo DescribeGrid() const;
  AccessibleInfo DescribeColumn(const zrGridColumn& column) const;
  AccessibleInfo DescribeRow(const zrGridRow& row) const;
  AccessibleInfo DescribeCell(const zrGridRow& row, const zrGridColumn& column) const;
  bool PerformOnCell(std::size_t row, std::size_t column, AccessibleAction action);

  zrGrid& grid_;
};

}  // namespace zrqrybld
