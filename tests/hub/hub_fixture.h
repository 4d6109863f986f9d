// A whole designer without a window over a source that is written down in the test.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/error_of.h"
#include "tests/fakes/fake_connection.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/hub/query_builder.h"
#include "zrqrybld/platform/headless.h"

namespace zrqrybld::test {

struct Designer {
  Designer() {
    hub->SetDiagramPane(diagram);
    hub->SetGridPane(grid);
    hub->SetSQLPane(sql);
    grid->SetShowGroupBy(false);
    source->Table("Customers", {"CustomerID", "Name"});
    source->Table("Orders", {"OrderID", "CustomerID", "Total"});
    source->ForeignKey("Orders", "CustomerID", "Customers", "CustomerID");
    source->PrimaryKey("Orders", "OrderID");
    source->SetConnectionString("Fake=1;PWD=secret");
    source->Open("", "");
  }
  void Use() { hub->SetConnection(source); }
  Ref<qbEntityItem> Item(const std::string& table, const std::string& column) const {
    return diagram->Entities()->Item(table)->Items()->Item(column);
  }
  void Tick(const std::string& table, const std::string& column, bool checked = true) const {
    Item(table, column)->SetChecked(checked);
  }
  std::string Cell(std::int32_t row, const std::string& key) const { return grid->Value(row, key).Text(); }
  void Set(std::int32_t row, const std::string& key, Variant value) const {
    grid->SetValue(row, key, std::move(value));
  }
  /// The rows that name a table or a column: "table.column", "-" in front when they are not output, ":" and
  /// the sort number behind.
  std::string Rows() const {
    std::string text;
    for (std::int32_t i = 1; i <= grid->RowCount(); ++i) {
      if (Cell(i, "table").empty() && Cell(i, "column").empty()) continue;
      text += text.empty() ? "" : " ";
      if (grid->Value(i, "output") != Variant(true)) text += "-";
      text += Cell(i, "table") + "." + Cell(i, "column");
      if (!Cell(i, "sort_order").empty()) text += ":" + Cell(i, "sort_order");
    }
    return text;
  }
  /// The ticked columns of all boxes: "table.column".
  std::string Ticked() const {
    std::string text;
    for (std::int32_t i = 1; i <= diagram->Entities()->Count(); ++i) {
      const Ref<qbEntity> entity = diagram->Entities()->Item(i);
      for (std::int32_t j = 1; j <= entity->Items()->Count(); ++j) {
        if (!entity->Items()->Item(j)->Checked()) continue;
        text += (text.empty() ? "" : " ") + entity->Caption() + "." + entity->Items()->Item(j)->Text();
      }
    }
    return text;
  }
  bool LastRowIsEmpty() const {
    const std::int32_t last = grid->RowCount();
    return last > 0 && Cell(last, "table").empty() && Cell(last, "column").empty();
  }
  /// The statement on one line: line ends and TABs taken out.
  std::string Sql() const { return ReplaceAll(ReplaceAll(sql->SQLStatement(), "\r\n", ""), "\t", ""); }
  /// How often the statement changed while the action ran.
  template <class Action>
  int Changes(Action action) const {
    int count = 0;
    const auto link = sql->SQLChanged.Connect([&] { ++count; });
    action();
    return count;
  }
  /// All joins: "source.column>target.column", in the order of the diagram.
  std::string Joins() const {
    std::string text;
    for (std::int32_t i = 1; i <= diagram->Entities()->Count(); ++i) {
      const qbRelationships& joins = *diagram->Entities()->Item(i)->Relationships();
      for (std::int32_t j = 1; j <= joins.Count(); ++j) {
        const qbRelationship& join = *joins.Item(j);
        text += (text.empty() ? "" : " ") + join.Source()->Caption() + "." + join.SourceItem()->Text() + ">" +
                join.Target()->Caption() + "." + join.TargetItem()->Text();
      }
    }
    return text;
  }
  std::string Captions() const {
    std::string text;
    for (std::int32_t i = 1; i <= diagram->Entities()->Count(); ++i) {
      text += (i > 1 ? " " : "") + diagram->Entities()->Item(i)->Caption();
    }
    return text;
  }
  static std::string Items(const qbEntity& entity) {
    std::string text;
    for (std::int32_t i = 1; i <= entity.Items()->Count(); ++i) {
      text += (i > 1 ? " " : "") + entity.Items()->Item(i)->Text() + (entity.Items()->Item(i)->Bold() ? "!" : "");
    }
    return text;
  }

  Ref<FakeConnection> source = std::make_shared<FakeConnection>();
  std::shared_ptr<HeadlessToolkit> toolkit = std::make_shared<HeadlessToolkit>();
  Ref<qbQueryBuilder> hub = qbQueryBuilder::Create(toolkit);
  Ref<qbDiagramPane> diagram = qbDiagramPane::Create();
  Ref<qbGridPane> grid = qbGridPane::Create();
  Ref<qbSQLPane> sql = qbSQLPane::Create();
};

class HubTest : public testing::Test, protected Designer {};

}  // namespace zrqrybld::test
