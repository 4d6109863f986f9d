// Text between the library (UTF-8) and Qt (UTF-16).
#pragma once

#include <QString>
#include <QStringList>
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace zrqrybld {

/// The text as Qt holds it. Bytes that are no UTF-8 become U+FFFD.
inline QString ToQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The texts as Qt holds them.
inline QStringList ToQStringList(const std::vector<std::string>& texts) {
  QStringList list;
  list.reserve(static_cast<qsizetype>(texts.size()));
  std::ranges::transform(texts, std::back_inserter(list), [](const std::string& text) { return ToQString(text); });
  return list;
}

/// The text as the library holds it.
inline std::string ToUtf8(QStringView text) {
  const QByteArray bytes = text.toUtf8();
  return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace zrqrybld
