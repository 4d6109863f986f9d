#include "designer/key_list.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {
namespace {

// Of a pane: its keys, from the table of commands as far as they are there, and what they do. `keys` is what is written
// of them; one after the other without it.
struct KeyRow {
  TextId pane;  ///< where the keys of a pane begin
  std::vector<Command> commands;
  Phrase keys;
  TextId effect;
};

std::vector<KeyRow> KeyRows() {
  using enum Command;
  constexpr TextId kSame = text::NoText;
  return {
      {text::KeysEverywhere, {RunPreview}, {}, text::DoesRun},
      {kSame, {StopPreview}, {}, text::DoesStop},
      {kSame, {GoToRows}, {}, text::DoesGoToRows},
      {kSame, {NextPane, PreviousPane}, {}, text::DoesPanes},
      {kSame, {AddTables}, {}, text::DoesAddTables},
      {kSame, {ShowSchemaTree}, {}, text::DoesSchemaTree},
      {kSame, {NewQuery, OpenQuery, SaveQuery, SaveQueryAs}, {}, text::DoesFiles},
      {kSame, {OpenDatabase, Connect}, {}, text::DoesSources},
      {kSame, {NewTab, CloseTab}, {}, text::DoesTabs},
      {kSame, {NextTab, PreviousTab}, {}, text::DoesNextTab},
      {kSame, {MaximizePane, CollapsePane}, {}, text::DoesMaximize},
      {kSame, {Print}, {}, text::DoesPrint},
      {kSame, {ExportRows}, {}, text::DoesExport},
      {kSame, {}, KeyTextOf(Undo) + " · " + KeyTextOf(Redo) + ", " + TextOf(RowOf(Redo).other), text::DoesUndo},
      {kSame, {}, "Ctrl + · Ctrl − · " + KeyTextOf(ActualSize), text::DoesZoom},
      {kSame, {}, KeyTextOf(ContextMenu) + ", " + TextOf(RowOf(ContextMenu).other), text::DoesMenu},
      {kSame, {ShowKeys}, {}, text::DoesList},
      {text::KeysDiagram, {NextStop, PreviousStop}, {}, text::DoesBoxes},
      {kSame, {}, text::KeysGoToColumn, text::DoesGoToColumn},
      {kSame, {TickColumn}, {}, text::DoesTick},
      {kSame, {OpenSelected}, {}, text::DoesEnter},
      {kSame, {OpenInnerQuery}, {}, text::DoesOpenQuery},
      {kSame, {LeaveQuery}, {}, text::DoesLeaveQuery},
      {kSame, {JoinFromHere}, {}, text::DoesJoin},
      {kSame, {GoToQueryAtCaret}, {}, text::DoesOpenDiagramQuery},
      {kSame, {}, ReplaceAll(TextOf(RowOf(AddTables).other), "Ins", "Insert"), text::DoesAddTables},
      {kSame, {RenameTable}, {}, text::DoesAlias},
      {kSame, {DeleteSelected}, {}, text::DoesRemove},
      {kSame, {}, {text::KeysMoveBox, KeyTextOf(MoveBox), KeyTextOf(ResizeBox)}, text::DoesMoveBox},
      {kSame, {MinimizeTable}, {}, text::DoesMinimise},
      {kSame, {}, {text::KeysScroll, KeyTextOf(ScrollDiagram)}, text::DoesScroll},
      {kSame, {FindName}, {}, text::DoesFindName},
      {kSame, {SelectAllTables, CopyPicture}, {}, text::DoesSelectAll},
      {kSame, {ShowMinimap}, {}, text::DoesMinimap},
      {kSame, {}, "Esc", text::DoesEscape},
      {text::KeysGrid, {}, {text::KeysEditCell, KeyTextOf(EditCell)}, text::DoesEditCell},
      {kSame, {}, {text::KeysOpenList, KeyTextOf(OpenList)}, text::DoesOpenList},
      {kSame, {}, "Enter · " + KeyTextOf(NextStop) + " · Esc", text::DoesCommit},
      {kSame, {MoveRowsUp, MoveRowsDown}, {}, text::DoesMoveColumn},
      {kSame, {}, {text::KeysRows, LongKeyTextOf(InsertRows), LongKeyTextOf(DeleteRows)}, text::DoesRows},
      {kSame, {ShowConditions}, {}, text::DoesConditions},
      {kSame, {OpenBuilder}, {}, text::DoesBuilder},
      {kSame, {GoToQueryAtCaret}, {}, text::DoesOpenCellQuery},
      {kSame, {CopyCells, PasteCells}, {}, text::DoesCopyCells},
      {text::KeysSql, {ApplyText}, {}, text::DoesApply},
      {kSame, {Suggest}, {}, text::DoesSuggest},
      {kSame, {GoToQueryAtCaret}, {}, text::DoesGoToQuery},
      {kSame, {}, KeyTextOf(FindText) + " · F3 · Shift+F3", text::DoesFindText},
      {text::KeysPreview, {}, "Ctrl+C · " + KeyTextOf(CopyValuesWithNames), text::DoesCopyValues},
      {kSame, {}, "Ctrl+A", text::DoesSelectRows},
      {kSame, {FilterRows}, {}, text::DoesFilterRows},
      {kSame, {}, "Enter, " + KeyTextOf(ShowValue), text::DoesShowValue},
      {kSame, {}, "Esc", text::DoesStop},
  };
}

QString KeysOf(const KeyRow& row, const TextSource& texts) {
  if (!row.keys.Empty()) return ToQString(row.keys.In(texts));
  QStringList keys;
  for (const Command command : row.commands) keys += ToQString(LongKeyTextOf(command));
  return keys.join(QStringLiteral(" · "));
}

void FillTree(QTreeWidget& tree, const TextSource& texts) {
  QTreeWidgetItem* pane = nullptr;
  for (const KeyRow& row : KeyRows()) {
    if (row.pane != text::NoText) {
      pane = new QTreeWidgetItem(&tree, {Say(texts, row.pane)});
      pane->setFirstColumnSpanned(true);
      QFont font = tree.font();
      font.setBold(true);
      pane->setFont(0, font);
      pane->setExpanded(true);
    }
    new QTreeWidgetItem(pane, {KeysOf(row, texts), Say(texts, row.effect)});
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

QString KeyTables(const TextSource& texts) {
  QString tables = "# " + Say(texts, text::KeysCaption) + "\n";
  for (const KeyRow& row : KeyRows()) {
    if (row.pane != text::NoText) {
      tables += "\n## " + Say(texts, row.pane) + "\n\n| " + Say(texts, text::KeyHeader) + " | " +
                Say(texts, text::DoesHeader) + " |\n|---|---|\n";
    }
    tables += "| " + KeysOf(row, texts) + " | " + Say(texts, row.effect) + " |\n";
  }
  return tables;
}

KeyList::KeyList(const TextSource& texts, QWidget* parent) : QDialog(parent) {
  setWindowTitle(Say(texts, text::KeysCaption));
  auto* filter = new QLineEdit;
  filter->setPlaceholderText(Say(texts, text::KeysFilter));
  filter->setAccessibleName(Say(texts, text::KeysFilter));
  filter->setClearButtonEnabled(true);
  auto* tree = new QTreeWidget;
  tree->setAccessibleName(Say(texts, text::KeysCaption));
  tree->setHeaderLabels({Say(texts, text::KeyHeader), Say(texts, text::DoesHeader)});
  tree->setItemsExpandable(false);
  tree->setRootIsDecorated(false);
  FillTree(*tree, texts);
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
