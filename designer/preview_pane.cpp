#include "designer/preview_pane.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

#include "designer/export_window.h"
#include "designer/result_model.h"
#include "designer/result_table.h"
#include "zrqrybld/adapters/qt/mark.h"
#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/adapters/qt/shortcuts.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {
namespace {

constexpr int kSpacing = 8;
constexpr int kMessageLines = 3;
constexpr int kFilterWidth = 20;   // in average characters
constexpr int kFilterDelay = 150;  // milliseconds: there may be many rows

QString Duration(qint64 milliseconds) {
  if (milliseconds < 1000) return QStringLiteral("%1 ms").arg(milliseconds);
  return QStringLiteral("%1 s").arg(QLocale::c().toString(static_cast<double>(milliseconds) / 1000, 'f', 1));
}

QString Number(std::size_t number) { return QLocale::c().toString(static_cast<qulonglong>(number)); }

}  // namespace

PreviewPane::PreviewPane(std::shared_ptr<const TextSource> texts, QWidget* parent)
    : QWidget(parent),
      texts_(std::move(texts)),
      model_(new ResultModel(this)),
      table_(new ResultTable(*model_, *texts_)),
      empty_(new QLabel),
      failure_(new QWidget) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(MakeBar());

  mark_ = new Mark;
  message_ = new QPlainTextEdit;
  message_->setReadOnly(true);
  message_->setFrameShape(QFrame::NoFrame);
  message_->setTabChangesFocus(true);
  message_->document()->setDocumentMargin(0);
  message_->setFixedHeight(fontMetrics().lineSpacing() * kMessageLines + kSpacing);
  message_->setAccessibleName(Say(*texts_, text::NoRowsReason));
  auto* line = new QHBoxLayout(failure_);
  line->setContentsMargins(kSpacing, kSpacing / 2, kSpacing, kSpacing / 2);
  line->setSpacing(kSpacing);
  line->addWidget(mark_, 0, Qt::AlignTop);
  line->addWidget(message_, 1, Qt::AlignTop);
  cure_ = new QPushButton;
  connect(cure_, &QPushButton::clicked, this, &PreviewPane::CureWanted);
  line->addWidget(cure_, 0, Qt::AlignTop);
  place_ = new QPushButton(Say(*texts_, text::GoToError));
  connect(place_, &QPushButton::clicked, this, &PreviewPane::PlaceWanted);
  line->addWidget(place_, 0, Qt::AlignTop);
  failure_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  layout->addWidget(failure_);
  failure_->hide();

  empty_->setText(Say(*texts_, text::PreviewEmpty, KeyTextOf(Command::RunPreview)));
  empty_->setAlignment(Qt::AlignCenter);
  empty_->setWordWrap(true);
  layout->addWidget(empty_, 1);
  layout->addWidget(table_, 1);
  connect(table_, &ResultTable::AllWanted, this, &PreviewPane::FetchAll);
  connect(table_, &ResultTable::ExportWanted, this, &PreviewPane::Export);
  connect(table_, &ResultTable::StopWanted, this, &PreviewPane::Stop);
  connect(table_, &ResultTable::FilterWanted, this, [this] {
    filter_->setFocus(Qt::ShortcutFocusReason);
    filter_->selectAll();
  });
  ShowTable(false);
  layout->addStretch();  // keeps a message at the top while it stands alone

  model_->SetWant([this] { FetchMore(); });
  model_->SetHeaderTip(Say(*texts_, text::SortTip));
  connect(model_, &QAbstractItemModel::layoutChanged, this, &PreviewPane::ShowSummary);
  tick_.setInterval(100);
  connect(&tick_, &QTimer::timeout, this, &PreviewPane::ShowSummary);
  SetRunning(false);
  ApplyColors();
}

PreviewPane::~PreviewPane() = default;

// --- Its parts ---

