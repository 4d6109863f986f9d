// zrGrid: a grid of cells with a header row, row headers and scroll bars.
//
// It knows nothing of queries; the grid pane owns it, fills it and listens to its events.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "base/event.h"
#include "base/object.h"
#include "grid/columns.h"
#include "grid/grid_layout.h"
#include "grid/rows.h"
#include "platform/control.h"

namespace zrqrybld {

class zrGrid final : public Control, private ColumnOwner, private RowOwner {
 public:
  /// A grid without columns and rows, shown in no window.
  static Ref<zrGrid> Create();
  ~zrGrid() override;
  std::string_view TypeName() const override { return "zrGrid"; }

  // --- Events ---

  /// A text is dragged over the grid: the text, the effect (which a listener sets to allow the drop), `MouseButton` and
  /// `ShiftMask` bits, the place in pixels.
  Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float> OLEDragOver;
  /// A text is dropped on the grid.
  Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float> OLEDragDrop;

  /// A cell's value was changed: row and column, from 1.
  Event<std::int32_t, std::int32_t> AfterChange;
  /// A cell's value is about to change; the last argument set to true prevents it.
  Event<std::int32_t, std::int32_t, bool&> BeforeChange;
  /// The rows from the first to the last are about to be deleted; the last argument set to true keeps them.
  Event<std::int32_t, std::int32_t, bool&> BeforeDelete;
  /// The rows were deleted.
  Event<std::int32_t, std::int32_t> AfterDelete;
  /// A mouse button is released: `MouseButton`, `ShiftMask` bits, place in pixels.
  Event<std::int32_t, std::int32_t, float, float> MouseUp;
  /// The right button is released over a cell.
  Event<std::int32_t, std::int32_t> ShowContextMenu;
  Event<> DblClick;
  /// Another cell is current; row and column are 0 when there is none.
  Event<std::int32_t, std::int32_t> RowColChange;

  // --- Properties ---

  /// The font of headers and cells; the height of the rows follows it. An empty one is that of the surroundings.
  const zrqrybld::Font& Font() const { return font_; }
  void SetFont(const zrqrybld::Font& font);
  /// Whether the user may drag the edges of the column headers; True at first.
  bool AllowColumnResize() const { return allowColumnResize_; }
  void SetAllowColumnResize(bool allow) { allowColumnResize_ = allow; }
  /// Whether the user may add and delete rows; True at first.
  bool AllowRowInsert() const { return allowRowInsert_; }
  void SetAllowRowInsert(bool allow) { allowRowInsert_ = allow; }

  /// The current column, from 1; 0 when no cell is current.
  std::int32_t Column() const { return static_cast<std::int32_t>(currentColumn_); }
  /// The current row, from 1; 0 when no cell is current.
  std::int32_t Row() const { return static_cast<std::int32_t>(currentRow_); }
  const Ref<zrGridColumns>& Columns() const { return columns_; }
  const Ref<zrGridRows>& Rows() const { return rows_; }

  /// While False, changes do not repaint.
  bool AutoRedraw() const { return autoRedraw_; }
  void SetAutoRedraw(bool redraw);

  // --- Methods ---

  /// What is under a point of the control.
  GridHit GetRowColumnIndex(PixelPoint point) const { return Layout().HitTest(point); }
  /// Where a cell stands in the control. Error 9 when there is no such cell.
  PixelRect GetRowColumnXY(std::int32_t row, const Variant& column) const;
  /// Makes a cell current and scrolls it into view. Error 9 when there is no such cell.
  void GotoRowCol(std::int32_t row, const Variant& column);
  /// Makes a column wide enough for its caption and the texts of the rows that are visible; never narrower than
  /// `least`, in twips. Error 9 when there is no such column.
  void FitColumn(const Variant& column, float least);
  /// Repaints everything.
  void Refresh();

  /// The text that a cell shows.
  std::string CellText(std::size_t row, std::size_t column) const;

  // --- Window events ---

  void Paint(Canvas& canvas, const PixelRect& dirty) const override;
  void OnResize() override;
  void OnMouseDown(const MouseEvent& event) override;
  void OnMouseMove(const MouseEvent& event) override;
  void OnMouseUp(const MouseEvent& event) override;
  void OnDoubleClick(const MouseEvent& event) override;
  void OnWheel(const WheelEvent& event) override;
  void OnScroll(Orientation orientation, int value) override;
  bool OnKeyDown(const KeyEvent& event) override;
  bool OnDragOver(const std::string& text, const MouseEvent& event) override;
  void OnDragLeave() override;
  void OnDrop(const std::string& text, const MouseEvent& event) override;
  void OnFocusChanged(bool focused) override;
  std::string ToolTipAt(PixelPoint point) const override;

 protected:
  void OnSurfaceChanged() override { UpdateScrollBars(); }

 private:
  // What the pointer is doing while a button is held.
  struct NoGesture {};
  struct SizingColumn {
    std::size_t column;
    Pixels grip;  // from the column's right edge to the pointer
  };
  using Gesture = std::variant<NoGesture, SizingColumn>;

  // The rows that are selected by their headers; none when first is 0.
  struct RowRange {
    std::size_t first = 0;
    std::size_t last = 0;
    bool Contains(std::size_t row) const { return first != 0 && row >= first && row <= last; }
  };

  zrGrid() = default;

  void ColumnsChanged() override;
  void ColumnRemoved(std::size_t position) override { rows_->DropColumn(position); }
  std::size_t ColumnPosition(const Variant& column) const override { return columns_->PositionOf(column); }
  bool IsCheckBoxColumn(std::size_t column) const override {
    return columns_->At(column).Style() == GridColumnCheckBox;
  }
  bool BeforeCellChange(std::size_t row, std::size_t column) override;
  void AfterCellChange(std::size_t row, std::size_t column) override;
  void RowsChanged() override;

  GridLayout Layout() const;
  void UpdateScrollBars();
  void Redraw();
  void MakeCurrent(std::size_t row, std::size_t column);
  void SelectRows(std::size_t row, bool extend);
  void DeleteSelectedRows();
  void ToggleCheckBox(std::size_t row, std::size_t column);
  bool MoveCurrent(std::int32_t keyCode);
  std::size_t NextShownColumn(std::size_t from, int direction) const;

  void PaintHeaders(Canvas& canvas, const GridLayout& layout, PixelSize view) const;
  void PaintCell(Canvas& canvas, const PixelRect& rect, std::size_t row, std::size_t column) const;

  Ref<zrGridColumns> columns_;
  Ref<zrGridRows> rows_;
  zrqrybld::Font font_;
  bool allowColumnResize_ = true;
  bool allowRowInsert_ = true;
  bool autoRedraw_ = true;
  bool focused_ = false;
  std::size_t currentRow_ = 0;
  std::size_t currentColumn_ = 0;
  RowRange selection_;
  std::size_t dropRow_ = 0;  // where a drop would insert: before this row; 0 while nothing is dragged over
  Gesture gesture_;
  ScrollState horizontal_;
  ScrollState vertical_;
};

}  // namespace zrqrybld
