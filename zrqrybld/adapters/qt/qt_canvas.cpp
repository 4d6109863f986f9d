#include "zrqrybld/adapters/qt/qt_canvas.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <vector>

#include "zrqrybld/adapters/qt/qt_geometry.h"
#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {
namespace {

// Keeps the painter as it was, whatever a style does to it. Some styles reset the clip to nothing when none was set, so
// one is set first.
class PainterScope {
 public:
  PainterScope(QPainter& painter, const QRectF& clip) : painter_(painter) {
    painter_.save();
    painter_.setClipRect(clip, Qt::IntersectClip);
  }
  PainterScope(const PainterScope&) = delete;
  PainterScope& operator=(const PainterScope&) = delete;
  ~PainterScope() { painter_.restore(); }

 private:
  QPainter& painter_;
};

qreal Distance(QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); }

QPointF Towards(QPointF from, QPointF to, qreal distance) {
  const qreal length = Distance(from, to);
  return length <= 0 ? from : from + (to - from) * (distance / length);
}

// Straight pieces whose bends are rounded, by less where a piece is too short.
QPainterPath RoundedPath(const std::vector<QPointF>& points, qreal radius) {
  QPainterPath path(points.front());
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    const QPointF bend = points[i];
    const qreal room = std::min(Distance(points[i - 1], bend), Distance(bend, points[i + 1])) / 2;
    const qreal size = std::min(radius, room);
    path.lineTo(Towards(bend, points[i - 1], size));
    if (size > 0) path.quadTo(bend, Towards(bend, points[i + 1], size));
  }
  path.lineTo(points.back());
  return path;
}

QStyle::State StyleState(const PartState& state) {
  QStyle::State flags = QStyle::State_Active;
  if (!state.disabled) flags |= QStyle::State_Enabled;
  if (state.hover && !state.disabled) flags |= QStyle::State_MouseOver;
  if (state.pressed) flags |= QStyle::State_Sunken;
  return flags;
}

void Prepare(QStyleOption& option, const QRect& rect, const PartState& state, const Theme& theme) {
  option.rect = rect;
  option.state = StyleState(state);
  option.palette = theme.PartPalette();
  option.palette.setCurrentColorGroup(state.disabled ? QPalette::Disabled : QPalette::Active);
  option.direction = Qt::LeftToRight;
}

}  // namespace

QtCanvas::QtCanvas(QPainter& painter, const Theme& theme, const QtMetrics& metrics, const QWidget* widget)
    : painter_(painter),
      theme_(theme),
      metrics_(metrics),
      widget_(widget),
      style_(widget ? *widget->style() : *QApplication::style()),
      ratio_(painter.device()->devicePixelRatio()) {
  painter_.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
}

// Edges are rounded one by one, so that rectangles which touch still touch.
QRectF QtCanvas::OnDevicePixels(const PixelRect& rect) const {
  const auto round = [this](Pixels edge) { return std::round(edge.Value() * ratio_) / ratio_; };
  return {QPointF(round(rect.left), round(rect.top)), QPointF(round(rect.Right()), round(rect.Bottom()))};
}

// A line of odd width covers whole device pixels only when its middle is the middle of one.
qreal QtCanvas::LineCenter(qreal coordinate, qreal width) const {
  const bool odd = std::lround(width * ratio_) % 2 != 0;
  const qreal device = coordinate * ratio_;
  return (odd ? std::floor(device) + 0.5 : std::round(device)) / ratio_;
}

// Without antialiasing: a third of a pixel is no exact number, and its rounding would show as a blurred edge.
void QtCanvas::FillAligned(const QRectF& area, const QColor& color) {
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.fillRect(area, color);
  painter_.setRenderHint(QPainter::Antialiasing, true);
}