QWidget* PreviewPane::MakeBar() {
  const auto button = [](const QString& text, const QString& tip) {
    auto* made = new QToolButton;
    made->setText(text);
    made->setToolTip(tip);
    made->setAutoRaise(true);
    return made;
  };
  run_ = button(Say(*texts_, text::RunButton), Say(*texts_, text::RunTip, KeyTextOf(Command::RunPreview)));
  stop_ = button(Say(*texts_, text::StopPreview), Say(*texts_, text::StopTip, KeyTextOf(Command::StopPreview)));
  auto* close = button(Say(*texts_, text::HideButton), Say(*texts_, text::HideTip));
  summary_ = new QLabel;
  summary_->setTextFormat(Qt::PlainText);
  summary_->setAccessibleName(Say(*texts_, text::PreviewState));
  summary_->setMinimumWidth(1);  // a narrow window cuts it off rather than growing
  connect(run_, &QToolButton::clicked, this, &PreviewPane::RunWanted);
  connect(stop_, &QToolButton::clicked, this, &PreviewPane::Stop);
  connect(close, &QToolButton::clicked, this, &PreviewPane::CloseWanted);

  more_ = button(Say(*texts_, text::FetchMoreButton), Say(*texts_, text::FetchMoreTip, Number(PreviewJob::kBlockRows)));
  all_ = button(Say(*texts_, text::FetchAllButton), Say(*texts_, text::FetchAllTip));
  export_ = button(Say(*texts_, text::ExportButton), Say(*texts_, text::ExportTip, KeyTextOf(Command::ExportRows)));
  connect(more_, &QToolButton::clicked, this, &PreviewPane::FetchMore);
  connect(all_, &QToolButton::clicked, this, &PreviewPane::FetchAll);
  connect(export_, &QToolButton::clicked, this, &PreviewPane::Export);
  filter_ = new QLineEdit;
  filter_->setPlaceholderText(Say(*texts_, text::KeysFilter));
  filter_->setAccessibleName(Say(*texts_, text::FilterRowsItem).remove(QLatin1Char('&')));
  filter_->setToolTip(Say(*texts_, text::FilterTip, KeyTextOf(Command::FilterRows)));
  filter_->setClearButtonEnabled(true);
  filter_->setMaximumWidth(fontMetrics().averageCharWidth() * kFilterWidth);
  filter_->installEventFilter(this);
  filterSoon_.setSingleShot(true);
  filterSoon_.setInterval(kFilterDelay);
  connect(filter_, &QLineEdit::textChanged, &filterSoon_, qOverload<>(&QTimer::start));
  connect(&filterSoon_, &QTimer::timeout, this, [this] { model_->SetFilter(filter_->text()); });

  auto* bar = new QWidget;
  auto* layout = new QHBoxLayout(bar);
  layout->setContentsMargins(kSpacing / 2, 2, kSpacing / 2, 2);
  layout->setSpacing(kSpacing / 2);
  layout->addWidget(run_);
  layout->addWidget(stop_);
  layout->addSpacing(kSpacing / 2);
  layout->addWidget(summary_, 1);
  for (QWidget* way : {static_cast<QWidget*>(more_), static_cast<QWidget*>(all_), static_cast<QWidget*>(filter_),
                       static_cast<QWidget*>(export_), static_cast<QWidget*>(close)}) {
    layout->addWidget(way);
  }
  return bar;
}

// --- Running ---

void PreviewPane::Run(PreviewJob::Open open, std::string sql, const Dialect& dialect) {
  Clear();
  clock_.start();
  SetRunning(true);
  job_ = std::make_unique<PreviewJob>(std::move(open), std::move(sql), dialect,
                                      [this](PreviewNews news) { Receive(std::move(news)); });
}

void PreviewPane::Stop() {
  if (!job_ || !running_) return;
  if (std::exchange(fetchingAll_, false)) return ShowSummary();  // the block under way comes yet
  job_.reset();
  if (model_->RowsHeld() == 0) took_ = clock_.elapsed();
  ended_ = Say(*texts_, text::Stopped);
  model_->End();
  SetRunning(false);
  Q_EMIT Finished(Summary());
}

