// An entry of a menu for a command of the table.
#pragma once

#include <functional>

#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/menu.h"

namespace zrqrybld {

struct QueryContext;

/// The entry, with the command's text in the context's language, English without one, and its key.
MenuEntry EntryFor(const Ref<QueryContext>& context, Command command, std::function<void()> action,
                   bool enabled = true);

}  // namespace zrqrybld