void QtCanvas::FillRect(const PixelRect& rect, const Ink& ink, Pixels radius) {
  if (rect.Empty()) return;
  const QRectF area = OnDevicePixels(rect);
  if (radius <= 0_px) {
    FillAligned(area, theme_.Of(ink));
    return;
  }
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(theme_.Of(ink));
  painter_.drawRoundedRect(area, radius.Value(), radius.Value());
}

void QtCanvas::StrokeRect(const PixelRect& rect, const Ink& ink, Pixels width, Pixels radius) {
  if (rect.Empty() || width <= 0_px) return;
  const qreal pen = std::max(1.0, std::round(width.Value() * ratio_)) / ratio_;
  const QRectF area = OnDevicePixels(rect);
  const QColor color = theme_.Of(ink);
  if (radius <= 0_px) {  // as four bars
    FillAligned(QRectF(area.left(), area.top(), area.width(), pen), color);
    FillAligned(QRectF(area.left(), area.bottom() - pen, area.width(), pen), color);
    FillAligned(QRectF(area.left(), area.top() + pen, pen, area.height() - 2 * pen), color);
    FillAligned(QRectF(area.right() - pen, area.top() + pen, pen, area.height() - 2 * pen), color);
    return;
  }
  const qreal corner = std::max(0.0, radius.Value() - pen / 2);
  painter_.setPen(QPen(color, pen));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawRoundedRect(area.adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2), corner, corner);
}

