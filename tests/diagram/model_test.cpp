// The diagram's model: handles that outlive what they name, and a random walk.
#include <random>

#include "tests/diagram/diagram_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

class Model : public test::DiagramTest {};
using test::ErrorOf;

TEST_F(Model, HandlesOutliveWhatTheyName) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  const Ref<qbEntityItem> item = a->Items()->Item("id");
  const Ref<qbRelationship> join = Join(a, 2, b, 3);
  a->Properties()->Add(5, "p");
  item->Properties()->Add(6, "q");
  join->SetItemData(2);
  pane->Entities()->Remove(1);
  EXPECT_EQ(a->TagVariant(), Variant("a"));
  EXPECT_EQ(*a->Properties()->Find("p"), Variant(5));
  EXPECT_EQ(*item->Properties()->Find("q"), Variant(6));
  EXPECT_EQ(join->ItemData(), Variant(2));
  EXPECT_EQ(join->TargetItemIndex(), Variant(3));
  EXPECT_EQ(join->Source(), nullptr);
  EXPECT_EQ(join->Target(), nullptr);
  EXPECT_EQ(a->Items()->Count(), 0);
  EXPECT_EQ(a->Relationships()->Count(), 0);
  EXPECT_EQ(a->Items()->FindByText("id"), nullptr);
  const std::function<void()> gone[] = {[&] { a->Caption(); },
                                        [&] { a->SetCaption("x"); },
                                        [&] { a->SetLeft(1); },
                                        [&] { a->Index(); },
                                        [&] { a->SelectedItem(); },
                                        [&] { a->Items()->Add("x"); },
                                        [&] { a->Relationships()->Add(b); },
                                        [&] { b->Relationships()->Add(a); },
                                        [&] { item->Text(); },
                                        [&] { item->SetChecked(true); },
                                        [&] { item->SetKey("k"); },
                                        [&] { join->Index(); }};
  for (std::size_t i = 0; i < std::size(gone); ++i) EXPECT_EQ(ErrorOf(gone[i]), ErrorObjectRemoved) << i;
  join->SetTargetItemIndex(1);  // stored, and nobody is told
  // The pane goes first.
  const Ref<qbEntities> entities = pane->Entities();
  pane = nullptr;
  EXPECT_EQ(ErrorOf([&] { b->Caption(); }), ErrorObjectRemoved);
  EXPECT_EQ(ErrorOf([&] { entities->Add("c"); }), ErrorObjectRemoved);
  EXPECT_EQ(entities->Count(), 0);
  entities->Remove(1);
}

// --- A random walk ---

// Whatever is done in whatever order, the picture shows exactly what the model holds.
TEST_F(Model, AndPictureNeverDisagree) {
  std::mt19937 random(8);
  const auto below = [&random](std::int32_t n) {
    return n > 0 ? static_cast<std::int32_t>(random() % static_cast<unsigned>(n)) : 0;
  };
  const Ref<qbEntities> entities = pane->Entities();
  const auto any = [&] { return entities->Item(1 + below(entities->Count())); };
  int next = 0;
  for (int step = 0; step < 1000; ++step) {
    const Ref<qbEntity> one = any();
    const Ref<qbEntity> two = any();
    switch (below(12)) {
      case 0:
      case 1:
        if (entities->Count() < 12)
          Add("t" + std::to_string(++next), std::vector<std::string>(static_cast<std::size_t>(below(30))));
        break;
      case 2:
      case 3:
      case 4:
        if (one) Join(one, 1 + below(one->Items()->Count()), two, 1 + below(two->Items()->Count() + 1));
        break;
      case 5:
        if (one && below(3) == 0) entities->Remove(one->Index());
        break;
      case 6:
        if (one && one->Relationships()->Count() > 0) one->Relationships()->Remove(1);
        break;
      case 7:
        if (one) one->SetCaption("r" + std::to_string(++next));
        break;
      case 8:
        if (one && one->Items()->Count() > 0) one->Items()->Remove(1 + below(one->Items()->Count()));
        if (one && below(20) == 0) one->Items()->Clear();
        break;
      case 9:
        if (one && one->Relationships()->Count() > 0) pane->SelectObject(one->Relationships()->Item(1));
        if (below(2) == 0) pane->SelectObject(two);
        break;
      case 10:
        if (one) one->EntityBox()->ScrollTo(static_cast<std::size_t>(below(40)));
        if (one) one->SetHeight(static_cast<float>(below(4000)));
        break;
      default:
        if (below(200) == 0) pane->Clear();
        Press(below(2) == 0 ? KeyCodeDown : KeyCodeSpace);
    }
    std::int32_t complete = 0;
    for (std::int32_t i = 1; i <= entities->Count(); ++i) {
      const Ref<qbRelationships>& joins = entities->Item(i)->Relationships();
      for (std::int32_t j = 1; j <= joins->Count(); ++j) {
        const Ref<qbEntity> target = joins->Item(j)->Target();
        ASSERT_TRUE(target && target == entities->Item(target->Caption()));
        complete += joins->Item(j)->SourceItem() && joins->Item(j)->TargetItem() ? 1 : 0;
      }
    }
    const std::vector<std::string> drawn = Drawn();
    ASSERT_EQ(std::ranges::count(drawn, "unclip"), entities->Count()) << step;
    ASSERT_EQ(std::ranges::count_if(drawn,
                                    [](const std::string& line) {
                                      // Four points, unlike the strokes of an icon.
                                      return line.starts_with("line ") && line.find(" Join") != std::string::npos &&
                                             std::ranges::count(line, ' ') == 6;
                                    }),
              complete)
        << step;
  }
  EXPECT_GT(next, 50);
}

}  // namespace
}  // namespace zrqrybld
