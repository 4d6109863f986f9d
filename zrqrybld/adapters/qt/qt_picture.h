// Pictures of the core as images, for files and the clipboard.
#pragma once

#include <QImage>

#include "zrqrybld/adapters/qt/qt_metrics.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/platform/picture.h"

class QWidget;

namespace zrqrybld {

/// The picture at twice its size, so that it stays sharp when it is enlarged or printed; smaller when it would not fit
/// into memory. `widget` gives the style.
QImage DrawToImage(const Picture& picture, const Theme& theme, const QtMetrics& metrics, const QWidget* widget);

}  // namespace zrqrybld
