#include "tests/menus.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld::test {
namespace {

std::string TextOf(const MenuEntry& entry) { return ReplaceAll(entry.text, "&", ""); }

}  // namespace

void Choose(Menu menu, std::string_view path) {
  for (const std::string_view step : Split(path, "/")) {
    const auto entry = std::ranges::find_if(menu, [&](const MenuEntry& one) { return TextOf(one).starts_with(step); });
    ASSERT_TRUE(entry != menu.end() && entry->enabled) << path;
    if (entry->action) entry->action();
    menu = Menu(entry->entries);
  }
}

std::string Enabled(const Menu& menu) {
  std::string texts;
  for (const MenuEntry& entry : menu) {
    if (entry.enabled) texts += (texts.empty() ? "" : ", ") + TextOf(entry);
  }
  return texts;
}

std::string Offered(const Menu& menu) {
  std::string text;
  for (const MenuEntry& entry : menu) {
    if (entry.IsSeparator()) continue;
    text +=
        (text.empty() ? "" : "; ") + std::string(entry.enabled ? "" : "-") + (entry.checked ? "*" : "") + TextOf(entry);
    if (!entry.entries.empty()) text += "(" + Offered(entry.entries) + ")";
  }
  return text;
}

Menu MenuOf(qbDiagramPane& diagram, const Ref<Object>& object) {
  diagram.SelectObject(object);
  diagram.OnKeyDown({KeyCodeF1 + 9, ShiftShift});
  return static_cast<HeadlessSurface&>(diagram.GetSurface()).LastMenu();
}

}  // namespace zrqrybld::test
