// OutlinedStyle: the Fusion style with outlines that are seen, and with a mark on the button that has the keyboard.
// Fusion darkens the window's colour for outlines, which leaves nothing on a dark ground, and shows a window's default
// button as if it had the keyboard.
#pragma once

#include <QColor>
#include <QProxyStyle>

namespace zrqrybld {

class OutlinedStyle final : public QProxyStyle {
 public:
  /// `outline` goes around fields, lists and buttons that have neither the focus nor are the window's default. Without
  /// one they are Fusion's own.
  explicit OutlinedStyle(const QColor& outline);

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;

 private:
  void Outline(const QStyleOption& option, QPainter& painter) const;

  QColor outline_;
};

}  // namespace zrqrybld
