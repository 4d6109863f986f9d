// The thread that windows live in.
#pragma once

#include <functional>

namespace zrqrybld {

/// Has work done in the window's thread as soon as that comes to it, in the order in which it was given; from any
/// thread.
void InWindowThread(std::function<void()> work);

}  // namespace zrqrybld
