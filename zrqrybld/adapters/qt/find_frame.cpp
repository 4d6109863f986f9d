#include "zrqrybld/adapters/qt/find_frame.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QToolButton>

#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {

FindFrame::FindFrame(QWidget* parent) : QWidget(parent), word_(new QLineEdit(this)), count_(new QLabel(this)) {
  hide();
  setCursor(Qt::ArrowCursor);
  setAutoFillBackground(true);
  setFocusProxy(word_);
  word_->setClearButtonEnabled(true);
  previous_ = MakeButton(Qt::UpArrow, &FindFrame::GoBack);
  next_ = MakeButton(Qt::DownArrow, &FindFrame::GoOn);
  close_ = MakeButton(Qt::NoArrow, &FindFrame::Shut);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(8, 2, 4, 2);
  row->addWidget(word_, 1);
  row->addWidget(count_);
  for (QToolButton* one : {previous_, next_, close_}) row->addWidget(one);
}

QToolButton* FindFrame::MakeButton(Qt::ArrowType arrow, void (FindFrame::*act)()) {
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
}

void FindFrame::SetWords(const TextSource& texts, TextId hint, TextId name) {
  texts_ = &texts;
  word_->setPlaceholderText(Say(texts, hint));
  word_->setAccessibleName(Say(texts, name));
  const auto call = [&](QToolButton* button, TextId tip) {
    button->setToolTip(Say(texts, tip));
    button->setAccessibleName(button->toolTip());
  };
  call(previous_, text::FindPrevious);
  call(next_, text::FindNext);
  call(close_, text::FindClose);
}

void FindFrame::ShowCount(std::size_t place, std::size_t count) {
  if (word_->text().isEmpty()) {
    count_->clear();
  } else if (count == 0) {
    count_->setText(Say(*texts_, text::NotFound));
  } else {
    count_->setText(place != 0 ? Say(*texts_, text::PlaceOf, place, count) : Say(*texts_, text::FoundCount, count));
  }
}

void FindFrame::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->key() == Qt::Key_Escape) {
    Close();
  } else if (enter || event->matches(QKeySequence::FindNext) || event->matches(QKeySequence::FindPrevious)) {
    Go(enter ? !event->modifiers().testFlag(Qt::ShiftModifier) : event->matches(QKeySequence::FindNext));
  }
  event->accept();  // nothing typed here is for what stands behind the bar
}

}  // namespace zrqrybld
