#include "zrqrybld/platform/commands.h"

#include <algorithm>
#include <iterator>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr std::int32_t F(int number) { return KeyCodeF1 + number - 1; }
constexpr std::int32_t kCtrlShift = ShiftCtrl | ShiftShift;

using Needs = CommandNeeds;

constexpr CommandRow kCommands[] = {
    {Command::AddTables, {F(7)}, {KeyCodeInsert}, text::MenuAddTables, Needs::Connection},
    {Command::Arrange, {}, {}, text::MenuArrange, Needs::Tables},
    {Command::FitToWindow, {}, {}, text::MenuFitWindow, Needs::Tables},
    {Command::ActualSize, {'0', ShiftCtrl}, {}, text::MenuActualSize, Needs::Nothing},
    {Command::ZoomIn, {KeyCodePlus, ShiftCtrl}, {}, text::ZoomInItem, Needs::Nothing},
    {Command::ZoomOut, {KeyCodeMinus, ShiftCtrl}, {}, text::ZoomOutItem, Needs::Nothing},
    {Command::SelectAllTables, {'A', ShiftCtrl}, {}, text::MenuSelectAll, Needs::Tables},
    {Command::CopyPicture, {'C', ShiftCtrl}, {}, text::MenuCopyPicture, Needs::Tables},
    {Command::SavePicture, {}, {}, text::MenuSavePicture, Needs::Tables},
    {Command::FindName, {'F', ShiftCtrl}, {}, text::FindCaption, Needs::Nothing},
    {Command::RenameTable, {F(2)}, {}, text::MenuAlias, Needs::Nothing},
    {Command::MinimizeTable, {KeyCodeSpace, ShiftShift}, {}, text::MenuMinimise, Needs::Nothing},
    {Command::DeleteSelected, {KeyCodeDelete}, {}, text::MenuDelete, Needs::Nothing},
    {Command::TickColumn, {KeyCodeSpace}, {}, text::MenuOutput, Needs::Nothing},
    {Command::JoinFromHere, {'J', ShiftCtrl}, {}, text::MenuJoinFromHere, Needs::Nothing},
    {Command::OpenSelected, {KeyCodeEnter}, {}, text::MenuProperties, Needs::Nothing},
    {Command::ContextMenu, {F(10), ShiftShift}, {KeyCodeMenu}, text::NoText, Needs::Nothing},
    {Command::EditCell, {F(2)}, {}, text::NoText, Needs::Nothing},
    {Command::OpenList, {F(4)}, {}, text::NoText, Needs::Nothing},
    {Command::ZoomCell, {F(2), ShiftShift}, {}, text::MenuZoom, Needs::Nothing},
    {Command::InsertRows, {KeyCodeInsert}, {}, text::MenuInsertRow, Needs::Nothing},
    {Command::DeleteRows, {KeyCodeDelete}, {}, text::MenuDeleteRow, Needs::Nothing},
    {Command::MoveRowsUp, {KeyCodeUp, ShiftAlt}, {}, text::MenuMoveUp, Needs::Nothing},
    {Command::MoveRowsDown, {KeyCodeDown, ShiftAlt}, {}, text::MenuMoveDown, Needs::Nothing},
    {Command::CopyCells, {'C', ShiftCtrl}, {}, text::MenuCopy, Needs::Nothing},
    {Command::PasteCells, {'V', ShiftCtrl}, {}, text::MenuPaste, Needs::Nothing},
    {Command::ApplyText, {KeyCodeEnter, ShiftCtrl}, {F(5)}, text::ApplyItem, Needs::Nothing},
    {Command::Suggest, {KeyCodeSpace, ShiftCtrl}, {}, text::NoText, Needs::Nothing},
    {Command::FindText, {'F', ShiftCtrl}, {}, text::FindEllipsis, Needs::Nothing},
    {Command::RunPreview, {F(5)}, {}, text::RunPreviewItem, Needs::Nothing},
    {Command::StopPreview, {F(5), ShiftShift}, {}, text::StopPreviewItem, Needs::Nothing},
    {Command::GoToRows, {'R', ShiftCtrl}, {}, text::GoToRowsItem, Needs::Nothing},
    {Command::NextPane, {F(6)}, {}, text::NoText, Needs::Nothing},
    {Command::PreviousPane, {F(6), ShiftShift}, {}, text::NoText, Needs::Nothing},
    {Command::ShowKeys, {F(1)}, {}, text::KeysItem, Needs::Nothing},
    {Command::OpenDatabase, {'D', ShiftCtrl}, {}, text::OpenDatabaseItem, Needs::Nothing},
    {Command::Connect, {'O', kCtrlShift}, {}, text::ConnectItem, Needs::Nothing},
    {Command::SaveQueryAs, {'S', kCtrlShift}, {}, text::SaveAsItem, Needs::Nothing},
    {Command::CopyValuesWithNames, {'C', kCtrlShift}, {}, text::CopyWithNames, Needs::Nothing},
    {Command::NewQuery, {'N', ShiftCtrl}, {}, text::NewQueryItem, Needs::Nothing},
    {Command::OpenQuery, {'O', ShiftCtrl}, {}, text::OpenQueryItem, Needs::Nothing},
    {Command::SaveQuery, {'S', ShiftCtrl}, {}, text::SaveItem, Needs::Nothing},
    {Command::Quit, {'Q', ShiftCtrl}, {}, text::QuitItem, Needs::Nothing},
    {Command::Undo, {'Z', ShiftCtrl}, {}, text::UndoItem, Needs::Nothing},
    {Command::Redo, {'Y', ShiftCtrl}, {'Z', kCtrlShift}, text::RedoItem, Needs::Nothing},
    {Command::GiveParameters, {}, {}, text::ParametersItem, Needs::Nothing},
    {Command::ClearQuery, {}, {}, text::ClearItem, Needs::Tables},
    {Command::GroupRows, {}, {}, text::GroupRowsItem, Needs::Nothing},
    {Command::ShowSchemaTree, {F(9)}, {}, text::SchemaTreeItem, Needs::Nothing},
    {Command::ShowMinimap, {F(8)}, {}, text::MenuMinimap, Needs::Nothing},
    {Command::OpenBuilder, {F(2), ShiftCtrl}, {}, text::MenuBuilder, Needs::Nothing},
    {Command::NewTab, {'T', ShiftCtrl}, {}, text::NewTabItem, Needs::Nothing},
    {Command::CloseTab, {'W', ShiftCtrl}, {}, text::CloseTabItem, Needs::Nothing},
    {Command::NextTab, {KeyCodeTab, ShiftCtrl}, {}, text::NextTabItem, Needs::Nothing},
    {Command::PreviousTab, {KeyCodeTab, kCtrlShift}, {}, text::PreviousTabItem, Needs::Nothing},
    {Command::MaximizePane, {'M', ShiftCtrl}, {}, text::MaximizePaneItem, Needs::Nothing},
    {Command::CollapsePane, {'M', kCtrlShift}, {}, text::CollapsePaneItem, Needs::Nothing},
    {Command::RowsInTab, {}, {}, text::RowsInTabItem, Needs::Nothing},
    {Command::Print, {'P', ShiftCtrl}, {}, text::PrintItem, Needs::Nothing},
    {Command::SavePdf, {}, {}, text::SavePdfItem, Needs::Nothing},
    {Command::ExportRows, {'E', ShiftCtrl}, {}, text::ExportRowsItem, Needs::Nothing},
    {Command::FetchAllRows, {}, {}, text::FetchAllItem, Needs::Nothing},
    {Command::ShowValue, {F(2), ShiftShift}, {}, text::ShowValueItem, Needs::Nothing},
    {Command::FilterRows, {'F', ShiftCtrl}, {}, text::FilterRowsItem, Needs::Nothing},
    {Command::EachRowOnce, {}, {}, text::EachRowOnceItem, Needs::Nothing},
    {Command::LimitRows, {}, {}, text::LimitRowsItem, Needs::Nothing},
    {Command::RevertText, {}, {}, text::RevertItem, Needs::Nothing},
    {Command::UseTextAsTyped, {}, {}, text::UseAsTypedItem, Needs::Nothing},
    {Command::WriteTextAnew, {}, {}, text::WriteAnewItem, Needs::Nothing},
    {Command::NextStop, {KeyCodeTab}, {}, text::NoText, Needs::Nothing},
    {Command::PreviousStop, {KeyCodeTab, ShiftShift}, {}, text::NoText, Needs::Nothing},
    {Command::MoveBox, {kAnyArrow, ShiftAlt}, {}, text::NoText, Needs::Nothing},
    {Command::ResizeBox, {kAnyArrow, kCtrlShift}, {}, text::NoText, Needs::Nothing},
    {Command::ScrollDiagram, {kAnyArrow, ShiftShift | ShiftAlt}, {}, text::NoText, Needs::Nothing},
    {Command::OpenInnerQuery, {KeyCodeEnter}, {}, text::MenuOpenQuery, Needs::Nothing},
    {Command::LeaveQuery, {KeyCodeLeft, ShiftAlt}, {}, text::LeaveQueryItem, Needs::Nothing},
    {Command::NewSubquery, {}, {}, text::NewSubqueryItem, Needs::Nothing},
    {Command::NewCommonTable, {}, {}, text::NewCommonTableItem, Needs::Nothing},
    {Command::AddUnionMember, {}, {}, text::AddUnionMemberItem, Needs::Nothing},
    {Command::GoToQueryAtCaret, {F(12)}, {}, text::GoToQueryItem, Needs::Nothing},
    {Command::ShowConditions, {F(9), ShiftShift}, {}, text::ConditionsItem, Needs::Nothing},
    {Command::AddSavedQuery, {}, {}, text::AddSavedQueryItem, Needs::Nothing},
};

