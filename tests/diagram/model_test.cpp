// The diagram's model: entities, items, relationships, and what their listeners may do.
#include <random>

#include "tests/diagram/diagram_fixture.h"

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

TEST_F(Model, ExistsLooksAtBothEndsAndBothDirections) {
  struct {
    bool fromA;
    std::int32_t source;
    std::int32_t target;
  } const drawn[] = {{true, 2, 5}, {true, 5, 2}, {false, 5, 2}, {false, 2, 5}};
  for (const auto& way : drawn) {
    pane->Clear();
    const Ref<qbEntity> a = Add("a", {"1", "2", "3", "4"});
    const Ref<qbEntity> b = Add("b", {"1", "2", "3", "4"});
    const Ref<qbEntity> c = Add("c", {"1", "2", "3", "4"});
    const auto exists = [&](const Ref<qbEntity>& one, const Ref<qbEntity>& two, const Variant& i, const Variant& j) {
      return c->Relationships()->Exists(one, two, i, j);  // whichever collection is asked
    };
    EXPECT_FALSE(exists(a, b, 2, 5));
    Join(way.fromA ? a : b, way.source, way.fromA ? b : a, way.target);
    EXPECT_TRUE(exists(a, b, 2, 5));
    EXPECT_TRUE(exists(a, b, 2.0, std::int16_t{5}));
    EXPECT_TRUE(exists(b, a, 5, 2));
    EXPECT_FALSE(exists(a, b, "2", 5));
    EXPECT_FALSE(exists(a, b, 2, 4));
    EXPECT_FALSE(exists(a, c, 2, 5));
    EXPECT_FALSE(exists(a, nullptr, 2, 5));
  }
}

// --- Listeners that change what is being changed ---

TEST_F(Model, AListenerMayAddTheVeryKeyThatIsAboutToBeAdded) {
  EventConnection before = pane->Entities()->BeforeAdd.Connect([&](const std::string& key, bool&) {
    before.Disconnect();
    pane->Entities()->Add(key);
  });
  EXPECT_EQ(ErrorOf([&] { Add("b"); }), ErrorDuplicateKey);
  EXPECT_EQ(Captions(), "b");
}

TEST_F(Model, AListenerMayDeleteWhatIsAboutToBeDeleted) {
  const auto itself = pane->BeforeDeleteObject.Connect([&](const Ref<Object>&, bool&) { pane->Clear(); });
  pane->SelectObject(Add("a"));
  EXPECT_TRUE(Press(KeyCodeDelete));
  EXPECT_EQ(Captions(), "");
}

TEST_F(Model, AListenerMayRemoveTheEntityWhoseSelectionEnds) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  int calls = 0;
  const auto link = pane->ObjectDeactivate.Connect([&](const Ref<Object>& object) {
    ++calls;
    if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) pane->Entities()->Remove(entity->Caption());
  });
  pane->SelectObject(a);
  pane->SelectObject(b);
  EXPECT_EQ(Captions(), "b");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(pane->SelectedObject(), b);
  pane->Entities()->Remove("b");
  EXPECT_EQ(Captions(), "");
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(pane->SelectedObject(), nullptr);
}

TEST_F(Model, AListenerMayRemoveTheEntityThatIsAboutToBeSelected) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  pane->SelectObject(a);
  const auto link = pane->ObjectDeactivate.Connect([&](const Ref<Object>&) { pane->Entities()->Remove("b"); });
  pane->SelectObject(b);
  EXPECT_EQ(pane->SelectedObject(), nullptr);
  pane->SelectObject(b);  // a handle that outlived its entity
  EXPECT_EQ(pane->SelectedObject(), nullptr);
  EXPECT_FALSE(Press(KeyCodeRight, ShiftAlt));
}

TEST_F(Model, AListenerMaySelectSomethingElseWhenASelectionEnds) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  const Ref<qbRelationship> join = Join(a, 2, b, 2);
  pane->SelectObject(a);
  const auto link = pane->ObjectDeactivate.Connect([&](const Ref<Object>& object) {
    if (object == a) pane->SelectObject(join);
  });
  pane->DropSelection();
  EXPECT_EQ(pane->SelectedObject(), join);
  a->Relationships()->Clear();
  EXPECT_EQ(pane->SelectedObject(), nullptr);
}

TEST_F(Model, AListenerMayRemoveTheSourceOfTheJoinThatIsBeingRemoved) {
  for (const bool wholeDiagram : {false, true}) {
    const Ref<qbEntity> a = Add("a");
    const Ref<qbEntity> b = Add("b");
    const Ref<qbRelationship> join = Join(a, 2, b, 2);
    const auto link = pane->ObjectDeactivate.Connect([&](const Ref<Object>&) {
      if (wholeDiagram) pane->Clear();
      pane->Entities()->Remove("a");
    });
    pane->SelectObject(join);
    a->Relationships()->Remove(1);
    EXPECT_EQ(join->Source(), nullptr);
    EXPECT_EQ(Captions(), wholeDiagram ? "" : "b");
    pane->SelectObject(b);
    pane->Entities()->Remove("b");
    EXPECT_EQ(Captions(), "");
  }
}

TEST_F(Model, AListenerMayDrawAJoinToTheEntityThatIsBeingRemoved) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  pane->SelectObject(b);
  const auto link = pane->ObjectDeactivate.Connect([&](const Ref<Object>&) { Join(a, 2, b, 2); });
  pane->Entities()->Remove("b");
  EXPECT_EQ(a->Relationships()->Count(), 0);
}

TEST_F(Model, ClearingEndsEvenWhenAListenerAddsEntitiesAgain) {
  for (const char* caption : {"a", "b", "c"}) Add(caption);
  const auto link =
      pane->Entities()->EntityRemove.Connect([&](const std::string& key) { pane->Entities()->Add(key + "2"); });
  pane->Clear();
  EXPECT_EQ(Captions(), "c2,b2,a2");
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
        if (entities->Count() < 12) Add("t" + std::to_string(++next), std::vector<std::string>(below(30), ""));
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
