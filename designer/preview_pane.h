// PreviewPane: runs the designed statement and shows its rows, or why there are none.
//
// It knows neither the designer nor its source: whoever owns it hands over a statement and a way to open the source.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>

#include "designer/preview_job.h"
#include "zrqrybld/base/phrase.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace zrqrybld {

class Mark;
class ResultModel;
class ResultTable;

class PreviewPane : public QWidget {
  Q_OBJECT

 public:
  explicit PreviewPane(std::shared_ptr<const TextSource> texts, QWidget* parent = nullptr);
  ~PreviewPane() override;

  /// Runs a statement in the place of the one before, which is stopped. Returns at once.
  void Run(PreviewJob::Open open, std::string sql, const Dialect& dialect);
  /// Ends what runs; the rows read so far stay. While all rows are fetched it ends that first: the source stays open
  /// for further ones. Returns at once.
  void Stop();
  /// Fetches rows until there are none, or no more are held.
  void FetchAll();
  /// Asks how the rows are to be written, and writes them.
  void Export();
  /// Shows nothing any more, and ends what runs.
  void Clear();
  /// Shows why a statement is not run at all.
  void ShowFailure(const QString& message);
  /// What was said of an earlier failure does not count any more.
  void DropFailure();
  /// Gives the keyboard to the rows, or to what brings them.
  void TakeFocus() { setFocus(Qt::ShortcutFocusReason); }
  /// Offers a way out of the failure that is shown, as a button; `CureWanted` is the answer.
  void OfferCure(const QString& text);
  /// Offers to go to the place of the failure, as a button; `PlaceWanted` is the answer.
  void OfferPlace();
  /// The statement is another now: the rows are still shown, but not as its rows.
  void MarkStale();

  bool IsRunning() const { return running_; }
  const ResultModel& Rows() const { return *model_; }
  ResultTable& Table() const { return *table_; }
  /// What is said above the rows.
  QString Summary() const;
  /// Why there are no rows; "" when nothing has failed.
  QString Failure() const;

 Q_SIGNALS:
  /// The statement has ended, with rows or without: what to say about it.
  void Finished(const QString& summary);
  /// The statement was refused at this place, in bytes.
  void Refused(quint64 offset);
  /// There are no rows, or no more of them, and the pane says why.
  void Failing();
  /// The user takes the way out that was offered.
  void CureWanted();
  /// A statement runs now, or no longer.
  void RunningChanged(bool running);
  /// The user asks to run the statement.
  void RunWanted();
  /// The user does not want to see the pane.
  void CloseWanted();
  /// The user wants to see the place in the statement that was refused.
  void PlaceWanted();

 protected:
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* MakeBar();
  void Receive(PreviewNews news);
  void ShowRows(PreviewNews& news);
  void Fail(const QString& message);
  void SetRunning(bool running);
  void ShowSummary();
  QString RowsText() const;
  QString OrderText() const;
  void ShowWays();
  void ShowTable(bool shown);
  void FetchMore();
  void ApplyColors();

  std::shared_ptr<const TextSource> texts_;
  std::unique_ptr<PreviewJob> job_;
  ResultModel* model_;
  ResultTable* table_;
  QLabel* empty_;
  QWidget* failure_;
  Mark* mark_;
  QPlainTextEdit* message_;
  QPushButton* cure_;
  QPushButton* place_;
  QLabel* summary_ = nullptr;
  QToolButton* run_;
  QToolButton* stop_;
  QToolButton* more_;
  QToolButton* all_;
  QToolButton* export_;
  QLineEdit* filter_;
  QTimer filterSoon_;
  QTimer tick_;  // while something runs
  QElapsedTimer clock_;
  qint64 took_ = 0;  // milliseconds to the first rows
  QString ended_;    // how it ended, when not by its last row
  bool running_ = false;
  bool fetchingAll_ = false;
  bool stale_ = false;
};

}  // namespace zrqrybld
