// qbGridPane: the pane that shows the query as a table, one row a query column.
//
// Everything it shows lives in one grid control whose columns have fixed keys; the statement is
// generated from these rows. The pane writes no SQL: after each change it tells its context.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/event.h"
#include "base/object.h"
#include "grid/grid.h"
#include "grid/grid_columns.h"
#include "host/date_format.h"
#include "host/query_context.h"
#include "platform/menu.h"
#include "platform/property_store.h"
#include "sql/criteria_context.h"

namespace zrqrybld {

class qbGridPane final : public Object {
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
  bool LockColumns() const { return IsLocked("column"); }
  void SetLockColumns(bool lock) { SetLock("column", lock); }
  /// Whether only tables of the list can be chosen.
  bool LockTables() const { return IsLocked("table"); }
  void SetLockTables(bool lock) { SetLock("table", lock); }
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
  /// A cell's value; a missing row or column means the current one. Error 40001 when either is not above 0.
  Variant Value(const Variant& row = Variant::Missing(), const Variant& column = Variant::Missing()) const;
  void SetValue(const Variant& row, const Variant& column, Variant value);

  /// How dates are written with `DateFormatNative`; "dd-mmm-yyyy" at first.
  const std::string& DateFormat() const { return dateFormat_; }
  void SetDateFormat(std::string format);
  /// Whether the query groups, and the group-by column is shown; True at first.
  bool ShowGroupBy() const { return showGroupBy_; }
  void SetShowGroupBy(bool show);
  /// The font of the grid; an empty one is that of the surroundings.
  const zrqrybld::Font& Font() const { return grdPane_->Font(); }
  void SetFont(const zrqrybld::Font& font);
  /// Whether dates are written by `DateFormat` or in the escape form; `DateFormatNative` at first.
  DateFormatEnum DateFormatStyle() const { return dateFormatStyle_; }
  void SetDateFormatStyle(DateFormatEnum style);
  /// Whether the application shows its own context menus; False at first.
  bool CustomContextMenu() const { return grdPane_->CustomContextMenu(); }
  void SetCustomContextMenu(bool custom);

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

  /// The cells of a row as a statement says them.
  struct RowContent {
    std::string column;
    std::string alias;
    std::string table;
    bool output = false;
    std::string sortType;
    std::string sortOrder;
    std::string groupBy;
    std::vector<std::string> criteria;  ///< from "criteria" on
  };
  /// Puts all columns into the grid that are ticked in the diagram and no row outputs. Whether there were any.
  bool OutputTicked();
  /// Puts rows into the empty ones, then behind the last. The cells are taken as they are; what is output is ticked in
  /// its box.
  void AddRows(const std::vector<RowContent>& rows);

  /// Reads the captions of the columns again.
  void ApplyGridCaptions();
  /// Gives every row's alias the longest length that the hub allows.
  void ApplyAliasMaxLen();
  /// 1 + the number of sorted rows other than `row` (0 for none).
  std::int16_t NextSortOrder(std::int32_t row = 0) const;
  /// Sorts by a row ("Ascending", "Descending") behind those that are sorted already, or no more (""). Error 9 when
  /// there is no such row.
  void SortRow(std::int32_t row, const std::string& type);
  /// Refills the list of tables; what stands before this position is as it was.
  void RefreshTableList(std::int32_t from = 1);
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
  /// Makes the rows what `then` says, without the rules of editing.
  void Restore(const std::vector<SharedRowContent>& then);
  /// Shows or hides the grouping column without touching the rows, which hold what belongs to it already.
  void RestoreShowGroupBy(bool show);
  /// Empties the grid: the initial empty rows are back.
  void ResetRows();

 private:
  struct Field {
    std::string table;
    std::string name;
  };
  // What a cell held before its latest change.
  struct Change {
    WeakRef<Object> row;
    std::int32_t column;
    std::string text;
  };

  qbGridPane() = default;
  void CreateColumns();
  void ConnectGrid();
  bool IsLocked(std::string_view key) const;
  void SetLock(std::string_view key, bool lock);
  void ApplyShowGroupBy();
  void ShowGroupByColumn();
  std::string CaptionOf(std::int32_t column) const;
  std::int16_t AliasMaxLen() const;
  Ref<qbEntities> Entities() const;

  // A row that exists. Who changes cells holds it: a listener may take it away.
  zrGridRow& RowAt(std::int32_t row) const { return grdPane_->Rows()->At(static_cast<std::size_t>(row)); }
  Ref<zrGridRow> HoldRow(std::int32_t row) const { return grdPane_->Rows()->Item(row); }
  static std::string Text(const zrGridRow& row, std::size_t column) { return row.ValueAt(column).Text(); }
  bool IsEmptyRow(const zrGridRow& row) const;
  bool HasContent(const zrGridRow& row) const;
  void AddEmptyRow();
  void EnsureEmptyLastRow();
  void SetRowGroupBy(zrGridRow& row);
  void NoteSorted(const zrGridRow& row);
  std::vector<Ref<zrGridRow>> SortedRows() const;
  void WriteSortOrders(const std::vector<Ref<zrGridRow>>& rows, const std::vector<std::int32_t>& orders);
  void CloseSortGaps();

