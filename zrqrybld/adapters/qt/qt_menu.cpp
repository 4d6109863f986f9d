#include "zrqrybld/adapters/qt/qt_menu.h"

#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {

void FillMenu(QMenu& window, const Menu& menu, EventBoundary& boundary) {
  for (const MenuEntry& entry : menu) {
    if (entry.IsSeparator()) {
      window.addSeparator();
      continue;
    }
    const QString text = ToQString(entry.text);
    if (!entry.entries.empty()) {
      QMenu* inner = window.addMenu(text);
      inner->setEnabled(entry.enabled);
      FillMenu(*inner, entry.entries, boundary);
      continue;
    }
    // The shortcut is only shown: the control itself acts on the key.
    QAction* action = window.addAction(entry.shortcut.empty() ? text : text + '\t' + ToQString(entry.shortcut));
    action->setEnabled(entry.enabled);
    action->setCheckable(entry.checked);
    action->setChecked(entry.checked);
    if (entry.action) {
      QObject::connect(action, &QAction::triggered, &window, [run = entry.action, &boundary] { boundary.Run(run); });
    }
  }
}

}  // namespace zrqrybld
