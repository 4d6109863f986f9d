// Some hundred designs made by chance (the same in each run): all dialects give the rows of a join that knows no SQL.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/flow/headless_designer.h"
#include "tests/flow/store_rows.h"

namespace zrqrybld {
namespace {

using test::Design;
using test::Row;
using test::Store;

constexpr SQLSyntaxEnum kAllSyntaxes[] = {SQLSyntaxGeneric, SQLSyntaxMSSQL, SQLSyntaxOracle, SQLSyntaxAccess,
                                          SQLSyntaxOpenSQL};
constexpr std::size_t kMostRows = 3400;

class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}
  // A number from 0 to `end` - 1. The standard's distributions differ from library to library; a remainder does not.
  std::size_t Below(std::size_t end) { return engine_() % end; }

 private:
  std::mt19937 engine_;
};

// Two to six tables that hang together, some of them twice, and one to four of their columns.
Design DesignByChance(Store& store, Chance& chance) {
  const std::vector<std::string> all = {"Customers", "Order",     "Order Lines", "Products", "Categories",
                                        "Suppliers", "Employees", "Shipments",   "carriers", "Währungen"};
  Design design;
  do {
    std::vector<std::string> names;
    const std::size_t count = 2 + chance.Below(5);
    while (names.size() < count) names.push_back(all[chance.Below(all.size())]);
    design.tables = test::WithCaptions(names);
    design.joins = test::JoinsByForeignKeys(design.tables);
  } while (!test::IsConnected(design));
  const std::size_t fields = 1 + chance.Below(4);
  while (design.fields.size() < fields) {
    const std::size_t table = chance.Below(design.tables.size());
    const std::vector<std::string>& columns = store.Table(design.tables[table].name).columns;
    const std::size_t column = chance.Below(columns.size() + 1);
    const Design::Field field{table, column == columns.size() ? "*" : columns[column]};
    if (std::ranges::find(design.fields, field) == design.fields.end()) design.fields.push_back(field);
  }
  return design;
}

// Adds the parts of the design in one of the orders in which a user may: tables at once, ticks in the given order.
void Build(test::HeadlessDesigner& designer, const Design& design) {
  designer.Hub().DiagramPane()->Clear();
  std::vector<std::string> names;
  for (const Design::Table& table : design.tables) names.push_back(table.name);
  designer.AddTables(names);
  for (const Design::Field& field : design.fields) designer.Tick(design.tables[field.table].caption, field.column);
}

std::string DigestOf(const std::vector<Row>& rows) {
  test::Digest digest;
  for (const Row& row : rows) digest.Add(row);
  return digest.Text();
}

TEST(RandomDesigns, EveryDialectGivesTheRowsOfTheJoin) {
  constexpr int kDesigns = 300;
  Store store;
  Chance chance(20240229);
  test::HeadlessDesigner designer;
  std::size_t copies = 0, rows = 0, widest = 0;
  for (int made = 0; made < kDesigns;) {
    const Design design = DesignByChance(store, chance);
    const auto evaluated = test::Evaluate(store, design, kMostRows);
    if (!evaluated) continue;  // too large to be worth its time
    ++made;
    const std::string expected = DigestOf(*evaluated);
    rows += evaluated->size();
    widest = std::max(widest, design.tables.size());
    std::set<std::string> names;
    for (const Design::Table& table : design.tables) names.insert(table.name);
    copies += names.size() < design.tables.size() ? 1 : 0;

    Build(designer, design);
    for (const SQLSyntaxEnum syntax : kAllSyntaxes) {
      const std::string statement = designer.Statement(syntax);
      ASSERT_EQ(store.RunToDigest(test::ForSqlite(statement, syntax)), expected) << "design " << made << "\n"
                                                                                 << statement;
    }
  }
  // The designs are worth something only while they have rows, copies and many tables among them.
  EXPECT_GT(rows, 100000u);
  EXPECT_GT(copies, 30u);
  EXPECT_EQ(widest, 6u);
}

// The statement says what the diagram and the grid hold, not how they came to hold it.
TEST(RandomDesigns, TickingAndUntickingOnTheWayChangesNothing) {
  Store store;
  Chance chance(7);
  test::HeadlessDesigner direct, detour;
  for (int made = 0; made < 40; ++made) {
    const Design design = DesignByChance(store, chance);
    Build(direct, design);
    Build(detour, design);
    for (int step = 0; step < 10; ++step) {
      const std::size_t table = chance.Below(design.tables.size());
      const std::vector<std::string>& columns = store.Table(design.tables[table].name).columns;
      const Design::Field field{table, columns[chance.Below(columns.size())]};
      if (std::ranges::find(design.fields, field) != design.fields.end()) continue;
      detour.Tick(design.tables[table].caption, field.column);
      detour.SetTick(design.tables[table].caption, field.column, false);
    }
    EXPECT_EQ(detour.Statement(SQLSyntaxMSSQL), direct.Statement(SQLSyntaxMSSQL));
  }
}

}  // namespace
}  // namespace zrqrybld
