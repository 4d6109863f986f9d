#include "designer/command_actions.h"

#include <utility>

#include "designer/tool_icons.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/shortcuts.h"

namespace zrqrybld {

QAction* CommandActions::Add(Command command, std::function<void()> run) {
  auto* action = new QAction(Say(texts_, RowOf(command).text), &window_);
  action->setShortcut(ShortcutOf(command));
  action->setIcon(IconOf(command));
  action->setIconVisibleInMenu(false);
  const QString name = action->text().remove(QLatin1Char('&')).remove(QStringLiteral("..."));
  action->setToolTip(
      action->shortcut().isEmpty() ? name : name + " (" + action->shortcut().toString(QKeySequence::NativeText) + ")");
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
