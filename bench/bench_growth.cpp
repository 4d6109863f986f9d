// Every public operation that grows with the design, at 1,000, 4,000 and 16,000 of what it works on: what all of them
// cost in one step. `bench/growth` says with which power of the number that grows: 1 is linear, more than 1.2 is a
// fault.
#include <benchmark/benchmark.h>

#include <functional>
#include <string>

#include "bench/counting_canvas.h"
#include "bench/designer.h"
#include "bench/made_up_source.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/whole_joins.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/grid/simple_combo.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::bench {
namespace {

using Hub = Ref<qbQueryBuilder>;

std::string Numbered(const char* name, int number) { return name + std::to_string(number); }

// --- Designs of so many things ---

Hub Empty(int) { return MakeDesigner(0); }

// One table with so many columns; `ticked` of them are in the grid.
Hub Table(int columns, int ticked) {
  const Hub hub = MakeDesigner(0);
  const StepScope step(hub, "Fill");
  const Ref<qbEntity> table = hub->Entities()->Add("T");
  for (int i = 0; i < columns; ++i) {
    const Ref<qbEntityItem> item = table->Items()->Add(ColumnName(i), ColumnName(i));
    if (i < ticked) item->SetChecked(true);
  }
  return hub;
}

Hub Columns(int columns) { return Table(columns, 0); }
Hub Ticked(int columns) { return Table(columns, columns); }

Hub WithCriteria(int columns) {
  const Hub hub = Ticked(columns);
  const StepScope step(hub, "Criteria");
  for (int i = 1; i <= columns; ++i) hub->GridPane()->SetValue(i, "criteria", "> 5");
  return hub;
}

Hub TwoTables(int columns) {
  const Hub hub = Columns(columns);
  hub->Entities()->Add("U")->Items()->Add("id");
  return hub;
}

Ref<qbRelationship> Join(qbEntity& source, const Ref<qbEntity>& target) {
  const Ref<qbRelationship> join = source.Relationships()->Add(target);
  join->SetSourceItemIndex(1);
  join->SetTargetItemIndex(1);
  return join;
}

// So many joins between the same two tables.
Hub Joins(int joins) {
  const Hub hub = TwoTables(1);
  const StepScope step(hub, "Join");
  for (int i = 0; i < joins; ++i) Join(*hub->Entities()->Item(1), hub->Entities()->Item(2));
  return hub;
}

// So many tables; each is joined to the one before and ticked.
Hub Chain(int tables) {
  const Hub hub = MakeDesigner(0);
  const StepScope step(hub, "Chain");
  Ref<qbEntity> before;
  for (int i = 0; i < tables; ++i) {
    const Ref<qbEntity> table = hub->Entities()->Add(TableName(i));
    table->Items()->Add("id", "id")->SetChecked(true);
    if (before) Join(*before, table);
    before = table;
  }
  return hub;
}

Hub ShortChain(int tables) { return Chain(tables / 4); }  // a file holds 5,000 tables at most

// So many tables without joins.
Hub Tables(int tables) {
  const Hub hub = MakeDesigner(0);
  const StepScope step(hub, "Tables");
  for (int i = 0; i < tables; ++i) hub->Entities()->Add(TableName(i))->Items()->Add("id", "id");
  return hub;
}

std::string LongStatement(int columns, const char* where) {
  std::string sql = "SELECT ";
  for (int i = 0; i < columns; ++i) sql += (i > 0 ? ", " : "") + Numbered("T.C", i);
  sql += " FROM T";
  for (int i = 0; *where != '\0' && i < columns; ++i) sql += (i > 0 ? where : " WHERE ") + Numbered("T.C", i) + " > 5";
  return sql;
}

// --- What is done with them ---

zrGridRows& Rows(const Hub& hub) { return *hub->GridPane()->Grid()->Rows(); }
qbEntityItems& Items(const Hub& hub) { return *hub->Entities()->Item(1)->Items(); }
qbRelationships& JoinsOf(const Hub& hub) { return *hub->Entities()->Item(1)->Relationships(); }

// Calls `one` for 1 to n.
template <class One>
auto Each(One one) {
  return [one](const Hub& hub, int count) {
    for (int i = 1; i <= count; ++i) one(hub, i);
  };
}

auto SetCell(const char* column, const char* value) {
  return Each([column, value](const Hub& hub, int i) { hub->GridPane()->SetValue(i, column, value); });
}

// Adds to a list, finds by number and by name, and removes the first one, each n times.
template <class Catalog>
auto Catalogue(const Ref<Catalog>& (qbQueryBuilder::*catalog)() const) {
  return [catalog](const Hub& hub, int count) {
    Catalog& entries = *(hub.get()->*catalog)();
    for (int i = 0; i < count; ++i) entries.Add(Numbered("N", i));
    for (int i = 0; i < count; ++i) {
      benchmark::DoNotOptimize(entries.Item(i + 1));
      if constexpr (!std::is_same_v<Catalog, StringCollection>) {
        benchmark::DoNotOptimize(entries.Item(Numbered("N", i)));
      }
    }
    for (int i = 0; i < count; ++i) entries.Remove(1);
  };
}

// Whether a case is one step that is made, or one that ends before the clock stops: undo cannot run inside of a step.
enum class In : std::uint8_t { Step, NoStep };

struct Case {
  const char* name;
  Hub (*make)(int count);
  In in;
  std::function<void(const Hub& hub, int count)> change;
};

const Case kCases[] = {
    // The diagram.
    {"Entities.Add", Empty, In::Step, Each([](auto& hub, int i) { hub->Entities()->Add(TableName(i)); })},
    {"Entities.Item by number and name", Tables, In::Step,
     Each([](auto& hub, int i) {
       benchmark::DoNotOptimize(hub->Entities()->Item(i));
       benchmark::DoNotOptimize(hub->Entities()->Item(TableName(i - 1)));
     })},
    {"Entities.Remove(1), a chain", Chain, In::Step, Each([](auto& hub, int) { hub->Entities()->Remove(1); })},
    {"Entities.Remove(name), a chain, and Undo", Chain, In::NoStep,
     [](auto& hub, int count) {
       {
         const StepScope step(hub, "Remove");
         for (int i = 0; i < count; ++i) hub->Entities()->Remove(TableName(i));
       }
       hub->Undo();
     }},
    {"Entity.Caption", Chain, In::Step, Each([](auto& hub, int i) { hub->Entities()->Item(i)->SetCaption(Numbered("R", i)); })},
    {"Entity.Left, Top, Width, Height", Chain, In::Step,
     Each([](auto& hub, int i) {
       qbEntity& table = *hub->Entities()->Item(i);
       table.SetLeft(static_cast<float>(20 * i));
       table.SetTop(static_cast<float>(10 * i));
       table.SetWidth(3000);
       table.SetHeight(2000);
     })},
    {"Entity.Index", Tables, In::Step,
     Each([](auto& hub, int i) { benchmark::DoNotOptimize(hub->Entities()->Item(TableName(i - 1))->Index()); })},
    {"Items.Add", TwoTables, In::Step, Each([](auto& hub, int i) { Items(hub).Add(Numbered("N", i), Numbered("N", i)); })},
    {"Items.Item by number and key, FindByText, Index", Columns, In::Step,
     Each([](auto& hub, int i) {
       benchmark::DoNotOptimize(Items(hub).Item(i)->Index());
       benchmark::DoNotOptimize(Items(hub).Item(ColumnName(i - 1)));
       benchmark::DoNotOptimize(Items(hub).FindByText(ColumnName(i - 1)));
     })},
    {"Items.Remove(1), ticked", Ticked, In::Step, Each([](auto& hub, int) { Items(hub).Remove(1); })},
    {"Items.Clear", Ticked, In::Step, [](auto& hub, int) { Items(hub).Clear(); }},
    {"EntityItem.Checked = True", Columns, In::Step, Each([](auto& hub, int i) { Items(hub).Item(i)->SetChecked(true); })},
    {"EntityItem.Checked = False", Ticked, In::Step, Each([](auto& hub, int i) { Items(hub).Item(i)->SetChecked(false); })},
    {"EntityItem.Text, ticked", Ticked, In::Step, Each([](auto& hub, int i) { Items(hub).Item(i)->SetText(Numbered("N", i)); })},
    {"Relationships.Add, between two tables", TwoTables, In::Step,
     Each([](auto& hub, int) { Join(*hub->Entities()->Item(1), hub->Entities()->Item(2)); })},
    {"Relationships.Add, of a star", Tables, In::Step,
     Each([](auto& hub, int i) { Join(*hub->Entities()->Item(1), hub->Entities()->Item(i)); })},
    {"Relationships.Remove(1)", Joins, In::Step, Each([](auto& hub, int) { JoinsOf(hub).Remove(1); })},
    {"Relationships.Clear", Joins, In::Step, [](auto& hub, int) { JoinsOf(hub).Clear(); }},
    {"Relationship.ItemData, Comparison, Condition", Joins, In::Step,
     Each([](auto& hub, int i) {
       const Ref<qbRelationship> join = JoinsOf(hub).Item(i);
       join->SetItemData(1);
       join->SetComparison(JoinLess);
       join->SetCondition("T.C0 = U.id + 1");
     })},
    {"WholeJoins.Between, a chain", Chain, In::Step,
     [](auto& hub, int count) {
       for (int i = 1; i < count; ++i) {
         benchmark::DoNotOptimize(
             hub->DiagramPane()->WholeJoins()->Between(hub->Entities()->Item(i), hub->Entities()->Item(i + 1)));
       }
     }},
    {"DiagramPane.Clear and Undo, a chain", Chain, In::NoStep, [](auto& hub, int) { hub->DiagramPane()->Clear(), hub->Undo(); }},
    {"DiagramPane.Clear and Undo, columns", Ticked, In::NoStep, [](auto& hub, int) { hub->DiagramPane()->Clear(), hub->Undo(); }},
    {"DiagramPane.Arrange, a chain", Chain, In::Step, [](auto& hub, int) { hub->DiagramPane()->Arrange(); }},
    {"DiagramPane.SelectAll", Chain, In::Step, [](auto& hub, int) { hub->DiagramPane()->SelectAll(); }},
    {"DiagramPane.SelectObject", Chain, In::Step,
     Each([](auto& hub, int i) { hub->DiagramPane()->SelectObject(hub->Entities()->Item(i)); })},
    {"DiagramPane.SetMinimized", Chain, In::Step,
     Each([](auto& hub, int i) { hub->DiagramPane()->SetMinimized(*hub->Entities()->Item(i), true); })},
    {"DiagramPane.ZoomToFit, PictureSvg", Chain, In::Step,
     [](auto& hub, int) {
       hub->DiagramPane()->ZoomToFit();
       benchmark::DoNotOptimize(hub->DiagramPane()->PictureSvg());
     }},
    {"DiagramPane.PaintPicture", Chain, In::Step,
     [](auto& hub, int) {
       CountingCanvas canvas;
       hub->DiagramPane()->PaintPicture(canvas);
     }},
    // The grid.
    {"GridPane.Value, all columns", Ticked, In::Step,
     Each([](auto& hub, int i) {
       for (std::int32_t c = 1; c <= hub->GridPane()->ColumnCount(); ++c) {
         benchmark::DoNotOptimize(hub->GridPane()->Value(i, c));
       }
     })},
    {"GridPane.Value(\"criteria\") =", Ticked, In::Step, SetCell("criteria", "> 5")},
    {"GridPane.Value(\"alias\") =", Ticked, In::Step,
     Each([](auto& hub, int i) { hub->GridPane()->SetValue(i, "alias", Numbered("A", i)); })},
    {"GridPane.Value(\"sort_type\") =", Ticked, In::Step, SetCell("sort_type", "Ascending")},
    {"GridPane.Value(\"output\") =", Ticked, In::Step, SetCell("output", "0")},
    {"GridPane.Value(\"column\") =", Ticked, In::Step, Each([](auto& hub, int i) { hub->GridPane()->SetValue(i, "column", Numbered("C0 + ", i)); })},
    {"GridPane.ShowGroupBy", Ticked, In::Step, [](auto& hub, int) { hub->GridPane()->SetShowGroupBy(true); }},
    {"GridPane.OrColumns = 9", Ticked, In::Step, [](auto& hub, int) { hub->GridPane()->SetOrColumns(9); }},
    {"GridPane.HideColumn, ShowColumn", Ticked, In::Step,
     [](auto& hub, int) { hub->GridPane()->HideColumn("alias"), hub->GridPane()->ShowColumn("alias"); }},
    {"GridPane.RefreshTables", Ticked, In::Step, [](auto& hub, int) { hub->GridPane()->RefreshTables(); }},
    {"Rows.Add, at the end", Empty, In::Step, Each([](auto& hub, int) { Rows(hub).Add(); })},
    {"Rows.Add, before the first", Empty, In::Step, Each([](auto& hub, int) { Rows(hub).Add({}, 1); })},
    {"Rows.Move, first to last", Ticked, In::Step,
     [](auto& hub, int count) {
       for (int i = 0; i < count; ++i) Rows(hub).Move(1, count);
     }},
    {"Rows.Remove(1)", Ticked, In::Step, Each([](auto& hub, int) { Rows(hub).Remove(1); })},
    {"Rows.Clear", Ticked, In::Step, [](auto& hub, int) { Rows(hub).Clear(); }},
    {"Grid.GotoRowCol", Ticked, In::Step,
     Each([](auto& hub, int i) { hub->GridPane()->Grid()->GotoRowCol(i, "column"); })},
    {"Grid.GetRowColumnXY, GetRowColumnIndex", Ticked, In::Step,
     Each([](auto& hub, int i) {
       const PixelRect place = hub->GridPane()->Grid()->GetRowColumnXY(i, "alias");
       benchmark::DoNotOptimize(hub->GridPane()->Grid()->GetRowColumnIndex({place.left, place.top}));
     })},
    {"Grid.CopyText of all, PasteText over them", Ticked, In::Step,
     [](auto& hub, int count) {
       zrGrid& grid = *hub->GridPane()->Grid();
       grid.SelectRows(1, static_cast<std::size_t>(count));
       const std::string text = grid.CopyText();
       grid.GotoRowCol(1, 1);
       grid.PasteText(text);
     }},
    {"Grid.DeleteSelectedRows, all", Ticked, In::Step,
     [](auto& hub, int count) {
       hub->GridPane()->Grid()->SelectRows(1, static_cast<std::size_t>(count));
       hub->GridPane()->Grid()->DeleteSelectedRows();
     }},
    {"ComboItems.Add, Item, Remove", Empty, In::Step,
     [](auto& hub, int count) {
       zrGridComboItems& items = *hub->GridPane()->Grid()->Columns()->Item("table")->ComboItems();
       for (int i = 0; i < count; ++i) items.Add(Numbered("N", i), {}, Numbered("K", i));
       for (int i = 0; i < count; ++i) benchmark::DoNotOptimize(items.Item(Numbered("K", i)));
       for (int i = 0; i < count; ++i) items.Remove(1);
     }},
    {"SimpleCombo.AddItem, Text, Clear", Empty, In::Step,
     [](auto&, int count) {
       const Ref<zrSimpleCombo> combo = zrSimpleCombo::Create();
       for (int i = 0; i < count; ++i) combo->AddItem(Numbered("N", i));
       combo->SetText(Numbered("N", count / 2));
       combo->Clear();
     }},
    // The statement. It is written after a step, so the step is left out of these.
    {"SQLPane.Refresh, columns", Ticked, In::NoStep, [](auto& hub, int) { hub->SQLPane()->Refresh(); }},
    {"SQLPane.Refresh, a chain", Chain, In::NoStep, [](auto& hub, int) { hub->SQLPane()->Refresh(); }},
    {"SQLPane.Refresh, criteria", WithCriteria, In::NoStep, [](auto& hub, int) { hub->SQLPane()->Refresh(); }},
    {"SQLPane.SQLSyntax =", Chain, In::NoStep, [](auto& hub, int) { hub->SQLPane()->SetSQLSyntax(SQLSyntaxOracle); }},
    {"SQLPane.AddWhereClause", Ticked, In::NoStep,
     [](auto& hub, int) { benchmark::DoNotOptimize(hub->SQLPane()->AddWhereClause({}, "T.C0 > 1")); }},
    {"SQLPane.ParseSQLStatement, columns", Empty, In::NoStep,
     [](auto& hub, int count) { hub->SQLPane()->ParseSQLStatement(LongStatement(count, "")); }},
    {"SQLPane.ParseSQLStatement, AND", Empty, In::NoStep,
     [](auto& hub, int count) { hub->SQLPane()->ParseSQLStatement(LongStatement(count, " AND ")); }},
    {"SQLPane.ParseSQLStatement, again", Ticked, In::NoStep,
     [](auto& hub, int count) { hub->SQLPane()->ParseSQLStatement(LongStatement(count, "")); }},
    {"SQLPane.ParseParameters", Empty, In::NoStep,
     [](auto& hub, int count) {
       std::string sql = "SELECT a FROM t WHERE a = 0";
       for (int i = 0; i < count; ++i) sql += " OR a = ?PARAM(" + Numbered("P", i) + ", 3)";
       hub->SQLPane()->SetSQLStatement(sql);
       benchmark::DoNotOptimize(hub->SQLPane()->ParseParameters());
     }},
    // The hub.
    {"SaveQuery, LoadQuery, a chain of a quarter", ShortChain, In::NoStep,
     [](auto& hub, int) { MakeDesigner(0)->LoadQuery(hub->SaveQueryToText(), true); }},
    {"SaveQuery, LoadQuery, columns", Ticked, In::NoStep,
     [](auto& hub, int) { MakeDesigner(0)->LoadQuery(hub->SaveQueryToText(), true); }},
    {"RefreshAutoJoins, HasTable", Tables, In::Step,
     [](auto& hub, int count) {
       hub->RefreshAutoJoins();
       for (int i = 0; i < count; ++i) benchmark::DoNotOptimize(hub->HasTable(TableName(i)));
     }},
    {"AddTable, of two columns", [](int) { return MakeDesigner(2); }, In::Step,
     Each([](auto& hub, int i) { hub->AddTable(TableName(i)); })},
    {"Undo and Redo of all at once, columns", Ticked, In::NoStep,
     [](auto& hub, int count) {
       {
         const StepScope step(hub, "Aliases");
         for (int i = 1; i <= count; ++i) hub->GridPane()->SetValue(i, "alias", Numbered("A", i));
       }
       hub->Undo();
       hub->Redo();
     }},
    {"Properties", Empty, In::Step,
     [](auto& hub, int count) {
       qbProperties& properties = *hub->Properties();
       for (int i = 0; i < count; ++i) properties.Add(i, Numbered("P", i));
       for (int i = 0; i < count; ++i) benchmark::DoNotOptimize(properties.Item(Numbered("P", i)));
       for (int i = 0; i < count; ++i) properties.Remove(1);
     }},
    {"DBKeywords", Empty, In::Step, Catalogue(&qbQueryBuilder::DBKeywords)},
    {"DBOperators", Empty, In::Step, Catalogue(&qbQueryBuilder::DBOperators)},
    {"DBFunctions", Empty, In::Step, Catalogue(&qbQueryBuilder::DBFunctions)},
    {"DataTypes", Empty, In::Step, Catalogue(&qbQueryBuilder::DataTypes)},
    {"QuotedIdentifiers", Empty, In::Step, Catalogue(&qbQueryBuilder::QuotedIdentifiers)},
};

// What is measured. `bench/growth` counts its instructions by this name.
[[gnu::noinline]] void DoMeasured(const Case& one, const Hub& hub, int count) {
  if (one.in == In::NoStep) return one.change(hub, count);
  const StepScope step(hub, one.name);
  one.change(hub, count);
}

void Growth(benchmark::State& state) {
  const Case& one = kCases[state.range(0)];
  const auto count = static_cast<int>(state.range(1));
  state.SetLabel(one.name);
  Hub hub;  // its end is not measured
  for (auto _ : state) {
    state.PauseTiming();
    hub = one.make(count);
    hub->ClearHistory();
    state.ResumeTiming();
    DoMeasured(one, hub, count);
  }
}
BENCHMARK(Growth)
    ->ArgsProduct({benchmark::CreateDenseRange(0, static_cast<int>(std::size(kCases)) - 1, 1), {1000, 4000, 16000}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zrqrybld::bench
