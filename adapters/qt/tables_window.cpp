#include "adapters/qt/tables_window.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "adapters/qt/qt_text.h"
#include "adapters/qt/theme.h"

namespace zrqrybld {
namespace {

// Rows with some air.
class RowDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    constexpr int kAir = 8;
    return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kAir);
  }
};

// A list that says why it is empty.
class NameList final : public QListView {
 public:
  explicit NameList(QString emptyText) : emptyText_(std::move(emptyText)) {
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setUniformItemSizes(true);  // ten thousand names are not measured one by one
    setTextElideMode(Qt::ElideMiddle);
    setItemDelegate(new RowDelegate(this));
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QListView::paintEvent(event);
    if (model() && model()->rowCount() > 0) return;
    const auto* filtered = qobject_cast<const QSortFilterProxyModel*>(model());
    const bool filteredOut = filtered && filtered->sourceModel() && filtered->sourceModel()->rowCount() > 0;
    QPainter painter(viewport());
    painter.setPen(Theme(palette()).Of(ColorRole::QuietText));
    painter.drawText(viewport()->rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap,
                     filteredOut ? TablesWindow::tr("No name contains this text.") : emptyText_);
  }

 private:
  QString emptyText_;
};

QStringList ToQStringList(const std::vector<std::string>& names) {
  QStringList list;
  list.reserve(static_cast<qsizetype>(names.size()));
  std::ranges::transform(names, std::back_inserter(list), [](const std::string& name) { return ToQString(name); });
  return list;
}

}  // namespace

TablesWindow::TablesWindow(const TablesDialog& dialog, QWidget* parent) : QDialog(parent), dialog_(dialog) {
  setWindowTitle(ToQString(dialog_.caption));

  filter_ = new QLineEdit;
  filter_->setPlaceholderText(tr("Filter by name"));
  filter_->setAccessibleName(tr("Filter by name"));
  filter_->setClearButtonEnabled(true);
  filter_->installEventFilter(this);

  tabs_ = new QTabWidget;
  tabs_->setDocumentMode(true);
  pages_.push_back(AddPage(dialog_.tablesTab, dialog_.tables, tr("There are no tables.")));
  pages_.push_back(AddPage(dialog_.viewsTab, dialog_.views, tr("There are no views.")));

  counts_ = new QLabel;
  add_ = new QPushButton(ToQString(dialog_.addButton));
  add_->setDefault(true);
  addAndClose_ = new QPushButton(tr("Add an&d Close"));
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
  auto* list = new NameList(emptyText);
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
  const bool added = boundary_.Run([&] { dialog_.add(names); });
  if (added) {
    lastAction_ = names.size() == 1 ? tr("%1 was added.").arg(ToQString(names.front()))
                                    : tr("%1 were added.").arg(static_cast<qulonglong>(names.size()));
    ShowCounts();
    filter_->selectAll();  // the next table's name replaces the text
  }
  return added;
}

void TablesWindow::ShowCounts() {
  const Page& page = CurrentPage();
  const auto selected = page.list->selectionModel()->selectedIndexes().size();
  const int shown = page.filtered->rowCount();
  const auto total = static_cast<qulonglong>(page.names->size());
  QString text = filter_->text().isEmpty() ? tr("%1 names").arg(total) : tr("%1 of %2 names").arg(shown).arg(total);
  if (!lastAction_.isEmpty()) {
    text += QStringLiteral(" · ") + lastAction_;
  } else if (selected > 0) {
    text += QStringLiteral(" · ") + tr("%1 selected").arg(selected);
  }
  counts_->setText(text);
  add_->setEnabled(selected > 0);
  addAndClose_->setEnabled(selected > 0);
}

// From the filter, the keys that walk a list walk the list.
bool TablesWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == filter_ && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down || key == Qt::Key_Up || key == Qt::Key_PageDown || key == Qt::Key_PageUp) {
      QListView* list = CurrentPage().list;
      list->setFocus();
      if (!list->selectionModel()->hasSelection() && list->model()->rowCount() > 0) {
        list->setCurrentIndex(list->model()->index(0, 0));
        return true;
      }
      QCoreApplication::sendEvent(list, event);
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace zrqrybld