void QtCanvas::DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels radius) {
  if (points.size() < 2 || width <= 0_px) return;
  std::vector<QPointF> path(points.size());
  std::ranges::transform(points, path.begin(), ToQPointF);
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    if (points[i].x == points[i + 1].x) {
      path[i].setX(LineCenter(points[i].x.Value(), width.Value()));
      path[i + 1].setX(path[i].x());
    }
    if (points[i].y == points[i + 1].y) {
      path[i].setY(LineCenter(points[i].y.Value(), width.Value()));
      path[i + 1].setY(path[i].y());
    }
  }
  painter_.setPen(QPen(theme_.Of(ink), width.Value(), Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawPath(RoundedPath(path, radius.Value()));
}

void QtCanvas::FillPolygon(std::span<const PixelPoint> points, const Ink& ink) {
  if (points.size() < 3) return;
  std::vector<QPointF> corners(points.size());
  std::ranges::transform(points, corners.begin(), ToQPointF);
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(theme_.Of(ink));
  painter_.drawPolygon(corners.data(), static_cast<int>(corners.size()));
}

void QtCanvas::DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) {
  if (rect.Empty() || text.empty()) return;
  if (style.quietBytes > 0 && style.quietBytes < text.size()) {
    TextStyle quiet{style.quietInk, style.font};
    quiet.font.bold = false;
    const std::string_view lead = text.substr(0, style.quietBytes);
    const Pixels width(std::min(metrics_.MetricsOf(quiet.font).horizontalAdvance(ToQString(lead)), rect.width.Value()));
    DrawText({rect.left, rect.top, width, rect.height}, lead, quiet);
    DrawText({rect.left + width, rect.top, rect.width - width, rect.height}, text.substr(style.quietBytes),
             {style.ink, style.font});
    return;
  }
  constexpr qreal kSlack = 0.01;  // a text measured to fit exactly must not be elided for a rounding error
  const QString fitting =
      metrics_.MetricsOf(style.font).elidedText(ToQString(text), Qt::ElideRight, rect.width.Value() + kSlack);
  const Qt::AlignmentFlag side = style.alignment == TextAlignment::Left     ? Qt::AlignLeft
                                 : style.alignment == TextAlignment::Center ? Qt::AlignHCenter
                                                                            : Qt::AlignRight;
  painter_.setFont(metrics_.ToQFont(style.font));
  painter_.setPen(theme_.Of(style.ink));
  // By what it says, not by the window: "> 5" stays that in a layout from right to left.
  painter_.setLayoutDirection(fitting.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  painter_.drawText(ToQRectF(rect), static_cast<int>(side | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
                    fitting);
}

void QtCanvas::DrawImage(const PixelRect& rect, const Image& image) {
  if (rect.Empty() || image.Width() <= 0 || image.Height() <= 0) return;
  const QImage view(reinterpret_cast<const uchar*>(image.Pixels().data()), image.Width(), image.Height(),
                    image.Width() * 4, QImage::Format_ARGB32);
  painter_.drawImage(OnDevicePixels(rect), view);
}

void QtCanvas::DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) {
  if (rect.Empty()) return;
  if (part == ThemedPart::FocusRectangle) {
    // Not the style's mark: some styles draw it so faintly that the focus is hard to find.
    StrokeRect(rect, ColorRole::Focus, 2_px, 3_px);
    return;
  }
  const QRectF area = OnDevicePixels(rect);
  const QRect place = area.toRect();
  const PainterScope scope(painter_, area);
  painter_.setRenderHint(QPainter::Antialiasing, false);  // styles set it where they want it
  switch (part) {
    case ThemedPart::CheckBox: {
      QStyleOptionButton option;
      const int side = std::min(place.width(), place.height());
      Prepare(option, {place.center().x() - (side - 1) / 2, place.center().y() - (side - 1) / 2, side, side}, state,
              theme_);
      // Styles derive the outline from the window's colour by darkening it: on a dark ground it would be lost.
      constexpr int kOutlineFactor = 140;
      option.palette.setColor(QPalette::Window, theme_.Of(ColorRole::QuietText).lighter(kOutlineFactor));
      option.state |= state.mixed ? QStyle::State_NoChange : state.checked ? QStyle::State_On : QStyle::State_Off;
      style_.drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter_, widget_);
      break;
    }
    case ThemedPart::ColumnHeader:
    case ThemedPart::RowHeader: {
      QStyleOptionHeader option;
      Prepare(option, place, state, theme_);
      const bool column = part == ThemedPart::ColumnHeader;
      option.orientation = column ? Qt::Horizontal : Qt::Vertical;
      option.position = QStyleOptionHeader::Middle;
      if (column) option.state |= QStyle::State_Horizontal;
      if (!state.pressed) option.state |= QStyle::State_Raised;
      style_.drawControl(QStyle::CE_HeaderSection, &option, &painter_, widget_);
      break;
    }
    case ThemedPart::DropButton: {
      QStyleOptionToolButton option;
      Prepare(option, place, state, theme_);
      option.subControls = QStyle::SC_ToolButton;
      option.features = QStyleOptionToolButton::Arrow;
      option.arrowType = Qt::DownArrow;
      option.toolButtonStyle = Qt::ToolButtonIconOnly;
      const int arrow = std::min({12, place.width(), place.height()});
      option.iconSize = {arrow, arrow};
      option.state |= QStyle::State_AutoRaise;  // flat until the pointer is over it
      if (state.hover && !state.disabled) option.state |= QStyle::State_Raised;
      if (state.pressed) option.activeSubControls = QStyle::SC_ToolButton;
      style_.drawComplexControl(QStyle::CC_ToolButton, &option, &painter_, widget_);
      break;
    }
    case ThemedPart::FocusRectangle:
      break;
  }
}

void QtCanvas::PushClip(const PixelRect& rect) {
  painter_.save();
  painter_.setClipRect(OnDevicePixels(rect), Qt::IntersectClip);
}

void QtCanvas::PopClip() { painter_.restore(); }

void QtCanvas::PushView(PixelPoint origin, double zoom) {
  painter_.save();
  ratios_.push_back(ratio_);
  painter_.translate(std::round(origin.x.Value() * ratio_) / ratio_, std::round(origin.y.Value() * ratio_) / ratio_);
  painter_.scale(zoom, zoom);
  ratio_ *= zoom;
}

void QtCanvas::PopView() {
  ratio_ = ratios_.back();
  ratios_.pop_back();
  painter_.restore();
}

}  // namespace zrqrybld
