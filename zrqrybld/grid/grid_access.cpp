#include "zrqrybld/grid/grid_access.h"

#include <algorithm>

#include "zrqrybld/base/texts_grid.h"

namespace zrqrybld {
namespace {

Ref<zrGridRow> RowIn(const AccessibleId& id) { return std::dynamic_pointer_cast<zrGridRow>(id.object); }
Ref<zrGridColumn> ColumnIn(const AccessibleId& id) {
  return std::dynamic_pointer_cast<zrGridColumn>(id.part ? id.part : id.object);
}

std::size_t PositionOf(const Ref<zrGridRow>& row) { return static_cast<std::size_t>(row->Index()); }
std::size_t PositionOf(const Ref<zrGridColumn>& column) { return static_cast<std::size_t>(column->Index()); }

}  // namespace

// --- The tree ---

std::vector<std::size_t> GridAccess::ShownColumns() const {
  std::vector<std::size_t> shown;
  for (std::size_t column = grid_.NextShownColumn(0, 1), before = 0; column != before;) {
    shown.push_back(column);
    before = column;
    column = grid_.NextShownColumn(column, 1);
  }
  return shown;
}

bool GridAccess::Contains(const AccessibleId& id) const {
  if (id.IsControl()) return true;
  const Ref<zrGridRow> row = RowIn(id);
  const Ref<zrGridColumn> column = ColumnIn(id);
  if (row &&
      (row->Index() == 0 || row->Index() > grid_.rows_->Count() || &grid_.rows_->At(PositionOf(row)) != row.get())) {
    return false;
  }
  if (column && (column->Index() == 0 || column->Index() > grid_.columns_->Count() ||
                 &grid_.columns_->At(PositionOf(column)) != column.get())) {
    return false;
  }
  return (row || column) && (!column || column->Width() > 0);
}

AccessibleTree::TableSize GridAccess::CellCounts() const {
  return {static_cast<std::size_t>(grid_.rows_->Count()), ShownColumns().size()};
}

std::size_t GridAccess::ChildCount(const AccessibleId& id) const {
  if (!id.IsControl()) return 0;
  const TableSize size = CellCounts();
  return size.columns + size.rows * (size.columns + 1);
}

AccessibleId GridAccess::ChildAt(const AccessibleId& id, std::size_t index) const {
  if (!id.IsControl()) return {};
  const TableSize size = CellCounts();
  if (index < size.columns) return ColumnHeader(index);
  const std::size_t place = index - size.columns;
  const std::size_t row = place / (size.columns + 1);
  const std::size_t column = place % (size.columns + 1);
  return column == 0 ? RowHeader(row) : CellAt(row, column - 1);
}

AccessibleId GridAccess::ColumnHeader(std::size_t column) const {
  const std::vector<std::size_t> shown = ShownColumns();
  if (column >= shown.size()) return {};
  return {RefTo(grid_.columns_->At(shown[column])), nullptr};
}

AccessibleId GridAccess::RowHeader(std::size_t row) const {
  if (row >= static_cast<std::size_t>(grid_.rows_->Count())) return {};
  return {RefTo(grid_.rows_->At(row + 1)), nullptr};
}

AccessibleId GridAccess::CellAt(std::size_t row, std::size_t column) const {
  const AccessibleId header = ColumnHeader(column);
  const Ref<Object> object = RowHeader(row).object;
  return header.object && object ? AccessibleId{object, header.object} : AccessibleId{};
}

std::optional<AccessibleTree::CellPlace> GridAccess::PlaceOf(const AccessibleId& id) const {
  if (!id.part || !Contains(id)) return std::nullopt;
  const std::vector<std::size_t> shown = ShownColumns();
  const auto column = std::ranges::find(shown, PositionOf(ColumnIn(id)));
  return CellPlace{PositionOf(RowIn(id)) - 1, static_cast<std::size_t>(column - shown.begin())};
}

std::optional<std::size_t> GridAccess::IndexOf(const AccessibleId& id) const {
  if (id.IsControl() || !Contains(id)) return std::nullopt;
  const std::vector<std::size_t> shown = ShownColumns();
  if (const std::optional<CellPlace> place = PlaceOf(id)) {
    return shown.size() + place->row * (shown.size() + 1) + 1 + place->column;
  }
  if (const Ref<zrGridRow> row = RowIn(id)) return shown.size() + (PositionOf(row) - 1) * (shown.size() + 1);
  return static_cast<std::size_t>(std::ranges::find(shown, PositionOf(ColumnIn(id))) - shown.begin());
}

AccessibleId GridAccess::ObjectAt(PixelPoint point) const {
  const GridHit hit = grid_.Layout().HitTest(point);
  AccessibleId id;
  if (hit.row != 0) id.object = RefTo(grid_.rows_->At(hit.row));
  if (hit.column != 0) (id.object ? id.part : id.object) = RefTo(grid_.columns_->At(hit.column));
  return id;
}

AccessibleId GridAccess::Current() const {
  if (grid_.currentRow_ == 0) return grid_.focused_ ? CellAt(0, 0) : AccessibleId{};  // where the keys begin
  return {RefTo(grid_.rows_->At(grid_.currentRow_)), RefTo(grid_.columns_->At(grid_.currentColumn_))};
}

// --- What there is to say ---

AccessibleInfo GridAccess::Describe(const AccessibleId& id) const {
  if (!Contains(id) || id.IsControl()) return DescribeGrid();
  const Ref<zrGridRow> row = RowIn(id);
  AccessibleInfo info = !row      ? DescribeColumn(*ColumnIn(id))
                        : id.part ? DescribeCell(*row, *ColumnIn(id))
                                  : DescribeRow(*row);
  const PixelSize view = grid_.GetSurface().ViewSize();
  info.state.offscreen = !info.bounds.Overlaps({{}, {}, view.width, view.height});
  return info;
}

AccessibleInfo GridAccess::DescribeGrid() const {
  const PixelSize view = grid_.GetSurface().ViewSize();
  return {AccessibleRole::Table,
          grid_.Say(text::GridName),
          grid_.HoldsNothing() ? grid_.emptyText_ : std::string(),
          {},
          {},
          {{}, {}, view.width, view.height}};
}

AccessibleInfo GridAccess::DescribeColumn(const zrGridColumn& column) const {
  const auto position = static_cast<std::size_t>(column.Index());
  AccessibleInfo info{AccessibleRole::ColumnHeader, column.Caption(), {}, {}, {}, {}};
  if (column.DisplayAttribute() == kCheckedHeader) {
    const CheckState state = grid_.StateOfColumn(position);
    info.state.checkable = true;
    info.state.checked = state == CheckState::On;
    info.state.mixed = state == CheckState::Mixed;
    info.actions = {AccessibleAction::Toggle};
  }
  info.bounds = grid_.Layout().ColumnHeaderRect(position);
  return info;
}

AccessibleInfo GridAccess::DescribeRow(const zrGridRow& row) const {
  const auto position = static_cast<std::size_t>(row.Index());
  AccessibleInfo info{AccessibleRole::RowHeader, grid_.Say({text::RowNumber, position}), {}, {}, {}, {}};
  info.state.selectable = true;
  info.state.selected = grid_.selection_.Contains(position);
  info.actions = {AccessibleAction::Press, AccessibleAction::ShowMenu};
  info.bounds = grid_.Layout().RowHeaderRect(position);
  return info;
}

// The name of a cell is its text; what the column means is said by its header. A check box is named by its column.
AccessibleInfo GridAccess::DescribeCell(const zrGridRow& row, const zrGridColumn& column) const {
  const auto rowPosition = static_cast<std::size_t>(row.Index());
  const auto columnPosition = static_cast<std::size_t>(column.Index());
  const bool check = column.Style() == GridColumnCheckBox;
  AccessibleInfo info{AccessibleRole::Cell,
                      check ? column.Caption() : grid_.CellText(rowPosition, columnPosition),
                      row.HintAt(columnPosition),
                      {},
                      {},
                      {}};
  const AccessibleId current = Current();
  info.state.focused = current.object.get() == &row && current.part.get() == &column;
  info.state.selectable = true;
  info.state.selected = grid_.selection_.Contains(rowPosition);
  info.state.checkable = check;
  info.state.checked = check && row.ValueAt(columnPosition) == Variant(true);
  info.state.editable = !check && !row.Locked();
  info.state.invalid = !info.description.empty();
  info.actions = {AccessibleAction::Focus, check ? AccessibleAction::Toggle : AccessibleAction::Press,
                  AccessibleAction::ShowMenu};
  info.bounds = grid_.Layout().CellRect(rowPosition, columnPosition);
  return info;
}

// --- What can be done ---

bool GridAccess::Perform(const AccessibleId& id, AccessibleAction action) {
  if (id.IsControl() || !Contains(id)) return false;
  const Ref<zrGridRow> row = RowIn(id);
  if (row && id.part) return PerformOnCell(PositionOf(row), PositionOf(ColumnIn(id)), action);
  if (!row) {
    if (action != AccessibleAction::Toggle || ColumnIn(id)->DisplayAttribute() != kCheckedHeader) return false;
    grid_.CheckColumn(PositionOf(ColumnIn(id)));
    return true;
  }
  const std::size_t position = PositionOf(row);
  if (action == AccessibleAction::Press) {
    grid_.SelectRows(position, position);
    return true;
  }
  if (action != AccessibleAction::ShowMenu) return false;
  const PixelRect header = grid_.Layout().RowHeaderRect(position);
  grid_.OfferMenu({GridPart::RowHeader, position, 0}, {header.left, header.Bottom()});
  return true;
}

bool GridAccess::PerformOnCell(std::size_t row, std::size_t column, AccessibleAction action) {
  grid_.MakeCurrent(row, column);
  if (grid_.currentRow_ != row || grid_.currentColumn_ != column) return false;  // a listener has gone elsewhere
  const bool check = grid_.IsCheckBoxColumn(column);
  switch (action) {
    case AccessibleAction::Focus:
      grid_.GetSurface().SetFocus();
      return true;
    case AccessibleAction::Toggle:
      if (check) grid_.ToggleCheckBox(row, column);
      return check;
    case AccessibleAction::Press:
      return grid_.EditCell();
    case AccessibleAction::ShowMenu: {
      const PixelRect cell = grid_.Layout().CellRect(row, column);
      grid_.OfferMenu({GridPart::Cell, row, column}, {cell.left, cell.Bottom()});
      return true;
    }
  }
  return false;
}

// --- The grid ---

AccessibleTree* zrGrid::Accessible() {
  if (!access_) access_ = std::make_unique<GridAccess>(*this);
  return access_.get();
}

}  // namespace zrqrybld
