#include "zrqrybld/adapters/run/source_mode.h"

#include <algorithm>
#include <iterator>

namespace zrqrybld {

SourceMode ModeOf(std::string_view sourceName, std::optional<std::string_view> told) {
  SourceMode mode;
  mode.family = FamilyOf(sourceName);
  if (!HasModes(mode.family)) {
    mode.reading = UsualReading(sourceName);
  } else if (told) {
    mode.reading = ReadingInMode(mode.family, *told);
  }
  return mode;
}

std::vector<KnownReading> ReadingsOf(const SourceMode& mode) {
  if (mode.reading) return {{mode.family, *mode.reading}};
  std::vector<KnownReading> readings;
  std::ranges::copy_if(KnownReadings(), std::back_inserter(readings), [&](const KnownReading& known) {
    return mode.family == SourceFamily::Other || mode.family == known.family;
  });
  return readings;
}

}  // namespace zrqrybld
