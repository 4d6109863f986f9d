// The members of the grid pane and the grid control under it.
#include "zrqrybld/automation/binding.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/menu_object.h"
#include "zrqrybld/automation/property_bag.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

using Pane = qbGridPane;

void SetGroupBy(Pane& pane, std::int32_t row, const qbDBFunction& function) { pane.SetGroupByFunction(row, function); }

constexpr Member kPane[] = {
    Method<Pane, &Pane::AboutBox>("AboutBox"),
    ReadOnly<Pane, &Pane::Column>("Column"),
    ReadOnly<Pane, &Pane::ColumnCount>("ColumnCount"),
    Method<Pane, &Pane::FinishEdit>("FinishEdit"),
    Method<Pane, &Pane::HideColumn>("HideColumn", "ColumnIndex"),
    Method<Pane, &Pane::ShowColumn>("ShowColumn", "ColumnIndex"),
    ReadWrite<Pane, &Pane::LockColumns, &Pane::SetLockColumns>("LockColumns"),
    ReadWrite<Pane, &Pane::LockTables, &Pane::SetLockTables>("LockTables"),
    ReadOnly<Pane, &Pane::QueryBuilder>("QueryBuilder"),
    Method<Pane, &Pane::RefreshTables>("RefreshTables"),
    ReadOnly<Pane, &Pane::Row>("Row"),
    ReadOnly<Pane, &Pane::RowCount>("RowCount"),
    Method<Pane, &SetGroupBy>("SetGroupByFunction", "RowIndex, DBFunction"),
    Method<Pane, &Pane::ShowExpressionBuilder>("ShowExpressionBuilder"),
    Method<Pane, &Pane::ShowExpressionZoom>("ShowExpressionZoom"),
    ReadWrite<Pane, &Pane::Value, &Pane::SetValue>("Value", "[Row], [Column]"),
    ReadWrite<Pane, &Pane::DateFormat, &Pane::SetDateFormat>("DateFormat"),
    ReadWrite<Pane, &Pane::ShowGroupBy, &Pane::SetShowGroupBy>("ShowGroupBy"),
    FontProperty<Pane, &Pane::Font, &Pane::SetFont>("Font"),
    ReadWrite<Pane, &Pane::DateFormatStyle, &Pane::SetDateFormatStyle>("DateFormatStyle"),
    ReadWrite<Pane, &Pane::CustomContextMenu, &Pane::SetCustomContextMenu>("CustomContextMenu"),
    Raised<Pane, &Pane::AfterEditExpressionFormat>(
        "AfterEditExpressionFormat",
        "Row, Column, TableName, FieldName, DataType, IsLong, PrefixCharacters, SuffixCharacters, Expression, Cancel"),
    Raised<Pane, &Pane::DblClick>("DblClick"),
    Raised<Pane, &Pane::ShowContextMenu>("ShowContextMenu", "Row, Column"),
    Raised<Pane, &Pane::RowColChange>("RowColChange", "Row, Column"),
    Raised<Pane, &Pane::AfterChange>("AfterChange", "Row, Column"),
    Raised<Pane, &Pane::AfterEdit>("AfterEdit", "Row, Column"),
    // Beyond the members above: the grid under the pane, and what a host without a form needs.
    ReadOnly<Pane, &Pane::Grid>("Grid"),
    Method<Pane, &Pane::OpenMenu>("OpenMenu"),
    ReadWrite<Pane, &Pane::OrColumns, &Pane::SetOrColumns>("OrColumns"),
    ReadWrite<Pane, &Pane::GrowOrColumns, &Pane::SetGrowOrColumns>("GrowOrColumns"),
    Method<Pane, &Pane::AddOrColumn>("AddOrColumn"),
    Raised<Pane, &Pane::BeforeContextMenu>("BeforeContextMenu", "Row, Column, Menu"),
    Raised<Pane, &Pane::PropertyChanged>("PropertyChanged", "PropertyName"),
    Method<Pane, &ReadFrom<Pane>>("ReadProperties", "Bag"),
    Method<Pane, &WriteTo<Pane>>("WriteProperties", "Bag"),
};

