#include "zrqrybld/adapters/qt/qt_picture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "zrqrybld/adapters/qt/qt_canvas.h"

namespace zrqrybld {

QImage DrawToImage(const Picture& picture, const Theme& theme, const QtMetrics& metrics, const QWidget* widget) {
  constexpr double kSharpness = 2;
  constexpr double kMostPixels = 64e6;     // 256 MB
  constexpr double kLongestSide = 32'000;  // what picture viewers and clipboards still take
  const double width = std::max(picture.size.width.Value(), 1.0);
  const double height = std::max(picture.size.height.Value(), 1.0);
  const double scale =
      std::min({kSharpness, std::sqrt(kMostPixels / (width * height)), kLongestSide / std::max(width, height)});
  QImage image(QSize(std::max(1, static_cast<int>(width * scale)), std::max(1, static_cast<int>(height * scale))),
               QImage::Format_RGB32);
  if (image.isNull()) return image;
  image.fill(theme.Of(ColorRole::Surface));
  image.setDevicePixelRatio(scale);
  QPainter painter(&image);
  QtCanvas canvas(painter, theme, metrics, widget);
  picture.paint(canvas);
  return image;
}

}  // namespace zrqrybld
