// zrGrid: a grid of cells with a header row, row headers and scroll bars.
//
// It knows nothing of queries; the grid pane owns it, fills it and listens to its events.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/grid/cell_editing.h"
#include "zrqrybld/grid/checked_header.h"
#include "zrqrybld/grid/columns.h"
#include "zrqrybld/grid/grid_layout.h"
#include "zrqrybld/grid/grid_options.h"
#include "zrqrybld/grid/row_selection.h"
#include "zrqrybld/grid/rows.h"
#include "zrqrybld/platform/control.h"
#include "zrqrybld/platform/property_store.h"
#include "zrqrybld/platform/scroller.h"
#include "zrqrybld/platform/text_drop.h"

namespace zrqrybld {

/// What the user does to cells or rows at one stroke.
enum class GridWork : std::uint8_t { EditCell, EditCells, Paste, InsertRows, DeleteRows, MoveRows };

class ZRQRYBLD_API zrGrid final : public Control, private ColumnOwner, private RowOwner, private EditedGrid {
 public:
  /// A grid without columns and rows, shown in no window.
  static Ref<zrGrid> Create();
  ~zrGrid() override;
  std::string_view TypeName() const override { return "zrGrid"; }

  // --- Events ---

  /// A text is dragged over the grid: the text, the effect (which a listener sets to allow the drop), `MouseButton` and
  /// `ShiftMask` bits, the place in pixels, a `DragOverStateEnum`.
  Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float, std::int32_t> OLEDragOver;
  /// A text is dropped on the grid.
  Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float> OLEDragDrop;

  /// A cell's value was changed: row and column, from 1.
  Event<std::int32_t, std::int32_t> AfterChange;
  /// A cell's value is about to change; the last argument set to true prevents it.
  Event<std::int32_t, std::int32_t, bool&> BeforeChange;
  /// An editor is about to open on a cell: the time to fill the cell's list.
  Event<std::int32_t, std::int32_t> BeforeEdit;
  /// An edit in place was committed, exactly once however it ended; not when Esc gave it up.
  Event<std::int32_t, std::int32_t> AfterEdit;
  /// The rows from the first to the last are about to be deleted; the last argument set to true keeps them.
  Event<std::int32_t, std::int32_t, bool&> BeforeDelete;
  /// The rows were deleted.
  Event<std::int32_t, std::int32_t> AfterDelete;
  /// As many rows as are selected are about to be inserted before the first; the last argument set to true prevents it.
  Event<std::int32_t, std::int32_t, bool&> BeforeInsert;
  /// The rows from the first to the last are new.
  Event<std::int32_t, std::int32_t> AfterInsert;
  /// A mouse button is released: `MouseButton`, `ShiftMask` bits, place in pixels.
  Event<std::int32_t, std::int32_t, float, float> MouseUp;
  /// The right button is released over a cell, or the menu key pressed on it.
  Event<std::int32_t, std::int32_t> ShowContextMenu;
  /// A double click on the grid or on one of its editors.
  Event<> DblClick;
  /// Another cell is current; row and column are 0 when there is none.
  Event<std::int32_t, std::int32_t> RowColChange;
  /// The list of the combo editor is about to open; the last argument set to true keeps it closed.
  Event<std::int32_t, std::int32_t, bool&> BeforeDropDown;

  // --- Events for the pane that owns the grid ---

  /// The user has moved rows: the first and the last place they stood at, and the place of the first now.
  Event<std::int32_t, std::int32_t, std::int32_t> AfterMove;
  /// Rows were added, moved or removed, by the user or by program; those before this one are untouched.
  Event<std::int32_t> RowsShifted;
  /// The user's work on cells or rows begins (true), or has ended (false).
  Event<GridWork, bool> Batch;
  /// A larger editor is asked for by Shift+F2.
  Event<> ZoomWanted;
  /// The expression builder is asked for, by a cell's button or Ctrl+F2.
  Event<> BuilderWanted;
  /// The user wants to see what stands in the current cell, where it has a short text.
  Event<> OpenWanted;
  /// A context menu is asked for: what lies under the place, and the place in pixels.
  Event<const GridHit&, PixelPoint> MenuWanted;

  // --- Properties ---

  /// The font of headers and cells; the height of the rows follows it. An empty one is that of the surroundings.
  const zrqrybld::Font& Font() const { return options_.font; }
  void SetFont(const zrqrybld::Font& font);
  /// Whether the user may drag the edges of the column headers; True at first.
  bool AllowColumnResize() const { return options_.allowColumnResize; }
  void SetAllowColumnResize(bool allow) { options_.allowColumnResize = allow; }
  /// Whether the user may add and delete rows; True at first.
  bool AllowRowInsert() const { return options_.allowRowInsert; }
  void SetAllowRowInsert(bool allow) { options_.allowRowInsert = allow; }

