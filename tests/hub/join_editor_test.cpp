// What the window of a join does to it, whatever is changed there at once.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/hub_fixture.h"
#include "tests/menus.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/expression/expression_zoom.h"
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

  Ref<qbRelationship> JoinTo(const std::string& table) const {
    for (const Ref<qbEntity>& entity : *diagram->Entities()) {
      for (const Ref<qbRelationship>& join : *entity->Relationships()) {
        if (table.empty() || join->Source()->Caption() == table || join->Target()->Caption() == table) return join;
      }
    }
    return nullptr;
  }

  // Opens the window of the first join, or of the first one of the table `asked`, and accepts what `change` makes of
  // it.
  std::string After(const std::string& from, const std::function<void(JoinDialog&)>& change) {
    hub->DiagramPane()->Clear();
    sql->ParseSQLStatement("SELECT " + shown + " FROM " + from);
    int opened = 0;
    toolkit->GetDialogs().onShowJoinProperties = [&](JoinDialog& dialog) {
      change(dialog);
      return ++opened;
    };
    hub->ShowJoinProperties(JoinTo(asked));
    EXPECT_EQ(opened, 1);
    const std::string written(TrimWhite(OnOneLine(sql->SQLStatement())));
    return written.substr(written.find("FROM ") + 5);
  }
  std::string shown = "Orders.OrderID";
  std::string asked;
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

// What a program or a window hands back that never was on offer changes nothing.
TEST_F(JoinWindow, PassesOverWhatItDidNotOffer) {
  const auto after = [&](const std::function<void(JoinDialog::Pair&, const JoinDialog&)>& change) {
    return After(kJoined, [&](JoinDialog& d) {
      JoinDialog::Pair pair = Pair(d, "Total", ">", "Name");
      change(pair, d);
      d.pairs.push_back(pair);
    });
  };
  EXPECT_EQ(after([](auto& pair, const JoinDialog& d) { pair.column1 = d.columns1.size(); }), kJoined);
  EXPECT_EQ(after([](auto& pair, const JoinDialog& d) { pair.column2 = d.columns2.size(); }), kJoined);
  EXPECT_EQ(after([](auto& pair, const JoinDialog& d) { pair.comparison = d.comparisons.size(); }), kJoined);
  EXPECT_EQ(after([](auto& pair, const JoinDialog&) { pair.origin = 99; }),
            std::string(kJoined) + " AND Customers.Name < Orders.Total");
  EXPECT_EQ(After(kJoined, [](JoinDialog& d) { d.pairs.clear(); }), "Customers, Orders");
}

TEST_F(JoinWindow, LetsItsTwoTablesBeJoinedBeforeTheOthers) {
  const std::string grouped =
      "Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID FULL OUTER JOIN (Orders AS o LEFT JOIN "
      "Customers AS d ON d.CustomerID = o.CustomerID) ON o.OrderID = Orders.OrderID";
  EXPECT_EQ(After(grouped, [](JoinDialog& d) { EXPECT_FALSE(d.groupChecked); }), grouped);
  asked = "d";
  EXPECT_EQ(After(grouped, [](JoinDialog& d) { EXPECT_TRUE(d.groupChecked && d.groupProblem.empty()); }), grouped);
  const std::string plain =
      "Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID FULL OUTER JOIN Orders AS o ON "
      "o.OrderID = Orders.OrderID LEFT JOIN Customers AS d ON d.CustomerID = o.CustomerID";
  EXPECT_EQ(After(grouped, [](JoinDialog& d) { d.groupChecked = false; }), plain);
  EXPECT_EQ(After(plain, [](JoinDialog& d) { d.groupChecked = true; }), grouped);
}

TEST_F(JoinWindow, HasAConditionThatNamesWhatItCanSee) {
  const struct {
    const char* from;
    const char* condition;
    const char* refused;  // the table that it cannot see; "" when it can
  } kCases[] = {
      {"Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID", "Orders.Total > 1", ""},
      {"Customers WHERE EXISTS (SELECT * FROM Orders o WHERE o.CustomerID = Customers.CustomerID)", "o.Total > 1", ""},
      {"Customers WHERE EXISTS (SELECT * FROM Orders o WHERE o.CustomerID = Customers.CustomerID)",
       "o.Total > Customers.CustomerID", ""},
      {"Customers, Orders WHERE EXISTS (SELECT * FROM Orders o WHERE o.CustomerID = Customers.CustomerID)",
       "o.Total > Orders.Total", ""},
      {"Customers INNER JOIN Orders p ON p.CustomerID = Customers.CustomerID WHERE EXISTS (SELECT * FROM Orders o "
       "WHERE "
       "o.CustomerID = Customers.CustomerID) AND NOT EXISTS (SELECT * FROM Orders n WHERE n.CustomerID = p.CustomerID)",
       "o.Total > n.Total", "not o."},
      {"Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID LEFT JOIN Orders o ON "
       "o.OrderID = Orders.OrderID",
       "Orders.Total > o.Total", "not o."},
  };
  shown = "Customers.Name";
  for (const auto& one : kCases) {
    SCOPED_TRACE(one.from);
    After(one.from, [&](JoinDialog& d) {
      const std::optional<ExpressionFault> fault = d.conditionForm->Check(one.condition);
      const std::string refused = fault ? fault->message : "";
      EXPECT_NE(refused.find(one.refused), std::string::npos) << refused;
      EXPECT_EQ(refused.empty(), *one.refused == 0) << refused;
    });
  }
}

TEST_F(JoinWindow, AndItsMenuOfferWhatTheDialectHas) {
  const auto kinds = [&] { return test::Offered(test::MenuOf(*diagram, JoinTo(""))[0].entries); };
  sql->SetSQLSyntax(SQLSyntaxMySQL);
  After(kJoined, [](JoinDialog&) {});
  const std::string asking =
      "; Customers with a Row in Orders; Customers without a Row in Orders; Orders with a Row in Customers; Orders "
      "without a Row in Customers";
  EXPECT_EQ(kinds(), "*Matching Rows Only; All Rows from Customers; All Rows from Orders" + asking);
  JoinTo("")->SetItemData(3);
  EXPECT_EQ(kinds(),
            "Matching Rows Only; All Rows from Customers; All Rows from Orders; -*All Rows from Both" + asking);
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  After(
      "Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND Orders.OrderID = Customers.Name "
      "AND Orders.Total > (SELECT AVG(Total) FROM Orders i) LEFT JOIN Orders o ON o.OrderID = Orders.OrderID",
      [](JoinDialog&) {});
  EXPECT_EQ(test::Offered(test::MenuOf(*diagram, JoinTo("Customers"))),
            "Open Query; Kind(Matching Rows Only; *All Rows from Customers; All Rows from Orders; All Rows from Both" +
                asking +
                "); Properties...; Reverse; Join Once More, with Another Alias; Remove Pair(Customers.CustomerID = "
                "Orders.CustomerID; Customers.Name = Orders.OrderID); Delete");
  EXPECT_EQ(
      test::Offered(test::MenuOf(*diagram, diagram->Entities()->Item("Orders"))),
      "Alias...; Join Once More, with Another Alias(Customers; o); Tick All Columns; Tick Key Columns; Untick All "
      "Columns; -Add Related Tables; Minimise; Fit to Columns; Remove");
  int opened = 0;
  toolkit->GetDialogs().onShowJoinProperties = [&](JoinDialog&) { return ++opened == 0; };
  test::Choose(test::MenuOf(*diagram, JoinTo("Customers")), "Properties");
  EXPECT_EQ(opened, 1);
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
