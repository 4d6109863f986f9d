// The names of steps: what a user reads behind "Undo" and "Redo".
//
// Each has a number in the language table, from 1000 on, whose text replaces the English one; "%NAME%" in it stands for
// what the step is about. An application names steps of its own by a text alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace zrqrybld {

/// The name of a step.
struct StepName {
  constexpr StepName(std::int32_t number, std::string_view english, bool repeated = false)
      : id(number), text(english), repeats(repeated) {}
  constexpr StepName(std::string_view ownText) : text(ownText) {}
  constexpr StepName(const char* ownText) : text(ownText) {}
  StepName(const std::string& ownText) : text(ownText) {}

  std::int32_t id = 0;    ///< its number in the language table; 0 for a name of the application's
  std::string_view text;  ///< in English; it must live until the step begins
  bool repeats = false;   ///< done again and again while a key is held: such steps become one
};

/// The name of a step that was made.
struct StepLabel {
  StepLabel() = default;
  StepLabel(const StepName& name, std::string what)
      : id(name.id), text(name.text), repeats(name.repeats), about(std::move(what)) {}

  std::int32_t id = 0;  ///< as in `StepName`
  std::string text;
  bool repeats = false;
  std::string about;  ///< what it is about; "" for nothing in particular
};

inline constexpr StepName kStepChange{1000, "Change query"};
inline constexpr StepName kStepAddTable{1001, "Add table %NAME%"};
inline constexpr StepName kStepAddTables{1002, "Add tables"};
inline constexpr StepName kStepRemoveTable{1003, "Remove table %NAME%"};
inline constexpr StepName kStepRemoveTables{1004, "Remove tables"};
inline constexpr StepName kStepRenameTable{1005, "Rename table %NAME%"};
inline constexpr StepName kStepMoveTables{1006, "Move tables"};
inline constexpr StepName kStepNudgeTables{1006, "Move tables", true};
inline constexpr StepName kStepResizeTable{1007, "Resize table %NAME%"};
inline constexpr StepName kStepStretchTable{1007, "Resize table %NAME%", true};
inline constexpr StepName kStepMinimizeTable{1008, "Minimise table %NAME%"};
inline constexpr StepName kStepRestoreTable{1009, "Restore table %NAME%"};
inline constexpr StepName kStepArrange{1010, "Arrange tables"};
inline constexpr StepName kStepClear{1011, "Clear"};
inline constexpr StepName kStepTick{1020, "Tick %NAME%"};
inline constexpr StepName kStepUntick{1021, "Untick %NAME%"};
inline constexpr StepName kStepTickColumns{1022, "Tick columns of %NAME%"};
inline constexpr StepName kStepUntickColumns{1023, "Untick columns of %NAME%"};
inline constexpr StepName kStepAddJoin{1030, "Add join"};
inline constexpr StepName kStepDeleteJoin{1031, "Delete join"};
inline constexpr StepName kStepEditJoin{1032, "Edit join"};
inline constexpr StepName kStepReverseJoin{1033, "Reverse join"};
inline constexpr StepName kStepAutomaticJoins{1034, "Automatic joins"};
inline constexpr StepName kStepAddColumn{1040, "Add query column %NAME%"};
inline constexpr StepName kStepRemoveColumn{1041, "Remove query column %NAME%"};
inline constexpr StepName kStepAddColumns{1042, "Add query columns"};
inline constexpr StepName kStepEditCell{1050, "Edit %NAME%"};
inline constexpr StepName kStepEditCells{1051, "Edit cells"};
inline constexpr StepName kStepPaste{1052, "Paste"};
inline constexpr StepName kStepInsertRows{1053, "Insert rows"};
inline constexpr StepName kStepDeleteRows{1054, "Delete rows"};
inline constexpr StepName kStepMoveRows{1055, "Move rows"};
inline constexpr StepName kStepSort{1060, "Sort by %NAME%"};
inline constexpr StepName kStepGroup{1061, "Group %NAME%"};
inline constexpr StepName kStepAddCriterion{1062, "Add criterion of %NAME%"};
inline constexpr StepName kStepGrouping{1063, "Grouping"};
inline constexpr StepName kStepDistinct{1064, "Distinct rows"};
inline constexpr StepName kStepRowLimit{1065, "Row limit"};
inline constexpr StepName kStepDialect{1066, "Change dialect"};
inline constexpr StepName kStepApplyStatement{1070, "Apply statement"};
inline constexpr StepName kStepLoadQuery{1071, "Load query"};

}  // namespace zrqrybld
