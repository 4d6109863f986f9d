#include "designer/outlined_style.h"

#include <QPainter>
#include <QStyleOption>

namespace zrqrybld {

OutlinedStyle::OutlinedStyle(const QColor& outline) : QProxyStyle(QStringLiteral("fusion")), outline_(outline) {}

void OutlinedStyle::Outline(const QStyleOption& option, QPainter& painter) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(outline_, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
  painter.restore();
}

void OutlinedStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool focused = option->state.testFlag(State_HasFocus);
  switch (element) {
    case PE_PanelButtonCommand: {
      const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
      const bool stands = button && button->features.testFlag(QStyleOptionButton::DefaultButton) &&
                          button->state.testFlag(State_Enabled);
      if (!focused && !stands) Outline(*option, *painter);
      break;
    }
    case PE_FrameLineEdit:
      if (!focused) Outline(*option, *painter);
      break;
    case PE_Frame:
    case PE_FrameMenu:
    case PE_IndicatorCheckBox:
      Outline(*option, *painter);
      break;
    default:
      break;
  }
}

void OutlinedStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                       const QWidget* widget) const {
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  const bool isField = control == CC_ComboBox || control == CC_SpinBox;
  if (isField && !option->state.testFlag(State_HasFocus)) Outline(*option, *painter);
}

}  // namespace zrqrybld