// Places are in pixels, as in the events of the mouse.
void GetRowColumnIndex(const zrGrid& grid, float x, float y, std::int32_t& row, std::int32_t& column) {
  const GridHit hit = grid.GetRowColumnIndex({Pixels(static_cast<double>(x)), Pixels(static_cast<double>(y))});
  row = static_cast<std::int32_t>(hit.row);
  column = static_cast<std::int32_t>(hit.column);
}
void GetRowColumnXY(const zrGrid& grid, std::int32_t row, const Variant& column, float& x, float& y) {
  const PixelRect cell = grid.GetRowColumnXY(row, column);
  x = static_cast<float>(cell.left.Value());
  y = static_cast<float>(cell.top.Value());
}

constexpr Member kGrid[] = {
    FontProperty<zrGrid, &zrGrid::Font, &zrGrid::SetFont>("Font"),
    ReadWrite<zrGrid, &zrGrid::AllowColumnResize, &zrGrid::SetAllowColumnResize>("AllowColumnResize"),
    ReadWrite<zrGrid, &zrGrid::AllowRowInsert, &zrGrid::SetAllowRowInsert>("AllowRowInsert"),
    ReadOnly<zrGrid, &zrGrid::Column>("Column"),
    ReadOnly<zrGrid, &zrGrid::Columns>("Columns"),
    ReadOnly<zrGrid, &zrGrid::Row>("Row"),
    ReadOnly<zrGrid, &zrGrid::Rows>("Rows"),
    ReadOnly<zrGrid, &zrGrid::hwnd>("hwnd"),
    ReadWrite<zrGrid, &zrGrid::AutoRedraw, &zrGrid::SetAutoRedraw>("AutoRedraw"),
    ReadWrite<zrGrid, &zrGrid::CustomContextMenu, &zrGrid::SetCustomContextMenu>("CustomContextMenu"),
    Method<zrGrid, &GetRowColumnIndex>("GetRowColumnIndex", "X, Y, Row, Column"),
    Method<zrGrid, &GetRowColumnXY>("GetRowColumnXY", "Row, Column, X, Y"),
    Method<zrGrid, &zrGrid::GotoRowCol>("GotoRowCol", "Row, Column"),
    Method<zrGrid, &zrGrid::Refresh>("Refresh"),
    Raised<zrGrid, &zrGrid::OLEDragOver>("OLEDragOver", "Data, Effect, Button, Shift, X, Y, State"),
    Raised<zrGrid, &zrGrid::OLEDragDrop>("OLEDragDrop", "Data, Effect, Button, Shift, X, Y"),
    Raised<zrGrid, &zrGrid::AfterChange>("AfterChange", "Row, Column"),
    Raised<zrGrid, &zrGrid::BeforeChange>("BeforeChange", "Row, Column, Cancel"),
    Raised<zrGrid, &zrGrid::BeforeEdit>("BeforeEdit", "Row, Column"),
    Raised<zrGrid, &zrGrid::AfterEdit>("AfterEdit", "Row, Column"),
    Raised<zrGrid, &zrGrid::BeforeDelete>("BeforeDelete", "FirstRow, LastRow, Cancel"),
    Raised<zrGrid, &zrGrid::AfterDelete>("AfterDelete", "FirstRow, LastRow"),
    Raised<zrGrid, &zrGrid::BeforeInsert>("BeforeInsert", "FirstRow, LastRow, Cancel"),
    Raised<zrGrid, &zrGrid::AfterInsert>("AfterInsert", "FirstRow, LastRow"),
    Raised<zrGrid, &zrGrid::MouseUp>("MouseUp", "Button, Shift, X, Y"),
    Raised<zrGrid, &zrGrid::ShowContextMenu>("ShowContextMenu", "Row, Column"),
    Raised<zrGrid, &zrGrid::DblClick>("DblClick"),
    Raised<zrGrid, &zrGrid::RowColChange>("RowColChange", "Row, Column"),
    Raised<zrGrid, &zrGrid::BeforeDropDown>("BeforeDropDown", "Row, Column, Cancel"),
    Method<zrGrid, &zrGrid::CopyText>("CopyText"),
    Method<zrGrid, &zrGrid::PasteText>("PasteText", "Text"),
    Method<zrGrid, &ReadFrom<zrGrid>>("ReadProperties", "Bag"),
    Method<zrGrid, &WriteTo<zrGrid>>("WriteProperties", "Bag"),
};

