#include "zrqrybld/adapters/qt/control_access.h"

#include <QLineEdit>
#include <QWindow>
#include <algorithm>
#include <vector>

#include "zrqrybld/adapters/qt/access_events.h"
#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {
namespace {

QAccessible::Role ToRole(AccessibleRole role) {
  switch (role) {
    case AccessibleRole::Pane:
      return QAccessible::Pane;
    case AccessibleRole::List:
      return QAccessible::List;
    case AccessibleRole::CheckItem:
      return QAccessible::ListItem;
    case AccessibleRole::Join:
    case AccessibleRole::Minimap:
      return QAccessible::Graphic;
    case AccessibleRole::Table:
      return QAccessible::Table;
    case AccessibleRole::ColumnHeader:
      return QAccessible::ColumnHeader;
    case AccessibleRole::RowHeader:
      return QAccessible::RowHeader;
    case AccessibleRole::Cell:
      return QAccessible::Cell;
  }
  return QAccessible::NoRole;
}

struct ActionName {
  AccessibleAction action;
  const QString& (*name)();
};
const ActionName kActionNames[] = {
    {AccessibleAction::Toggle, QAccessibleActionInterface::toggleAction},
    {AccessibleAction::Press, QAccessibleActionInterface::pressAction},
    {AccessibleAction::ShowMenu, QAccessibleActionInterface::showMenuAction},
    {AccessibleAction::Focus, QAccessibleActionInterface::setFocusAction},
};

QStringList NamesOf(const std::vector<AccessibleAction>& actions) {
  QStringList names;
  for (const ActionName& known : kActionNames) {
    if (std::ranges::find(actions, known.action) != actions.end()) names += known.name();
  }
  return names;
}

void Do(AccessHost& host, const AccessibleId& id, const QString& name) {
  for (const ActionName& known : kActionNames) {
    if (known.name() == name) return host.PerformAccess(id, known.action);
  }
}

QAccessible::State ToState(const AccessibleInfo& info, bool hasKeyboard) {
  const AccessibleState& from = info.state;
  QAccessible::State state;
  state.focusable = std::ranges::find(info.actions, AccessibleAction::Focus) != info.actions.end();
  state.focused = from.focused && hasKeyboard;
  state.selectable = from.selectable;
  state.selected = from.selected;
  state.checkable = from.checkable;
  state.checked = from.checked;
  state.checkStateMixed = from.mixed;
  state.expandable = from.expandable;
  state.expanded = from.expandable && from.expanded;
  state.collapsed = from.expandable && !from.expanded;
  state.editable = from.editable;
  state.offscreen = from.offscreen;
  return state;
}

QAccessible::State Difference(QAccessible::State a, QAccessible::State b) {
  QAccessible::State changed;
  changed.checked = a.checked != b.checked;
  changed.checkStateMixed = a.checkStateMixed != b.checkStateMixed;
  changed.selected = a.selected != b.selected;
  changed.expanded = a.expanded != b.expanded;
  changed.collapsed = a.collapsed != b.collapsed;
  return changed;
}

// One object of a control. What left the control stays a valid C++ object until it is forgotten, and says nothing.
class ObjectAccess final : public QAccessibleInterface,
                           public QAccessibleActionInterface,
                           public QAccessibleTableCellInterface {
 public:
  ObjectAccess(const ControlAccess& control, QWidget& widget, const AccessibleId& id)
      : control_(control), widget_(widget), object_(id.object), part_(id.part), hasPart_(id.part != nullptr) {}

  AccessibleId Id() const { return {object_.lock(), part_.lock()}; }
  bool isValid() const override {
    const AccessibleId id = Id();
    return id.object && (id.part || !hasPart_) && control_.Tree() && control_.Tree()->Contains(id);
  }
  AccessibleInfo Info() const { return isValid() ? control_.Tree()->Describe(Id()) : AccessibleInfo(); }

  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return widget_.window()->windowHandle(); }
  QAccessibleInterface* parent() const override {
    return isValid() ? control_.InterfaceOf(control_.Tree()->ParentOf(Id())) : nullptr;
  }
  int childCount() const override { return isValid() ? static_cast<int>(control_.Tree()->ChildCount(Id())) : 0; }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    return control_.InterfaceOf(control_.Tree()->ChildAt(Id(), static_cast<std::size_t>(index)));
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto* object = dynamic_cast<const ObjectAccess*>(child);
    if (!object || !object->isValid() || object->parent() != this) return -1;
    return static_cast<int>(control_.Tree()->IndexOf(object->Id()).value_or(0));
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    QAccessibleInterface* at = control_.childAt(x, y);
    return at && at != this && at->parent() == this ? at : nullptr;
  }
  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Name) return ToQString(Info().name);
    if (kind == QAccessible::Description) return ToQString(Info().description);
    return {};
  }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override { return isValid() ? control_.Host().ToScreen(Info().bounds) : QRect(); }
  QAccessible::Role role() const override { return isValid() ? ToRole(Info().role) : QAccessible::NoRole; }
  QAccessible::State state() const override {
    if (isValid()) return ToState(Info(), widget_.hasFocus());
    QAccessible::State gone;
    gone.invalid = true;
    return gone;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
    const bool isCell = type == QAccessible::TableCellInterface && isValid() && control_.Tree()->PlaceOf(Id());
    return isCell ? static_cast<QAccessibleTableCellInterface*>(this) : nullptr;
  }

  QStringList actionNames() const override { return NamesOf(Info().actions); }
  void doAction(const QString& name) override {
    if (isValid()) Do(control_.Host(), Id(), name);
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

  bool isSelected() const override { return Info().state.selected; }
  QList<QAccessibleInterface*> columnHeaderCells() const override {
    return {control_.InterfaceOf(control_.Tree()->ColumnHeader(Place().column))};
  }
  QList<QAccessibleInterface*> rowHeaderCells() const override {
    return {control_.InterfaceOf(control_.Tree()->RowHeader(Place().row))};
  }
  int columnIndex() const override { return static_cast<int>(Place().column); }
  int rowIndex() const override { return static_cast<int>(Place().row); }
  int columnExtent() const override { return 1; }
  int rowExtent() const override { return 1; }
  QAccessibleInterface* table() const override { return const_cast<ControlAccess*>(&control_); }

 private:
  AccessibleTree::CellPlace Place() const {
    return isValid() ? control_.Tree()->PlaceOf(Id()).value_or(AccessibleTree::CellPlace{})
                     : AccessibleTree::CellPlace{};
  }

  const ControlAccess& control_;  // deletes this before it goes
  QWidget& widget_;
  WeakRef<Object> object_;
  WeakRef<Object> part_;
  bool hasPart_;
};

}  // namespace

