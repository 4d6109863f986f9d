#include "tests/designer/access_faults.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QWidget>

namespace zrqrybld::test {
namespace {

std::string NameOf(const QObject& object) {
  const QString name = object.objectName().isEmpty() ? QString() : " " + object.objectName();
  return (object.metaObject()->className() + name).toStdString();
}

std::string NameOf(QAccessibleInterface& access) {
  return NameOf(*access.object()) + " \"" + access.text(QAccessible::Name).toStdString() + "\"";
}

bool NeedsName(QAccessible::Role role) {
  constexpr QAccessible::Role kControls[] = {
      QAccessible::Button,   QAccessible::ButtonMenu,  QAccessible::ButtonDropDown, QAccessible::CheckBox,
      QAccessible::ComboBox, QAccessible::Dialog,      QAccessible::EditableText,   QAccessible::List,
      QAccessible::Pane,     QAccessible::RadioButton, QAccessible::SpinBox,        QAccessible::Table,
      QAccessible::Tree,     QAccessible::ToolBar,     QAccessible::ProgressBar};
  return std::ranges::find(kControls, role) != std::end(kControls);
}

// Whether who reads lines in the layout's direction comes to `second` first. What overlaps has no order.
bool IsReadBefore(const QRect& second, const QRect& first) {
  if (second.bottom() < first.top()) return true;
  if (second.top() > first.bottom()) return false;
  return QApplication::isRightToLeft() ? second.left() > first.right() : second.right() < first.left();
}

void WalkTree(QAccessibleInterface& parent, std::string& faults) {
  QAccessibleInterface* before = nullptr;
  for (int i = 0; i < parent.childCount(); ++i) {
    QAccessibleInterface* child = parent.child(i);
    auto* widget = child ? qobject_cast<QWidget*>(child->object()) : nullptr;
    if (!widget || !widget->isVisible() || child->rect().isEmpty()) continue;
    const auto* combo = qobject_cast<QComboBox*>(widget);
    if (combo && !combo->currentText().isEmpty() && child->text(QAccessible::Name) == combo->currentText())
      faults += "named by what is chosen: " + NameOf(*child) + "\n";
    if (NeedsName(child->role()) && child->text(QAccessible::Name).isEmpty())
      faults += "no name: " + NameOf(*child) + " in " + NameOf(parent) + "\n";
    if (before && IsReadBefore(child->rect(), before->rect())) {
      faults += "told too late: " + NameOf(*child) + " after " + NameOf(*before) + " in " + NameOf(parent) + "\n";
    }
    before = child;
    const bool isWhole = child->role() == QAccessible::ComboBox || child->role() == QAccessible::SpinBox;
    if (!isWhole) WalkTree(*child, faults);
  }
}

void WalkTabStops(QWidget& window, std::string& faults) {
  window.setAttribute(Qt::WA_KeyboardFocusChange);  // as after the first Tab
  for (QWidget* stop : window.findChildren<QWidget*>()) {
    const bool isStop = stop->isVisible() && stop->isEnabled() && (stop->focusPolicy() & Qt::TabFocus) != 0;
    if (!isStop || stop->focusProxy() || stop->window() != &window) continue;
    const QRect place(stop->mapTo(&window, QPoint(0, 0)), stop->size());
    stop->setFocus(Qt::TabFocusReason);
    if (QApplication::focusWidget() != stop) {
      faults += "gets no focus: " + NameOf(*stop) + "\n";
      continue;
    }
    const QImage with = window.grab(place).toImage();
    stop->clearFocus();
    if (window.grab(place).toImage() == with)
      faults += "shows no focus: " + NameOf(*stop) + " \"" +
                QAccessible::queryAccessibleInterface(stop)->text(QAccessible::Name).toStdString() + "\"\n";
  }
}

}  // namespace

std::string AccessFaults(QWidget& window) {
  std::string faults;
  QApplication::setActiveWindow(&window);
  QApplication::processEvents();
  WalkTree(*QAccessible::queryAccessibleInterface(&window), faults);
  WalkTabStops(window, faults);
  return faults;
}

}  // namespace zrqrybld::test