using Combo = zrSimpleCombo;
constexpr Member kCombo[] = {
    Method<Combo, &Combo::AboutBox>("AboutBox"),
    Method<Combo, &Combo::AddItem>("AddItem", "Item"),
    Method<Combo, &Combo::Clear>("Clear"),
    ReadOnly<Combo, &Combo::hwnd>("hwnd"),
    ReadWrite<Combo, &Combo::ListIndex, &Combo::SetListIndex>("ListIndex"),
    ReadWrite<Combo, &Combo::Text, &Combo::SetText>("Text"),
    ReadOnly<Combo, &Combo::TextBoxHandle>("TextBoxHandle"),
    ReadWrite<Combo, &Combo::SelStart, &Combo::SetSelStart>("SelStart"),
    ReadWrite<Combo, &Combo::SelLength, &Combo::SetSelLength>("SelLength"),
    ReadWrite<Combo, &Combo::SelText, &Combo::SetSelText>("SelText"),
    FontProperty<Combo, &Combo::Font, &Combo::SetFont>("Font"),
    ReadWrite<Combo, &Combo::MaxLength, &Combo::SetMaxLength>("MaxLength"),
    ReadWrite<Combo, &Combo::HideEdit, &Combo::SetHideEdit>("HideEdit"),
    Raised<Combo, &Combo::BeforeDropDown>("BeforeDropDown", "Cancel"),
    Raised<Combo, &Combo::Click>("Click"),
    Raised<Combo, &Combo::Change>("Change"),
    Raised<Combo, &Combo::KeyDown>("KeyDown", "KeyCode, Shift"),
    Raised<Combo, &Combo::KeyPress>("KeyPress", "KeyAscii"),
    Raised<Combo, &Combo::KeyUp>("KeyUp", "KeyCode, Shift"),
    Raised<Combo, &Combo::DblClick>("DblClick"),
    Raised<Combo, &Combo::MouseDown>("MouseDown", "Button, Shift, X, Y"),
    Raised<Combo, &Combo::MouseMove>("MouseMove", "Button, Shift, X, Y"),
    Raised<Combo, &Combo::MouseUp>("MouseUp", "Button, Shift, X, Y"),
    Method<Combo, &ReadFrom<Combo>>("ReadProperties", "Bag"),
    Method<Combo, &WriteTo<Combo>>("WriteProperties", "Bag"),
};

constexpr Member kColumns[] = {
    Method<zrGridColumns, &zrGridColumns::Add>("Add", "[Key], [Caption]"),
    Method<zrGridColumns, &zrGridColumns::Clear>("Clear"),
    ReadOnly<zrGridColumns, &zrGridColumns::Count>("Count"),
    ReadOnly<zrGridColumns, &zrGridColumns::Item>("Item", "Index"),
    Method<zrGridColumns, &zrGridColumns::Remove>("Remove", "Index"),
};

