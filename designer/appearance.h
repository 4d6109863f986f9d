// The themes that the designer offers, besides following the system.
#pragma once

#include <QPalette>
#include <QString>
#include <span>

#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

enum class Appearance { System, Light, Dark, HighContrast };

/// An entry of the menu of themes.
struct AppearanceName {
  Appearance appearance;
  const char* key;  ///< as it is stored and given on the command line
  TextId text;      ///< as the menu shows it
};
std::span<const AppearanceName> AllAppearances();

/// The colours of a theme; those of the system for `Appearance::System`.
QPalette PaletteOf(Appearance appearance);

/// Gives all windows of the application, also those that are open, this look. Only `System` keeps the platform's own
/// style: styles of platforms do not take other colours.
void SetAppearance(Appearance appearance);

/// The theme with this key; `System` when there is none.
Appearance FindAppearance(const QString& key);

/// The theme that the user chose last, and what the next start begins with.
Appearance StoredAppearance();
void StoreAppearance(Appearance appearance);

}  // namespace zrqrybld
