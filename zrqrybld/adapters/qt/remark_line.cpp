#include "zrqrybld/adapters/qt/remark_line.h"

#include <QApplication>
#include <QPainter>
#include <QPolygonF>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "zrqrybld/adapters/qt/plain_tip.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {
namespace {

constexpr int kSidePadding = 8;
constexpr int kPadding = 3;

// A triangle with an exclamation mark.
void PaintSign(QPainter& painter, const QRectF& place, const Theme& theme) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(theme.Of(ColorRole::Warning), 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolygon(QPolygonF{QPointF(place.center().x(), place.top()), place.bottomRight(), place.bottomLeft()});
  const qreal x = place.center().x();
  painter.drawLine(QPointF(x, place.top() + place.height() * 0.40), QPointF(x, place.top() + place.height() * 0.65));
  painter.drawPoint(QPointF(x, place.top() + place.height() * 0.84));
}

}  // namespace

RemarkLine::RemarkLine(QWidget& text, const Theme& theme, const EventBoundary& boundary)
    : QWidget(&text), theme_(theme), boundary_(boundary) {
  hide();
}

void RemarkLine::SetRemarks(const std::vector<std::string>& remarks) {
  remarks_.clear();
  for (const std::string& remark : remarks) remarks_.push_back(ToQString(remark));
  setToolTip(PlainTip(remarks_.join(QLatin1Char('\n'))));
  setAccessibleName(remarks_.join(QLatin1Char(' ')));
  setVisible(!remarks_.isEmpty());
  update();
}

void RemarkLine::SetCommands(std::vector<TextCommand> commands) {
  for (QPushButton* button : buttons_) button->deleteLater();  // it may be the one that is pressed
  buttons_.clear();
  const QWidget* window = parentWidget()->parentWidget();
  for (TextCommand& command : commands) {
    auto* button = new QPushButton(ToQString(command.caption), this);
    button->setFocusPolicy(Qt::NoFocus);  // pressing it does not leave the text
    button->setFont(window ? window->font() : QApplication::font());
    connect(button, &QPushButton::clicked, this,
            [this, run = std::move(command.run)] { boundary_.Run([&run] { run(); }); });
    button->show();
    buttons_.push_back(button);
  }
  PlaceButtons();
}

int RemarkLine::Height() const {
  int height = remarks_.isEmpty() ? 0 : fontMetrics().height() + 2 * kPadding;
  for (const QPushButton* button : buttons_) height = std::max(height, button->sizeHint().height());
  return height;
}

void RemarkLine::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), theme_.Of(ColorRole::Surface));
  const int size = fontMetrics().ascent();
  const QRectF sign(kSidePadding, (height() - size) / 2.0, size, size);
  PaintSign(painter, sign, theme_);
  const int left = static_cast<int>(sign.right()) + kSidePadding;
  QString more;
  if (remarks_.size() > 1) more = Say(*texts_, text::MoreRemarks, remarks_.size() - 1);
  const int room = buttonsLeft_ - left - kSidePadding - fontMetrics().horizontalAdvance(more);
  painter.setPen(theme_.Of(ColorRole::QuietText));
  painter.drawText(QRect(left, 0, width() - left, height()), Qt::AlignVCenter | Qt::TextSingleLine,
                   fontMetrics().elidedText(remarks_.value(0), Qt::ElideRight, room) + more);
}

void RemarkLine::resizeEvent(QResizeEvent*) { PlaceButtons(); }

void RemarkLine::PlaceButtons() {
  buttonsLeft_ = width();
  for (auto button = buttons_.rbegin(); button != buttons_.rend(); ++button) {
    buttonsLeft_ -= (*button)->sizeHint().width();
    (*button)->setGeometry(buttonsLeft_, 0, (*button)->sizeHint().width(), height());
  }
}

}  // namespace zrqrybld