// --- Objects and their interfaces ---

ControlAccess::ControlAccess(QWidget& host) : QAccessibleWidget(&host), host_(dynamic_cast<AccessHost&>(host)) {}

ControlAccess::~ControlAccess() {
  for (const auto& [key, id] : known_) QAccessible::deleteAccessibleInterface(id);
}

void ControlAccess::Install() {
  QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
    auto* widget = qobject_cast<QWidget*>(object);
    return widget && dynamic_cast<AccessHost*>(widget) ? new ControlAccess(*widget) : nullptr;
  });
}

QAccessibleInterface* ControlAccess::InterfaceOf(const AccessibleId& id) const {
  if (id.IsControl()) return const_cast<ControlAccess*>(this);
  QAccessible::Id& known = known_[{id.object.get(), id.part.get()}];
  if (known != 0) {
    QAccessibleInterface* made = QAccessible::accessibleInterface(known);
    if (made && static_cast<ObjectAccess*>(made)->Id() == id) return made;
    QAccessible::deleteAccessibleInterface(known);  // of one that had this address before
  }
  auto* made = new ObjectAccess(*this, *widget(), id);
  known = QAccessible::registerAccessibleInterface(made);
  return made;
}

void ControlAccess::ForgetGone() {
  std::erase_if(known_, [](const auto& entry) {
    QAccessibleInterface* made = QAccessible::accessibleInterface(entry.second);
    if (made && made->isValid()) return false;
    if (made) {
      QAccessibleEvent gone(made, QAccessible::ObjectDestroyed);
      TellAccess(gone);
    }
    QAccessible::deleteAccessibleInterface(entry.second);
    return true;
  });
}

// --- What has changed ---

void ControlAccess::Update(QWidget& host) {
  if (auto* access = dynamic_cast<ControlAccess*>(QAccessible::queryAccessibleInterface(&host))) access->Update();
}

void ControlAccess::Update() {
  ForgetGone();
  const AccessibleTree* tree = Tree();
  if (!tree) return;
  const AccessibleId id = tree->Current();
  QAccessibleInterface* now = InterfaceOf(id);
  const QAccessible::Id unique = id.IsControl() ? 0 : QAccessible::uniqueId(now);
  AccessibleInfo info = tree->Describe(id);
  const AccessibleInfo before = std::exchange(currentInfo_, info);
  const auto tell = [now](QAccessible::Event event) {
    QAccessibleEvent change(now, event);
    TellAccess(change);
  };
  if (std::exchange(current_, unique) != unique) {
    if (widget()->hasFocus()) tell(QAccessible::Focus);
    return;
  }
  if (info.name != before.name) tell(QAccessible::NameChanged);
  if (info.description != before.description) tell(QAccessible::DescriptionChanged);
  const QAccessible::State changed = Difference(ToState(info, false), ToState(before, false));
  if (changed == QAccessible::State()) return;
  QAccessibleStateChangeEvent event(now, changed);
  TellAccess(event);
}

// --- The control itself ---

void* ControlAccess::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TableInterface && role() == QAccessible::Table) {
    return static_cast<QAccessibleTableInterface*>(this);
  }
  return QAccessibleWidget::interface_cast(type);
}

