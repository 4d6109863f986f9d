// What stands between a window and those who use it without a mouse or without seeing it.
#pragma once

#include <string>

class QWidget;

namespace zrqrybld::test {

/// One line a fault of a visible window: a control without a name, a widget that is told before one that stands above
/// or before it, a Tab stop that looks the same with and without the keyboard. Empty for none.
std::string AccessFaults(QWidget& window);

}  // namespace zrqrybld::test
