// JoinWindow: the properties of a join. Two check boxes choose whose rows are all wanted; a sentence and a
// picture say what that returns. Below stand the columns that are compared and the condition, where the core gives
// them.
//
// Only its two buttons and Esc close it: whoever opened it always finds a decision.
#pragma once

#include <QDialog>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/expression/expression_zoom.h"
#include "zrqrybld/platform/dialogs.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace zrqrybld {

class JoinPairs;
class JoinPicture;
class Mark;
class QtTextArea;

class JoinWindow : public QDialog {
  Q_OBJECT

 public:
  /// The language must outlive the window.
  explicit JoinWindow(const JoinDialog& dialog, QWidget* parent = nullptr, const TextSource& texts = EnglishTexts());

  /// What is chosen.
  bool Table1Checked() const;
  bool Table2Checked() const;
  std::vector<JoinDialog::Pair> Pairs() const;
  /// The condition on one line.
  std::string Condition() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QWidget* MakeWarning();
  QWidget* MakeCondition(int width);
  void ShowChoice();
  // Says why what is asked cannot be taken, and keeps it from being accepted.
  void Check();
  void ApplyColors();
  /// What the core says to a choice.
  QString Ask(const std::function<std::string(bool, bool)>& question, bool all1, bool all2) const;
  bool AnyAnswer(const std::function<std::string(bool, bool)>& question) const;
  /// The height that the longest answer needs in the label.
  int TallestAnswer(QLabel& label, const std::function<std::string(bool, bool)>& question, int width) const;

  JoinDialog dialog_;
  const TextSource& texts_;
  EventBoundary boundary_;
  QCheckBox* all1_ = nullptr;
  QCheckBox* all2_ = nullptr;
  QLabel* sentence_ = nullptr;
  JoinPicture* picture_ = nullptr;
  Mark* warningMark_ = nullptr;
  QLabel* warning_ = nullptr;
  QPushButton* accept_ = nullptr;
  JoinPairs* pairs_ = nullptr;  // nothing where the core gives no pairs, and so below
  QtTextArea* condition_ = nullptr;
  QLabel* message_ = nullptr;
  QLabel* meaning_ = nullptr;
  std::optional<std::size_t> faultAt_;  // in the condition, in bytes
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
