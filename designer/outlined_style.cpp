#include "designer/outlined_style.h"

#include <QPainter>
#include <QStyleOption>

namespace zrqrybld {
namespace {

void DrawFrame(QPainter& painter, const QRect& rect, double inset, const QColor& color) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(color, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect).adjusted(inset, inset, -inset, -inset), 2, 2);
  painter.restore();
}

}  // namespace

OutlinedStyle::OutlinedStyle(const QColor& outline) : QProxyStyle(QStringLiteral("fusion")), outline_(outline) {}

void OutlinedStyle::Outline(const QStyleOption& option, QPainter& painter) const {
  if (outline_.isValid()) DrawFrame(painter, option.rect, 0.5, outline_);
}

void OutlinedStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
  QProxyStyle::drawControl(element, option, painter, widget);
  // Once somebody goes from field to field by keys.
  if (element != CE_PushButton || !option->state.testFlag(State_KeyboardFocusChange)) return;
  if (!option->state.testFlag(State_HasFocus)) return;
  DrawFrame(*painter, option->rect, 2.5, option->palette.color(QPalette::ButtonText));
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
