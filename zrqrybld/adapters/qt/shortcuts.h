// Keys of commands as Qt's shortcuts.
#pragma once

#include <QKeySequence>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {

/// The first key of the command; empty for a command without one.
inline QKeySequence ShortcutOf(Command command) {
  return QKeySequence(ToQString(KeyTextOf(command)), QKeySequence::PortableText);
}

/// The second one.
inline QKeySequence OtherShortcutOf(Command command) {
  return QKeySequence(ToQString(TextOf(RowOf(command).other)), QKeySequence::PortableText);
}

}  // namespace zrqrybld
