// Menus as tests read and use them; the ampersands of access keys are left out.
#pragma once

#include <string>
#include <string_view>

#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/menu.h"

namespace zrqrybld {

class qbDiagramPane;

namespace test {

/// Runs the entry whose text begins so; "a/b" is one of those that open beside another. It has to be there and enabled.
void Choose(Menu menu, std::string_view path);
/// The texts of the entries that can be chosen, ", " between them.
std::string Enabled(const Menu& menu);
/// All entries, "; " between them, with those beside one in parentheses: "-" in front of what cannot be chosen, "*" of
/// what is.
std::string Offered(const Menu& menu);
/// The menu of a table or a join of the diagram, opened by its key.
Menu MenuOf(qbDiagramPane& diagram, const Ref<Object>& object);

}  // namespace test
}  // namespace zrqrybld