  /// Whether columns share the width that they leave free, as each one's `Share` says; their `Width` stays. False at
  /// first; not stored.
  bool FillsWidth() const { return options_.fillsWidth; }
  void SetFillsWidth(bool fills);
  /// Whether the keys Insert and Delete act on the current row while none is selected; False at first, not stored.
  bool RowKeysTakeCurrent() const { return options_.rowKeysTakeCurrent; }
  void SetRowKeysTakeCurrent(bool take) { options_.rowKeysTakeCurrent = take; }
  /// How a text that a cell has no room for is shown shorter, in columns with buttons; "" for one that is not. Cells
  /// with such a text have a button that asks to open them.
  void SetShortener(std::function<std::string(const std::string&)> shorten);
  /// Whether the current cell of a column that `HasButton` shows it; False at first, not stored.
  bool HasCellButtons() const { return options_.hasCellButtons; }
  void SetHasCellButtons(bool has);

  /// The current column, from 1; 0 when no cell is current.
  std::int32_t Column() const { return static_cast<std::int32_t>(currentColumn_); }
  /// The current row, from 1; 0 when no cell is current.
  std::int32_t Row() const { return static_cast<std::int32_t>(currentRow_); }
  /// The columns.
  const Ref<zrGridColumns>& Columns() const { return columns_; }
  /// The rows with their cells.
  const Ref<zrGridRows>& Rows() const { return rows_; }
  /// The native window that holds the control; 0 without one.
  std::uintptr_t hwnd() const { return GetSurface().WindowHandle(); }

  /// While False, changes do not repaint.
  bool AutoRedraw() const { return autoRedraw_; }
  void SetAutoRedraw(bool redraw);
  /// Whether the application shows its own context menus, and none is offered here; False at first.
  bool CustomContextMenu() const { return customContextMenu_; }
  void SetCustomContextMenu(bool custom) { customContextMenu_ = custom; }

  /// What is shown while no cell holds anything.
  const std::string& EmptyText() const { return emptyText_; }
  void SetEmptyText(std::string text);

  /// The language of what the grid says of itself; the built-in texts at first.
  void SetTexts(std::shared_ptr<const TextSource> texts) { texts_ = std::move(texts); }
  std::string Say(const Phrase& phrase) const { return phrase.In(texts_ ? *texts_ : EnglishTexts()); }

  /// Takes "AllowColumnResize", "AllowRowInsert" and "Font" from a stored form; missing ones have their default.
  void ReadProperties(const PropertyStore& store);
  /// Stores "AllowColumnResize", "AllowRowInsert" and "Font"; those with their default are left out.
  void WriteProperties(PropertyStore& store) const;

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

  // --- Editing, rows and clipboard ---

  /// What helps with the text of a cell that is about to be edited, by its column; nothing for none.
  using SuggestionSource = CellEditing::SuggestionSource;
  void SetSuggestionSource(SuggestionSource source) { editing_.SetSuggestionSource(std::move(source)); }

  /// Opens the editor of the current cell. False when it has none: no current cell, a check box, a locked row.
  bool EditCell() { return OpenEditor(); }
  /// Whether an editor is open.
  bool IsEditing() const { return editing_.IsOpen(); }
  /// Ends the edit: the text is written into the cell, `AfterEdit` is raised. Nothing when no editor is open.
  void CommitEdit();
  /// Ends the edit: the cell is as it was, nothing is raised.
  void CancelEdit();

  /// The rows that are selected by their headers.
  using RowRange = zrqrybld::RowRange;
  const RowRange& Selection() const { return selection_.Range(); }
  /// Selects rows; a last one before the first selects none. Rows that do not exist are left out.
  void SelectRows(std::size_t first, std::size_t last);
  /// What the keys Delete and Insert do to the selected rows. Nothing without a selection, or while `AllowRowInsert` is
  /// False.
  void DeleteSelectedRows();
  void InsertRows();
  /// Moves the selected rows, else the current one, up (-1) or down (1) by one. False when they cannot go there.
  bool MoveRows(int direction);

  /// The selected rows, else the current cell, as text: cells between TABs, rows between CR LF. Cells that hold TABs,
  /// line ends or quotes stand in quotes.
  std::string CopyText() const;
  /// Writes such a text into the cells from the first selected row's first cell, else from the current cell, each as an
  /// edit; rows are added as needed. A cell that does not take its text stays as it is.
  void PasteText(std::string_view text);

  // --- Window events ---

  void Paint(Canvas& canvas, const PixelRect& dirty) const override;
  void OnResize() override;
  void OnMouseDown(const MouseEvent& event) override;
  void OnMouseLeave() override;
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
  AccessibleTree* Accessible() override;

 protected:
  void OnSurfaceChanged() override;

 private:
  friend class GridAccess;
  friend class GridKeys;
  friend class GridPainter;

  // What the pointer is doing while a button is held.
  struct NoGesture {};
  struct SizingColumn {
    std::size_t column;
    Pixels grip;  // from the column's right edge to the pointer
  };
  struct MovingRows {
    PixelPoint from;
    std::size_t grip;      // the row that was pressed
    bool started = false;  // the pointer has left the place where it was pressed
  };
  using Gesture = std::variant<NoGesture, SizingColumn, MovingRows>;

