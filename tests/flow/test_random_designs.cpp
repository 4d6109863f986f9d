// Some hundred designs made by chance, in SQLite over the sample database: all dialects give the rows that each means.
#include <gtest/gtest.h>

#include <iostream>

#include "tests/flow/headless_designer.h"
#include "tests/flow/random_designs.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

TEST(RandomDesigns, EveryDialectGivesTheRowsOfTheDesign) {
  test::Store store;
  test::HeadlessDesigner designer;
  designer.Hub().GridPane()->SetDateFormat("yyyy-mm-dd");
  test::Target target;
  target.run = [&](const std::string& sql) {
    std::vector<std::vector<std::string>> lines;
    for (const test::Row& row : store.Run(sql)) {
      lines.emplace_back();
      for (const test::Cell& cell : row) lines.back().push_back(test::CellText(cell));
    }
    return lines;
  };
  std::cout << test::TryDesigns(designer.Hub(), store, target, 250, 5) << "\n";
}

}  // namespace
}  // namespace zrqrybld
