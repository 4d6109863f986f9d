#include "zrqrybld/adapters/qt/telling_order.h"

#include <QLayout>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>

namespace zrqrybld {

void TellInOrder(std::initializer_list<QWidget*> siblings) {
  for (QWidget* widget : siblings) {
    if (widget) widget->raise();
  }
}

void TellInOrder(const QLayout& layout) {
  for (int i = 0; i < layout.count(); ++i) TellInOrder({layout.itemAt(i)->widget()});
}

void TellInOrder(const QSplitter& panes) {
  for (int i = 0; i < panes.count(); ++i) TellInOrder({panes.handle(i), panes.widget(i)});
}

void TellInOrder(const QTabWidget& tabs) { tabs.tabBar()->lower(); }

}  // namespace zrqrybld
