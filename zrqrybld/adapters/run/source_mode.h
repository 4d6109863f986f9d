// How the session that runs a statement reads it.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/text_reading.h"

namespace zrqrybld {

struct SourceMode {
  SourceFamily family = SourceFamily::Other;
  std::optional<TextReading> reading;  ///< none when nobody has told; it may be any of the family's then
  bool unicode = true;                 ///< characters beyond ASCII arrive as they are; otherwise they are refused
};

/// The mode of a session of `sourceName` that has told `told` (see `ReadingInMode`), or nothing.
ZRQRYBLD_API SourceMode ModeOf(std::string_view sourceName, std::optional<std::string_view> told = std::nullopt);

/// Every way in which a session of this mode may read a text: one when all is known.
ZRQRYBLD_API std::vector<KnownReading> ReadingsOf(const SourceMode& mode);

}  // namespace zrqrybld
