#include "zrqrybld/platform/stored_values.h"

#include <algorithm>
#include <optional>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

// A stored value of the wrong kind counts as missing: a form may come from anywhere.
bool ReadBoolean(const PropertyStore& store, std::string_view key, bool defaultValue) {
  try {
    return store.Read(key, defaultValue).ToBoolean();
  } catch (const Error&) {
    return defaultValue;
  }
}

Variant ToVariant(const Font& font) {
  return font.family + ";" + NumberText(font.points) + (font.bold ? ";bold" : "") + (font.italic ? ";italic" : "");
}

Font ReadFont(const PropertyStore& store, std::string_view key) {
  Font font;
  const std::string text = store.Read(key, "").Text();
  std::string_view rest = text;
  const auto take = [&rest](std::string_view end) {
    if (!rest.ends_with(end)) return false;
    rest.remove_suffix(end.size());
    return true;
  };
  // From the end: the family may hold anything.
  font.italic = take(";italic");
  font.bold = take(";bold");
  const std::size_t last = rest.rfind(';');
  const std::optional<double> points = last < rest.size() ? ParseNumber(rest.substr(last + 1)) : std::nullopt;
  if (points) font.points = std::clamp(*points, 0.0, 200.0);
  font.family = points ? rest.substr(0, last) : rest;
  return font;
}

}  // namespace zrqrybld
