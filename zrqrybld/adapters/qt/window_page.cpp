#include "zrqrybld/adapters/qt/window_page.h"

#include <QComboBox>
#include <QCompleter>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QStandardItemModel>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "zrqrybld/adapters/qt/named_combo.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/telling_order.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_expression.h"

namespace zrqrybld {
namespace {

constexpr int kExpressionCharacters = 18;

// A combo of columns in which any expression can be typed.
QComboBox* MakeExpression(QStringListModel& columns) {
  auto* box = new QComboBox;
  box->setEditable(true);
  box->setInsertPolicy(QComboBox::NoInsert);
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  box->setMinimumContentsLength(kExpressionCharacters);
  box->setMaxVisibleItems(16);
  box->setModel(&columns);
  box->setCurrentIndex(-1);
  return box;
}

void SetName(QComboBox& box, const QString& name) {
  const QString plain = QString(name).remove(QLatin1Char('&')).remove(QLatin1Char(':'));
  box.setAccessibleName(plain);
  if (box.lineEdit()) box.lineEdit()->setAccessibleName(plain);
}

// A greyed choice is still shown where an expression has it.
void Grey(const QComboBox& box, int index) {
  auto* model = qobject_cast<QStandardItemModel*>(box.model());
  if (model && model->item(index)) model->item(index)->setEnabled(false);
}

}  // namespace

// --- Rows of expressions ---

ExpressionRows::ExpressionRows(QStringListModel& columns, const QStringList& directions, const TextSource& texts)
    : columns_(columns), directions_(directions), texts_(texts) {
  grid_ = new QGridLayout(this);
  grid_->setContentsMargins({});
  grid_->setHorizontalSpacing(6);
  grid_->setVerticalSpacing(4);
  grid_->setColumnStretch(0, 1);
  Show({});
}

void ExpressionRows::Show(const std::vector<Entry>& entries) {
  while (rows_.size() > entries.size() + 1) Remove(rows_.size() - 1);
  while (rows_.size() < entries.size() + 1) Append({});
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const Entry entry = i < entries.size() ? entries[i] : Entry();
    const QSignalBlocker quiet(rows_[i].expression);
    const QString text = ToQString(entry.expression);
    if (rows_[i].expression->currentText() != text) rows_[i].expression->setEditText(text);
    if (!rows_[i].direction) continue;
    const QSignalBlocker still(rows_[i].direction);
    rows_[i].direction->setCurrentIndex(entry.direction);
  }
  Renumber();
}

std::vector<ExpressionRows::Entry> ExpressionRows::Entries() const {
  std::vector<Entry> entries;
  for (const Row& row : rows_) {
    std::string text(Trim(ToUtf8(row.expression->currentText())));
    if (!text.empty()) entries.push_back({std::move(text), row.direction ? row.direction->currentIndex() : 0});
  }
  return entries;
}

void ExpressionRows::Forbid(int direction) {
  forbidden_.push_back(direction);
  for (const Row& row : rows_) Grey(*row.direction, direction);
}

QWidget* ExpressionRows::First() const { return rows_.front().expression; }

void ExpressionRows::Append(const Entry& entry) {
  Row row{MakeExpression(columns_), nullptr, new QToolButton};
  row.expression->setEditText(ToQString(entry.expression));
  connect(row.expression, &QComboBox::activated, this, &ExpressionRows::Taken);
  connect(row.expression->lineEdit(), &QLineEdit::editingFinished, this, &ExpressionRows::Taken);
  std::vector<QWidget*> parts{row.expression};
  if (!directions_.isEmpty()) {
    row.direction = new NamedCombo({});
    row.direction->setObjectName(QStringLiteral("direction"));
    row.direction->addItems(directions_);
    for (const int index : forbidden_) Grey(*row.direction, index);
    connect(row.direction, &QComboBox::activated, this, &ExpressionRows::Taken);
    parts.push_back(row.direction);
  }
  row.remove->setText(QChar(0x00d7));  // a cross in the colours of the palette
  row.remove->setAutoRaise(true);
  row.remove->setFocusPolicy(Qt::StrongFocus);
  connect(row.remove, &QToolButton::clicked, this, [this, remove = row.remove] {
    const auto at = static_cast<std::size_t>(std::ranges::find(rows_, remove, &Row::remove) - rows_.begin());
    Remove(at);
    Renumber();
    rows_[std::min(at, rows_.size() - 1)].expression->setFocus();
    emit Changed();
  });
  parts.push_back(row.remove);
  const int line = grid_->rowCount();
  QWidget* before = rows_.empty() ? nullptr : rows_.back().remove;
  for (int column = 0; QWidget * part : parts) {
    grid_->addWidget(part, line, column++);
    part->show();
    if (before) setTabOrder(before, part);
    before = part;
  }
  rows_.push_back(row);
}

