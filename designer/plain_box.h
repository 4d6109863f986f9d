// Message boxes whose text is a text: a file's name, a driver's words or a connection string are no markup.
#pragma once

#include <QApplication>
#include <QMessageBox>

namespace zrqrybld {

/// Shows the text as it stands, waits for an answer and returns it.
inline QMessageBox::StandardButton ShowPlain(QWidget* parent, QMessageBox::Icon icon, const QString& text,
                                             QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                             QMessageBox::StandardButton preset = QMessageBox::NoButton) {
  QMessageBox box(icon, QApplication::applicationDisplayName(), text, buttons, parent);
  box.setTextFormat(Qt::PlainText);
  if (preset != QMessageBox::NoButton) box.setDefaultButton(preset);
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

}  // namespace zrqrybld
