#include "zrqrybld/adapters/qt/theme.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zrqrybld/platform/theme_colors.h"

namespace zrqrybld {
namespace {

constexpr ColorRole kGrounds[] = {ColorRole::Surface,         ColorRole::Box,      ColorRole::CaptionActive,
                                  ColorRole::CaptionInactive, ColorRole::RowHover, ColorRole::RowSelected,
                                  ColorRole::RowAlternate};

// Frames and grid lines separate these and no others; to keep apart from a caption, too, they would have to be loud.
constexpr ColorRole kFrameGrounds[] = {ColorRole::Surface, ColorRole::Box};
constexpr ColorRole kGridLineGrounds[] = {ColorRole::Box, ColorRole::RowAlternate};

// How far a ground is moved from the box's colour. `highlight`: towards the highlight colour, else towards the text.
struct GroundTint {
  ColorRole role;
  bool highlight;
  double amount;
};
constexpr GroundTint kGroundTints[] = {
    {ColorRole::CaptionActive, true, 0.30},  {ColorRole::CaptionInactive, false, 0.07},
    {ColorRole::RowHover, true, 0.09},       {ColorRole::RowSelected, true, 0.24},
    {ColorRole::RowAlternate, false, 0.025},
};

// Of the roles that have a colour of their own; the others of these are text.
constexpr ColorRole kOwnLines[] = {ColorRole::Join, ColorRole::KeyIcon};

QColor Opaque(Color color) {
  return {static_cast<int>(color.Red()), static_cast<int>(color.Green()), static_cast<int>(color.Blue())};
}

struct SystemRole {
  std::uint32_t number;
  QPalette::ColorRole role;
  QPalette::ColorGroup group = QPalette::Active;
};
constexpr SystemRole kSystemRoles[] = {
    {0, QPalette::Mid},                              // scroll bar
    {1, QPalette::Window},                           // desktop
    {2, QPalette::Highlight},                        // active title bar
    {3, QPalette::Mid},                              // inactive title bar
    {4, QPalette::Window},                           // menu
    {5, QPalette::Base},                             // window
    {6, QPalette::WindowText},                       // window frame
    {7, QPalette::WindowText},                       // menu text
    {8, QPalette::Text},                             // window text
    {9, QPalette::HighlightedText},                  // active title bar text
    {10, QPalette::Button},                          // active border
    {11, QPalette::Button},                          // inactive border
    {12, QPalette::Mid},                             // application workspace
    {13, QPalette::Highlight},                       // highlight
    {14, QPalette::HighlightedText},                 // highlight text
    {15, QPalette::Button},                          // button face
    {16, QPalette::Dark},                            // button shadow
    {17, QPalette::Text, QPalette::Disabled},        // gray text
    {18, QPalette::ButtonText},                      // button text
    {19, QPalette::WindowText, QPalette::Disabled},  // inactive title bar text
    {20, QPalette::Light},                           // button highlight
    {21, QPalette::Shadow},                          // dark button shadow
    {22, QPalette::Midlight},                        // light button edge
    {23, QPalette::ToolTipText},                     // tool tip text
    {24, QPalette::ToolTipBase},                     // tool tip
};

double Luminance(const QColor& color) {
  const auto linear = [](int channel) {
    const double c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red()) + 0.7152 * linear(color.green()) + 0.0722 * linear(color.blue());
}

// Whole channel values, so that the colour that is measured is the colour that is painted.
QColor Blend(const QColor& from, const QColor& to, double amount) {
  const auto channel = [amount](int a, int b) { return a + static_cast<int>(std::lround((b - a) * amount)); };
  return {channel(from.red(), to.red()), channel(from.green(), to.green()), channel(from.blue(), to.blue())};
}

// `box` tinted by up to `amount`, as long as text in the `extreme` colour stays legible on it.
QColor Ground(const QColor& box, const QColor& tint, double amount, const QColor& extreme) {
  for (; amount > 0.005; amount *= 0.8) {
    const QColor color = Blend(box, tint, amount);
    if (Theme::Contrast(color, extreme) >= Theme::kTextContrast) return color;
  }
  return box;
}

// `color` moved towards `extreme` until its contrast to every ground is enough.
QColor Legible(const QColor& color, std::span<const QColor> grounds, double contrast, const QColor& extreme) {
  constexpr int kSteps = 100;
  for (int step = 0; step < kSteps; ++step) {
    const QColor candidate = Blend(color, extreme, static_cast<double>(step) / kSteps);
    const bool enough = std::ranges::all_of(
        grounds, [&](const QColor& ground) { return Theme::Contrast(candidate, ground) >= contrast; });
    if (enough) return candidate;
  }
  return extreme;
}

}  // namespace

std::span<const ColorRole> Theme::GroundsOf(ColorRole ink) {
  if (std::ranges::find(kGrounds, ink) != std::end(kGrounds)) return {};
  if (ink == ColorRole::BoxFrame) return kFrameGrounds;
  if (ink == ColorRole::GridLine) return kGridLineGrounds;
  return kGrounds;
}

double Theme::Contrast(const QColor& a, const QColor& b) {
  const auto [low, high] = std::minmax({Luminance(a), Luminance(b)});
  return (high + 0.05) / (low + 0.05);
}

Theme Theme::ForWindow(const QPalette& palette) {
  QPalette window = palette;
  window.setColor(QPalette::Active, QPalette::Base, palette.color(QPalette::Active, QPalette::Window));
  window.setColor(QPalette::Active, QPalette::Text, palette.color(QPalette::Active, QPalette::WindowText));
  return Theme(window);
}

Theme::Theme(const QPalette& palette) : palette_(palette), partPalette_(palette) {
  const QColor box = palette.color(QPalette::Active, QPalette::Base);
  const QColor window = palette.color(QPalette::Active, QPalette::Window);
  const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
  const QColor paletteText = palette.color(QPalette::Active, QPalette::Text);

  // One of black and white has a contrast of at least 4.58 to any colour.
  dark_ = Contrast(box, Qt::white) > Contrast(box, Qt::black);
  const QColor extreme = dark_ ? Qt::white : Qt::black;

  Set(ColorRole::Box, box);
  Set(ColorRole::Surface, Ground(box, Blend(window, highlight, 0.03), 1, extreme));
  for (const GroundTint& tint : kGroundTints) {
    Set(tint.role, Ground(box, tint.highlight ? highlight : extreme, tint.amount, extreme));
  }

  const auto setInk = [&](ColorRole role, const QColor& color, double contrast) {
    std::vector<QColor> grounds;
    for (const ColorRole ground : GroundsOf(role)) grounds.push_back(Of(ground));
    Set(role, Legible(color, grounds, contrast, extreme));
  };

  // More than the least for what is read most, where the ground allows it; styles shade their headers a little, too.
  constexpr double kBodyContrast = 7;
  setInk(ColorRole::Text, paletteText, kBodyContrast);
  const QColor text = Of(ColorRole::Text);
  for (const ColorRole role : {ColorRole::CaptionActiveText, ColorRole::CaptionInactiveText, ColorRole::RowSelectedText,
                               ColorRole::Identifier}) {
    Set(role, text);
  }
  setInk(ColorRole::QuietText, Blend(text, box, 0.35), kTextContrast);
  setInk(ColorRole::SurfaceText, Blend(text, box, 0.35), kTextContrast);
  setInk(ColorRole::Disabled, Blend(text, box, 0.5), kTextContrast);

  setInk(ColorRole::BoxFrame, Blend(box, extreme, 0.3), kLineContrast);
  // Grid lines are decoration: headers, text and every other row's shade tell the cells apart.
  setInk(ColorRole::GridLine, Blend(box, extreme, 0.13), kDecorationContrast);
  setInk(ColorRole::JoinHover, Blend(highlight, extreme, 0.15), kLineContrast);
  setInk(ColorRole::JoinSelected, highlight, kLineContrast);
  setInk(ColorRole::Focus, highlight, kLineContrast);
  for (const RoleColors& own : AllRoleColors()) {
    if (!own.dark) continue;
    const bool isLine = std::ranges::find(kOwnLines, own.role) != std::end(kOwnLines);
    setInk(own.role, Opaque(dark_ ? *own.dark : own.light), isLine ? kLineContrast : kTextContrast);
  }

  for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    partPalette_.setColor(group, QPalette::Button, Of(ColorRole::CaptionInactive));
    partPalette_.setColor(group, QPalette::Highlight, Of(ColorRole::Focus));
    const bool enabled = group != QPalette::Disabled;
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
      partPalette_.setColor(group, role, enabled ? text : Of(ColorRole::Disabled));
    }
  }
}

QColor Theme::Of(const Ink& ink) const {
  if (const auto* role = std::get_if<ColorRole>(&ink)) return Of(*role);
  const Color color = std::get<Color>(ink);
  if (color.IsSystem()) return SystemColor(color.SystemNumber());
  return Opaque(color);
}

QColor Theme::SystemColor(std::uint32_t number) const {
  const auto entry = std::ranges::find(kSystemRoles, number, &SystemRole::number);
  return entry == std::end(kSystemRoles) ? Of(ColorRole::Text) : palette_.color(entry->group, entry->role);
}

}  // namespace zrqrybld
