// FindFrame: a line to look for something, how often it was found, and buttons for the next and the previous place.
//
// What is looked for, and where, is said by the bars that derive from it.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QWidget>

#include "zrqrybld/base/phrase.h"

class QToolButton;

namespace zrqrybld {

class FindFrame : public QWidget {
 public:
  /// A hidden bar in this widget.
  explicit FindFrame(QWidget* parent);

  /// Hides the bar and gives the keyboard back.
  virtual void Close() = 0;
  /// Goes to the next place, or the one before.
  virtual void Go(bool forward) = 0;

 protected:
  /// Speaks this language, which must outlive the bar or the next call: what stands in the empty line, and its name.
  void SetWords(const TextSource& texts, TextId hint, TextId name);
  const TextSource& Texts() const { return *texts_; }
  QLineEdit& Word() const { return *word_; }
  /// Says which place of how many is the current one (0 for none of them).
  void ShowCount(std::size_t place, std::size_t count);
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QToolButton* MakeButton(Qt::ArrowType arrow, void (FindFrame::*act)());
  void GoBack() { Go(false); }
  void GoOn() { Go(true); }
  void Shut() { Close(); }

  const TextSource* texts_ = nullptr;
  QLineEdit* word_;
  QLabel* count_;
  QToolButton* previous_;
  QToolButton* next_;
  QToolButton* close_;
};

}  // namespace zrqrybld
