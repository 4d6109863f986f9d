#include "zrqrybld/adapters/qt/mark.h"

#include <QPainter>
#include <algorithm>

#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {
namespace {

// The signs are drawn in a square of this many units.
constexpr double kUnits = 16;

void DrawTick(QPainter& painter) { painter.drawPolyline(QPolygonF({{4.6, 8.3}, {7, 10.7}, {11.4, 5.6}})); }

void DrawCross(QPainter& painter) {
  painter.drawLine(QPointF(5.4, 5.4), QPointF(10.6, 10.6));
  painter.drawLine(QPointF(10.6, 5.4), QPointF(5.4, 10.6));
}

void DrawExclamation(QPainter& painter) {
  painter.drawLine(QPointF(8, 6), QPointF(8, 9.6));
  painter.drawPoint(QPointF(8, 12));
}

}  // namespace

Mark::Mark(QWidget* parent) : QWidget(parent) { setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); }

void Mark::Show(Kind kind) {
  kind_ = kind;
  update();
}

QSize Mark::sizeHint() const {
  const int side = std::max(fontMetrics().height(), static_cast<int>(kUnits));
  return {side, side};
}

void Mark::paintEvent(QPaintEvent*) {
  if (kind_ == Kind::None) return;
  const Theme theme = Theme::ForWindow(palette());
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(width() / kUnits, height() / kUnits);
  painter.setPen(Qt::NoPen);
  switch (kind_) {
    case Kind::Success:
      painter.setBrush(theme.Of(ColorRole::Comment));
      painter.drawEllipse(QRectF(1, 1, 14, 14));
      break;
    case Kind::Warning: {
      painter.setBrush(theme.Of(ColorRole::Warning));
      painter.setPen(QPen(theme.Of(ColorRole::Warning), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
      painter.drawPolygon(QPolygonF({{8, 2.4}, {14, 13.4}, {2, 13.4}}));
      break;
    }
    case Kind::Error:
      painter.setBrush(theme.Of(ColorRole::Error));
      painter.drawEllipse(QRectF(1, 1, 14, 14));
      break;
    case Kind::None:
      return;
  }
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(theme.Of(ColorRole::Box), 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  if (kind_ == Kind::Success) DrawTick(painter);
  if (kind_ == Kind::Warning) DrawExclamation(painter);
  if (kind_ == Kind::Error) DrawCross(painter);
}

}  // namespace zrqrybld
