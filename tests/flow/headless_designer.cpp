#include "tests/flow/headless_designer.h"

#include <stdexcept>

#include "tests/link_panes.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld::test {

HeadlessDesigner::HeadlessDesigner() : hub_(qbQueryBuilder::Create()) {
  LinkPanes(*hub_);
  hub_->GridPane()->SetShowGroupBy(false);
  hub_->GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
  hub_->Connect("Provider=SQLite;Data Source=" ZRQRYBLD_SAMPLE_DB);
  if (hub_->LastError()) throw std::runtime_error(hub_->LastError()->what());
}

qbEntities& HeadlessDesigner::Entities() const { return *hub_->Entities(); }

void HeadlessDesigner::AddTables(const std::vector<std::string>& names) {
  for (const std::string& name : names) hub_->AddTable(name);
  hub_->RefreshAutoJoins();
}

void HeadlessDesigner::SetTick(const std::string& caption, const std::string& column, bool ticked) {
  const Ref<qbEntity> entity = Entities().Item(caption);
  const Ref<qbEntityItem> item = entity ? entity->Items()->Item(column) : nullptr;
  if (!item) throw std::runtime_error("no column " + caption + "." + column);
  item->SetChecked(ticked);
}

Ref<qbRelationship> HeadlessDesigner::Join(const std::string& source, const std::string& sourceColumn,
                                           const std::string& target, const std::string& targetColumn) {
  const Ref<qbEntity> from = Entities().Item(source);
  const Ref<qbEntity> to = Entities().Item(target);
  const Ref<qbRelationship> join = from->Relationships()->Add(to);
  join->SetSourceItemIndex(from->Items()->Item(sourceColumn)->Index());
  join->SetTargetItemIndex(to->Items()->Item(targetColumn)->Index());
  return join;
}

std::int32_t HeadlessDesigner::RowOf(const std::string& caption, const std::string& column) const {
  const qbGridPane& grid = *hub_->GridPane();
  for (std::int32_t row = 1; row <= grid.RowCount(); ++row) {
    if (grid.Value(row, "table").Text() == caption && grid.Value(row, "column").Text() == column) return row;
  }
  throw std::runtime_error("no row of " + caption + "." + column);
}

void HeadlessDesigner::Sort(const std::string& caption, const std::string& column, const std::string& type, int order) {
  const std::int32_t row = RowOf(caption, column);
  hub_->GridPane()->SetValue(row, "sort_type", type);
  hub_->GridPane()->SetValue(row, "sort_order", std::to_string(order));
}

std::string HeadlessDesigner::Statement(SQLSyntaxEnum syntax) {
  hub_->SQLPane()->SetSQLSyntax(syntax);
  hub_->SQLPane()->Refresh();
  return ReplaceAll(hub_->SQLPane()->SQLStatement(), "\r\n", "\n");
}

}  // namespace zrqrybld::test
