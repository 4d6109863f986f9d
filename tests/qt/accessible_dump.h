// An accessible tree as text, as assistive technology would read it: one object a line, children further in.
#pragma once

#include <QAccessible>
#include <QStringList>
#include <string>

namespace zrqrybld::test {

inline std::string RoleName(QAccessible::Role role) {
  switch (role) {
    case QAccessible::Pane:
      return "pane";
    case QAccessible::List:
      return "list";
    case QAccessible::ListItem:
      return "item";
    case QAccessible::Graphic:
      return "join";
    case QAccessible::Table:
      return "table";
    case QAccessible::ColumnHeader:
      return "column header";
    case QAccessible::RowHeader:
      return "row header";
    case QAccessible::Cell:
      return "cell";
    case QAccessible::EditableText:
      return "text";
    default:
      return "role " + std::to_string(role);
  }
}

/// "role "name" (description) states: actions". Cells are named with their headers.
inline std::string Line(QAccessibleInterface& object) {
  std::string line = RoleName(object.role()) + " \"" + object.text(QAccessible::Name).toStdString() + "\"";
  const std::string description = object.text(QAccessible::Description).toStdString();
  if (!description.empty()) line += " (" + description + ")";
  const QAccessible::State state = object.state();
  if (state.checkable) line += state.checkStateMixed ? " mixed" : state.checked ? " checked" : " unchecked";
  if (state.expandable) line += state.expanded ? " expanded" : " collapsed";
  if (state.selected) line += " selected";
  if (state.focused) line += " focused";
  if (state.editable && object.role() == QAccessible::Cell) line += " editable";
  if (auto* cell = object.tableCellInterface()) {
    line += " under " + cell->columnHeaderCells().value(0)->text(QAccessible::Name).toStdString() + ", " +
            cell->rowHeaderCells().value(0)->text(QAccessible::Name).toStdString();
  }
  const QStringList actions = object.actionInterface() ? object.actionInterface()->actionNames() : QStringList();
  if (!actions.isEmpty()) line += ": " + actions.join(", ").toStdString();
  return line + "\n";
}

inline std::string Dump(QAccessibleInterface& object, int depth = 0) {
  std::string text = std::string(static_cast<std::size_t>(depth) * 2, ' ') + Line(object);
  for (int i = 0; i < object.childCount(); ++i) text += Dump(*object.child(i), depth + 1);
  return text;
}

}  // namespace zrqrybld::test