void ExpressionRows::Remove(std::size_t row) {
  for (QWidget* part : {static_cast<QWidget*>(rows_[row].expression), static_cast<QWidget*>(rows_[row].direction),
                        static_cast<QWidget*>(rows_[row].remove)}) {
    if (!part) continue;
    part->disconnect(this);
    if (auto* box = qobject_cast<QComboBox*>(part); box && box->lineEdit()) box->lineEdit()->disconnect(this);
    grid_->removeWidget(part);
    part->hide();
    part->deleteLater();
  }
  rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(row));
}

void ExpressionRows::Taken() {
  if (!rows_.back().expression->currentText().trimmed().isEmpty()) Append({});
  Renumber();
  emit Changed();
}

// The empty row has nothing to be ordered or removed.
void ExpressionRows::Renumber() {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const Row& row = rows_[i];
    const auto number = static_cast<int>(i) + 1;
    SetName(*row.expression, Say(texts_, text::WindowRowExpression, number));
    const QString remove = Say(texts_, text::WindowRowRemove, number);
    row.remove->setAccessibleName(remove);
    row.remove->setToolTip(PlainTip(remove));
    const bool isUsed = i + 1 < rows_.size();
    row.remove->setEnabled(isUsed);
    if (!row.direction) continue;
    row.direction->setAccessibleName(Say(texts_, text::WindowRowDirection, number));
    row.direction->setEnabled(isUsed);
  }
}

// --- The page ---

WindowPage::WindowPage(const Ref<frmExpressionBuilder>& builder, const TextSource& texts)
    : builder_(builder), texts_(texts) {
  QStringList columns;
  for (const std::string& column : builder_->Columns()) columns.push_back(ToQString(column));
  columns_.setStringList(columns);
  message_ = new QLabel;
  message_->setObjectName(QStringLiteral("windowMessage"));
  message_->setWordWrap(true);
  message_->setTextFormat(Qt::PlainText);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(MakeFunction());
  layout->addWidget(MakeLists(), 1);
  layout->addWidget(MakeFrame());
  layout->addWidget(message_);
  Show(std::nullopt);
}

QWidget* WindowPage::MakeFunction() {
  auto* panel = new QWidget;
  function_ = new NamedCombo(Say(texts_, text::WindowFunctionLabel));
  function_->setObjectName(QStringLiteral("windowFunction"));
  function_->setMaxVisibleItems(24);
  for (const WindowFunction& function : builder_->WindowFunctions()) {
    function_->addItem(ToQString(function.name));
  }
  function_->setPlaceholderText(QStringLiteral("…"));
  connect(function_, &QComboBox::activated, this, &WindowPage::ChooseFunction);
  arguments_ = MakeExpression(columns_);
  arguments_->setObjectName(QStringLiteral("windowArguments"));
  SetName(*arguments_, Say(texts_, text::WindowArgumentsLabel));
  connect(arguments_, &QComboBox::activated, this, &WindowPage::Read);
  connect(arguments_->lineEdit(), &QLineEdit::editingFinished, this, &WindowPage::Read);
  parts_.push_back(arguments_);
  auto* functionLabel = new QLabel(Say(texts_, text::WindowFunctionLabel));
  functionLabel->setBuddy(function_);
  auto* argumentsLabel = new QLabel(Say(texts_, text::WindowArgumentsLabel));
  argumentsLabel->setBuddy(arguments_);
  auto* layout = new QHBoxLayout(panel);
  layout->setContentsMargins({});
  layout->addWidget(functionLabel);
  layout->addWidget(function_);
  layout->addSpacing(8);
  layout->addWidget(argumentsLabel);
  layout->addWidget(arguments_, 1);
  return panel;
}