// An open editor is the last child, inside the widget that holds it.
bool ControlAccess::HasEditor() const {
  const QList<QLineEdit*> editors = host_.EditorParent()->findChildren<QLineEdit*>(Qt::FindDirectChildrenOnly);
  return std::ranges::any_of(editors, [](const QLineEdit* editor) { return editor->isVisible(); });
}

int ControlAccess::childCount() const {
  return (Tree() ? static_cast<int>(Tree()->ChildCount({})) : 0) + (HasEditor() ? 1 : 0);
}

QAccessibleInterface* ControlAccess::child(int index) const {
  const auto objects = Tree() ? static_cast<int>(Tree()->ChildCount({})) : 0;
  if (index < 0 || index >= childCount()) return nullptr;
  if (index == objects) return QAccessible::queryAccessibleInterface(host_.EditorParent());
  return InterfaceOf(Tree()->ChildAt({}, static_cast<std::size_t>(index)));
}

int ControlAccess::indexOfChild(const QAccessibleInterface* child) const {
  if (child && child->object() == host_.EditorParent()) return HasEditor() ? childCount() - 1 : -1;
  const auto* object = dynamic_cast<const ObjectAccess*>(child);
  if (!object || !object->isValid() || object->parent() != this) return -1;
  return static_cast<int>(Tree()->IndexOf(object->Id()).value_or(0));
}

QAccessibleInterface* ControlAccess::childAt(int x, int y) const {
  if (!Tree() || !rect().contains(x, y)) return nullptr;
  const AccessibleId id = Tree()->ObjectAt(host_.FromScreen({x, y}));
  return id.IsControl() ? nullptr : InterfaceOf(id);
}

QAccessibleInterface* ControlAccess::focusChild() const {
  if (!widget()->hasFocus() || !Tree()) return QAccessibleWidget::focusChild();
  return InterfaceOf(Tree()->Current());
}

QString ControlAccess::text(QAccessible::Text kind) const {
  const QString own = QAccessibleWidget::text(kind);  // what the application has set
  if (!own.isEmpty() || !Tree()) return own;
  if (kind == QAccessible::Name) return ToQString(Tree()->Describe({}).name);
  if (kind == QAccessible::Description) return ToQString(Tree()->Describe({}).description);
  return own;
}

QAccessible::Role ControlAccess::role() const { return Tree() ? ToRole(Tree()->Describe({}).role) : QAccessible::Pane; }

QStringList ControlAccess::actionNames() const {
  return (Tree() ? NamesOf(Tree()->Describe({}).actions) : QStringList()) + QAccessibleWidget::actionNames();
}

void ControlAccess::doAction(const QString& name) {
  if (Tree() && NamesOf(Tree()->Describe({}).actions).contains(name)) return Do(host_, {}, name);
  QAccessibleWidget::doAction(name);
}

// --- As a table ---

int ControlAccess::columnCount() const { return Tree() ? static_cast<int>(Tree()->CellCounts().columns) : 0; }

int ControlAccess::rowCount() const { return Tree() ? static_cast<int>(Tree()->CellCounts().rows) : 0; }

QAccessibleInterface* ControlAccess::cellAt(int row, int column) const {
  if (row < 0 || column < 0 || row >= rowCount() || column >= columnCount()) return nullptr;
  return InterfaceOf(Tree()->CellAt(static_cast<std::size_t>(row), static_cast<std::size_t>(column)));
}

QString ControlAccess::columnDescription(int column) const {
  if (column < 0 || column >= columnCount()) return {};
  return ToQString(Tree()->Describe(Tree()->ColumnHeader(static_cast<std::size_t>(column))).name);
}

QString ControlAccess::rowDescription(int row) const {
  if (row < 0 || row >= rowCount()) return {};
  return ToQString(Tree()->Describe(Tree()->RowHeader(static_cast<std::size_t>(row))).name);
}

bool ControlAccess::isRowSelected(int row) const {
  if (row < 0 || row >= rowCount()) return false;
  return Tree()->Describe(Tree()->RowHeader(static_cast<std::size_t>(row))).state.selected;
}

QList<int> ControlAccess::selectedRows() const {
  QList<int> rows;
  for (int row = 0; row < rowCount(); ++row) {
    if (isRowSelected(row)) rows += row;
  }
  return rows;
}

QList<QAccessibleInterface*> ControlAccess::selectedCells() const {
  QList<QAccessibleInterface*> cells;
  for (const int row : selectedRows()) {
    for (int column = 0; column < columnCount(); ++column) cells += cellAt(row, column);
  }
  return cells;
}

bool ControlAccess::selectRow(int row) {
  if (row < 0 || row >= rowCount()) return false;
  host_.PerformAccess(Tree()->RowHeader(static_cast<std::size_t>(row)), AccessibleAction::Press);
  return isRowSelected(row);
}

}  // namespace zrqrybld
