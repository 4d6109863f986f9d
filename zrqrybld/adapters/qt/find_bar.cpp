#include "zrqrybld/adapters/qt/find_bar.h"

#include <QTextBlock>
#include <algorithm>

#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {
namespace {

constexpr qsizetype kMostMarks = 1000;

// The text with one character for each of the document's positions, so that a place in it is a place in the document.
QString SearchedText(const QPlainTextEdit& text) { return text.document()->toRawText(); }

}  // namespace

FindBar::FindBar(QPlainTextEdit& text, std::function<void()> changed)
    : FindFrame(&text), text_(text), changed_(std::move(changed)) {
  SetTexts(EnglishTexts());
  connect(&Word(), &QLineEdit::textChanged, this, [this] {
    Look();
    // While typing, the place that was found stays as long as it fits.
    QTextCursor caret = text_.textCursor();
    caret.setPosition(caret.selectionStart());
    text_.setTextCursor(caret);
    if (!places_.isEmpty()) Go(true);
    changed_();
  });
}

void FindBar::SetTexts(const TextSource& texts) { SetWords(texts, text::Find, text::FindInStatement); }

void FindBar::Open() {
  const QString selected = text_.textCursor().selectedText();
  const bool oneLine = !selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator);
  show();
  if (oneLine) Word().setText(selected);
  Word().selectAll();
  Word().setFocus();
  Refresh();
}

void FindBar::Close() {
  hide();
  text_.setFocus();
  changed_();
}

void FindBar::Refresh() {
  if (!isVisible()) return;
  Look();
  changed_();
}

void FindBar::Look() {
  places_.clear();
  const QString text = SearchedText(text_);
  const QString word = Word().text();
  for (qsizetype at = word.isEmpty() ? -1 : text.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
       at = text.indexOf(word, at + word.size(), Qt::CaseInsensitive)) {
    places_.push_back(static_cast<int>(at));
  }
  CountPlaces();
}

void FindBar::CountPlaces() {
  const auto here = std::ranges::find(places_, text_.textCursor().selectionStart());
  const bool onOne = here != places_.end() && text_.textCursor().hasSelection();
  ShowCount(onOne ? static_cast<std::size_t>(here - places_.begin()) + 1 : 0, static_cast<std::size_t>(places_.size()));
}

void FindBar::Go(bool forward) {
  if (Word().text().isEmpty()) {
    Open();
    return;
  }
  if (!isVisible()) Look();
  if (places_.isEmpty()) return;
  const QTextCursor caret = text_.textCursor();
  // From the selection on: the place that is selected is not found again.
  const int from = forward && caret.hasSelection() ? caret.selectionStart() + 1 : caret.selectionStart();
  auto place = std::ranges::lower_bound(places_, from);
  if (!forward) place = place == places_.begin() ? places_.end() - 1 : place - 1;
  if (place == places_.end()) place = places_.begin();
  QTextCursor found(text_.document());
  found.setPosition(*place);
  found.setPosition(*place + static_cast<int>(Word().text().size()), QTextCursor::KeepAnchor);
  text_.setTextCursor(found);
  CountPlaces();
}

QList<QTextEdit::ExtraSelection> FindBar::Marks(const Theme& theme) const {
  QList<QTextEdit::ExtraSelection> marks;
  if (!isVisible()) return marks;
  const auto near = std::ranges::lower_bound(places_, text_.textCursor().position());
  const qsizetype first = std::max<qsizetype>(0, near - places_.begin() - kMostMarks / 2);
  for (qsizetype i = first; i < std::min(first + kMostMarks, places_.size()); ++i) {
    QTextEdit::ExtraSelection mark;
    mark.cursor = QTextCursor(text_.document());
    mark.cursor.setPosition(places_[i]);
    mark.cursor.setPosition(places_[i] + static_cast<int>(Word().text().size()), QTextCursor::KeepAnchor);
    mark.format.setBackground(theme.Of(ColorRole::RowHover));
    mark.format.setUnderlineStyle(QTextCharFormat::SingleUnderline);  // seen where the ground is faint
    mark.format.setUnderlineColor(theme.Of(ColorRole::Focus));
    marks.push_back(mark);
  }
  return marks;
}

}  // namespace zrqrybld
