// Commands that may fail, for windows that show why.
#pragma once

#include <QString>
#include <exception>

#include "zrqrybld/adapters/qt/say.h"

namespace zrqrybld {

/// Runs a command; an error becomes what it says in the language, "" is success.
template <class Command>
QString FailureOf(const TextSource& texts, const Command& command) {
  try {
    command();
  } catch (const std::exception& error) {
    return Say(texts, error);
  }
  return {};
}

}  // namespace zrqrybld