  // --- Fields in and out (field_output.cpp) ---

  Field FieldOf(const zrGridRow& row) const { return {Text(row, kColumnTable), Text(row, kColumnColumn)}; }
  bool IsRowOf(const zrGridRow& row, const Field& field) const;
  std::vector<Field> TickedFields() const;
  std::vector<Ref<zrGridRow>> RowsOf(const Field& field) const;
  std::vector<Ref<zrGridRow>> RowsOfTable(const std::string& table) const;
  void NoteTable(const zrGridRow& row, const std::string& table);
  void NoteRow(const zrGridRow& row);
  std::int32_t FirstEmptyRow();
  std::int32_t TickRows(const Field& field);
  void UntickRows(const Field& field);
  std::int32_t FillNewRow(const Field& field, std::int32_t before);
  void SetCells(zrGridRow& row, const RowContent& content);
  void LoadCell(const LoadedCell& cell);
  void TickOutputs();
  void PushToDiagram(const Field& field, bool checked);
  // Whether any row outputs the field.
  bool IsOutput(const Field& field) const;
  Field FieldIn(const std::string& text) const;
  static bool IsFieldText(const std::string& text);
  void DropField(const std::string& text, PixelPoint at);

  // --- Changes and edits (cell_changes.cpp, cell_edits.cpp) ---

  void CellChanged(std::int32_t row, std::int32_t column);
  void FollowChange(std::int32_t row, std::int32_t column, bool namesField);
  void RespellField(zrGridRow& row, std::int32_t column);
  void RowsAboutToGo(std::int32_t first, std::int32_t last);
  void RowsMoved();
  void CurrentCellChanged(std::int32_t row, std::int32_t column);
  void RefillLists(std::int32_t row, std::int32_t column);
  void FillColumnList(zrGridComboItems& list, const zrGridRow& row) const;
  void FillGroupByList(zrGridComboItems& list, const zrGridRow& row) const;
  void FillSortOrderList(zrGridComboItems& list, std::int32_t row) const;
  void GridEdited(std::int32_t row, std::int32_t column);
  void ProcessEdit(std::int32_t row, std::int32_t column, const std::string& before);
  void ColumnEdited(zrGridRow& row);
  void TableEdited(zrGridRow& row);
  void GroupByEdited(zrGridRow& row, const std::string& before);
  void SortTypeEdited(zrGridRow& row, const std::string& before);
  void SortOrderEdited(zrGridRow& row, const std::string& before);
  void SetSortOrder(zrGridRow& row, std::int32_t order);
  CriteriaContext CriteriaRules(const QueryContext& context, const zrGridRow& row) const;
  void CriterionEdited(zrGridRow& row, std::int32_t column);
  void Complain(zrGridRow& row, std::int32_t column, const std::string& text, MessageIcon icon);
  static Ref<qbIntelliList> SuggestionsFor(const WeakRef<QueryContext>& link, std::int32_t column);
  void EditInWindow(bool builder);
  void SetCellAsEdit(std::int32_t row, std::int32_t column, const std::string& text);
  void BatchChanged(GridWork kind, bool begins);
  void ReportChange();

  // --- Context menu (grid_menu.cpp) ---

  void ShowMenu(const GridHit& hit, PixelPoint at);
  void AddRowEntries(Menu& menu);
  void AddCellEntries(Menu& menu);
  Menu ColumnEntries(std::size_t column);
  void ClearCell();
  void SetColumnShown(std::int32_t column, bool show);

  WeakRef<QueryContext> context_;
  Ref<zrGrid> grdPane_;
  std::vector<EventConnection> links_;
  std::string dateFormat_ = "dd-mmm-yyyy";
  DateFormatEnum dateFormatStyle_ = DateFormatNative;
  bool showGroupBy_ = true;
  float groupByWidth_ = 0;  // the width to bring back; 0 until the column is first hidden
  Field before_;            // what the row named before the change that is going on
  std::optional<Change> change_;
  std::string currentText_;  // of the current cell, as it was when it became current
  bool busy_ = false;        // the pane itself is changing cells or pushing a change to the diagram
  bool complained_ = false;  // in the change of many cells that is going on
  std::vector<Ref<QueryContext>> batches_;
  // The rows of each field. Entries are only added; what is out of date is dropped when it is met.
  mutable std::unordered_map<std::string, std::vector<WeakRef<Object>>> rowsByField_;
  std::unordered_map<std::string, std::vector<WeakRef<Object>>> rowsByTable_;  // out of date as those
  mutable std::vector<WeakRef<Object>> sortedRows_;  // with a sort type or number; out of date as those
  std::int32_t emptyFrom_ = 1;                       // no row before this one is empty
};

}  // namespace zrqrybld
