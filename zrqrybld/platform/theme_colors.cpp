#include "zrqrybld/platform/theme_colors.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zrqrybld {
namespace {

// 0xRRGGBB
constexpr Color Rgb(std::uint32_t value) { return Color::Rgb(value >> 16, value >> 8 & 0xFF, value & 0xFF); }

constexpr auto kRoleColors = std::to_array<RoleColors>({
    {ColorRole::Surface, Rgb(0xeef1f4), {}},
    {ColorRole::SurfaceText, Rgb(0x5b6470), {}},
    {ColorRole::Box, Rgb(0xffffff), {}},
    {ColorRole::BoxFrame, Rgb(0x8c949e), {}},
    {ColorRole::CaptionActive, Rgb(0xb9d3f2), {}},
    {ColorRole::CaptionActiveText, Rgb(0x1b2027), {}},
    {ColorRole::CaptionInactive, Rgb(0xeceef1), {}},
    {ColorRole::CaptionInactiveText, Rgb(0x1b2027), {}},
    {ColorRole::Text, Rgb(0x1b2027), {}},
    {ColorRole::QuietText, Rgb(0x5b6470), {}},
    {ColorRole::RowHover, Rgb(0xeaf2fb), {}},
    {ColorRole::RowSelected, Rgb(0xcfe2f7), {}},
    {ColorRole::RowSelectedText, Rgb(0x1b2027), {}},
    {ColorRole::RowAlternate, Rgb(0xf8f9fa), {}},
    {ColorRole::GridLine, Rgb(0xd9dde2), {}},
    {ColorRole::Disabled, Rgb(0x6b7280), {}},
    {ColorRole::Join, Rgb(0x64748b), Rgb(0x94a3b8)},
    {ColorRole::JoinHover, Rgb(0x1d6fc4), {}},
    {ColorRole::JoinSelected, Rgb(0x0b57a4), {}},
    {ColorRole::KeyIcon, Rgb(0xb7791f), Rgb(0xe3b341)},
    {ColorRole::Focus, Rgb(0x0b57a4), {}},
    {ColorRole::Error, Rgb(0xc0261f), Rgb(0xff8a80)},
    {ColorRole::Warning, Rgb(0x8a5a00), Rgb(0xe0b050)},
    {ColorRole::Keyword, Rgb(0x1d4ed8), Rgb(0x82b1ff)},
    {ColorRole::Literal, Rgb(0x8e2aa0), Rgb(0xdca8f0)},
    {ColorRole::Comment, Rgb(0x4b7353), Rgb(0x8fbf98)},
    {ColorRole::Identifier, Rgb(0x1b2027), {}},
});

consteval bool InOrder() {
  for (std::size_t i = 0; i < kRoleColors.size(); ++i) {
    if (kRoleColors[i].role != static_cast<ColorRole>(i)) return false;
  }
  return kRoleColors.size() == static_cast<std::size_t>(ColorRole::Identifier) + 1;
}
static_assert(InOrder());

}  // namespace

std::span<const RoleColors> AllRoleColors() { return kRoleColors; }

}  // namespace zrqrybld
