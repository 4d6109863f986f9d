// Menus that the core puts together; the toolkit shows them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

/// One line of a menu. An entry with `entries` opens another menu; one without a text is a separator.
struct MenuEntry {
  std::string text;      ///< an ampersand marks the access key
  std::string shortcut;  ///< shown at the right, for instance "Del"
  std::function<void()> action = {};
  bool enabled = true;
  bool checked = false;
  std::vector<MenuEntry> entries = {};  ///< of another menu that opens beside this one

  /// A line between groups of entries.
  static MenuEntry Separator() { return {}; }
  /// Whether this is a line between groups.
  bool IsSeparator() const { return text.empty(); }
};

using Menu = std::vector<MenuEntry>;

/// A name as it stands in the text of an entry: its ampersands are shown, and mark no access key.
inline std::string InMenu(std::string_view name) { return ReplaceAll(name, "&", "&&"); }

}  // namespace zrqrybld
