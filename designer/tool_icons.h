// Icons of the designer's commands and of its window, drawn as vectors in the colours of the theme in use.
#pragma once

#include <QIcon>

#include "zrqrybld/platform/commands.h"

namespace zrqrybld {

/// The icon of a command; a null one for a command without. It follows the palette and is sharp at every scale.
QIcon IconOf(Command command);

/// What a source holds.
enum class Glyph { Table, View, Key, Query };
/// The icon of it, as above.
QIcon IconOf(Glyph glyph);

/// The program's own: two tables and their join.
QIcon ProgramIcon();

}  // namespace zrqrybld
