// What the window of a join does to it, whatever is changed there at once.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/hub_fixture.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {
namespace {

class JoinWindow : public test::HubTest {
 protected:
  JoinWindow() {
    Use();
    sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
    hub->SetAllowJoinProperties(true);
  }

  // Opens the window of the first join of Orders, or of Customers, and accepts what `change` makes of it.
  std::string After(const std::string& from, const std::function<void(JoinDialog&)>& change) {
    hub->DiagramPane()->Clear();
    sql->ParseSQLStatement("SELECT Orders.OrderID FROM " + from);
    toolkit->GetDialogs().onShowJoinProperties = [&](JoinDialog& dialog) {
      change(dialog);
      return true;
    };
    for (const Ref<qbEntity>& entity : *diagram->Entities()) {
      if (entity->Relationships()->Count() == 0) continue;
      hub->ShowJoinProperties(entity->Relationships()->Item(1));
      break;
    }
    const std::string written(TrimWhite(OnOneLine(sql->SQLStatement())));
    return written.substr(written.find("FROM ") + 5);
  }
  static std::size_t Place(const std::vector<std::string>& of, std::string_view wanted) {
    return static_cast<std::size_t>(std::ranges::find(of, wanted) - of.begin());
  }
  static JoinDialog::Pair Pair(const JoinDialog& dialog, const char* one, const char* sign, const char* two) {
    return {Place(dialog.columns1, one), Place(dialog.comparisons, sign), Place(dialog.columns2, two), false, 0};
  }
};

constexpr const char* kJoined = "Customers INNER JOIN Orders ON Orders.CustomerID = Customers.CustomerID";

TEST_F(JoinWindow, TakesPairsConditionAndQuestionsTogether) {
  const auto pairs = [&](const std::function<void(JoinDialog&)>& change) { return After(kJoined, change); };
  EXPECT_EQ(pairs([](JoinDialog&) {}), kJoined);
  EXPECT_EQ(
      pairs([](JoinDialog& d) { d.pairs.push_back(Pair(d, d.columns1[1].c_str(), "<", d.columns2[1].c_str())); }),
      "Customers INNER JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND Customers.Name > Orders.CustomerID");
  EXPECT_EQ(pairs([](JoinDialog& d) { d.pairs.front().comparison = Place(d.comparisons, ">="); }),
            "Customers INNER JOIN Orders ON Customers.CustomerID <= Orders.CustomerID");
  EXPECT_EQ(pairs([](JoinDialog& d) {
              d.pairs.front().turned = true;
              d.pairs.front().comparison = Place(d.comparisons, "LIKE");
            }),
            "Customers INNER JOIN Orders ON Customers.CustomerID LIKE Orders.CustomerID");
  EXPECT_EQ(pairs([](JoinDialog& d) {
              d.pairs.front().column1 = d.columns1.size();
              d.condition = "Orders.Total > 5";
            }),
            std::string(kJoined) + " AND Orders.Total > 5");
  EXPECT_EQ(pairs([](JoinDialog& d) {
              d.pairs.clear();
              d.condition = "Customers.CustomerID = Orders.CustomerID + 1";
            }),
            "Customers INNER JOIN Orders ON Customers.CustomerID = Orders.CustomerID + 1");
  EXPECT_EQ(pairs([](JoinDialog& d) { d.table1Checked = d.table2Checked = true; }),
            "Customers FULL OUTER JOIN Orders ON Orders.CustomerID = Customers.CustomerID");
  EXPECT_EQ(pairs([](JoinDialog& d) { d.question = 1; }),
            "Customers WHERE (EXISTS (SELECT * FROM Orders WHERE Orders.CustomerID = Customers.CustomerID))");
  // A join that was a condition alone gets a pair, which keeps the condition.
  EXPECT_EQ(After("Customers LEFT JOIN Orders ON Customers.CustomerID > Orders.Total + 1",
                  [](JoinDialog& d) { d.pairs.push_back(Pair(d, "CustomerID", "=", "CustomerID")); }),
            "Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND Customers.CustomerID > "
            "Orders.Total + 1");
  // All pairs go and others come; a condition that was with one of them stays.
  const std::string asking =
      "Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND Orders.Total > 5";
  EXPECT_EQ(After(asking, [](JoinDialog& d) { d.pairs = {Pair(d, "OrderID", "=", "CustomerID")}; }),
            "Customers LEFT JOIN Orders ON Orders.OrderID = Customers.CustomerID AND Orders.Total > 5");
  EXPECT_EQ(After(asking, [](JoinDialog& d) { d.pairs.clear(); }), "Customers LEFT JOIN Orders ON Orders.Total > 5");
}

TEST_F(JoinWindow, SaysWhatCannotBeTaken) {
  After(kJoined, [](JoinDialog& d) {
    EXPECT_EQ(d.problem(d.pairs, ""), "");
    EXPECT_NE(d.problem({}, " "), "");
    EXPECT_EQ(d.problem({}, "Orders.Total > 1"), "");
    for (const bool one : {false, true}) {
      for (const bool two : {false, true}) {
        EXPECT_FALSE(d.describe(one, two).empty());
        EXPECT_NE(d.countStatement(one, two, 0), d.countStatement(one, two, 1));
      }
    }
  });
}

}  // namespace
}  // namespace zrqrybld
