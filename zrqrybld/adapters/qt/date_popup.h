// A calendar that opens below a field, to choose a day from.
#pragma once

#include <QDate>
#include <functional>

#include "zrqrybld/base/export.h"

class QWidget;

namespace zrqrybld {

/// Opens it below the widget, which keeps what it knows of the keyboard, at a day that need not be valid. Returns at
/// once; `taken` is called when a day is chosen, and not when the widget is gone by then.
ZRQRYBLD_API void ChooseDay(QWidget& field, QDate day, std::function<void(QDate)> taken);

}  // namespace zrqrybld
