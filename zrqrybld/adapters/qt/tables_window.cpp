#include "zrqrybld/adapters/qt/tables_window.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "zrqrybld/adapters/qt/name_list.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {

TablesWindow::TablesWindow(const TablesDialog& dialog, QWidget* parent, const TextSource& texts)
    : QDialog(parent), texts_(texts), dialog_(dialog) {
  setWindowTitle(ToQString(dialog_.caption));

  filter_ = new QLineEdit;
  filter_->setPlaceholderText(Say(texts_, text::FilterByName));
  filter_->setAccessibleName(Say(texts_, text::FilterByName));
  filter_->setClearButtonEnabled(true);
  filter_->installEventFilter(this);

  tabs_ = new QTabWidget;
  TellInOrder(*tabs_);
  tabs_->setDocumentMode(true);
  pages_.push_back(AddPage(dialog_.tablesTab, dialog_.tables, Say(texts_, text::NoTables)));
  pages_.push_back(AddPage(dialog_.viewsTab, dialog_.views, Say(texts_, text::NoViews)));

  counts_ = new QLabel;
  add_ = new QPushButton(ToQString(dialog_.addButton));
  add_->setDefault(true);
  addAndClose_ = new QPushButton(Say(texts_, text::AddAndClose));
  auto* close = new QPushButton(ToQString(dialog_.closeButton));
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* button : {add_, addAndClose_, close}) buttons->addWidget(button);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(filter_);
  layout->addWidget(tabs_, 1);
  layout->addWidget(counts_);
  layout->addLayout(buttons);

  connect(filter_, &QLineEdit::textChanged, this, &TablesWindow::Filter);
  connect(tabs_, &QTabWidget::currentChanged, this, [this] {
    lastAction_.clear();
    ShowCounts();
  });
  connect(add_, &QPushButton::clicked, this, &TablesWindow::AddSelected);
  connect(addAndClose_, &QPushButton::clicked, this, [this] {
    if (AddSelected()) accept();
  });
  connect(close, &QPushButton::clicked, this, &QDialog::reject);

  if (dialog_.tables.empty() && !dialog_.views.empty()) tabs_->setCurrentIndex(1);
  ShowCounts();
  filter_->setFocus();
  resize(fontMetrics().averageCharWidth() * 64, fontMetrics().height() * 28);
}

TablesWindow::Page TablesWindow::AddPage(const std::string& caption, const std::vector<std::string>& names,
                                         const QString& emptyText) {
  auto* list = new NameList(emptyText, Say(texts_, text::NoNameContains));
  auto* filtered = new QSortFilterProxyModel(list);
  filtered->setFilterCaseSensitivity(Qt::CaseInsensitive);
  filtered->setSourceModel(new QStringListModel(ToQStringList(names), filtered));
  list->setModel(filtered);
  const QString tab = ToQString(caption);
  list->setAccessibleName(QString(tab).remove(QLatin1Char('&')));
  tabs_->addTab(list, tab);
  connect(list, &QListView::doubleClicked, this, &TablesWindow::AddSelected);
  connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    lastAction_.clear();
    ShowCounts();
  });
  return {&names, filtered, list, tab};
}

const TablesWindow::Page& TablesWindow::CurrentPage() const {
  return pages_[static_cast<std::size_t>(std::max(tabs_->currentIndex(), 0))];
}

// The names as the core gave them, in the order of the list.
std::vector<std::string> TablesWindow::SelectedNames() const {
  const Page& page = CurrentPage();
  std::vector<int> rows;
  for (const QModelIndex& index : page.list->selectionModel()->selectedIndexes()) {
    rows.push_back(page.filtered->mapToSource(index).row());
  }
  std::ranges::sort(rows);
  std::vector<std::string> names;
  for (const int row : rows) names.push_back((*page.names)[static_cast<std::size_t>(row)]);
  return names;
}

// The first match is selected, so that a few letters and Enter add a table.
void TablesWindow::Filter(const QString& text) {
  for (const Page& page : pages_) {
    page.filtered->setFilterFixedString(text);
    page.list->clearSelection();
    if (!text.isEmpty() && page.filtered->rowCount() > 0) {
      page.list->setCurrentIndex(page.filtered->index(0, 0));
      page.list->scrollToTop();
    }
  }
  lastAction_.clear();
  ShowCounts();
}

bool TablesWindow::AddSelected() {
  const std::vector<std::string> names = SelectedNames();
  if (names.empty() || !dialog_.add) return false;
  std::size_t added = 0;
  QElapsedTimer shown;
  shown.start();
  const bool ran = boundary_.Run([&] {
    added = dialog_.add(names, [&](std::size_t count) {
      constexpr int kMilliseconds = 100;
      if (count == names.size() || shown.elapsed() < kMilliseconds) return;
      shown.restart();
      counts_->setText(Say(texts_, text::AddingOf, count + 1, names.size()));
      counts_->repaint();  // the diagram behind it follows when all are there
    });
  });
  if (!ran) return false;
  lastAction_ = added < names.size() ? Say(texts_, text::SomeWereAdded, added, names.size())
                : added == 1         ? Say(texts_, text::OneWasAdded, ToQString(names.front()))
                                     : Say(texts_, text::WereAdded, added);
  ShowCounts();
  filter_->selectAll();  // the next table's name replaces the text
  return added == names.size();
}

void TablesWindow::ShowCounts() {
  const Page& page = CurrentPage();
  const auto selected = page.list->selectionModel()->selectedIndexes().size();
  const int shown = page.filtered->rowCount();
  const auto total = static_cast<qulonglong>(page.names->size());
  QString text =
      filter_->text().isEmpty() ? Say(texts_, text::NameCount, total) : Say(texts_, text::NameCountOf, shown, total);
  if (!lastAction_.isEmpty()) {
    text += QStringLiteral(" · ") + lastAction_;
  } else if (selected > 0) {
    text += QStringLiteral(" · ") + Say(texts_, text::SelectedCount, selected);
  }
  counts_->setText(text);
  add_->setEnabled(selected > 0);
  addAndClose_->setEnabled(selected > 0);
}

bool TablesWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == filter_ && event->type() == QEvent::KeyPress && CurrentPage().list->WalkFromFilter(*event))
    return true;
  return QDialog::eventFilter(watched, event);
}

}  // namespace zrqrybld
