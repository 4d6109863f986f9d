// How truths and fonts stand in a store of design-time properties.
#pragma once

#include <string_view>

#include "zrqrybld/platform/font.h"
#include "zrqrybld/platform/property_store.h"

namespace zrqrybld {

/// The stored truth; a value that is none counts as missing.
bool ReadBoolean(const PropertyStore& store, std::string_view key, bool defaultValue);

/// A font as one text: family, size in points, "bold" and "italic", with ";" between them.
Variant ToVariant(const Font& font);
/// The stored font; an empty one, which is that of the surroundings, when it is missing.
Font ReadFont(const PropertyStore& store, std::string_view key);

}  // namespace zrqrybld
