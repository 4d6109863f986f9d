// QtTextArea: a text of many lines with line numbers, a bar to find words in it (Ctrl+F, F3) and, when they are set,
// coloured words and matching brackets.
//
// Caret, selection, clipboard, undo and input methods are Qt's own.
#pragma once

#include <QPlainTextEdit>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/adapters/qt/event_boundary.h"
#include "zrqrybld/adapters/qt/text_places.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/editors.h"

namespace zrqrybld {

class Announcer;
class FindBar;
class RemarkLine;

class ZRQRYBLD_API QtTextArea : public QPlainTextEdit, public TextArea {
  Q_OBJECT

 public:
  /// Takes a whole text, its lines ending in CR LF, and says how its pieces look. Pieces may span
  /// lines; where two overlap, the later one wins.
  using Highlighter = std::function<std::vector<TextSpan>(std::string_view text)>;

  explicit QtTextArea(QWidget* parent = nullptr);

  /// The text with lines ending in CR LF.
  std::string Text() const override;
  /// Takes lines ending in CR LF, CR or LF. A text that is there already changes nothing at all, not
  /// even the selection or the undo list.
  void SetText(std::string_view text) override;
  void SetReadOnly(bool readOnly) override;
  /// Shows the first sentence on a line below the text and says how many more there are; the line's tool tip has all.
  void SetRemarks(const std::vector<std::string>& remarks) override;

  void SetFault(std::size_t offset, std::size_t length) override;
  void SetPart(std::size_t offset, std::size_t length) override;
  std::size_t Caret() const override { return OffsetOf(textCursor().position()); }
  /// The buttons stand at the right end of the line with the remarks.
  void SetCommands(std::vector<TextCommand> commands) override;

  /// Colours the text from now on; an empty function stops that.
  void SetHighlighter(Highlighter highlighter);

  /// The language of its menu and of the bar that finds words; the built-in texts at first, and with nothing.
  void SetTexts(std::shared_ptr<const TextSource> texts);
  const TextSource& Texts() const { return texts_ ? *texts_ : EnglishTexts(); }

  /// Takes a whole text and the place of a bracket in it, in bytes; gives that place and its partner's.
  using BracketFinder =
      std::function<std::optional<std::pair<std::size_t, std::size_t>>(std::string_view text, std::size_t offset)>;
  /// Marks the bracket beside the caret and its partner from now on; an empty function stops that.
  void SetBracketFinder(BracketFinder finder);

  /// Asks the highlighter again: what it says depends on more than the text.
  void Rehighlight() { Highlight(); }

  /// Whether the lines are numbered; they are at first.
  void SetLineNumbers(bool shown);

  /// Failures of listeners and of the highlighter go here instead of into a warning.
  void SetErrorHandler(ErrorHandler handler) { boundary_.SetHandler(std::move(handler)); }

  /// Where calls out of Qt's events run: failures go to the error handler.
  const EventBoundary& Boundary() const { return boundary_; }

  /// The place in `Text()`, in bytes, of a position in the document, and the position of such a place; a byte inside a
  /// character counts all of it, and one behind the text is at its end.
  std::size_t OffsetOf(int position) const { return zrqrybld::OffsetOf(*document(), position); }
  int PositionOf(std::size_t offset) const { return zrqrybld::PositionOf(*document(), offset); }

  /// The colours in use; they follow the widget's palette.
  const Theme& GetTheme() const { return theme_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  class Margin;

  void OnContentsChanged();
  void Highlight();
  void MarkText();
  void MarkBrackets(QList<QTextEdit::ExtraSelection>& marks) const;
  bool OfferKey(const QKeyEvent& event);
  bool Find(const QKeyEvent& event);
  void UpdateFont();
  int MarginWidth() const;
  void PlaceMargins();
  void PaintMargin(QPaintEvent& event);

  Theme theme_;
  Highlighter highlighter_;
  BracketFinder bracketFinder_;
  TextSpan fault_;  // of length 0 for none
  TextSpan part_;   // as above
  EventBoundary boundary_;
  Announcer* announcer_ = nullptr;
  Margin* margin_ = nullptr;
  RemarkLine* remarks_ = nullptr;
  FindBar* find_ = nullptr;
  std::shared_ptr<const TextSource> texts_;
  bool lineNumbers_ = true;
  bool settingText_ = false;
  bool updatingFont_ = false;
};

}  // namespace zrqrybld
