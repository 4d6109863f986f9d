// The names of steps: what a user reads behind "Undo" and "Redo".
//
// Each has a number in the language table, from 1000 on; "%NAME%" in its text stands for what the step is about. An
// application names steps of its own by a text alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

/// The name of a step.
struct StepName {
  constexpr StepName(TextId number) : id(static_cast<std::int32_t>(number)) {}
  constexpr StepName(std::string_view ownText) : text(ownText) {}
  constexpr StepName(const char* ownText) : text(ownText) {}
  StepName(const std::string& ownText) : text(ownText) {}

  /// The same step as it is named when a held key does it again and again.
  constexpr StepName Repeated() const {
    StepName name = *this;
    name.repeats = true;
    return name;
  }

  std::int32_t id = 0;    ///< its number in the language table; 0 for a name of the application's
  std::string_view text;  ///< the application's own name, which must live until the step begins
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

#define ZRQRYBLD_TEXT(name, number, english, placeholders) inline constexpr StepName kStep##name{TextId{number}};
#include "zrqrybld/base/texts_steps.inc"
#undef ZRQRYBLD_TEXT

// Those that a held key repeats.
inline constexpr StepName kStepNudgeTables = kStepMoveTables.Repeated();
inline constexpr StepName kStepStretchTable = kStepResizeTable.Repeated();

}  // namespace zrqrybld