void PreviewPane::FetchMore() {
  if (!job_ || !model_->HasMore() || running_) return;
  job_->FetchMore();
  SetRunning(true);
}

void PreviewPane::FetchAll() {
  if (!job_ || !model_->HasMore()) return;
  fetchingAll_ = true;
  FetchMore();
}

void PreviewPane::Clear() {
  job_.reset();
  fetchingAll_ = false;
  filter_->clear();
  table_->ForgetOrder();
  model_->Begin({});
  took_ = 0;
  ended_.clear();
  stale_ = false;
  DropFailure();
  ShowTable(false);
  empty_->show();
  SetRunning(false);
}

void PreviewPane::DropFailure() {
  message_->clear();
  failure_->hide();
  if (table_->isHidden()) empty_->show();
  ShowSummary();
}

void PreviewPane::ShowFailure(const QString& message) {
  Clear();
  Fail(message);
}

// Where there are no rows the keyboard goes to what brings them.
void PreviewPane::ShowTable(bool shown) {
  table_->setVisible(shown);
  setFocusProxy(shown ? static_cast<QWidget*>(table_) : run_);
}

void PreviewPane::MarkStale() {
  if (stale_ || table_->isHidden()) return;
  stale_ = true;
  ShowSummary();
}

void PreviewPane::Receive(PreviewNews news) {
  switch (news.kind) {
    case PreviewNews::Kind::Columns:
      model_->Begin(news.columns);
      took_ = clock_.elapsed();
      empty_->hide();
      ShowTable(true);
      break;
    case PreviewNews::Kind::Rows:
      ShowRows(news);
      break;
    case PreviewNews::Kind::Failed:
      model_->End();
      Fail(ToQString(news.message.In(*texts_)));
      if (news.offset) Q_EMIT Refused(*news.offset);
      break;
    case PreviewNews::Kind::Closed:
      ended_ = Say(*texts_, text::SourceLetGo, KeyTextOf(Command::RunPreview));
      model_->End();
      ShowSummary();
      break;
  }
}

void PreviewPane::ShowRows(PreviewNews& news) {
  const bool first = running_ && model_->RowsHeld() == 0;
  model_->Append(std::move(news.rows), news.more);
  if (first) {
    took_ = clock_.elapsed();
    table_->BeginRows();
  }
  if (news.failing) return;
  if (model_->IsFull() || news.cutOff) {
    ended_ = Say(*texts_, text::HoldsNoMore);
    model_->End();
  }
  if (fetchingAll_ && model_->HasMore()) {
    job_->FetchMore();
    return ShowSummary();
  }
  fetchingAll_ = false;
  model_->SortAnew();
  if (!model_->HasMore()) job_.reset();  // the source is let go
  SetRunning(false);
  Q_EMIT Finished(Summary());
}

void PreviewPane::Fail(const QString& message) {
  job_.reset();
  fetchingAll_ = false;
  message_->setPlainText(message.trimmed());
  mark_->Show(Mark::Kind::Error);
  cure_->hide();
  place_->hide();
  failure_->show();
  if (table_->isHidden()) empty_->hide();
  ended_ = model_->RowsHeld() > 0 ? Say(*texts_, text::ThenFailed) : QString();
  SetRunning(false);
  QAccessibleEvent announcement(message_, QAccessible::Alert);
  QAccessible::updateAccessibility(&announcement);
  Q_EMIT Failing();
  Q_EMIT Finished(Summary());
}

void PreviewPane::OfferCure(const QString& text) {
  cure_->setText(text);
  cure_->show();
}

void PreviewPane::OfferPlace() { place_->show(); }

void PreviewPane::SetRunning(bool running) {
  running_ = running;
  stop_->setEnabled(running_);
  Q_EMIT RunningChanged(running_);
  if (running_) {
    tick_.start();
  } else {
    tick_.stop();
  }
  ShowSummary();
}

// --- What is said ---

