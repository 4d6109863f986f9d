// Undo along a walk of user actions made by chance: every design comes back, in both directions.
#include <gtest/gtest.h>

#include <functional>

#include "tests/flow/headless_designer.h"
#include "tests/flow/random_designs.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_columns.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/history.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using test::Chance;

class Walk {
 public:
  explicit Walk(unsigned seed) : chance_(seed) {
    Hub().SetSaveLoadEntityItems(true);
    Hub().SetAllowJoinProperties(true);
    auto& dialogs = static_cast<HeadlessDialogs&>(Hub().GetToolkit().GetDialogs());
    dialogs.onShowJoinProperties = [this](JoinDialog& dialog) {
      dialog.table1Checked = chance_.OneIn(2);
      dialog.table2Checked = chance_.OneIn(3);
      return !chance_.OneIn(4);
    };
    dialogs.onShowTextPrompt = [this](const TextDialog&) { return "T" + std::to_string(chance_.Below(9)); };
    Hub().Steps().SetClock([this] { return now_; });
  }

  qbQueryBuilder& Hub() { return designer_.Hub(); }

  /// All that is saved of the design, and the statement.
  std::string Now() { return Hub().SaveQueryToText(); }

  /// Does something. What cannot be done is left.
  void Act(test::Store& store) {
    now_ += std::chrono::seconds(2);
    static constexpr const char* kTables[] = {"Customers", "Order",     "Order Lines",
                                              "Products",  "Employees", "Shipments"};
    // The options of an empty design are set up, not changed.
    if (Hub().Entities()->Count() == 0) Hub().AddTable("Customers");
    switch (chance_.Below(22)) {
      case 0:
      case 1:
        if (Hub().Entities()->Count() < 6) Hub().AddTable(kTables[chance_.Below(std::size(kTables))]);
        return;
      case 2:
        return Hub().RefreshAutoJoins();
      case 3:
        if (chance_.OneIn(3)) test::Build(Hub(), test::DesignByChance(store, chance_, true), "");
        return;
      case 4:
        return Drag(chance_.OneIn(2));
      case 5:
        return Key(KeyCodeDelete);
      case 6:
        return Key(std::array{KeyCodeF2, KeyCodeEnter}[chance_.Below(2)]);
      case 7:
        return Key(KeyCodeSpace, ShiftShift);
      case 8:
        return Key(KeyCodeRight, chance_.OneIn(2) ? ShiftAlt : ShiftCtrl | ShiftShift);
      case 9:
        return Join();
      case 10:
        return Hub().DiagramPane()->Arrange();
      case 11:
        return Apply();
      case 12:
        return Reload();
      case 13:
        return Rows();
      case 14:
        return Hub().SetDistinctRecords(chance_.OneIn(2));
      case 15:
        return Hub().GridPane()->SetShowGroupBy(chance_.OneIn(3));
      case 16:
      case 17:
      case 18:
        return Cell();
      default:
        return Tick();
    }
  }

