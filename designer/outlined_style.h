// OutlinedStyle: the Fusion style with outlines that are seen. Fusion darkens the window's colour for them, which
// leaves nothing on a dark ground.
#pragma once

#include <QColor>
#include <QProxyStyle>

namespace zrqrybld {

class OutlinedStyle final : public QProxyStyle {
 public:
  /// `outline` goes around fields, lists and buttons that have neither the focus nor are the window's default.
  explicit OutlinedStyle(const QColor& outline);

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;

 private:
  void Outline(const QStyleOption& option, QPainter& painter) const;

  QColor outline_;
};

}  // namespace zrqrybld
