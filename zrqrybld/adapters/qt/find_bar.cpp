#include "zrqrybld/adapters/qt/find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QTextBlock>
#include <QToolButton>
#include <algorithm>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {
namespace {

constexpr qsizetype kMostMarks = 1000;

// The text with one character for each of the document's positions, so that a place in it is a place in the document.
QString SearchedText(const QPlainTextEdit& text) { return text.document()->toRawText(); }

}  // namespace

FindBar::FindBar(QPlainTextEdit& text, std::function<void()> changed)
    : QWidget(&text), text_(text), changed_(std::move(changed)), word_(new QLineEdit(this)), count_(new QLabel(this)) {
  hide();
  setCursor(Qt::ArrowCursor);
  setAutoFillBackground(true);
  word_->setClearButtonEnabled(true);
  const auto button = [this](Qt::ArrowType arrow, auto act) {
    auto* made = new QToolButton(this);
    made->setAutoRaise(true);
    made->setFocusPolicy(Qt::NoFocus);
    if (arrow == Qt::NoArrow) {
      made->setText(QStringLiteral("\u2715"));
    } else {
      made->setArrowType(arrow);
    }
    connect(made, &QToolButton::clicked, this, act);
    return made;
  };
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(8, 2, 4, 2);
  row->addWidget(word_, 1);
  row->addWidget(count_);
  previous_ = button(Qt::UpArrow, [this] { Go(false); });
  next_ = button(Qt::DownArrow, [this] { Go(true); });
  close_ = button(Qt::NoArrow, [this] { Close(); });
  for (QToolButton* one : {previous_, next_, close_}) row->addWidget(one);
  SetTexts(EnglishTexts());
  setFocusProxy(word_);
  connect(word_, &QLineEdit::textChanged, this, [this] {
    Look();
    // While typing, the place that was found stays as long as it fits.
    QTextCursor caret = text_.textCursor();
    caret.setPosition(caret.selectionStart());
    text_.setTextCursor(caret);
    if (!places_.isEmpty()) Go(true);
    changed_();
  });
}

void FindBar::SetTexts(const TextSource& texts) {
  texts_ = &texts;
  word_->setPlaceholderText(Say(texts, text::Find));
  word_->setAccessibleName(Say(texts, text::FindInStatement));
  const auto name = [&](QToolButton* button, TextId tip) {
    button->setToolTip(Say(texts, tip));
    button->setAccessibleName(button->toolTip());
  };
  name(previous_, text::FindPrevious);
  name(next_, text::FindNext);
  name(close_, text::FindClose);
}

void FindBar::Open() {
  const QString selected = text_.textCursor().selectedText();
  const bool oneLine = !selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator);
  show();
  if (oneLine) word_->setText(selected);
  word_->selectAll();
  word_->setFocus();
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
  const QString word = word_->text();
  for (qsizetype at = word.isEmpty() ? -1 : text.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
       at = text.indexOf(word, at + word.size(), Qt::CaseInsensitive)) {
    places_.push_back(static_cast<int>(at));
  }
  ShowCount();
}

void FindBar::ShowCount() {
  const auto here = std::ranges::find(places_, text_.textCursor().selectionStart());
  const bool onOne = here != places_.end() && text_.textCursor().hasSelection();
  if (word_->text().isEmpty()) {
    count_->clear();
  } else if (places_.isEmpty()) {
    count_->setText(Say(*texts_, text::NotFound));
  } else {
    count_->setText(onOne ? Say(*texts_, text::PlaceOf, here - places_.begin() + 1, places_.size())
                          : Say(*texts_, text::FoundCount, places_.size()));
  }
}

void FindBar::Go(bool forward) {
  if (word_->text().isEmpty()) {
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
  found.setPosition(*place + static_cast<int>(word_->text().size()), QTextCursor::KeepAnchor);
  text_.setTextCursor(found);
  ShowCount();
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
    mark.cursor.setPosition(places_[i] + static_cast<int>(word_->text().size()), QTextCursor::KeepAnchor);
    mark.format.setBackground(theme.Of(ColorRole::RowHover));
    mark.format.setUnderlineStyle(QTextCharFormat::SingleUnderline);  // seen where the ground is faint
    mark.format.setUnderlineColor(theme.Of(ColorRole::Focus));
    marks.push_back(mark);
  }
  return marks;
}

void FindBar::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->key() == Qt::Key_Escape) {
    Close();
  } else if (enter || event->matches(QKeySequence::FindNext) || event->matches(QKeySequence::FindPrevious)) {
    Go(enter ? !event->modifiers().testFlag(Qt::ShiftModifier) : event->matches(QKeySequence::FindNext));
  }
  event->accept();  // nothing typed here is for the text behind the bar
}

}  // namespace zrqrybld