constexpr Member kColumn[] = {
    ReadOnly<zrGridColumn, &zrGridColumn::ComboItems>("ComboItems"),
    ReadWrite<zrGridColumn, &zrGridColumn::Hidden, &zrGridColumn::SetHidden>("Hidden"),
    ReadOnly<zrGridColumn, &zrGridColumn::Index>("Index"),
    ReadWrite<zrGridColumn, &zrGridColumn::Key, &zrGridColumn::SetKey>("Key"),
    ReadWrite<zrGridColumn, &zrGridColumn::Width, &zrGridColumn::SetWidth>("Width"),
    ReadWrite<zrGridColumn, &zrGridColumn::Caption, &zrGridColumn::SetCaption>("Caption"),
    ReadWrite<zrGridColumn, &zrGridColumn::Style, &zrGridColumn::SetStyle>("Style"),
    ReadWrite<zrGridColumn, &zrGridColumn::Alignment, &zrGridColumn::SetAlignment>("Alignment"),
};

constexpr Member kComboItems[] = {
    Method<zrGridComboItems, &zrGridComboItems::Add>("Add", "Text, [Tag], [Key]"),
    Method<zrGridComboItems, &zrGridComboItems::Clear>("Clear"),
    ReadOnly<zrGridComboItems, &zrGridComboItems::Count>("Count"),
    ReadOnly<zrGridComboItems, &zrGridComboItems::Item>("Item", "Index"),
    Method<zrGridComboItems, &zrGridComboItems::Remove>("Remove", "Index"),
};

constexpr Member kComboItem[] = {
    ReadWrite<zrGridComboItem, &zrGridComboItem::Tag, &zrGridComboItem::SetTag>("Tag"),
    ReadWrite<zrGridComboItem, &zrGridComboItem::Text, &zrGridComboItem::SetText>("Text"),
    ReadWrite<zrGridComboItem, &zrGridComboItem::Key, &zrGridComboItem::SetKey>("Key"),
};

constexpr Member kRows[] = {
    Method<zrGridRows, &zrGridRows::Add>("Add", "[Key], [Before], [After]"),
    Method<zrGridRows, &zrGridRows::Clear>("Clear"),
    ReadOnly<zrGridRows, &zrGridRows::Count>("Count"),
    ReadOnly<zrGridRows, &zrGridRows::Item>("Item", "Index"),
    Method<zrGridRows, &zrGridRows::Move>("Move", "From, To"),
    Method<zrGridRows, &zrGridRows::Remove>("Remove", "Index"),
};

constexpr Member kRow[] = {
    ReadOnly<zrGridRow, &zrGridRow::Index>("Index"),
    ReadWrite<zrGridRow, &zrGridRow::MaxLen, &zrGridRow::SetMaxLen>("MaxLen", "Column"),
    ReadWrite<zrGridRow, &zrGridRow::Value, &zrGridRow::SetValue>("Value", "Column"),
    ReadWrite<zrGridRow, &zrGridRow::TagVariant, &zrGridRow::SetTagVariant>("TagVariant", "Column"),
    ReadWrite<zrGridRow, &zrGridRow::Key, &zrGridRow::SetKey>("Key"),
    ReadWrite<zrGridRow, &zrGridRow::Locked, &zrGridRow::SetLocked>("Locked"),
};

const ClassInfo kClasses[] = {
    {"qbGridPane", kPane, "", [] { return Ref<Object>(Pane::Create()); }},
    {"zrGrid", kGrid, "", [] { return Ref<Object>(zrGrid::Create()); }},
    {"zrSimpleCombo", kCombo, "Text", [] { return Ref<Object>(zrSimpleCombo::Create()); }},
    {"zrGridColumns", kColumns, "Item"},
    {"zrGridColumn", kColumn, "Caption"},
    {"zrGridComboItems", kComboItems, "Item"},
    {"zrGridComboItem", kComboItem, "Text"},
    {"zrGridRows", kRows, "Item"},
    {"zrGridRow", kRow, "Value"},
};

}  // namespace

std::span<const ClassInfo> GridClasses() { return kClasses; }

}  // namespace zrqrybld
