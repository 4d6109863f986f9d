#include "zrqrybld/platform/stored_values.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

// The largest colours do not fit a signed number of 32 bits.
Variant ToStored(Color color) { return static_cast<std::int64_t>(color.value); }

Variant ToStored(const Font& font) {
  return font.family + ";" + NumberText(font.points) + (font.bold ? ";bold" : "") + (font.italic ? ";italic" : "");
}

bool FromStored(const Variant& stored, bool& value) {
  try {
    value = stored.ToBoolean();
    return true;
  } catch (const Error&) {
    return false;
  }
}

bool FromStored(const Variant& stored, std::string& value) {
  if (stored.IsString()) value = stored.Text();
  return stored.IsString();
}

// An application gives colours as signed numbers, too.
bool FromStored(const Variant& stored, Color& value) {
  const std::optional<double> number = stored.Number();
  if (!number || !(*number >= -2147483648.0 && *number <= 4294967295.0)) return false;
  value = {static_cast<std::uint32_t>(static_cast<std::int64_t>(*number))};
  return true;
}

bool FromStored(const Variant& stored, Font& value) {
  Font font;
  const std::string text = stored.Text();
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
  value = font;
  return true;
}

}  // namespace zrqrybld