QString PreviewPane::Summary() const { return summary_->text(); }
QString PreviewPane::Failure() const { return failure_->isHidden() ? QString() : message_->toPlainText(); }

QString PreviewPane::RowsText() const {
  if (model_->RowsHeld() == 0 && !ended_.isEmpty()) return Say(*texts_, text::StoppedAfter, Duration(took_));
  if (table_->isHidden()) return {};
  const std::size_t count = model_->RowsHeld();
  const QString rows = model_->HasMore() ? Say(*texts_, text::FetchedSoFar, Number(count))
                       : count == 0      ? Say(*texts_, text::NoRows)
                       : count == 1      ? Say(*texts_, text::OneRow)
                                         : Say(*texts_, text::RowCountText, Number(count));
  QString said = Say(*texts_, text::RowsIn, rows, Duration(took_));
  if (!ended_.isEmpty()) said += "; " + ended_;
  said += OrderText();
  return stale_ ? Say(*texts_, text::StatementChanged, said) : said;
}

// What was done here with the rows, which is not the query's doing.
QString PreviewPane::OrderText() const {
  QString said;
  if (!model_->Filter().isEmpty()) {
    said += "; " + Say(*texts_, text::ShownOf, Number(static_cast<std::size_t>(model_->rowCount())),
                       Number(model_->RowsHeld()));
  }
  if (model_->SortedBy() >= 0) {
    said += "; " + Say(*texts_, model_->HasMore() ? text::SortedFetchedBy : text::SortedBy,
                       model_->NameOf(model_->SortedBy()));
  }
  return said;
}

// What can be done with the rows as they are.
void PreviewPane::ShowWays() {
  const bool further = job_ && model_->HasMore();
  more_->setVisible(further);
  all_->setVisible(further);
  more_->setEnabled(!running_);
  all_->setEnabled(!fetchingAll_);
  filter_->setVisible(model_->RowsHeld() > 0);
  export_->setVisible(model_->RowsHeld() > 0);
}

void PreviewPane::ShowSummary() {
  if (running_ && model_->RowsHeld() == 0) {
    summary_->setText(Say(*texts_, text::RunningFor, clock_.elapsed() / 1000));
  } else if (running_) {
    summary_->setText(Say(*texts_, text::ReadingOn, RowsText()));
  } else if (!Failure().isEmpty() && table_->isHidden()) {
    summary_->setText(Say(*texts_, text::NoRowsError));
  } else {
    summary_->setText(RowsText());
  }
  summary_->setToolTip(PlainTip(summary_->text()));  // a narrow window cuts it off
  ShowWays();
}

void PreviewPane::Export() {
  if (model_->RowsHeld() == 0) return;
  const QItemSelection selection = table_->selectionModel()->selection();
  ExportWindow dialog(*model_, selection, *texts_, window());
  if (dialog.exec() == QDialog::Accepted) Q_EMIT Finished(dialog.Done());
}

bool PreviewPane::eventFilter(QObject* watched, QEvent* event) {
  if (watched != filter_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
  const int key = static_cast<const QKeyEvent*>(event)->key();
  if (key != Qt::Key_Down && key != Qt::Key_Escape) return QWidget::eventFilter(watched, event);
  if (key == Qt::Key_Escape) filter_->clear();
  table_->setFocus(Qt::OtherFocusReason);
  return true;
}

// --- Looks ---

void PreviewPane::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && summary_) ApplyColors();
}

void PreviewPane::ApplyColors() {
  const Theme theme(palette());
  const Theme onWindow = Theme::ForWindow(palette());
  model_->SetQuietColor(theme.Of(ColorRole::QuietText));
  table_->viewport()->update();
  QPalette quiet;
  quiet.setColor(QPalette::WindowText, onWindow.Of(ColorRole::QuietText));
  empty_->setPalette(quiet);
  QPalette message;
  message.setColor(QPalette::Base, palette().color(QPalette::Window));
  message.setColor(QPalette::Text, onWindow.Of(ColorRole::Error));
  message_->setPalette(message);
}

}  // namespace zrqrybld
