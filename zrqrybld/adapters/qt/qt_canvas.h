// QtCanvas: draws on a QPainter in the colours of a theme.
//
// Rectangles and straight lines are put on the device's own pixels, so that they are crisp at every
// screen scale. Themed parts are one call of the style each, but for the focus rectangle.
#pragma once

#include <vector>

#include <QStyle>

#include "zrqrybld/adapters/qt/qt_metrics.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/canvas.h"

class QPainter;
class QWidget;

namespace zrqrybld {

class ZRQRYBLD_API QtCanvas final : public Canvas {
 public:
  /// All arguments must outlive the canvas. `widget` gives the style; nullptr means the application's.
  QtCanvas(QPainter& painter, const Theme& theme, const QtMetrics& metrics, const QWidget* widget = nullptr);

  void FillRect(const PixelRect& rect, const Ink& ink, Pixels radius = {}) override;
  void StrokeRect(const PixelRect& rect, const Ink& ink, Pixels width, Pixels radius = {}) override;
  void DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels radius = {}) override;
  void FillPolygon(std::span<const PixelPoint> points, const Ink& ink) override;
  void DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) override;
  void DrawImage(const PixelRect& rect, const Image& image) override;
  void DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) override;

 protected:
  void PushClip(const PixelRect& rect) override;
  void PopClip() override;
  void PushView(PixelPoint origin, double zoom) override;
  void PopView() override;

 private:
  QRectF OnDevicePixels(const PixelRect& rect) const;
  void FillAligned(const QRectF& area, const QColor& color);
  qreal LineCenter(qreal coordinate, qreal width) const;

  QPainter& painter_;
  const Theme& theme_;
  const QtMetrics& metrics_;
  const QWidget* widget_;
  const QStyle& style_;
  qreal ratio_;                // device pixels to one of ours
  std::vector<qreal> ratios_;  // those outside the present view
};

}  // namespace zrqrybld
