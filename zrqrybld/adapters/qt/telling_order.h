// The order in which assistive technology is told the children of a widget. Qt takes the order in which they are
// stacked, and with it that in which they were made; these stack them as they are read.
#pragma once

#include <initializer_list>

#include "zrqrybld/base/export.h"

class QLayout;
class QSplitter;
class QTabWidget;
class QWidget;

namespace zrqrybld {

/// Siblings that do not overlap, the first one first; nothing may be among them.
ZRQRYBLD_API void TellInOrder(std::initializer_list<QWidget*> siblings);
/// What a layout holds, as it lays it out: a tool bar's, or that of a box of buttons.
ZRQRYBLD_API void TellInOrder(const QLayout& layout);
/// Panes, and the handles between them. To be called again when one was added.
ZRQRYBLD_API void TellInOrder(const QSplitter& panes);
/// The tabs before what they show.
ZRQRYBLD_API void TellInOrder(const QTabWidget& tabs);

}  // namespace zrqrybld
