#include "zrqrybld/automation/classes.h"

#include <algorithm>
#include <vector>

namespace zrqrybld {

std::span<const ClassInfo> Classes() {
  static const std::vector<ClassInfo> classes = [] {
    std::vector<ClassInfo> all;
    for (const auto& some :
         {HostClasses(), CatalogClasses(), DiagramClasses(), GridClasses(), SqlClasses(), PlatformClasses()}) {
      all.insert(all.end(), some.begin(), some.end());
    }
    std::ranges::sort(all, {}, &ClassInfo::name);
    return all;
  }();
  return classes;
}

}  // namespace zrqrybld
