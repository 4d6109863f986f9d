// Memory runs out in the middle of an operation: each allocation fails in its turn, once, and with all that follow it.
// The process goes on, the error is told, and the design is whole: what it was, or what it was to become, or one undo
// away from what it was.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/sql_pane.h"

namespace {

struct Memory {
  bool counts = false;
  std::size_t taken = 0;
  std::size_t failsAt = 0;  // 0 for never
  bool failsOn = false;     // all that follow, too
};
Memory memory;

void* Take(std::size_t size) {
  if (memory.counts && ++memory.taken >= memory.failsAt && memory.failsAt != 0) {
    if (memory.taken == memory.failsAt || memory.failsOn) throw std::bad_alloc();
  }
  if (void* const taken = std::malloc(size == 0 ? 1 : size)) return taken;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return Take(size); }
void* operator new[](std::size_t size) { return Take(size); }
void operator delete(void* given) noexcept { std::free(given); }
void operator delete[](void* given) noexcept { std::free(given); }
void operator delete(void* given, std::size_t) noexcept { std::free(given); }
void operator delete[](void* given, std::size_t) noexcept { std::free(given); }

namespace zrqrybld {
namespace {

using test::Designer;

struct Operation {
  const char* name;
  std::function<void(Designer&)> act;
  std::function<void(Designer&)> first = {};  // what is done before
};

std::string TextOf(const Designer& designer) { return designer.hub->SaveQueryToText(); }

// Two joined tables, two query columns, one sorted and one with a criterion.
void Prepare(Designer& designer, const Operation& operation) {
  designer.Use();
  designer.hub->AddTable("Customers");
  designer.hub->AddTable("Orders");
  designer.hub->RefreshAutoJoins();
  designer.Tick("Customers", "Name");
  designer.Tick("Orders", "Total");
  designer.Set(2, "criteria", "> 5");
  if (operation.first) operation.first(designer);
}

void Edit(Designer& designer, std::int32_t row, const char* column, const char* text) {
  zrGrid& grid = *designer.grid->Grid();
  grid.GotoRowCol(row, column);
  grid.EditCell();
  grid.OnKeyDown({KeyCodeEscape, ShiftNone});
  grid.Rows()->Item(row)->SetValue(column, text);
  designer.grid->FinishEdit();
}

const Operation kOperations[] = {
    {"parse", [](Designer& d) { d.sql->ParseSQLStatement("SELECT * FROM Orders AS o, Customers WHERE o.Total < 3"); }},
    {"add a table", [](Designer& d) { d.hub->AddTable("Orders"); }},
    {"tick", [](Designer& d) { d.Tick("Orders", "OrderID"); }},
    {"load",
     [](Designer& d) {
       d.hub->LoadQuery(
           "Begin Entity\r\nTagVariant=Orders\r\nCaption=o\r\nEnd Entity\r\nBegin GridData\r\ntable,1=o\r\n"
           "column,1=Total\r\noutput,1=True\r\nEnd GridData",
           true);
     }},
    {"save", [](Designer& d) { EXPECT_FALSE(TextOf(d).empty()); }},
    {"remove", [](Designer& d) { d.diagram->Entities()->Remove("Customers"); }},
    {"Clear", [](Designer& d) { d.diagram->Clear(); }},
    {"Arrange", [](Designer& d) { d.diagram->Arrange(); }},
    {"undo", [](Designer& d) { d.hub->Undo(); }},
    {"redo", [](Designer& d) { d.hub->Redo(); }, [](Designer& d) { d.hub->Undo(); }},
    {"edit a cell", [](Designer& d) { Edit(d, 1, "alias", "n"); }},
    {"edit a criterion", [](Designer& d) { Edit(d, 1, "criteria", "like 'a*' or 'b'"); }},
    {"refresh", [](Designer& d) { d.sql->Refresh(); }},
};

// What the operation takes, and what it makes.
struct WholeRun {
  std::size_t allocations = 0;
  std::string before;
  std::string after;
};

WholeRun RunWhole(const Operation& operation) {
  Designer designer;
  Prepare(designer, operation);
  WholeRun run;
  run.before = TextOf(designer);
  memory = {.counts = true};
  operation.act(designer);
  run.allocations = std::exchange(memory, {}).taken;
  run.after = TextOf(designer);
  return run;
}

// Returns whether an error was told.
bool Fails(const Operation& operation, Designer& designer, std::size_t at, bool failsOn) {
  memory = {.counts = true, .failsAt = at, .failsOn = failsOn};
  bool failed = false;
  try {
    operation.act(designer);
  } catch (const std::exception&) {
    failed = true;
  }
  memory = {};
  return failed;
}

// A box is ticked while a row outputs its column, and only then.
void ExpectWhole(const Designer& designer) {
  for (std::int32_t i = 1; i <= designer.diagram->Entities()->Count(); ++i) {
    const Ref<qbEntity> entity = designer.diagram->Entities()->Item(i);
    for (std::int32_t j = 1; j <= entity->Items()->Count(); ++j) {
      const Ref<qbEntityItem> item = entity->Items()->Item(j);
      bool output = false;
      for (std::int32_t row = 1; row <= designer.grid->RowCount(); ++row) {
        output = output ||
                 (designer.Cell(row, "table") == entity->Caption() && designer.Cell(row, "column") == item->Text() &&
                  designer.grid->Value(row, "output") == Variant(true));
      }
      EXPECT_EQ(item->Checked(), output) << entity->Caption() << "." << item->Text();
    }
  }
  EXPECT_TRUE(designer.LastRowIsEmpty());
}

class NoMemory : public testing::TestWithParam<std::size_t> {};

TEST_P(NoMemory, CostsNothing) {
  const Operation& operation = kOperations[GetParam()];
  SCOPED_TRACE(operation.name);
  const WholeRun whole = RunWhole(operation);
  ASSERT_GT(whole.allocations, 0U);
  // All of them when asked for; else so many that the tests stay quick.
  constexpr std::size_t kTried = 120;
  const std::size_t stride = std::getenv("ZRQRYBLD_EVERY_ALLOCATION") ? 1 : whole.allocations / kTried + 1;
  for (const bool failsOn : {false, true}) {
    for (std::size_t at = 1 + (failsOn ? stride / 2 : 0); at <= whole.allocations; at += stride) {
      SCOPED_TRACE(testing::Message() << "allocation " << at << " of " << whole.allocations
                                      << (failsOn ? " and all that follow" : ""));
      Designer designer;
      Prepare(designer, operation);
      const bool failed = Fails(operation, designer, at, failsOn);
      designer.hub->SetState(InfoDone);  // which a statement that cannot be read leaves
      designer.hub->BeginStep("next");   // what could not be taken back for want of memory, is now
      designer.hub->EndStep();
      designer.sql->Refresh();
      std::string now = TextOf(designer);
      if (!failed) {
        EXPECT_EQ(now, whole.after) << "no error was told";
      } else if (now != whole.before && now != whole.after) {
        if (designer.hub->Undo()) now = TextOf(designer);
        EXPECT_EQ(now, whole.before);
      }
      ExpectWhole(designer);
      if (now == whole.before) {
        operation.act(designer);
        EXPECT_EQ(TextOf(designer), whole.after) << "afterwards";
      }
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Each, NoMemory, testing::Range(std::size_t{0}, std::size(kOperations)));

}  // namespace
}  // namespace zrqrybld
