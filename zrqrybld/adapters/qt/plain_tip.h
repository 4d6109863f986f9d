// Tool tips that show a text as it stands.
#pragma once

#include <QString>
#include <QTextDocument>

namespace zrqrybld {

/// The text as a tool tip that shows it as it is, also where Qt would take it for markup: a name such as "<b>" is a
/// name.
inline QString PlainTip(const QString& text) {
  if (!Qt::mightBeRichText(text)) return text;
  return text.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>"));
}

}  // namespace zrqrybld
