// What a user's hands do to any widget, as events.
#pragma once

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QWheelEvent>

namespace zrqrybld {

/// Where a text that is dragged from outside ends.
enum class DragEnd { Stays, Dropped, CarriedAway };

/// Drags a text or another thing over a widget. Returns whether the widget would take it.
inline bool DragOnto(QWidget& widget, QPoint at, const QMimeData& mime, DragEnd end) {
  QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, {});
  QApplication::sendEvent(&widget, &enter);
  if (end != DragEnd::Dropped) {
    QDragMoveEvent move(at + QPoint(3, 0), Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(&widget, &move);
  }
  QDropEvent drop(at, Qt::CopyAction, &mime, Qt::LeftButton, {});
  QDragLeaveEvent leave;
  if (end == DragEnd::Dropped) QApplication::sendEvent(&widget, &drop);
  if (end == DragEnd::CarriedAway) QApplication::sendEvent(&widget, &leave);
  return enter.isAccepted();
}
inline bool DragOnto(QWidget& widget, QPoint at, const QString& text, DragEnd end) {
  QMimeData mime;
  mime.setText(text);
  return DragOnto(widget, at, mime, end);
}

/// Turns the wheel by so many notches, downwards.
inline void TurnWheel(QWidget& widget, QPoint at, int notches, Qt::KeyboardModifiers modifiers = {}) {
  QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, -120 * notches}, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(&widget, &event);
}

}  // namespace zrqrybld
