// qbGridPane: the pane that shows the query as a table, one row a query column.
//
// Everything it shows lives in one grid control whose columns have fixed keys; the statement is
// generated from these rows. The pane writes no SQL: after each change it tells its context.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/grid/cell_rules.h"
#include "zrqrybld/grid/field_output.h"
#include "zrqrybld/grid/grid.h"
#include "zrqrybld/grid/or_columns.h"
#include "zrqrybld/host/date_format.h"
#include "zrqrybld/platform/menu.h"
#include "zrqrybld/platform/property_store.h"

namespace zrqrybld {

class qbIntelliList;
class qbQueryBuilder;
class ValueSource;
struct QueryContext;

class ZRQRYBLD_API qbGridPane final : public Object {
 public:
  /// A pane with its columns and the first empty rows, linked to no hub.
  static Ref<qbGridPane> Create();
  ~qbGridPane() override = default;
  std::string_view TypeName() const override { return "qbGridPane"; }

  // --- Events, in interface order ---

  /// A criterion was typed and is about to be brought into its normal form: row, column, table, field, type code (0 for
  /// an expression), long flag, the characters around a literal of the type, the typed text and, last, whether to take
  /// it as the listener leaves it. Changes of the text count.
  Event<std::int32_t, std::int32_t, const std::string&, const std::string&, std::int32_t, bool, const std::string&,
        const std::string&, std::string&, bool&>
      AfterEditExpressionFormat;
  /// A double click anywhere in the grid.
  Event<> DblClick;
  /// The right button is released over a cell: row and column, from 1.
  Event<std::int32_t, std::int32_t> ShowContextMenu;
  /// Another cell is current; both are 0 when there is none.
  Event<std::int32_t, std::int32_t> RowColChange;
  /// A cell was changed, by the user or by program, and its row and the diagram agree with it again.
  Event<std::int32_t, std::int32_t> AfterChange;
  /// An edit in a cell is complete; the statement is written next.
  Event<std::int32_t, std::int32_t> AfterEdit;
  /// The grid's own context menu is about to be shown for a row (0 for none) and a column (0 for a row header). A
  /// handler may add and remove entries; an empty menu is not shown.
  Event<std::int32_t, std::int32_t, Menu&> BeforeContextMenu;

  // --- Properties and methods, in interface order ---

  /// Shows what this control is.
  void AboutBox();
  /// The current column, from 1; 0 when no cell is current.
  std::int16_t Column() const { return static_cast<std::int16_t>(grdPane_->Column()); }
  /// How many columns there are, hidden ones included.
  std::int32_t ColumnCount() const { return grdPane_->Columns()->Count(); }
  /// Completes the edit of the current cell: an open editor is committed; without one, the cell's value is treated as
  /// just typed. Nothing without a current cell.
  void FinishEdit();
  /// Hides a column by position from 1 or key. Error 9 when there is none.
  void HideColumn(const Variant& columnIndex) { grdPane_->Columns()->Item(columnIndex)->SetHidden(true); }
  /// Shows a hidden column by position from 1 or key, as wide as it was. Error 9 when there is none.
  void ShowColumn(const Variant& columnIndex) { grdPane_->Columns()->Item(columnIndex)->SetHidden(false); }
  /// Whether only columns of the list can be chosen.
  bool LockColumns() const { return IsLocked(kColumnColumn); }
  void SetLockColumns(bool lock) { SetLock(kColumnColumn, lock); }
  /// Whether only tables of the list can be chosen.
  bool LockTables() const { return IsLocked(kColumnTable); }
  void SetLockTables(bool lock) { SetLock(kColumnTable, lock); }
  /// The hub that the pane is linked to, or nothing.
  Ref<qbQueryBuilder> QueryBuilder() const;
  /// Refills the list of tables and removes the rows of tables that are not in the diagram any more.
  void RefreshTables();
  /// The current row, from 1; 0 when no cell is current.
  std::int16_t Row() const { return static_cast<std::int16_t>(grdPane_->Row()); }
  /// How many rows there are, empty ones included.
  std::int32_t RowCount() const { return grdPane_->Rows()->Count(); }
  /// Sets the row's group-by choice. Error 9 when there is no such row.
  void SetGroupByFunction(std::int32_t rowIndex, const qbDBFunction& function);
  /// Opens the expression builder on the current cell; an answer other than "cancel" is an edit of
  /// the cell. Nothing without a current cell or a hub.
  void ShowExpressionBuilder() { EditInWindow(true); }
  /// Opens a larger editor on the current cell; an answer other than "cancel" is an edit of the cell. Nothing without a
  /// current cell or a hub.
  void ShowExpressionZoom() { EditInWindow(false); }

