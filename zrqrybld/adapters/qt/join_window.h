// JoinWindow: the properties of a join. Two check boxes choose whose rows are all wanted; a sentence and a
// picture say what that returns. Below stand the columns that are compared and the condition, where the core gives
// them.
//
// Only its two buttons and Esc close it: whoever opened it always finds a decision.
#pragma once

#include <QDialog>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/adapters/qt/row_counter.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/expression/expression_zoom.h"
#include "zrqrybld/platform/dialogs.h"

class QCheckBox;
class QComboBox;
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
  /// The language must outlive the window. With a counter it says how many rows each choice returns.
  explicit JoinWindow(const JoinDialog& dialog, QWidget* parent = nullptr, const TextSource& texts = EnglishTexts(),
                      RowCounter counter = {});
  ~JoinWindow() override;

  /// What is chosen.
  bool Table1Checked() const;
  bool Table2Checked() const;
  std::vector<JoinDialog::Pair> Pairs() const;
  /// The condition on one line.
  std::string Condition() const;
  /// Which of the questions is asked, from 0.
  std::size_t Question() const;
  bool GroupChecked() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QWidget* MakeQuestions();
  QWidget* MakeWarning();
  QWidget* MakeCondition(int width);
  void ShowChoice();
  // Says why what is asked cannot be taken, and keeps it from being accepted.
  void Check();
  void ApplyColors();
  void ShowCount();
  void Count(std::size_t choice);
  // What can be chosen: the four of the check boxes, then the questions.
  std::size_t Choices() const;
  std::size_t Choice() const;
  using OfKinds = std::function<std::string(bool, bool)>;
  using OfQuestion = std::function<std::string(std::size_t)>;
  /// What the core says to a choice.
  QString Ask(std::size_t choice, const OfKinds& ofKinds, const OfQuestion& ofQuestion = {}) const;
  bool AnyAnswer(const OfKinds& ofKinds, const OfQuestion& ofQuestion) const;
  /// The height that the longest answer needs in the label.
  int TallestAnswer(QLabel& label, int width, const OfKinds& ofKinds, const OfQuestion& ofQuestion = {}) const;

  JoinDialog dialog_;
  const TextSource& texts_;
  EventBoundary boundary_;
  const RowCounter counter_;
  QComboBox* questions_ = nullptr;  // nothing where there are none, and so below
  QCheckBox* group_ = nullptr;
  QCheckBox* all1_ = nullptr;
  QCheckBox* all2_ = nullptr;
  QLabel* sentence_ = nullptr;
  QLabel* count_ = nullptr;
  std::map<std::size_t, QString> counted_;  // what is said of a choice, by its number
  std::unique_ptr<RowCount> counting_;
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
