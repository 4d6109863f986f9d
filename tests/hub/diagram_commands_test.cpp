// What the menus and windows of tables do in a whole designer: aliases, a table joined once more, related tables, what
// is only asked about.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/fakes/recording_canvas.h"
#include "tests/hub_fixture.h"
#include "tests/menus.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/whole_joins.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_conditions.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {
namespace {

class DiagramCommands : public test::HubTest {
 protected:
  DiagramCommands() {
    Use();
    sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  }
  void Parse(const std::string& from) { sql->ParseSQLStatement("SELECT Customers.Name FROM " + from); }
  std::string From() const {
    const std::string written(TrimWhite(OnOneLine(sql->SQLStatement())));
    return written.substr(written.find("FROM ") + 5);
  }
  Ref<qbEntity> Table(const std::string& caption) const { return diagram->Entities()->Item(caption); }
  void Choose(const Ref<Object>& object, std::string_view path) { test::Choose(test::MenuOf(*diagram, object), path); }
  std::vector<std::string> Drawn() const {
    RecordingCanvas canvas;
    diagram->Paint(canvas, {-10'000_px, -10'000_px, 20'000_px, 20'000_px});
    return canvas.Lines();
  }
};

TEST_F(DiagramCommands, AnAliasIsAnyNameThatNoOtherTableHas) {
  Parse("Customers, Orders");
  const struct {
    const char* typed;
    const char* problem;  // a part of it
    const char* captions;
  } kCases[] = {{"", "name", "Customers Orders"},
                {"  ", "name", "Customers Orders"},
                {"Customers", "", "Customers Orders"},
                {"orders", "Another", "Customers Orders"},
                {"customers", "", "customers Orders"},
                {"c", "", "c Orders"},
                {"a name.of \"it", "", "a name.of \"it Orders"}};
  for (const auto& one : kCases) {
    SCOPED_TRACE(one.typed);
    toolkit->GetDialogs().onShowTextPrompt = [&](const TextDialog& dialog) -> std::optional<std::string> {
      EXPECT_NE(dialog.problem(one.typed).find(one.problem), std::string::npos) << dialog.problem(one.typed);
      EXPECT_EQ(dialog.problem(one.typed).empty(), *one.problem == 0);
      return one.typed;
    };
    Choose(diagram->Entities()->Item(1), "Alias");
    EXPECT_EQ(Captions(), one.captions);
  }
}

TEST_F(DiagramCommands, ANameIsAskedForAndFound) {
  Parse("Customers, Orders");
  std::string offered;
  const auto find = [&](const std::string& typed) {
    toolkit->GetDialogs().onShowTextPrompt = [&](const TextDialog& dialog) -> std::optional<std::string> {
      EXPECT_FALSE(dialog.problem("").empty() || dialog.problem("nowhere").empty());
      EXPECT_EQ(dialog.problem("TOT"), "");
      offered = dialog.text;
      return typed;
    };
    diagram->OnKeyDown({'F', ShiftCtrl});
    const auto table = std::dynamic_pointer_cast<qbEntity>(diagram->SelectedObject());
    return table && table->SelectedItem() ? table->SelectedItem()->Text() : table ? table->Caption() : "";
  };
  diagram->SelectObject(nullptr);
  EXPECT_EQ(find(""), "");
  EXPECT_EQ(find("tot"), "Total");
  EXPECT_EQ(find("ord"), "Orders");
  EXPECT_EQ(offered, "tot");
  EXPECT_EQ(find("ord"), "OrderID");
  EXPECT_EQ(find("nowhere"), "OrderID");
}

// With the kind, the conditions and the pairs of the join, whichever end it is, and undone in one step.
TEST_F(DiagramCommands, ATableIsJoinedOnceMore) {
  const struct {
    const char* from;
    const char* table;
    const char* entry;
    const char* after;
  } kCases[] = {
      {"Customers INNER JOIN Orders ON Orders.CustomerID = Customers.CustomerID", "Orders", "Join Once More",
       "Customers INNER JOIN Orders AS Orders1 ON Orders1.CustomerID = Customers.CustomerID INNER JOIN Orders ON "
       "Orders.CustomerID = Customers.CustomerID"},
      {"Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND Orders.Total > 5", "Orders",
       "Join Once More",
       "Customers LEFT JOIN Orders AS Orders1 ON Orders1.CustomerID = Customers.CustomerID AND Orders1.Total > 5 LEFT "
       "JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND Orders.Total > 5"},
      {"Customers LEFT JOIN Orders ON Orders.CustomerID >= Customers.CustomerID AND Orders.OrderID = Customers.Name",
       "Customers", "Join Once More",
       "Customers LEFT JOIN Orders ON Customers.CustomerID <= Orders.CustomerID AND Orders.OrderID = Customers.Name "
       "RIGHT JOIN Customers AS Customers1 ON Customers1.CustomerID <= Orders.CustomerID AND Customers1.Name = "
       "Orders.OrderID"},
      {"Customers INNER JOIN Orders ON Orders.CustomerID = Customers.CustomerID INNER JOIN Orders o ON o.OrderID = "
       "Orders.OrderID",
       "Orders", "Join Once More/o",
       "Customers INNER JOIN Orders ON Orders.CustomerID = Customers.CustomerID INNER JOIN Orders AS o ON o.OrderID = "
       "Orders.OrderID INNER JOIN Orders AS Orders1 ON Orders1.OrderID = o.OrderID"},
  };
  for (const auto& one : kCases) {
    SCOPED_TRACE(one.from);
    diagram->Clear();
    Parse(one.from);
    const std::string before = From();
    Choose(Table(one.table), one.entry);
    EXPECT_EQ(From(), one.after);
    EXPECT_TRUE(hub->Undo());
    EXPECT_EQ(From(), before);
  }
}

TEST_F(DiagramCommands, ATableThatIsOnlyAskedAboutIsDrawnSo) {
  Parse("Customers WHERE EXISTS (SELECT * FROM Orders WHERE Orders.CustomerID = Customers.CustomerID)");
  const auto boxes = [&](const char* state) {
    return std::ranges::count_if(
        Drawn(), [&](const std::string& line) { return line.starts_with("part CheckBox") && line.ends_with(state); });
  };
  const std::ptrdiff_t tickable = boxes("");
  EXPECT_EQ(boxes(" disabled"), 0) << "its columns have no box at all";
  Choose(diagram->WholeJoins()->Item(1)->First(), "Kind/Matching");
  EXPECT_GT(boxes(""), tickable);
  // What was ticked before is seen, and cannot be unticked.
  Tick("Orders", "Total");
  diagram->WholeJoins()->Item(1)->SetExistence(JoinTargetExists);
  EXPECT_EQ(boxes(" checked disabled"), 1);
  EXPECT_EQ(boxes(""), tickable + 1);
}

// A few characters for each grouping, whatever its name is in the cell.
TEST_F(DiagramCommands, GroupingsAreMarkedInTheRows) {
  const struct {
    const char* select;
    const char* mark;
  } kCases[] = {
      {"Total", "\u2261"},   {"SUM(Total)", "\u03A3"}, {"AVG(Total)", "\u2300"},       {"MIN(Total)", "min"},
      {"MAX(Total)", "max"}, {"COUNT(Total)", "n"},    {"COUNT(DISTINCT Total)", "n"}, {"STDDEV(Total)", "STDD"}};
  for (const auto& one : kCases) {
    sql->ParseSQLStatement(std::string("SELECT OrderID, ") + one.select + " FROM Orders GROUP BY OrderID" +
                           (*one.select == 'T' ? ", Total" : ""));
    std::string marks;
    const std::vector<std::string> lines = Drawn();
    const auto row = std::ranges::find_if(lines, [](const auto& line) { return line.ends_with(" \"Total\""); });
    ASSERT_NE(row, lines.end());
    for (auto line = lines.begin(); line != lines.end(); ++line) {
      if (line->starts_with("text ") && line->ends_with(std::string(" \"") + one.mark + "\"")) marks += "x";
    }
    EXPECT_EQ(marks, *one.select == 'T' ? "xx" : "x") << one.select << " " << Cell(2, "group_by");
  }
}

// What is typed as the field of a condition.
TEST_F(DiagramCommands, AConditionIsAboutAColumnAnAggregateOrAnExpression) {
  Parse("Customers, Orders");
  const QueryConditions conditions(hub);
  const struct {
    const char* typed;
    bool groups;
    const char* field;  // table, column, aggregate
  } kCases[] = {
      {" Orders.Total ", false, "Orders|Total|"},
      {"name", false, "Customers|Name|"},
      {"CustomerID", false, "|CustomerID|"},
      {"Sum(Total)", true, "Orders|Total|Sum"},
      {"sum( Orders.Total )", true, "Orders|Total|Sum"},
      {"Sum(Total)", false, "|Sum(Total)|"},
      {"Sum(Total + 1)", true, "|Sum(Total + 1)|"},
      {"Nothing(Total)", true, "|Nothing(Total)|"},
      {"Sum(Total", true, "|Sum(Total|"},
      {"Total)", true, "|Total)|"},
      {"", true, "||"},
  };
  for (const auto& one : kCases) {
    const ConditionField field = conditions.FieldIn(one.typed, one.groups);
    EXPECT_EQ(field.table + "|" + field.column + "|" + field.aggregate, one.field) << one.typed;
    if (!field.table.empty() && field.aggregate.empty()) {
      EXPECT_EQ(conditions.FieldIn(QueryConditions::TextOf(field), one.groups).column, field.column);
    }
  }
}

}  // namespace
}  // namespace zrqrybld
