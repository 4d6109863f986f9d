#include "designer/key_list.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace zrqrybld {
namespace {

struct Key {
  const char* pane;  // "" for the same as above
  const char* keys;
  const char* effect;
};

constexpr Key kKeys[] = {
    {QT_TRANSLATE_NOOP("KeyList", "Everywhere"), "F5", QT_TRANSLATE_NOOP("KeyList", "run the query and show its rows")},
    {"", "Shift+F5", QT_TRANSLATE_NOOP("KeyList", "stop the statement that runs")},
    {"", "Ctrl+R", QT_TRANSLATE_NOOP("KeyList", "go to the rows")},
    {"", "F6 · Shift+F6", QT_TRANSLATE_NOOP("KeyList", "next pane · the one before")},
    {"", "F7", QT_TRANSLATE_NOOP("KeyList", "add tables")},
    {"", "Ctrl+N · Ctrl+O · Ctrl+S · Ctrl+Shift+S", QT_TRANSLATE_NOOP("KeyList", "new query · open · save · save as")},
    {"", "Ctrl+D · Ctrl+Shift+O", QT_TRANSLATE_NOOP("KeyList", "open a database · connect to a source")},
    {"", "Ctrl+Z · Ctrl+Y, Ctrl+Shift+Z", QT_TRANSLATE_NOOP("KeyList", "undo · redo")},
    {"", "Ctrl + · Ctrl − · Ctrl+0", QT_TRANSLATE_NOOP("KeyList", "zoom in · out · actual size")},
    {"", "Shift+F10, Menu", QT_TRANSLATE_NOOP("KeyList", "the menu of what is selected")},
    {"", "F1", QT_TRANSLATE_NOOP("KeyList", "this list")},
    {QT_TRANSLATE_NOOP("KeyList", "Diagram"), "Tab · Shift+Tab",
     QT_TRANSLATE_NOOP("KeyList", "next box, then the joins · back")},
    {"", "Arrows, Home, End, letters", QT_TRANSLATE_NOOP("KeyList", "go to a column")},
    {"", "Space", QT_TRANSLATE_NOOP("KeyList", "tick the column")},
    {"", "Enter", QT_TRANSLATE_NOOP("KeyList", "into the box; the properties of the join")},
    {"", "Ctrl+J", QT_TRANSLATE_NOOP("KeyList", "begin a join at the column; Enter draws it, Esc gives it up")},
    {"", "Insert", QT_TRANSLATE_NOOP("KeyList", "add tables")},
    {"", "F2", QT_TRANSLATE_NOOP("KeyList", "another name for the table")},
    {"", "Delete", QT_TRANSLATE_NOOP("KeyList", "remove what is selected")},
    {"", "Alt+arrows · Ctrl+Shift+arrows", QT_TRANSLATE_NOOP("KeyList", "move the box · resize it")},
    {"", "Shift+Space", QT_TRANSLATE_NOOP("KeyList", "minimise or restore the box")},
    {"", "Shift+Alt+arrows", QT_TRANSLATE_NOOP("KeyList", "scroll")},
    {"", "Ctrl+F", QT_TRANSLATE_NOOP("KeyList", "find a table or column")},
    {"", "Ctrl+A · Ctrl+C", QT_TRANSLATE_NOOP("KeyList", "select all boxes · copy a picture")},
    {"", "Esc", QT_TRANSLATE_NOOP("KeyList", "take back a drag or a join, drop the selection")},
    {QT_TRANSLATE_NOOP("KeyList", "Grid"), "F2, letters", QT_TRANSLATE_NOOP("KeyList", "edit the cell")},
    {"", "F4, Alt+Down while editing", QT_TRANSLATE_NOOP("KeyList", "open the list")},
    {"", "Enter · Tab · Esc", QT_TRANSLATE_NOOP("KeyList", "commit and move on · next cell · restore the cell")},
    {"", "Alt+Up · Alt+Down", QT_TRANSLATE_NOOP("KeyList", "move the query column")},
    {"", "Shift+Space, then Insert · Delete",
     QT_TRANSLATE_NOOP("KeyList", "select the row, insert one before it · remove it")},
    {"", "Ctrl+C · Ctrl+V", QT_TRANSLATE_NOOP("KeyList", "copy · paste cells and rows")},
    {QT_TRANSLATE_NOOP("KeyList", "SQL"), "Ctrl+Enter", QT_TRANSLATE_NOOP("KeyList", "apply the typed text")},
    {"", "Ctrl+Space", QT_TRANSLATE_NOOP("KeyList", "what can be written here")},
    {"", "Ctrl+F · F3 · Shift+F3", QT_TRANSLATE_NOOP("KeyList", "find · next · previous")},
    {QT_TRANSLATE_NOOP("KeyList", "Result preview"), "Ctrl+C · Ctrl+Shift+C",
     QT_TRANSLATE_NOOP("KeyList", "copy the selected values · with the columns' names")},
    {"", "Ctrl+A", QT_TRANSLATE_NOOP("KeyList", "select all rows read so far")},
    {"", "Esc", QT_TRANSLATE_NOOP("KeyList", "stop the statement that runs")},
};

void FillTree(QTreeWidget& tree) {
  QTreeWidgetItem* pane = nullptr;
  for (const Key& key : kKeys) {
    if (*key.pane != '\0') {
      pane = new QTreeWidgetItem(&tree, {KeyList::tr(key.pane)});
      pane->setFirstColumnSpanned(true);
      QFont font = tree.font();
      font.setBold(true);
      pane->setFont(0, font);
      pane->setExpanded(true);
    }
    new QTreeWidgetItem(pane, {QString::fromUtf8(key.keys), KeyList::tr(key.effect)});
  }
}

// Shows the rows that hold the text, and all rows of a pane that does.
void Filter(const QTreeWidget& tree, const QString& text) {
  for (int i = 0; i < tree.topLevelItemCount(); ++i) {
    QTreeWidgetItem* pane = tree.topLevelItem(i);
    const bool whole = pane->text(0).contains(text, Qt::CaseInsensitive);
    bool any = false;
    for (int row = 0; row < pane->childCount(); ++row) {
      QTreeWidgetItem* item = pane->child(row);
      const bool shown = whole || item->text(0).contains(text, Qt::CaseInsensitive) ||
                         item->text(1).contains(text, Qt::CaseInsensitive);
      item->setHidden(!shown);
      any |= shown;
    }
    pane->setHidden(!any);
  }
}

}  // namespace

