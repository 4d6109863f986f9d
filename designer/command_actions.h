// CommandActions: the commands of the table as actions of a window, for its menus and its tool bar.
#pragma once

#include <QAction>
#include <QWidget>
#include <functional>
#include <map>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {

class CommandActions {
 public:
  /// Actions belong to the window; the texts must outlive it.
  CommandActions(QWidget& window, const TextSource& texts) : window_(window), texts_(texts) {}

  /// A new action for the command, with its text and its first key, that runs `run`.
  QAction* Add(Command command, std::function<void()> run);
  /// The action of a command that was added.
  QAction* Of(Command command) const { return actions_.at(command); }

  /// Greys what cannot be given, and only that.
  void Update(const CommandGround& ground);

 private:
  QWidget& window_;
  const TextSource& texts_;
  std::map<Command, QAction*> actions_;
};

}  // namespace zrqrybld
