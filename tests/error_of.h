// What an action fails with.
#pragma once

#include <cstdint>

#include "zrqrybld/base/error.h"

namespace zrqrybld::test {

/// The number of the error that the action throws; 0 when it throws none.
template <class Action>
std::int32_t ErrorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace zrqrybld::test
