// The tables of members: all of them, and those of each subsystem.
#pragma once

#include <span>

#include "zrqrybld/automation/member.h"

namespace zrqrybld {

/// All public classes, by name.
std::span<const ClassInfo> Classes();

std::span<const ClassInfo> HostClasses();
std::span<const ClassInfo> CatalogClasses();
std::span<const ClassInfo> DiagramClasses();
std::span<const ClassInfo> GridClasses();
std::span<const ClassInfo> SqlClasses();
std::span<const ClassInfo> PlatformClasses();

}  // namespace zrqrybld
