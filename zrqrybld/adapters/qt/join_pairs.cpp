#include "zrqrybld/adapters/qt/join_pairs.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/qt/named_combo.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_diagram.h"

namespace zrqrybld {
namespace {

constexpr int kColumnCharacters = 20;

QStringList ToList(const std::vector<std::string>& texts) {
  QStringList list;
  for (const std::string& text : texts) list.push_back(ToQString(text));
  return list;
}

QStringList Qualified(const QStringList& columns, const QString& table) {
  QStringList list;
  for (const QString& column : columns) list.push_back(table + QLatin1Char('.') + column);
  return list;
}

}  // namespace

JoinPairs::JoinPairs(const JoinDialog& dialog, const TextSource& texts)
    : texts_(texts),
      table1_(ToQString(dialog.table1)),
      table2_(ToQString(dialog.table2)),
      comparisons_(ToList(dialog.comparisons)),
      mayBeEmpty_(dialog.pairs.empty()),
      columns1_(ToList(dialog.columns1)),
      columns2_(ToList(dialog.columns2)) {
  label_ = new QLabel(Say(texts_, text::JoinPairsLabel));
  add_ = new QPushButton(Say(texts_, text::AddPair));
  add_->setAutoDefault(false);
  add_->setEnabled(columns1_.rowCount() > 0 && columns2_.rowCount() > 0);
  auto* top = new QHBoxLayout;
  top->addWidget(label_, 1, Qt::AlignBottom);
  top->addWidget(add_);
  list_ = new QWidget;
  area_ = new QScrollArea;
  area_->setFrameShape(QFrame::NoFrame);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area_->setWidgetResizable(true);
  area_->setFocusPolicy(Qt::NoFocus);
  area_->setWidget(list_);
  grid_ = new QGridLayout(list_);
  grid_->setContentsMargins({});
  grid_->setHorizontalSpacing(8);
  grid_->setVerticalSpacing(4);
  grid_->setColumnStretch(0, 1);
  grid_->setColumnStretch(2, 1);
  for (const auto& [column, name] : {std::pair{0, table1_}, {2, table2_}}) {
    auto* table = new QLabel(fontMetrics().elidedText(name, Qt::ElideMiddle, fontMetrics().averageCharWidth() * 28));
    table->setTextFormat(Qt::PlainText);
    if (table->text() != name) table->setToolTip(PlainTip(name));
    grid_->addWidget(table, 0, column);
  }
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(4);
  layout->addLayout(top);
  layout->addWidget(area_);
  for (const JoinDialog::Pair& pair : dialog.pairs) Append(pair);
  Renumber();
  connect(add_, &QPushButton::clicked, this, [this] {
    Append({});
    Renumber();
    rows_.back().column1->setFocus();
    emit Changed();
  });
}

QComboBox* JoinPairs::MakeColumn(QStringListModel& columns, std::size_t chosen) {
  auto* box = new NamedCombo({});
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box->setMinimumContentsLength(kColumnCharacters);
  box->setMaxVisibleItems(16);
  box->setModel(&columns);
  box->setCurrentIndex(static_cast<int>(chosen));
  connect(box, &QComboBox::currentIndexChanged, this, &JoinPairs::Changed);
  return box;
}

void JoinPairs::Append(const JoinDialog::Pair& pair) {
  if (pair.turned && qualified1_.rowCount() == 0) {
    qualified1_.setStringList(Qualified(columns1_.stringList(), table1_));
    qualified2_.setStringList(Qualified(columns2_.stringList(), table2_));
  }
  Row row{MakeColumn(pair.turned ? qualified1_ : columns1_, pair.column1), new NamedCombo({}),
          MakeColumn(pair.turned ? qualified2_ : columns2_, pair.column2), new QToolButton, pair};
  row.comparison->addItems(comparisons_);
  row.comparison->setCurrentIndex(static_cast<int>(pair.comparison));
  row.remove->setText(QChar(0x00d7));  // a cross in the colours of the palette
  row.remove->setAutoRaise(true);
  row.remove->setFocusPolicy(Qt::StrongFocus);
  connect(row.comparison, &QComboBox::currentIndexChanged, this, &JoinPairs::Changed);
  connect(row.remove, &QToolButton::clicked, this, [this, remove = row.remove] {
    const auto at = std::ranges::find(rows_, remove, &Row::remove);
    RemoveAt(static_cast<std::size_t>(at - rows_.begin()));
  });
  const int line = grid_->rowCount();
  QWidget* before = rows_.empty() ? static_cast<QWidget*>(add_) : rows_.back().remove;
  int column = 0;
  for (QWidget* part : PartsOf(row)) {
    grid_->addWidget(part, line, column++);
    part->show();
    setTabOrder(before, part);
    before = part;
  }
  rows_.push_back(row);
}

// In the order in which they stand.
std::vector<QWidget*> JoinPairs::PartsOf(const Row& row) const {
  if (row.pair.turned) return {row.column2, row.comparison, row.column1, row.remove};
  return {row.column1, row.comparison, row.column2, row.remove};
}

void JoinPairs::RemoveAt(std::size_t row) {
  for (QWidget* part : PartsOf(rows_[row])) {
    grid_->removeWidget(part);
    part->hide();
    part->deleteLater();
  }
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row));
  Renumber();
  if (rows_.empty()) {
    add_->setFocus();
  } else {
    rows_[std::min(row, rows_.size() - 1)].column1->setFocus();
  }
  emit Changed();
}

void JoinPairs::Renumber() {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const Row& row = rows_[i];
    const auto number = static_cast<int>(i) + 1;
    row.column1->setAccessibleName(Say(texts_, text::PairColumn, table1_, number));
    row.column2->setAccessibleName(Say(texts_, text::PairColumn, table2_, number));
    row.comparison->setAccessibleName(Say(texts_, text::PairComparison, number));
    const QString remove = Say(texts_, text::RemovePairNumber, number);
    row.remove->setAccessibleName(remove);
    row.remove->setToolTip(PlainTip(remove));
    row.remove->setEnabled(mayBeEmpty_ || rows_.size() > 1);
  }
  constexpr int kMostRows = 8;
  grid_->activate();
  const int row = rows_.empty() ? 0 : rows_.front().column1->sizeHint().height() + grid_->verticalSpacing();
  area_->setFixedHeight(std::min(list_->sizeHint().height(), row * kMostRows + fontMetrics().height()));
  const bool scrolls = list_->sizeHint().height() > area_->height();
  area_->setMinimumWidth(list_->sizeHint().width() + (scrolls ? style()->pixelMetric(QStyle::PM_ScrollBarExtent) : 0));
  label_->setBuddy(rows_.empty() ? static_cast<QWidget*>(add_) : rows_.front().column1);
}

std::vector<JoinDialog::Pair> JoinPairs::Pairs() const {
  std::vector<JoinDialog::Pair> pairs;
  for (const Row& row : rows_) {
    JoinDialog::Pair pair = row.pair;
    pair.column1 = static_cast<std::size_t>(std::max(row.column1->currentIndex(), 0));
    pair.column2 = static_cast<std::size_t>(std::max(row.column2->currentIndex(), 0));
    pair.comparison = static_cast<std::size_t>(std::max(row.comparison->currentIndex(), 0));
    pairs.push_back(pair);
  }
  return pairs;
}

}  // namespace zrqrybld