 private:
  Ref<qbEntity> AnyTable() {
    const auto count = static_cast<std::size_t>(Hub().Entities()->Count());
    return count == 0 ? nullptr : Hub().Entities()->Item(static_cast<std::int32_t>(chance_.Below(count)) + 1);
  }
  // The keys act on a table, or on a join that it has.
  void Key(std::int32_t key, std::int32_t shift = ShiftNone) {
    const Ref<qbEntity> table = AnyTable();
    if (!table) return;
    Ref<Object> object = table;
    if (table->Relationships()->Count() > 0 && chance_.OneIn(2)) object = table->Relationships()->Item(1);
    Hub().DiagramPane()->SelectObject(object);
    Hub().DiagramPane()->OnKeyDown({key, shift});
  }
  void Drag(bool cancelled) {
    const Ref<qbEntity> table = AnyTable();
    if (!table) return;
    qbDiagramPane& pane = *Hub().DiagramPane();
    pane.SetZoom(1, {});
    const PixelRect box = ScreenScale{}.ToPixels(table->EntityBox()->Bounds());
    const PixelPoint caption{box.left + kSurfaceMargin + 30_px, box.top + kSurfaceMargin + 10_px};
    const PixelPoint to = caption + PixelPoint{Pixels(static_cast<double>(chance_.Below(200))), 40_px};
    pane.OnMouseDown({ButtonLeft, ShiftNone, caption});
    pane.OnMouseMove({ButtonLeft, ShiftNone, caption + PixelPoint{8_px, 8_px}});
    pane.OnMouseMove({ButtonLeft, ShiftNone, to});
    if (cancelled) pane.OnKeyDown({KeyCodeEscape, ShiftNone});
    pane.OnMouseUp({ButtonLeft, ShiftNone, to});
  }
  void Join() {
    const Ref<qbEntity> from = AnyTable();
    const Ref<qbEntity> to = AnyTable();
    if (!from || from == to) return;
    const StepScope step(Hub().Hub(), "Own join");
    const Ref<qbRelationship> join = from->Relationships()->Add(to);
    join->SetSourceItemIndex(2);
    join->SetTargetItemIndex(2);
    join->SetItemData(static_cast<std::int32_t>(chance_.Below(4)));
  }
  void Tick() {
    const Ref<qbEntity> table = AnyTable();
    if (!table || table->Items()->Count() == 0) return;
    const auto count = static_cast<std::size_t>(table->Items()->Count());
    const Ref<qbEntityItem> item = table->Items()->Item(static_cast<std::int32_t>(chance_.Below(count)) + 1);
    try {
      item->SetChecked(!item->Checked());
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorInvalidCall) << "a column of a table that is only asked about cannot be shown";
    }
  }
  void Cell() {
    static constexpr std::pair<std::size_t, const char*> kTyped[] = {
        {kColumnAlias, "A"},       {kColumnSortType, "desc"}, {kColumnSortOrder, "1"}, {kColumnCriteria, "> 5"},
        {kColumnOr2, "is null"},   {kColumnCriteria, ""},     {kColumnSortType, ""},   {kColumnColumn, "1 + 1"},
        {kColumnCriteria, "(((("}, {kColumnColumn, ""},
    };
    const auto& [column, text] = kTyped[chance_.Below(std::size(kTyped))];
    zrGrid& grid = *Hub().GridPane()->Grid();
    const auto row = static_cast<std::int32_t>(chance_.Below(static_cast<std::size_t>(grid.Rows()->Count()))) + 1;
    grid.GotoRowCol(row, static_cast<std::int32_t>(column));
    grid.PasteText(*text == '\0' ? "\t" : text);
  }
  void Rows() {
    zrGrid& grid = *Hub().GridPane()->Grid();
    const std::size_t first = chance_.Below(static_cast<std::size_t>(grid.Rows()->Count())) + 1;
    grid.SelectRows(first, first + chance_.Below(2));
    if (chance_.OneIn(3)) return grid.DeleteSelectedRows();
    if (chance_.OneIn(2)) return grid.InsertRows();
    grid.MoveRows(chance_.OneIn(2) ? 1 : -1);
  }
  void Apply() {
    static constexpr const char* kStatements[] = {"SELECT Customers.City FROM Customers WHERE City = 'Ulm'",
                                                  "SELECT a.OrderID, x.City FROM \"Order\" a, Customers x",
                                                  "SELECT COUNT(*) FROM Products GROUP BY SupplierID",
                                                  "SELECT nonsense FROM"};
    try {
      Hub().SQLPane()->ParseSQLStatement(kStatements[chance_.Below(std::size(kStatements))]);
    } catch (const Error&) {
      Hub().SetState(InfoDone);
    }
  }
  void Reload() {
    const std::string text = Now();
    const StepScope step(Hub().Hub(), kStepLoadQuery);
    Hub().DiagramPane()->Clear();
    Hub().LoadQuery(text, true);
  }

  Chance chance_;
  test::HeadlessDesigner designer_;
  std::chrono::steady_clock::time_point now_;
};

TEST(UndoWalk, EveryDesignComesBackInBothDirections) {
  test::Store store;
  std::size_t steps = 0;
  for (unsigned seed = 1; seed <= 12; ++seed) {
    Walk walk(seed);
    qbQueryBuilder& hub = walk.Hub();
    std::vector<std::string> designs{walk.Now()};
    std::vector<std::string> names;
    for (int i = 0; i < 90; ++i) {
      const std::size_t before = hub.Steps().Count();
      walk.Act(store);
      const std::string design = walk.Now();
      // Whatever can be seen is a step; a way back now and then, and on again.
      if (design != designs.back()) {
        ASSERT_GT(hub.Steps().Count(), before) << "seed " << seed << ", action " << i;
      }
      for (std::size_t more = hub.Steps().Count() - before; more > 1; --more) designs.emplace_back();
      if (hub.Steps().Count() > before) designs.push_back(design);
    }
    steps += designs.size() - 1;
    ASSERT_EQ(hub.Steps().Count(), designs.size() - 1);
    for (int round = 0; round < 2; ++round) {
      for (std::size_t i = designs.size() - 1; i > 0; --i) {
        names.push_back(hub.UndoText());
        ASSERT_TRUE(hub.Undo());
        // Of an action that is several steps, only the ends were looked at.
        if (designs[i - 1].empty()) designs[i - 1] = walk.Now();
        ASSERT_EQ(walk.Now(), designs[i - 1]) << "seed " << seed << ", undoing " << names.back() << ", step " << i;
      }
      EXPECT_FALSE(hub.Undo());
      for (std::size_t i = 1; i < designs.size(); ++i) {
        const std::string name = hub.RedoText();
        EXPECT_EQ(name, names[names.size() - i]);
        ASSERT_TRUE(hub.Redo());
        ASSERT_EQ(walk.Now(), designs[i]) << "seed " << seed << ", redoing " << name << ", step " << i;
      }
      EXPECT_FALSE(hub.CanRedo());
    }
  }
  EXPECT_GT(steps, 400u) << "most actions do something";
}

}  // namespace
}  // namespace zrqrybld
