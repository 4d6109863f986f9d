// The members of the grid pane and the grid control under it.
#include "automation/binding.h"
#include "automation/classes.h"

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
    ReadOnly<Pane, &Pane::Grid>("Grid"),
};

constexpr Member kGrid[] = {
    Raised<zrGrid, &zrGrid::AfterChange>("AfterChange", "Row, Column"),
    ReadOnly<zrGrid, &zrGrid::Columns>("Columns"),
    ReadOnly<zrGrid, &zrGrid::Rows>("Rows"),
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
    Method<zrGridRows, &zrGridRows::Remove>("Remove", "Index"),
};

constexpr Member kRow[] = {
    ReadWrite<zrGridRow, &zrGridRow::Value, &zrGridRow::SetValue>("Value", "Column"),
    ReadWrite<zrGridRow, &zrGridRow::TagVariant, &zrGridRow::SetTagVariant>("TagVariant", "Column"),
    ReadOnly<zrGridRow, &zrGridRow::Index>("Index"),
};

const ClassInfo kClasses[] = {
    {"qbGridPane", kPane, "", [] { return Ref<Object>(Pane::Create()); }},
    {"zrGrid", kGrid, "", [] { return Ref<Object>(zrGrid::Create()); }},
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
