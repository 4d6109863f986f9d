// Fills a Qt menu from the core's description.
#pragma once

#include <QMenu>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/menu.h"

namespace zrqrybld {

/// Adds the entries of `menu` to `window`. Their actions run inside `boundary`, which must outlive the window.
ZRQRYBLD_API void FillMenu(QMenu& window, const Menu& menu, EventBoundary& boundary);

}  // namespace zrqrybld
