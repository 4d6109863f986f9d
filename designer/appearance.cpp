#include "designer/appearance.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <algorithm>
#include <optional>

#include "designer/outlined_style.h"
#include "zrqrybld/adapters/qt/theme.h"
#include "zrqrybld/base/texts_designer.h"

namespace zrqrybld {
namespace {

constexpr AppearanceName kAppearances[] = {
    {Appearance::System, "system", text::ThemeSystem},
    {Appearance::Light, "light", text::ThemeLight},
    {Appearance::Dark, "dark", text::ThemeDark},
    {Appearance::HighContrast, "high-contrast", text::ThemeHighContrast},
};

struct Colors {
  Appearance appearance;
  QRgb window, base, text, quiet, button, highlight, highlightedText, link, toolTip;
};
constexpr Colors kColors[] = {
    {Appearance::Light, 0xf3f4f6, 0xffffff, 0x1a1d21, 0x5f6670, 0xeceef1, 0x2563c4, 0xffffff, 0x1d4ed8, 0xffffff},
    {Appearance::Dark, 0x2b2e33, 0x1e2023, 0xe6e8ea, 0xa3a9b2, 0x363a40, 0x2f6fd0, 0xffffff, 0x82b1ff, 0x363a40},
    {Appearance::HighContrast, 0x000000, 0x000000, 0xffffff, 0xffffff, 0x000000, 0xffff00, 0x000000, 0x80ffff,
     0x000000},
};

constexpr char kSettingsKey[] = "appearance";

}  // namespace

std::span<const AppearanceName> AllAppearances() { return kAppearances; }

QPalette PaletteOf(Appearance appearance) {
  const auto* colors = std::ranges::find(kColors, appearance, &Colors::appearance);
  if (colors == std::end(kColors)) return {};
  QPalette palette{QColor(colors->button), QColor(colors->window)};  // derives bevels and shadows
  const auto set = [&palette](std::initializer_list<QPalette::ColorRole> roles, QRgb color) {
    for (const QPalette::ColorRole role : roles) palette.setColor(role, QColor(color));
  };
  set({QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText, QPalette::ToolTipText},
      colors->text);
  set({QPalette::Base}, colors->base);
  set({QPalette::AlternateBase}, colors->window);
  set({QPalette::ToolTipBase}, colors->toolTip);
  set({QPalette::Highlight}, colors->highlight);
  set({QPalette::HighlightedText}, colors->highlightedText);
  set({QPalette::PlaceholderText}, colors->quiet);
  set({QPalette::Link, QPalette::LinkVisited}, colors->link);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(colors->quiet));
  }
  return palette;
}

void SetAppearance(Appearance appearance) {
  static const QString platformStyle = QApplication::style()->objectName();
  static std::optional<Appearance> current;
  const QPalette palette = PaletteOf(appearance);
  if (appearance != current) {
    if (appearance != Appearance::System) {
      const QColor text = palette.color(QPalette::WindowText);
      const QColor frame = Theme::ForWindow(palette).Of(ColorRole::BoxFrame);
      QApplication::setStyle(new OutlinedStyle(appearance == Appearance::HighContrast ? text : frame));
    } else if (platformStyle == QLatin1String("fusion")) {
      QApplication::setStyle(new OutlinedStyle({}));
    } else if (current) {
      QApplication::setStyle(platformStyle);
    }
  }
  current = appearance;
  QApplication::setPalette(palette);
}

Appearance FindAppearance(const QString& key) {
  const auto* found = std::ranges::find_if(kAppearances, [&](const AppearanceName& one) { return key == one.key; });
  return found == std::end(kAppearances) ? Appearance::System : found->appearance;
}

Appearance StoredAppearance() { return FindAppearance(QSettings().value(QLatin1String(kSettingsKey)).toString()); }

void StoreAppearance(Appearance appearance) {
  const auto* name = std::ranges::find(kAppearances, appearance, &AppearanceName::appearance);
  QSettings().setValue(QLatin1String(kSettingsKey), QLatin1String(name->key));
}

}  // namespace zrqrybld
