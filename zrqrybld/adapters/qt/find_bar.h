// FindBar: looks for a word in a text, forwards and backwards, and marks where it stands.
//
// It belongs to the text that it stands below, which gives it its place.
#pragma once

#include <QList>
#include <QPlainTextEdit>
#include <functional>

#include "zrqrybld/adapters/qt/find_frame.h"
#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {

class FindBar final : public FindFrame {
 public:
  /// A hidden bar; `changed` is called when it opens, closes or finds something else.
  FindBar(QPlainTextEdit& text, std::function<void()> changed);

  /// Speaks this language, which must outlive the bar or the next call; the built-in texts at first.
  void SetTexts(const TextSource& texts);

  /// Shows the bar with the selected word, or the one looked for last, and takes the keyboard.
  void Open();
  /// Hides the bar and gives the keyboard back to the text.
  void Close() override;
  /// Selects the next place, or the one before; after the last one the first. Opens the bar when nothing is looked for.
  void Go(bool forward) override;
  /// Looks anew: the text has changed.
  void Refresh();

  /// The places found, to be marked in the text; at most a thousand around the caret.
  QList<QTextEdit::ExtraSelection> Marks(const Theme& theme) const;

 private:
  void Look();
  void CountPlaces();

  QPlainTextEdit& text_;
  std::function<void()> changed_;
  QList<int> places_;
};

}  // namespace zrqrybld
