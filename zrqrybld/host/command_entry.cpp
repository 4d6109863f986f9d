#include "zrqrybld/host/command_entry.h"

#include <utility>

#include "zrqrybld/host/query_context.h"

namespace zrqrybld {

MenuEntry EntryFor(const Ref<QueryContext>& context, Command command, std::function<void()> action, bool enabled) {
  return {Say(context, RowOf(command).text), KeyTextOf(command), std::move(action), enabled};
}

}  // namespace zrqrybld
