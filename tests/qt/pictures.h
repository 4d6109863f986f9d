// Pictures of windows, painted as on a screen of the given scale and kept in the build folder to be looked at.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QWidget>

#include "tests/qt/palettes.h"

namespace zrqrybld {

/// The application's palette, put back at the end.
class ScopedPalette {
 public:
  explicit ScopedPalette(const QPalette& palette) : before_(QApplication::palette()) {
    QApplication::setPalette(palette);
  }
  ScopedPalette(const ScopedPalette&) = delete;
  ScopedPalette& operator=(const ScopedPalette&) = delete;
  ~ScopedPalette() { QApplication::setPalette(before_); }

 private:
  QPalette before_;
};

/// Paints a visible widget.
inline QImage Paint(QWidget& widget, double scale = 1) {
  QApplication::processEvents();
  QImage image(widget.size() * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::magenta);  // what the widget leaves out shows
  widget.render(&image);
  return image;
}

/// Keeps a picture under a name such as "join-dark-200".
inline void KeepPicture(const QImage& image, const std::string& name) {
  const QDir folder(QStringLiteral(ZRQRYBLD_PICTURES));
  EXPECT_TRUE(QFileInfo(folder.filePath(QString::fromStdString(name))).dir().mkpath(QStringLiteral(".")));
  EXPECT_TRUE(image.save(folder.filePath(QString::fromStdString(name + ".png"))));
}

}  // namespace zrqrybld