  /// Opens the context menu of the current cell, as its key does.
  void OpenMenu();
  /// A cell's value; a missing row or column means the current one. Error 40001 when either is not above 0.
  Variant Value(const Variant& row = Variant::Missing(), const Variant& column = Variant::Missing()) const;
  void SetValue(const Variant& row, const Variant& column, Variant value);

  /// How dates are written with `DateFormatNative`; "dd-mmm-yyyy" at first. Until it is set, a source that is known to
  /// have a form of its own gets dates in that.
  const std::string& DateFormat() const { return dates_.format; }
  void SetDateFormat(std::string format);
  /// Whether the query groups, and the group-by column is shown; True at first.
  bool ShowGroupBy() const { return grouping_.IsShown(); }
  void SetShowGroupBy(bool show);
  /// The font of the grid; an empty one is that of the surroundings.
  const zrqrybld::Font& Font() const { return grdPane_->Font(); }
  void SetFont(const zrqrybld::Font& font);
  /// Whether dates are written by `DateFormat` or in the escape form; `DateFormatNative` at first.
  DateFormatEnum DateFormatStyle() const { return dates_.style; }
  void SetDateFormatStyle(DateFormatEnum style);
  /// Whether the application shows its own context menus; False at first.
  bool CustomContextMenu() const { return grdPane_->CustomContextMenu(); }
  void SetCustomContextMenu(bool custom);

  /// How many alternatives there are columns for behind "criteria"; 3 at first, and at least. What is typed, applied or
  /// loaded brings as many as it needs, up to 100.
  std::int32_t OrColumns() const { return alternatives_.Count(); }
  /// Values below 3 or above 100 count as these; a column that holds something stays.
  void SetOrColumns(std::int32_t count);
  /// Whether an empty OR column always follows the last one that holds something; False at first.
  bool GrowOrColumns() const { return alternatives_.Grows(); }
  void SetGrowOrColumns(bool grow);
  /// One OR column more, which becomes the current one in the current row; False when there are 100.
  bool AddOrColumn();

  /// Who is asked for the values of a column when somebody wants them in a criterion (Ctrl+Space); nothing at first:
  /// then no data is read.
  void SetValueSource(std::shared_ptr<ValueSource> source) { values_ = std::move(source); }

  // --- Stored properties ---

  /// A property was set: its key. The container marks it as changed.
  Event<std::string_view> PropertyChanged;
  /// Takes the properties from a stored form; a missing key has its default, and a value of the wrong kind counts as
  /// missing.
  void ReadProperties(const PropertyStore& store);
  /// Stores the properties; those with the value of a new pane are left out.
  void WriteProperties(PropertyStore& store) const;

  // --- For the hub ---

  /// Links the pane to what the designer shares, or to nothing: captions, alias lengths and the list of tables
  /// follow at once, the rows stay.
  void SetContext(const Ref<QueryContext>& context);

  /// The grid control, for the adapter that shows it.
  const Ref<zrGrid>& Grid() const { return grdPane_; }

  struct FieldOutputOptions {
    bool skipSearch = false;  ///< adds a row even when the field has one
    std::int32_t before = 0;  ///< the row to insert before; 0 takes the first empty row
  };
  /// Puts a field into the grid, or takes it out. Returns the row it stands in; 0 when it has none.
  std::int32_t SetFieldOutput(const std::string& fieldName, bool checked, const std::string& tableName,
                              const FieldOutputOptions& options);
  std::int32_t SetFieldOutput(const std::string& fieldName, bool checked, const std::string& tableName) {
    return SetFieldOutput(fieldName, checked, tableName, {});
  }

  /// Puts all columns into the grid that are ticked in the diagram and no row outputs. Whether there were any.
  bool OutputTicked();
  /// Puts rows into the empty ones, then behind the last. The cells are taken as they are; what is output is ticked in
  /// its box.
  void AddRows(const std::vector<QueryRow>& rows);

