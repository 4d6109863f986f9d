#include "tests/hub_fixture.h"

#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::test {

Designer::Designer()
    : toolkit(std::make_shared<HeadlessToolkit>()),
      hub(qbQueryBuilder::Create(toolkit)),
      diagram(qbDiagramPane::Create()),
      grid(qbGridPane::Create()),
      sql(qbSQLPane::Create()) {
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

void Designer::Use() { hub->SetConnection(source); }

Ref<qbEntityItem> Designer::Item(const std::string& table, const std::string& column) const {
  return diagram->Entities()->Item(table)->Items()->Item(column);
}

void Designer::Tick(const std::string& table, const std::string& column, bool checked) const {
  Item(table, column)->SetChecked(checked);
}

std::string Designer::Cell(std::int32_t row, const std::string& key) const { return grid->Value(row, key).Text(); }

void Designer::Set(std::int32_t row, const std::string& key, Variant value) const {
  grid->SetValue(row, key, std::move(value));
}

std::string Designer::Rows() const {
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

std::string Designer::Ticked() const {
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

bool Designer::LastRowIsEmpty() const {
  const std::int32_t last = grid->RowCount();
  return last > 0 && Cell(last, "table").empty() && Cell(last, "column").empty();
}

int Designer::Changes(const std::function<void()>& action) const {
  int count = 0;
  const auto link = sql->SQLChanged.Connect([&] { ++count; });
  action();
  return count;
}

std::string Designer::Sql() const { return ReplaceAll(ReplaceAll(sql->SQLStatement(), "\r\n", ""), "\t", ""); }

std::string Designer::Joins() const {
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

std::string Designer::Captions() const {
  std::string text;
  for (std::int32_t i = 1; i <= diagram->Entities()->Count(); ++i) {
    text += (i > 1 ? " " : "") + diagram->Entities()->Item(i)->Caption();
  }
  return text;
}

std::string Designer::Items(const qbEntity& entity) {
  std::string text;
  for (std::int32_t i = 1; i <= entity.Items()->Count(); ++i) {
    text += (i > 1 ? " " : "") + entity.Items()->Item(i)->Text() + (entity.Items()->Item(i)->Bold() ? "!" : "");
  }
  return text;
}

}  // namespace zrqrybld::test
