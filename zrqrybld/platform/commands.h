// The table of commands: what each is called in menus, which key it has, and when it can be given.
//
// Panes, their menus, the applications' menus and lists of keys read it, so that a key is said in one place. A command
// may have a second key that is not shown in menus.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

struct KeyEvent;

/// What a person can ask for by a key or a menu.
enum class Command : std::uint8_t {
  AddTables,
  Arrange,
  FitToWindow,
  ActualSize,
  ZoomIn,
  ZoomOut,
  SelectAllTables,
  CopyPicture,
  SavePicture,
  FindName,
  RenameTable,
  MinimizeTable,
  DeleteSelected,
  TickColumn,
  JoinFromHere,
  OpenSelected,
  ContextMenu,
  EditCell,
  OpenList,
  ZoomCell,
  InsertRows,
  DeleteRows,
  MoveRowsUp,
  MoveRowsDown,
  CopyCells,
  PasteCells,
  ApplyText,
  Suggest,
  FindText,
  RunPreview,
  StopPreview,
  GoToRows,
  NextPane,
  PreviousPane,
  ShowKeys,
  OpenDatabase,
  Connect,
  SaveQueryAs,
  CopyValuesWithNames,
  NewQuery,
  OpenQuery,
  SaveQuery,
  Quit,
  Undo,
  Redo,
  GiveParameters,
  ClearQuery,
  GroupRows,
  ShowSchemaTree,
  ShowMinimap,
  OpenBuilder,
  NewTab,
  CloseTab,
  NextTab,
  PreviousTab,
  MaximizePane,
  CollapsePane,
  RowsInTab,
  Print,
  SavePdf,
  ExportRows,
  FetchAllRows,
  ShowValue,
  FilterRows,
  EachRowOnce,
  LimitRows,
  RevertText,
  UseTextAsTyped,
  WriteTextAnew,
  NextStop,
  PreviousStop,
  MoveBox,
  ResizeBox,
  ScrollDiagram,
  OpenInnerQuery,
  LeaveQuery,
  NewSubquery,
  NewCommonTable,
  AddUnionMember,
  GoToQueryAtCaret,
  ShowConditions,
  AddSavedQuery,
};

/// What has to be there before a command can be given, beside what it is given for.
enum class CommandNeeds : std::uint8_t { Nothing, Connection, Tables };

/// What is there.
struct CommandGround {
  bool connection = false;
  bool tables = false;  ///< in the diagram
};

/// Any of the four arrows, as the key of a command that they give a direction to. Written as the held keys alone.
inline constexpr std::int32_t kAnyArrow = -1;

/// A key with the modifiers that are held.
struct Key {
  std::int32_t code = 0;   ///< a `KeyCode`, or the upper-case ASCII code of a letter or digit; 0 for none
  std::int32_t shift = 0;  ///< `ShiftMask` bits
  friend bool operator==(const Key&, const Key&) = default;
};

/// A command of the table.
struct CommandRow {
  Command command;
  Key key;
  Key other;    ///< a second one
  TextId text;  ///< in a menu; an ampersand marks the access key
  CommandNeeds needs;
};

/// All commands, in the order of their numbers.
std::span<const CommandRow> Commands();
ZRQRYBLD_API const CommandRow& RowOf(Command command);

/// Whether what the command needs is there.
ZRQRYBLD_API bool CanGive(Command command, const CommandGround& ground);

/// Whether the key asks for the command.
ZRQRYBLD_API bool Asks(const KeyEvent& event, Command command);
ZRQRYBLD_API bool Asks(Key key, Command command);

/// How the key is written: "Ctrl+Shift+F7"; "" for none.
ZRQRYBLD_API std::string TextOf(Key key);
/// How the command's first key is written; "" for a command without one.
ZRQRYBLD_API std::string KeyTextOf(Command command);
/// The same with the long names of keys: "Delete" instead of "Del".
ZRQRYBLD_API std::string LongKeyTextOf(Command command);

}  // namespace zrqrybld