  /// Reads the captions of the columns again.
  void ApplyGridCaptions();
  /// Gives every row's alias the longest length that the hub allows.
  void ApplyAliasMaxLen();
  /// 1 + the number of sorted rows other than `row` (0 for none).
  std::int16_t NextSortOrder(std::int32_t row = 0) const { return sorting_.Next(row); }
  /// Sorts by a row ("Ascending", "Descending", either with ", nulls first" or ", nulls last" behind it) behind those
  /// that are sorted already, or no more (""). Error 9 when there is no such row.
  void SortRow(std::int32_t row, const std::string& type);
  /// Refills the list of tables; what stands before this position is as it was.
  void RefreshTableList(std::int32_t from = 1) { rules_.FillTables(from); }
  /// A table has left the diagram: its rows go with it.
  void RemoveRowsOf(const std::string& tableName);
  /// A table has got another caption: its rows follow silently. `rewrite` renames it inside a text that was typed: an
  /// expression or a criterion.
  void RenameTable(const std::string& before, const std::string& after,
                   const std::function<std::string(std::string_view)>& rewrite);
  /// The context's word for LIKE was `before` until now: criteria that say it say the new one.
  void RewriteLike(const std::string& before);
  /// A column of a table has got another name: its rows follow silently.
  void RenameColumn(const std::string& tableName, const std::string& before, const std::string& after);
  /// A cell of a saved query: its row and column from 1, and its text.
  struct LoadedCell {
    std::int32_t row;
    std::size_t column;
    std::string text;
  };
  /// Replaces all rows by those of a saved query, without the rules of editing. One empty row follows them, and the
  /// boxes are ticked as the rows output. Error 40005 for an "output" that is no truth.
  void LoadRows(const std::vector<LoadedCell>& cells);
  /// The position of the column that a saved query calls so; an OR column is made. Error 9 when there is none.
  std::size_t ColumnOfKey(std::string_view key) { return alternatives_.PositionOf(key); }
  /// A sorted row of a saved query, which exists, says where its Nulls come.
  void LoadNullsPlace(std::int32_t row, NullsPlace nulls);
  /// How dates are written, and whether somebody chose it; the way back makes them so again.
  const DateOptions& Dates() const { return dates_; }
  void RestoreDates(const DateOptions& dates);
  /// The format of a saved query: the one that every pane begins with is no choice, and takes none away.
  void LoadDateFormat(std::string format);
  /// Makes the rows what `then` says, without the rules of editing.
  void Restore(const std::vector<SharedRowContent>& then);
  /// Shows or hides the grouping column without touching the rows, which hold what belongs to it already.
  void RestoreShowGroupBy(bool show);
  /// Empties the grid: the initial empty rows are back.
  void ResetRows();

 private:
  friend class GridPaneMenu;
  // What a cell held before its latest change.
  struct Change {
    WeakRef<Object> row;
    std::int32_t column;
    std::string text;
  };

  qbGridPane() = default;
  void CreateColumns();
  void ConnectGrid();
  Ref<qbIntelliList> SuggestionsFor(std::int32_t column);
  bool IsLocked(GridColumnIndex column) const;
  void SetLock(GridColumnIndex column, bool lock);
  std::string CaptionOf(std::int32_t column) const;
  void LoadCell(const LoadedCell& cell);
  void DropField(const std::string& text, PixelPoint at);

  // --- Changes and edits (cell_changes.cpp, cell_edits.cpp) ---

  void CellChanged(std::int32_t row, std::int32_t column);
  void FollowChange(std::int32_t row, std::int32_t column);
  void RowsMoved();
  void CurrentCellChanged(std::int32_t row, std::int32_t column);
  void BatchChanged(GridWork kind, bool begins);
  void GridEdited(std::int32_t row, std::int32_t column);
  void ProcessEdit(std::int32_t row, std::int32_t column, const std::string& before);
  void EditInWindow(bool builder);
  void SetCellAsEdit(std::int32_t row, std::int32_t column, const std::string& text);
  void ShowMenu(const GridHit& hit, PixelPoint at);  // grid_menu.cpp

  const Ref<zrGrid> grdPane_ = zrGrid::Create();
  // The parts: each knows those before it that it needs, and none the pane.
  PaneRows rows_{grdPane_};
  FieldRows fields_{rows_};
  SortPlaces sorting_{rows_};
  GroupByColumn grouping_{rows_};
  AlternativeColumns alternatives_{rows_};
  FieldOutput output_{rows_, fields_, grouping_};
  CellRules rules_{rows_, sorting_, grouping_, AfterEditExpressionFormat};
  std::shared_ptr<ValueSource> values_;
  std::vector<EventConnection> links_;
  DateOptions dates_;
  FieldName before_;  // what the row named before the change that is going on
  std::optional<Change> change_;
  std::string currentText_;                 // of the current cell, as it was when it became current
  std::vector<Ref<QueryContext>> batches_;  // of the works that have begun, those they have begun in
};

}  // namespace zrqrybld
