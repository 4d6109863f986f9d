#include "zrqrybld/sql/window_call.h"

#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld::test {
namespace {

template <typename Parts, typename Write>
std::string Joined(const Parts& parts, Write write) {
  std::string text;
  for (const auto& part : parts) text += (text.empty() ? "" : ";") + write(part);
  return text;
}

std::string Printed(const FrameBound& bound) {
  constexpr std::string_view kEdges[] = {"First", "Before", "Current", "After", "Last"};
  return (bound.distance.empty() ? "" : bound.distance + " ") +
         std::string(kEdges[static_cast<std::size_t>(bound.edge)]);
}

std::string PrintedFrame(const WindowCall& call) {
  constexpr std::string_view kUnits[] = {"", "Rows", "Range", "Groups"};
  if (call.unit == FrameUnit::None) return {};
  const std::string frame =
      std::string(kUnits[static_cast<std::size_t>(call.unit)]) + " " + Printed(call.from) + " .. " + Printed(call.to);
  return call.exclusion.empty() ? frame : frame + " " + call.exclusion;
}

std::string Printed(const WindowOrder& order) {
  constexpr std::string_view kNulls[] = {"", " first", " last"};
  return order.expression + (order.descending ? " desc" : "") +
         std::string(kNulls[static_cast<std::size_t>(order.nulls)]);
}

TEST(WindowCalls, AreTakenApartAndPutTogether) {
  constexpr std::string_view kFaults[] = {"", "no order", "not one order", "ends first"};
  for (const Row& row : ReadRows("window_calls.txt")) {
    SCOPED_TRACE(row.place);
    std::string text = row[0];
    const std::size_t caret = text.find('^');
    text.erase(caret, 1);
    const std::optional<WindowCallPlace> found = FindWindowCall(text, caret);
    EXPECT_EQ(found.has_value(), row[1] != "-");
    if (!found) continue;
    const WindowCall& call = found->call;
    EXPECT_EQ(call.function + "(" + call.arguments + ")" + (call.rest.empty() ? "" : " " + call.rest), row[1]);
    EXPECT_EQ(call.window, row[2]);
    EXPECT_EQ(Joined(call.partitions, [](const std::string& expression) { return expression; }), row[3]);
    EXPECT_EQ(Joined(call.orders, [](const WindowOrder& order) { return Printed(order); }), row[4]);
    EXPECT_EQ(PrintedFrame(call), row[5]);
    EXPECT_EQ(WriteWindowCall(call), row[6]);
    EXPECT_EQ(kFaults[static_cast<std::size_t>(FaultOf(call, *FindDialect("PostgreSQL")))], row[7]);
    const std::optional<WindowCallPlace> again = FindWindowCall(row[6], row[6].size());
    ASSERT_TRUE(again);
    EXPECT_TRUE(again->call == call);
  }
}

TEST(WindowCalls, TheFirstOfATextIsFoundAndHalfOfOneIsWritten) {
  const std::optional<WindowCallPlace> first =
      FirstWindowCall("f(x) OVER w + a(1) OVER (ORDER BY , x) + b(2) OVER (ORDER BY x)");
  ASSERT_TRUE(first);
  EXPECT_EQ(first->call.function, "b");
  EXPECT_FALSE(FirstWindowCall("a + over(b)"));
  WindowCall half;
  half.function = "SUM";
  half.partitions = {"", "a"};
  half.orders = {{}, {"b"}, {}};
  half.unit = FrameUnit::Rows;
  half.from = {FrameEdge::Before, ""};
  EXPECT_EQ(WriteWindowCall(half), "SUM() OVER (PARTITION BY a ORDER BY b ROWS BETWEEN 1 PRECEDING AND CURRENT ROW)");
}

// Calls in one another that all cannot be read: each is looked at from its own place on.
TEST(WindowCalls, ManyThatCannotBeReadTakeNoLongerThanTheyAreLong) {
  std::string text;
  for (int i = 0; i < 20'000; ++i) text += "f() OVER (/**/";
  text += std::string(20'000, ')');
  EXPECT_FALSE(FindWindowCall(text, text.size()));
  EXPECT_FALSE(FirstWindowCall(text));
}

TEST(WindowCalls, CountValuesOnlyWhereServersDo) {
  const struct {
    const char* frame;
    bool takenByAll;
  } kCases[] = {{"RANGE 1 PRECEDING", false},
                {"RANGE BETWEEN CURRENT ROW AND 2 FOLLOWING", false},
                {"RANGE UNBOUNDED PRECEDING", true},
                {"RANGE BETWEEN CURRENT ROW AND UNBOUNDED FOLLOWING", true},
                {"ROWS 1 PRECEDING", true}};
  for (const auto& c : kCases) {
    const std::optional<WindowCallPlace> found =
        FirstWindowCall(std::string("SUM(x) OVER (ORDER BY y ") + c.frame + ")");
    ASSERT_TRUE(found);
    for (const char* dialect : {"MSSQL", "SQLServer"}) {
      EXPECT_EQ(FaultOf(found->call, *FindDialect(dialect)),
                c.takenByAll ? WindowCallFault::None : WindowCallFault::DistanceInValues)
          << c.frame;
    }
    for (const char* dialect : {"PostgreSQL", "MySQL", "SQLite", "Oracle"})
      EXPECT_EQ(FaultOf(found->call, *FindDialect(dialect)), WindowCallFault::None) << c.frame;
  }
}

}  // namespace
}  // namespace zrqrybld::test
