// The questions about work that earlier designers have lost.
#pragma once

#include <QString>
#include <functional>

#include "designer/recovery.h"
#include "zrqrybld/base/phrase.h"

class QWidget;

namespace zrqrybld {

/// What the window does with lost work.
struct LostWorkAnswers {
  /// Shows it. Returns an error message, empty on success.
  std::function<QString(const KeptWork& work)> bringBack;
  /// Something was done that the user may like to read.
  std::function<void(const QString& text)> happened;
};

/// Asks about each piece of lost work in turn. Whether any was brought back.
bool OfferLostWork(QWidget* window, const TextSource& texts, const LostWorkAnswers& answers);

}  // namespace zrqrybld
