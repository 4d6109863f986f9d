// Geometry between the library and Qt. A pixel of the library is a logical pixel of Qt.
#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QWidget>

#include "zrqrybld/base/units.h"
#include "zrqrybld/platform/mirrored_canvas.h"

namespace zrqrybld {

/// The point in Qt's type.
inline QPointF ToQPointF(PixelPoint p) { return {p.x.Value(), p.y.Value()}; }

/// The point in the library's type.
inline PixelPoint ToPixelPoint(QPointF p) { return {Pixels(p.x()), Pixels(p.y())}; }

/// The rectangle in Qt's type.
inline QRectF ToQRectF(const PixelRect& r) {
  return {r.left.Value(), r.top.Value(), r.width.Value(), r.height.Value()};
}

/// The rectangle in the library's type.
inline PixelRect ToPixelRect(const QRectF& r) {
  return {Pixels(r.x()), Pixels(r.y()), Pixels(r.width()), Pixels(r.height())};
}

/// A place of a control's surface in the widget that shows it: from right to left the surface is seen in a mirror.
inline QRectF ToViewport(const QWidget& viewport, const PixelRect& onSurface) {
  return ToQRectF(viewport.isRightToLeft() ? MirroredAt(Pixels(viewport.width()), onSurface) : onSurface);
}
inline PixelPoint ToSurface(const QWidget& viewport, PixelPoint inViewport) {
  return viewport.isRightToLeft() ? PixelPoint{Pixels(viewport.width()) - inViewport.x, inViewport.y} : inViewport;
}

}  // namespace zrqrybld
