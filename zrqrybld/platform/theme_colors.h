// The designer's own colours by role, for a light and a dark theme.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

struct RoleColors {
  ColorRole role;
  Color light;                ///< of pictures, which no desktop has a palette for
  std::optional<Color> dark;  ///< of the roles that no palette knows; the others' colours come from it in both themes
};

/// All roles in their order.
ZRQRYBLD_API std::span<const RoleColors> AllRoleColors();

inline Color LightColorOf(ColorRole role) { return AllRoleColors()[static_cast<std::size_t>(role)].light; }

}  // namespace zrqrybld