  zrGrid() = default;

  // Nothing while the grid comes or goes.
  Ref<Object> Alive() override { return weak_from_this().lock(); }
  void ColumnsChanged() override;
  void ColumnRemoved(std::size_t position) override { rows_->DropColumn(position); }
  std::size_t ColumnPosition(const Variant& column) const override { return columns_->PositionOf(column); }
  // A listener may have taken the column away.
  bool IsCheckBoxColumn(std::size_t column) const override {
    return column <= static_cast<std::size_t>(columns_->Count()) && columns_->At(column).Style() == GridColumnCheckBox;
  }
  bool BeforeCellChange(std::size_t row, std::size_t column) override;
  void AfterCellChange(std::size_t row, std::size_t column) override;
  void RowsChanged(std::size_t from) override;
  void CellLooksChanged() override {
    checkedHeader_.Forget();
    Redraw();
  }
  Surface& EditSurface() const override { return GetSurface(); }
  Place PlaceOfEdit(std::int32_t row, std::int32_t column) const override;
  void EditChanged() override;
  void EditDone(bool goesOn) override;
  bool EditKey(const KeyEvent& event) override;
  void EditorDoubleClicked() override { DblClick.Raise(); }
  void BeforeListOpens(bool& cancel) override { BeforeDropDown.Raise(Row(), Column(), cancel); }

  GridLayout Layout() const;
  std::vector<Pixels> ColumnWidths() const;
  PixelRect CellButton(std::size_t row, std::size_t column) const;
  bool PressButton(const MouseEvent& event);
  // "" for a text that is shown as it is.
  std::string ShortText(std::size_t row, std::size_t column) const;
  void UpdateScrollBars();
  void Redraw();
  void MakeCurrent(std::size_t row, std::size_t column);
  void TellOfMove();
  void ToggleCheckBox(std::size_t row, std::size_t column);
  std::size_t NextShownColumn(std::size_t from, int direction) const;
  bool BeginAtFirstCell();
  bool MoveCurrent(std::int32_t keyCode);
  bool MoveToNextCell(int direction);
  bool MoveRange(RowRange range, std::size_t before);
  void DeleteRange(RowRange range);
  void InsertRange(RowRange range);

  void PressHeader(const GridHit& hit, const MouseEvent& event);
  void PressRowHeader(std::size_t row, const MouseEvent& event);
  void PressCell(const GridHit& hit, const MouseEvent& event);
  void DragRows(MovingRows& moving, PixelPoint to);
  void OfferMenu(const GridHit& hit, PixelPoint at);

  void InBatch(GridWork kind, const std::function<void()>& work);
  void PasteLine(zrGridRow& row, std::size_t firstColumn, const std::vector<std::string>& line);
  void PasteCell(zrGridRow& row, std::size_t column, const std::string& text);
  bool OpenEditor(const std::string* typed = nullptr);

  CheckState StateOfColumn(std::size_t column) const { return checkedHeader_.StateOf(*rows_, column); }
  void CheckColumn(std::size_t column);
  static PixelRect HeaderCheckBox(const PixelRect& header);
  bool HoldsNothing() const;

  Ref<zrGridColumns> columns_;
  Ref<zrGridRows> rows_;
  GridOptions options_;
  bool autoRedraw_ = true;
  bool focused_ = false;
  bool tellsLater_ = false;  // of another current cell, when rows were inserted
  bool hasMoved_ = false;    // the current cell, and nobody was told yet
  bool customContextMenu_ = false;
  std::string emptyText_;
  std::function<std::string(const std::string&)> shorten_;
  std::shared_ptr<const TextSource> texts_;
  std::size_t currentRow_ = 0;
  std::size_t currentColumn_ = 0;
  WeakRef<Object> current_;  // the current row: it stays current when rows before it come and go
  RowSelection selection_;
  std::size_t dropRow_ = 0;  // where a drop would insert: before this row; 0 while nothing is dragged over
  TextDrop drop_{OLEDragOver, OLEDragDrop};
  std::size_t hoverHeader_ = 0;  // the column whose header is under the pointer
  Gesture gesture_;
  CellEditing editing_{*this};
  CheckedHeader checkedHeader_;
  Scroller scroller_;
  std::unique_ptr<AccessibleTree> access_;  // made when it is asked for
};

/// The grid is not drawn anew while it lives.
class [[nodiscard]] RedrawPause {
 public:
  explicit RedrawPause(zrGrid& grid) : grid_(grid) { grid_.SetAutoRedraw(false); }
  RedrawPause(const RedrawPause&) = delete;
  RedrawPause& operator=(const RedrawPause&) = delete;
  ~RedrawPause() {
    try {
      grid_.SetAutoRedraw(true);
    } catch (const std::bad_alloc&) {
      // It is drawn with the next change.
    }
  }

 private:
  zrGrid& grid_;
};

}  // namespace zrqrybld
