// Where new tables go when they come with their joins.
#include <gtest/gtest.h>

#include "tests/hub_fixture.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/query_builder.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

class NewTables : public test::HubTest {
 protected:
  static std::string Place(const qbEntity& entity) {
    return entity.Caption() + " " + Variant(entity.Left()).Text() + "," + Variant(entity.Top()).Text() + ";";
  }
  std::string Places() const {
    std::string places;
    for (const Ref<qbEntity>& entity : *diagram->Entities()) places += Place(*entity);
    return places;
  }
  void SetUp() override { Use(); }
  void AddTwo() const {
    hub->BeginStep("two");
    hub->AddTable("Customers");
    hub->AddTable("Orders");
    hub->RefreshAutoJoins();
    hub->EndStep();
  }
};

TEST_F(NewTables, GoBesideTheirPartnersOnlyWhereThatIsWanted) {
  AddTwo();
  const std::string stated = Places();
  diagram->Clear();
  diagram->SetPlacesByJoins(true);
  AddTwo();
  const std::string placed = Places();
  EXPECT_NE(placed, stated);
  const Ref<qbEntity> one = diagram->Entities()->Item(1);
  const Ref<qbEntity> other = diagram->Entities()->Item(2);
  const auto [left, right] = one->Left() < other->Left() ? std::pair(one, other) : std::pair(other, one);
  EXPECT_EQ(right->Left() - left->Left() - left->Width(), 56 * 15);
  // One step takes them away and brings them back to the same places.
  hub->Undo();
  EXPECT_EQ(Places(), "");
  hub->Redo();
  EXPECT_EQ(Places(), placed);
}

TEST_F(NewTables, StayWhereTheUserOrAFileHasPutThem) {
  diagram->SetPlacesByJoins(true);
  hub->BeginStep("placed");
  hub->AddTable("Customers")->SetLeft(9000);
  hub->EndStep();
  EXPECT_EQ(diagram->Entities()->Item(1)->Left(), 9000);
  hub->AddTable("Orders");
  EXPECT_EQ(diagram->Entities()->Item(1)->Left(), 9000);
  diagram->Entities()->Item(1)->SetLeft(0);
  diagram->Entities()->Item(2)->SetLeft(0);
  const std::string crossed = Places();
  const std::string file = hub->SaveQueryToText();
  diagram->Clear();
  ASSERT_TRUE(hub->LoadQuery(file, true));
  EXPECT_EQ(Places(), crossed);
}

TEST_F(NewTables, AColumnIsPutOutOnceMoreByADoubleClick) {
  hub->AddTable("Customers");
  const Ref<qbEntityList> box = diagram->Entities()->Item(1)->EntityBox();
  const PixelRect row = ScreenScale{}.ToPixels(box->ItemBounds(2));
  const std::string name = box->Rows().At(2)->Text();
  for (const int times : {1, 2, 3}) {
    diagram->OnDoubleClick({ButtonLeft, ShiftNone, {row.CenterX() + 12_px, row.CenterY() + 12_px}});
    int found = 0;
    for (std::int32_t i = 1; i <= grid->RowCount(); ++i) found += Cell(i, "column") == name ? 1 : 0;
    EXPECT_EQ(found, times);
  }
  EXPECT_TRUE(box->Rows().At(2)->Checked());
}

// Also of the first row of the grid, and until it says so no more.
TEST_F(NewTables, BoxesTellWhatTheGridSaysOfTheirColumns) {
  hub->AddTable("Customers");
  const Ref<qbEntityList> box = diagram->Entities()->Item(1)->EntityBox();
  diagram->Entities()->Item(1)->Items()->Item(2)->SetChecked(true);
  const auto note = [&] { return box->Rows().At(2)->Note(); };
  EXPECT_EQ(note(), ColumnNote{});
  Set(1, "sort_type", "Descending");
  EXPECT_EQ(note(), (ColumnNote{-1, Cell(1, "sort_order"), "", false}));
  Set(1, "criteria", "= 'x'");
  EXPECT_TRUE(note().filtered);
  Set(1, "sort_type", "");
  Set(1, "criteria", "");
  EXPECT_EQ(note(), ColumnNote{});
}

}  // namespace
}  // namespace zrqrybld