KeyList::KeyList(QWidget* parent) : QDialog(parent) {
  setWindowTitle(tr("Keys"));
  auto* filter = new QLineEdit;
  filter->setPlaceholderText(tr("Filter"));
  filter->setAccessibleName(tr("Filter"));
  filter->setClearButtonEnabled(true);
  auto* tree = new QTreeWidget;
  tree->setAccessibleName(tr("Keys"));
  tree->setHeaderLabels({tr("Key"), tr("Does")});
  tree->setItemsExpandable(false);
  tree->setRootIsDecorated(false);
  FillTree(*tree);
  tree->header()->setStretchLastSection(false);
  tree->resizeColumnToContents(0);
  tree->resizeColumnToContents(1);
  const int lineWidth = tree->header()->length();
  tree->header()->setStretchLastSection(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(filter);
  layout->addWidget(tree, 1);
  layout->addWidget(buttons);
  connect(filter, &QLineEdit::textChanged, tree, [tree](const QString& text) { Filter(*tree, text); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  // Wide enough for every line.
  const QMargins margins = layout->contentsMargins();
  const int width = lineWidth + 2 * tree->frameWidth() + tree->verticalScrollBar()->sizeHint().width() +
                    margins.left() + margins.right();
  resize(width, fontMetrics().height() * 28);
}

}  // namespace zrqrybld
