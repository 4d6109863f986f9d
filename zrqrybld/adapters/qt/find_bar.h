// FindBar: looks for a word in a text, forwards and backwards, and marks where it stands.
//
// It belongs to the text that it stands below, which gives it its place.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QList>
#include <QPlainTextEdit>
#include <QWidget>
#include <functional>

#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/phrase.h"

class QToolButton;

namespace zrqrybld {

class FindBar final : public QWidget {
 public:
  /// A hidden bar; `changed` is called when it opens, closes or finds something else.
  FindBar(QPlainTextEdit& text, std::function<void()> changed);

  /// Speaks this language, which must outlive the bar or the next call; the built-in texts at first.
  void SetTexts(const TextSource& texts);

  /// Shows the bar with the selected word, or the one looked for last, and takes the keyboard.
  void Open();
  /// Hides the bar and gives the keyboard back to the text.
  void Close();
  /// Selects the next place, or the one before; after the last one the first. Opens the bar when nothing is looked for.
  void Go(bool forward);
  /// Looks anew: the text has changed.
  void Refresh();

  /// The places found, to be marked in the text; at most a thousand around the caret.
  QList<QTextEdit::ExtraSelection> Marks(const Theme& theme) const;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Look();
  void ShowCount();

  const TextSource* texts_ = nullptr;
  QPlainTextEdit& text_;
  std::function<void()> changed_;
  QLineEdit* word_;
  QLabel* count_;
  QToolButton* previous_;
  QToolButton* next_;
  QToolButton* close_;
  QList<int> places_;
};

}  // namespace zrqrybld
