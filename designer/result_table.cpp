#include "designer/result_table.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QStyledItemDelegate>
#include <algorithm>

#include "designer/export_window.h"
#include "designer/value_window.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/shortcuts.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr int kWidestColumn = 32;  // in average characters
constexpr int kColumnAir = 8;      // pixels
constexpr int kRowAir = 6;         // around a row's text
constexpr int kRowsMeasured = 100;

// Numbers at the right of a column and texts at the left of the next keep a distance.
class AirDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->text = QChar::Nbsp + option->text + QChar::Nbsp;
  }
};

}  // namespace

ResultTable::ResultTable(ResultModel& model, const TextSource& texts) : model_(model), texts_(texts) {
  setModel(&model);
  setAccessibleName(Say(texts_, text::PreviewName));
  setFrameShape(QFrame::NoFrame);
  setWordWrap(false);
  setTextElideMode(Qt::ElideRight);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setTabKeyNavigation(false);
  setItemDelegate(new AirDelegate(this));
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowAir);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setResizeContentsPrecision(kRowsMeasured);
  horizontalHeader()->setSortIndicatorClearable(true);  // the third click is the source's order
  ForgetOrder();
  setSortingEnabled(true);
  connect(this, &QTableView::doubleClicked, this, &ResultTable::ShowValue);
}

void ResultTable::BeginRows() {
  resizeColumnsToContents();
  const int widest = fontMetrics().averageCharWidth() * kWidestColumn;
  for (int column = 0; column < model_.columnCount(); ++column) {
    setColumnWidth(column, std::min(columnWidth(column) + kColumnAir, widest));
  }
  // Nothing is selected yet.
  selectionModel()->setCurrentIndex(model_.index(0, 0), QItemSelectionModel::NoUpdate);
}

void ResultTable::ForgetOrder() { horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder); }

void ResultTable::Copy(bool withNames) const {
  const QItemSelection selection = selectionModel()->selection();
  if (selection.isEmpty()) return;
  RowExport wanted{.format = RowFormat::Tsv, .names = withNames, .formulasAsText = ExportWindow::FormulasAsText()};
  ExportWindow::TakeSelected(selection, wanted);
  QByteArray text;
  WriteRows(model_, wanted, [&text](const QByteArray& piece) {
    text += piece;
    return true;
  });
  QGuiApplication::clipboard()->setText(QString::fromUtf8(text));
}

void ResultTable::ShowValue() {
  const QModelIndex at = currentIndex();
  if (!at.isValid()) return;
  const ResultValue value = model_.ValueAt(at.row(), at.column());  // a copy: rows may go meanwhile
  ValueWindow dialog(value, Say(texts_, text::ValueCaption, model_.NameOf(at.column()), at.row() + 1), texts_,
                     window());
  dialog.exec();
}

// --- Its menu ---

void ResultTable::AddCopyEntries(QMenu& menu) {
  const bool any = selectionModel()->hasSelection();
  const auto copy = [&](TextId name, const QKeySequence& key, bool withNames) {
    menu.addAction(Say(texts_, name), key, this, [this, withNames] { Copy(withNames); })->setEnabled(any);
  };
  copy(text::CopyItem, QKeySequence::Copy, false);
  copy(text::CopyWithNames, ShortcutOf(Command::CopyValuesWithNames), true);
  QAction* formulas = menu.addAction(Say(texts_, text::CopyFormulas), this, &ExportWindow::SetFormulasAsText);
  formulas->setCheckable(true);
  formulas->setChecked(ExportWindow::FormulasAsText());
  menu.addAction(Say(texts_, text::SelectAllItem), QKeySequence::SelectAll, this, &QTableView::selectAll);
}

void ResultTable::AddSortEntries(QMenu& menu) {
  const auto add = [&](TextId name, int column, Qt::SortOrder order, bool enabled) {
    const auto sort = [this, column, order] { horizontalHeader()->setSortIndicator(column, order); };
    menu.addAction(Say(texts_, name), this, sort)->setEnabled(enabled);
  };
  const int column = currentIndex().column();
  add(text::SortAscending, column, Qt::AscendingOrder, column >= 0);
  add(text::SortDescending, column, Qt::DescendingOrder, column >= 0);
  add(text::AsFetched, -1, Qt::AscendingOrder, model_.SortedBy() >= 0);
}

void ResultTable::AddRowEntries(QMenu& menu) {
  menu.addAction(Say(texts_, text::FilterRowsItem), ShortcutOf(Command::FilterRows), this, &ResultTable::FilterWanted);
  menu.addAction(Say(texts_, text::FetchAllItem), this, &ResultTable::AllWanted)->setEnabled(model_.HasMore());
  menu.addAction(Say(texts_, text::ExportRowsItem), ShortcutOf(Command::ExportRows), this, &ResultTable::ExportWanted);
}

void ResultTable::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu;
  AddCopyEntries(menu);
  menu.addSeparator();
  menu.addAction(Say(texts_, text::ShowValueItem), ShortcutOf(Command::ShowValue), this, &ResultTable::ShowValue)
      ->setEnabled(currentIndex().isValid());
  AddSortEntries(menu);
  menu.addSeparator();
  AddRowEntries(menu);
  menu.exec(event->globalPos());
}

// --- Its keys ---

void ResultTable::keyPressEvent(QKeyEvent* event) {
  if (!TakeKey(*event)) QTableView::keyPressEvent(event);
}

bool ResultTable::TakeKey(const QKeyEvent& key) {
  const KeyEvent event = ToKeyEvent(key);
  const bool withNames = Asks(event, Command::CopyValuesWithNames);
  if (withNames || key.matches(QKeySequence::Copy)) {
    Copy(withNames);
  } else if (key.key() == Qt::Key_Escape) {
    Q_EMIT StopWanted();
  } else if (Asks(event, Command::FilterRows)) {
    Q_EMIT FilterWanted();
  } else if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || Asks(event, Command::ShowValue)) {
    ShowValue();
  } else {
    return false;
  }
  return true;
}

}  // namespace zrqrybld
