#include "designer/command_actions.h"

#include <utility>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/shortcuts.h"

namespace zrqrybld {

QAction* CommandActions::Add(Command command, std::function<void()> run) {
  auto* action = new QAction(Say(texts_, RowOf(command).text), &window_);
  action->setShortcut(ShortcutOf(command));
  QObject::connect(action, &QAction::triggered, &window_, [run = std::move(run)] { run(); });
  actions_.emplace(command, action);
  return action;
}

void CommandActions::Update(const CommandGround& ground) {
  for (const auto& [command, action] : actions_) {
    if (RowOf(command).needs != CommandNeeds::Nothing) action->setEnabled(CanGive(command, ground));
  }
}

}  // namespace zrqrybld
