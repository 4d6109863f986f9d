#include "zrqrybld/hub/ask_as_join.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/grid/row_cells.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/host/step_names.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/read_queries.h"
#include "zrqrybld/hub/read_statement.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/asked_tables.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/join_move.h"
#include "zrqrybld/sql/question_reader.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

[[noreturn]] void Refuse(Phrase why) { throw Error(ErrorInvalidCall, std::move(why)); }

// The position in the query of a row of the grid, which names a column.
std::size_t PlaceOf(const qbGridPane& grid, std::int32_t row) {
  std::size_t place = 0;
  for (std::int32_t i = 1; i < row; ++i) {
    if (!RowReader(grid.Grid()->Rows()->At(static_cast<std::size_t>(i))).IsBlank(kColumnColumn)) ++place;
  }
  return place;
}

std::optional<std::size_t> FindTable(const QuerySnapshot& query, const std::string& caption) {
  const auto found =
      std::ranges::find_if(query.tables, [&](const auto& t) { return EqualsNoCase(t.caption.Name(), caption); });
  if (found == query.tables.end()) return std::nullopt;
  return static_cast<std::size_t>(found - query.tables.begin());
}

// Whether the source says that the column is never Null.
bool IsNeverNull(qbQueryBuilder& hub, const SnapshotTable& table, const std::string& column) {
  if (!hub.IsConnected() || table.name.empty() || !table.query.empty()) return false;
  SchemaRestrictions wanted;
  wanted.table = table.name.back().Name();
  if (table.name.size() > 1) wanted.schema = table.name[table.name.size() - 2].Name();
  const auto rows = hub.Connection()->OpenSchema(SchemaKind::Columns, wanted);
  for (; !rows->Eof(); rows->MoveNext()) {
    if (!EqualsNoCase(rows->Text("COLUMN_NAME"), column)) continue;
    const Variant nullable = rows->Value("IS_NULLABLE");
    return !nullable.IsBlank() && !nullable.ToBoolean();
  }
  return false;
}

void RequireNeverNull(qbQueryBuilder& hub, const QuerySnapshot& query, std::size_t table, const std::string& column) {
  if (IsNeverNull(hub, query.tables[table], column)) return;
  Refuse({text::AskedMayBeNull, query.tables[table].caption.Name() + "." + column});
}

// In rows that only an outer join returns, every column is Null.
bool HasOuterJoin(const QuerySnapshot& query) {
  return std::ranges::any_of(query.joins,
                             [](const SnapshotJoin& j) { return j.kind.allOfSource || j.kind.allOfTarget; });
}

bool HasOtherAlternatives(const QuerySnapshot& query, std::size_t cell) {
  return std::ranges::any_of(query.rows, [cell](const SnapshotRow& row) {
    for (std::size_t i = 0; i < row.criteria.size(); ++i) {
      if (i != cell && !Trim(row.criteria[i]).empty()) return true;
    }
    return false;
  });
}

// The statement with one condition more. Where none comes before it a list of tables gets no WHERE for a condition from
// outside: it goes the way of those of the grid, and the parentheses around it are taken away.
std::string WithCondition(QuerySnapshot query, const Dialect& dialect, const std::string& condition) {
  const bool isAlone = query.joins.empty() && std::ranges::all_of(query.rows, [](const SnapshotRow& row) {
                         return std::ranges::all_of(row.criteria, [](const auto& cell) { return Trim(cell).empty(); });
                       });
  if (!isAlone) return GenerateSelect(query, dialect, {.orExpression = {}, .andExpression = condition}).text;
  SnapshotRow row;
  row.column = condition;
  if (query.groupByMode) row.grouping = GroupingKind::Where;
  row.criteria = {"= True"};
  query.rows.push_back(std::move(row));
  return ReplaceAll(GenerateSelect(query, dialect, {}).text, "((" + condition + "))", condition);
}

// The statement with EXISTS instead of IN, when that reads as a join and means the same.
std::string Asking(qbQueryBuilder& hub, QuerySnapshot query, std::size_t place, std::size_t cell) {
  const SnapshotRow row = query.rows[place];
  if (!row.table || row.column == "*" || cell >= row.criteria.size()) Refuse(text::NoListQuestion);
  const std::optional<ListQuestion> question = ReadListQuestion(ConditionOf(query, row, row.criteria[cell]));
  if (!question) Refuse(text::NoListQuestion);
  if (FindTable(query, question->table)) Refuse({text::AskedNameTaken, question->table});
  if (row.grouping.ChoosesGroups() || HasOtherAlternatives(query, cell)) Refuse(text::AskedOtherwise);
  query.rows[place].criteria[cell].clear();
  std::string statement = WithCondition(query, hub.CurrentDialect(), question->exists);
  ReadQueries read(hub, statement);
  const QuerySnapshot asked = read.Main().statement->Design();
  const std::optional<std::size_t> table = FindTable(asked, question->table);
  const bool asks = table && std::ranges::any_of(asked.joins, [&](const SnapshotJoin& join) {
                      return join.kind.Asks() && AskedEnd(join) == *table;
                    });
  if (!asks) Refuse(text::AskedOtherwise);
  if (question->forNone) {
    RequireNeverNull(hub, asked, *table, question->column);
    if (HasOuterJoin(query)) Refuse({text::AskedMayBeNull, query.tables[*row.table].caption.Name() + "." + row.column});
    RequireNeverNull(hub, query, *row.table, row.column);
  }
  return statement;
}

bool MayAsk(const std::string& cell) {
  return FindNoCase(cell, "IN") != std::string::npos && FindNoCase(cell, "SELECT") != std::string::npos;
}

}  // namespace

void qbQueryBuilder::AskAsJoin(std::int32_t row, const Variant& column) {
  const Ref<qbGridPane> grid = GridPane();
  const Ref<qbSQLPane> pane = SQLPane();
  if (!grid || !pane) Refuse(text::NotLinked);
  const std::int32_t position = grid->Grid()->Columns()->Item(column)->Index();
  const RowReader reader(*grid->Grid()->Rows()->Item(row));
  if (position < kColumnCriteria || reader.IsBlank(kColumnColumn) || !QueriesNow().IsSingle()) {
    Refuse(text::NoListQuestion);
  }
  const auto cell = static_cast<std::size_t>(position - kColumnCriteria);
  const std::string statement = Asking(*this, Snapshot(), PlaceOf(*grid, row), cell);
  const StepScope step(RefTo(*this), kStepAskAsJoin);
  pane->ParseSQLStatement(statement);
}

EventConnection OfferAskAsJoin(qbQueryBuilder& hub) {
  const Ref<qbGridPane> grid = hub.GridPane();
  if (!grid) return {};
  return grid->BeforeContextMenu.Connect(
      [weak = WeakRef<qbQueryBuilder>(hub.Hub())](std::int32_t row, std::int32_t column, Menu& menu) {
        const Ref<qbQueryBuilder> now = weak.lock();
        const Ref<qbGridPane> shown = now ? now->GridPane() : nullptr;
        if (!shown || row < 1 || row > shown->RowCount() || column < kColumnCriteria) return;
        if (!MayAsk(shown->Value(row, column).Text())) return;
        const auto ask = [weak, row, column] {
          const Ref<qbQueryBuilder> here = weak.lock();
          if (!here) return;
          try {
            here->AskAsJoin(row, column);
          } catch (const std::exception& failure) {
            here->GetToolkit().GetDialogs().ShowMessageSoon(here->Say(failure), MessageIcon::Information);
          }
        };
        menu.push_back({now->Say(text::MenuAskAsJoin), "", ask});
      });
}

}  // namespace zrqrybld