constexpr bool InOrder() {
  for (std::size_t i = 0; i < std::size(kCommands); ++i) {
    if (kCommands[i].command != static_cast<Command>(i)) return false;
  }
  return true;
}
static_assert(InOrder(), "the rows stand in the order of the commands");

struct KeyName {
  std::int32_t code;
  std::string_view name;
};
// As keyboards and toolkits write them, in every language.
constexpr KeyName kKeyNames[] = {
    {KeyCodeTab, "Tab"},    {KeyCodeEnter, "Enter"}, {KeyCodeEscape, "Esc"}, {KeyCodeSpace, "Space"},
    {KeyCodeUp, "Up"},      {KeyCodeDown, "Down"},   {KeyCodeLeft, "Left"},  {KeyCodeRight, "Right"},
    {KeyCodeInsert, "Ins"}, {KeyCodeDelete, "Del"},  {KeyCodeMenu, "Menu"},  {KeyCodePlus, "+"},
    {KeyCodeMinus, "-"},    {kAnyArrow, ""},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

const CommandRow& RowOf(Command command) { return kCommands[static_cast<std::size_t>(command)]; }

bool CanGive(Command command, const CommandGround& ground) {
  switch (RowOf(command).needs) {
    case CommandNeeds::Nothing:
      return true;
    case CommandNeeds::Connection:
      return ground.connection;
    case CommandNeeds::Tables:
      return ground.tables;
  }
  return true;
}

bool Asks(Key key, Command command) {
  const CommandRow& row = RowOf(command);
  const bool isArrow = key.code >= KeyCodeLeft && key.code <= KeyCodeDown;
  if (isArrow && row.key == Key{kAnyArrow, key.shift}) return true;
  return key.code != 0 && (key == row.key || key == row.other);
}

bool Asks(const KeyEvent& event, Command command) { return Asks(Key{event.keyCode, event.shift}, command); }

std::string TextOf(Key key) {
  if (key.code == 0) return {};
  std::string written;
  if ((key.shift & ShiftCtrl) != 0) written += "Ctrl+";
  if ((key.shift & ShiftShift) != 0) written += "Shift+";
  if ((key.shift & ShiftAlt) != 0) written += "Alt+";
  const auto* named = std::ranges::find(kKeyNames, key.code, &KeyName::code);
  if (named != std::end(kKeyNames)) return written.append(named->name);
  if (key.code >= F(1) && key.code <= F(24)) return written + "F" + std::to_string(key.code - F(1) + 1);
  return written + static_cast<char>(key.code);
}

std::string LongKeyTextOf(Command command) {
  return ReplaceAll(ReplaceAll(KeyTextOf(command), "Ins", "Insert"), "Del", "Delete");
}

std::string KeyTextOf(Command command) { return TextOf(RowOf(command).key); }

}  // namespace zrqrybld
