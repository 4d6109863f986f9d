// JoinWindow: the properties of a join. Two check boxes choose whose rows are all wanted; a sentence and a
// picture say what that returns.
//
// Only its two buttons and Esc close it: whoever opened it always finds a decision.
#pragma once

#include <QDialog>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/platform/dialogs.h"

class QCheckBox;
class QLabel;

namespace zrqrybld {

class JoinPicture;
class Mark;

class JoinWindow : public QDialog {
  Q_OBJECT

 public:
  explicit JoinWindow(const JoinDialog& dialog, QWidget* parent = nullptr);

  /// What is chosen.
  bool Table1Checked() const;
  bool Table2Checked() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QWidget* MakeWarning();
  void ShowChoice();
  void ApplyColors();
  /// What the core says to a choice.
  QString Ask(const std::function<std::string(bool, bool)>& question, bool all1, bool all2) const;
  bool AnyAnswer(const std::function<std::string(bool, bool)>& question) const;
  /// The height that the longest answer needs in the label.
  int TallestAnswer(QLabel& label, const std::function<std::string(bool, bool)>& question, int width) const;

  JoinDialog dialog_;
  EventBoundary boundary_;
  QCheckBox* all1_ = nullptr;
  QCheckBox* all2_ = nullptr;
  QLabel* sentence_ = nullptr;
  JoinPicture* picture_ = nullptr;
  Mark* warningMark_ = nullptr;
  QLabel* warning_ = nullptr;
};

}  // namespace zrqrybld
