#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

#include "zrqrybld/adapters/qt/access_events.h"
#include "zrqrybld/adapters/qt/control_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"

namespace zrqrybld {
namespace {

// A thousand tables cost nothing until somebody asks; what was asked for keeps its id until it goes.
TEST(ControlAccess, ObjectsAreMadeWhenTheyAreAskedForAndGoWithTheirTables) {
  SetAccessListener([](QAccessibleEvent&) {});
  const Ref<qbDiagramPane> pane = qbDiagramPane::Create();
  for (int i = 1; i <= 1000; ++i) {
    const Ref<qbEntity> entity = pane->Entities()->Add("t" + std::to_string(i));
    for (int j = 1; j <= 20; ++j) entity->Items()->Add("c" + std::to_string(j));
  }
  auto widget = std::make_unique<ControlWidget>(pane);
  auto& access = dynamic_cast<ControlAccess&>(*QAccessible::queryAccessibleInterface(widget.get()));
  EXPECT_EQ(access.childCount(), 1000);
  EXPECT_EQ(access.KnownObjects(), 0U);

  QAccessibleInterface* box = access.child(500);
  EXPECT_EQ(box->text(QAccessible::Name), "t501");
  EXPECT_EQ(box->childCount(), 20);
  EXPECT_EQ(box->child(19)->text(QAccessible::Name), "c20");
  const QAccessible::Id id = QAccessible::uniqueId(box);
  const QAccessible::Id rowId = QAccessible::uniqueId(box->child(19));
  EXPECT_EQ(access.KnownObjects(), 2U);

  pane->Entities()->Remove("t500");
  pane->Entities()->Item("t501")->Items()->Remove(1);
  EXPECT_EQ(QAccessible::uniqueId(access.child(499)), id) << "the table has moved up";
  EXPECT_EQ(QAccessible::uniqueId(box->child(18)), rowId);

  pane->Entities()->Remove("t501");
  EXPECT_FALSE(box->isValid());
  QApplication::processEvents();
  EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
  EXPECT_EQ(QAccessible::accessibleInterface(rowId), nullptr);
  EXPECT_EQ(access.KnownObjects(), 0U);

  const QAccessible::Id last = QAccessible::uniqueId(access.child(0));
  widget.reset();
  EXPECT_EQ(QAccessible::accessibleInterface(last), nullptr);
  SetAccessListener({});
}

}  // namespace
}  // namespace zrqrybld
