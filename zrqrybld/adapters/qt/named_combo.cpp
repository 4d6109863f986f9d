#include "zrqrybld/adapters/qt/named_combo.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>

namespace zrqrybld {
namespace {

// The list as its one child, what is chosen as a text that cannot be edited.
class ComboAccess final : public QAccessibleWidget, public QAccessibleTextInterface {
 public:
  explicit ComboAccess(NamedCombo& combo) : QAccessibleWidget(&combo, QAccessible::ComboBox), combo_(combo) {}

  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Value ? combo_.currentText() : QAccessibleWidget::text(kind);
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = state.hasPopup = true;
    state.expanded = combo_.view()->isVisible();
    state.collapsed = !state.expanded;
    return state;
  }
  int childCount() const override { return 1; }
  QAccessibleInterface* child(int index) const override {
    return index == 0 ? QAccessible::queryAccessibleInterface(combo_.view()) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child && child->object() == combo_.view() ? 0 : -1;
  }
  QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
  void doAction(const QString& name) override {
    if (!actionNames().contains(name)) return;
    combo_.view()->isVisible() ? combo_.hidePopup() : combo_.showPopup();
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }

  QString text(int start, int end) const override { return combo_.currentText().mid(start, end - start); }
  int characterCount() const override { return static_cast<int>(combo_.currentText().size()); }
  void selection(int, int* start, int* end) const override { *start = *end = 0; }
  int selectionCount() const override { return 0; }
  void addSelection(int, int) override {}
  void removeSelection(int) override {}
  void setSelection(int, int, int) override {}
  int cursorPosition() const override { return 0; }
  void setCursorPosition(int) override {}
  QRect characterRect(int) const override { return rect(); }
  int offsetAtPoint(const QPoint&) const override { return -1; }
  void scrollToSubstring(int, int) override {}
  QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }

 private:
  NamedCombo& combo_;
};

QAccessibleInterface* MakeAccess(const QString&, QObject* object) {
  auto* combo = dynamic_cast<NamedCombo*>(object);
  return combo ? new ComboAccess(*combo) : nullptr;
}

}  // namespace

NamedCombo::NamedCombo(const QString& name, QWidget* parent) : QComboBox(parent) {
  QAccessible::installFactory(MakeAccess);
  setAccessibleName(QString(name).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
}

}  // namespace zrqrybld