QWidget* WindowPage::MakeLists() {
  QStringList directions;
  for (const TextId direction : {text::WindowAscending, text::WindowDescending}) {
    directions.push_back(Say(texts_, direction));
  }
  for (const TextId nulls : {text::WindowNullsFirst, text::WindowNullsLast}) {
    for (int i = 0; i < 2; ++i) directions.push_back(Say(texts_, nulls, directions[i]));
  }
  partitions_ = new ExpressionRows(columns_, {}, texts_);
  orders_ = new ExpressionRows(columns_, directions, texts_);
  partitions_->setObjectName(QStringLiteral("windowPartitions"));
  orders_->setObjectName(QStringLiteral("windowOrders"));
  if (builder_->MissesWindowWord("NULLS")) {
    for (int i = 2; i < directions.size(); ++i) orders_->Forbid(i);
  }
  auto* panel = new QWidget;
  auto* layout = new QGridLayout(panel);
  layout->setContentsMargins({});
  layout->setHorizontalSpacing(16);
  layout->setColumnStretch(0, 2);
  layout->setColumnStretch(1, 3);
  for (int column = 0; const auto& [name, rows] : {std::pair{text::WindowPartitionLabel, partitions_},
                                                   std::pair{text::WindowOrderLabel, orders_}}) {
    auto* label = new QLabel(Say(texts_, name));
    label->setBuddy(rows->First());
    auto* held = new QWidget;
    auto* inside = new QVBoxLayout(held);
    inside->setContentsMargins({});
    inside->addWidget(rows);
    inside->addStretch(1);
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(held);
    for (QWidget* part : {area->viewport(), held}) part->setAutoFillBackground(false);  // the page's shows through
    area->setMinimumWidth(held->sizeHint().width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    layout->addWidget(label, 0, column);
    layout->addWidget(area, 1, column++);
    parts_.push_back(rows);
    connect(rows, &ExpressionRows::Changed, this, &WindowPage::Read);
  }
  return panel;
}

QWidget* WindowPage::MakeFrame() {
  auto* panel = new QWidget;
  unit_ = new NamedCombo(Say(texts_, text::WindowFrameLabel));
  unit_->setObjectName(QStringLiteral("windowUnit"));
  for (const TextId unit : {text::FrameNone, text::FrameRows, text::FrameRange, text::FrameGroups}) {
    unit_->addItem(Say(texts_, unit));
  }
  if (builder_->MissesWindowWord("GROUPS")) Grey(*unit_, static_cast<int>(FrameUnit::Groups));
  connect(unit_, &QComboBox::activated, this, &WindowPage::Read);
  parts_.push_back(unit_);
  from_ = MakeBound(text::FrameFrom);
  to_ = MakeBound(text::FrameTo);
  auto* label = new QLabel(Say(texts_, text::WindowFrameLabel));
  label->setBuddy(unit_);
  auto* layout = new QGridLayout(panel);
  layout->setContentsMargins({});
  layout->setHorizontalSpacing(6);
  layout->addWidget(label, 0, 0, 1, 5);
  layout->addWidget(unit_, 1, 0);
  int column = 1;
  for (const auto& [name, bound] : {std::pair{text::FrameFrom, from_}, std::pair{text::FrameTo, to_}}) {
    auto* words = new QLabel(Say(texts_, name));
    words->setBuddy(bound.edge);
    auto* both = new QHBoxLayout;
    both->addWidget(words);
    both->addWidget(bound.distance);
    both->addWidget(bound.edge);
    layout->addLayout(both, 1, column++);
  }
  layout->setColumnStretch(column, 1);
  return panel;
}

WindowPage::Bound WindowPage::MakeBound(TextId name) {
  const Bound bound{new NamedCombo(Say(texts_, name)), new QLineEdit};
  for (const TextId edge :
       {text::FrameFirst, text::FrameBefore, text::FrameCurrent, text::FrameAfter, text::FrameLast}) {
    bound.edge->addItem(Say(texts_, edge));
  }
  bound.distance->setAccessibleName(Say(texts_, text::FrameDistance));
  bound.distance->setPlaceholderText(QStringLiteral("1"));
  bound.distance->setFixedWidth(fontMetrics().averageCharWidth() * 10);
  connect(bound.edge, &QComboBox::activated, this, &WindowPage::Read);
  connect(bound.distance, &QLineEdit::editingFinished, this, &WindowPage::Read);
  return bound;
}

std::size_t WindowPage::Function() const { return static_cast<std::size_t>(function_->currentIndex()); }

void WindowPage::Show(const std::optional<WindowCall>& call) {
  filling_ = true;
  showsCall_ = call.has_value();
  call_ = call.value_or(WindowCall());
  const std::size_t known = builder_->WindowFunctionAt(call_.function);
  const bool isKnown = known < builder_->WindowFunctions().size();
  function_->setCurrentIndex(isKnown ? static_cast<int>(known) : -1);
  function_->setPlaceholderText(call_.function.empty() ? QStringLiteral("…") : ToQString(call_.function));
  if (arguments_->currentText() != ToQString(call_.arguments)) arguments_->setEditText(ToQString(call_.arguments));
  std::vector<ExpressionRows::Entry> partitions, orders;
  for (const std::string& expression : call_.partitions) partitions.push_back({expression});
  for (const WindowOrder& order : call_.orders) {
    orders.push_back({order.expression, static_cast<int>(order.nulls) * 2 + (order.descending ? 1 : 0)});
  }
  partitions_->Show(partitions);
  orders_->Show(orders);
  unit_->setCurrentIndex(static_cast<int>(call_.unit));
  ShowBound(from_, call_.from);
  ShowBound(to_, call_.to);
  ShowProblem();
  filling_ = false;
}

void WindowPage::ShowBound(const Bound& shown, const FrameBound& bound) {
  shown.edge->setCurrentIndex(static_cast<int>(bound.edge));
  shown.distance->setText(ToQString(bound.distance));
}

FrameBound WindowPage::ReadBound(const Bound& shown) {
  const auto edge = static_cast<FrameEdge>(shown.edge->currentIndex());
  const bool hasDistance = edge == FrameEdge::Before || edge == FrameEdge::After;
  return {edge, hasDistance ? std::string(Trim(ToUtf8(shown.distance->text()))) : std::string()};
}

void WindowPage::ChooseFunction(int index) {
  if (!showsCall_) {
    emit Wanted();
    return;
  }
  Show(builder_->WithFunction(call_, static_cast<std::size_t>(index)));
  emit Changed();
}

// What the page shows now, where it is not what it was given.
void WindowPage::Read() {
  if (filling_ || !showsCall_) return;
  WindowCall call = call_;
  call.arguments = Trim(ToUtf8(arguments_->currentText()));
  call.partitions.clear();
  for (const ExpressionRows::Entry& entry : partitions_->Entries()) call.partitions.push_back(entry.expression);
  call.orders.clear();
  for (const ExpressionRows::Entry& entry : orders_->Entries()) {
    call.orders.push_back(
        {entry.expression, entry.direction % 2 == 1, static_cast<WindowOrder::Nulls>(entry.direction / 2)});
  }
  call.unit = static_cast<FrameUnit>(unit_->currentIndex());
  call.from = ReadBound(from_);
  call.to = ReadBound(to_);
  if (call.unit == FrameUnit::None) call.exclusion.clear();
  if (call == call_) return;
  call_ = std::move(call);
  ShowProblem();
  emit Changed();
}

void WindowPage::ShowProblem() {
  for (QWidget* part : parts_) part->setEnabled(showsCall_);
  const bool hasFrame = showsCall_ && call_.unit != FrameUnit::None;
  for (const Bound& bound : {from_, to_}) {
    bound.edge->setEnabled(hasFrame);
    const auto edge = static_cast<FrameEdge>(bound.edge->currentIndex());
    bound.distance->setVisible(hasFrame && (edge == FrameEdge::Before || edge == FrameEdge::After));
  }
  message_->setText(showsCall_ ? ToQString(builder_->ProblemOf(call_)) : Say(texts_, text::WindowEmpty));
}

}  // namespace zrqrybld
