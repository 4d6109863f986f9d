#include "zrqrybld/hub/query_menus.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/whole_join.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/grid/row_cells.h"
#include "zrqrybld/host/command_entry.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/inner_queries.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {
namespace {

// What an entry runs: nothing once the designer, or the query, is gone.
std::function<void()> OnHub(qbQueryBuilder& hub, std::function<void(qbQueryBuilder&)> work) {
  return [weak = WeakRef<qbQueryBuilder>(hub.Hub()), work = std::move(work)] {
    if (const Ref<qbQueryBuilder> now = weak.lock()) work(*now);
  };
}

std::function<void()> OnQuery(qbQueryBuilder& hub, std::int32_t id, std::function<void(qbQueryBuilder&)> work) {
  return OnHub(hub, [id, work = std::move(work)](qbQueryBuilder& now) {
    if (now.QueriesNow().Find(id)) work(now);
  });
}

void AskForName(qbQueryBuilder& hub, std::int32_t id) {
  TextDialog dialog{hub.Say(text::RenameQueryCaption), hub.Say(text::RenameQueryLabel),
                    hub.QueriesNow().Find(id)->name};
  dialog.problem = [weak = WeakRef<qbQueryBuilder>(hub.Hub()), id](const std::string& name) -> std::string {
    const Ref<qbQueryBuilder> now = weak.lock();
    const StoredQuery* query = now ? now->QueriesNow().Find(id) : nullptr;
    if (!query) return {};
    if (Trim(name).empty()) return now->Say(text::QueryNeedsName);
    const StoredQuery* other = now->QueriesNow().FindNamed(query->parent, name);
    return other && other != query ? now->Say({text::QueryNameTaken, name}) : "";
  };
  hub.GetToolkit().GetDialogs().AskText(dialog,
                                        [weak = WeakRef<qbQueryBuilder>(hub.Hub()), id](const std::string& name) {
                                          const Ref<qbQueryBuilder> now = weak.lock();
                                          if (now && now->QueriesNow().Find(id)) now->RenameQuery(id, name);
                                        });
}

MenuEntry KindEntry(qbQueryBuilder& hub, const StoredQuery& query) {
  const bool isCommon = query.kind == QueryCommonTable;
  const QueryKindEnum kind = isCommon ? QueryDerivedTable : QueryCommonTable;
  return {hub.Say(isCommon ? text::MenuIntoFrom : text::MenuIntoWith), "",
          OnQuery(hub, query.id, [id = query.id, kind](qbQueryBuilder& now) { now.SetQueryKind(id, kind); })};
}

}  // namespace

Menu MenuOfQuery(qbQueryBuilder& hub, std::int32_t id) {
  const StoredQuery* query = hub.QueriesNow().Find(id);
  if (!query) return {};
  Menu menu{EntryFor(hub.Hub(), Command::OpenInnerQuery,
                     OnQuery(hub, id, [id](qbQueryBuilder& now) { now.ShowQuery(id); }), hub.QueriesNow().shown != id)};
  if (query->kind == QueryMain || query->kind == QueryInCell) return menu;
  if (query->kind != QueryMember) {
    menu.push_back(
        {hub.Say(text::MenuRenameQuery), "", OnQuery(hub, id, [id](qbQueryBuilder& now) { AskForName(now, id); })});
    menu.push_back(KindEntry(hub, *query));
  }
  menu.push_back(
      {hub.Say(text::MenuRemoveQuery), "", OnQuery(hub, id, [id](qbQueryBuilder& now) { now.RemoveQuery(id); })});
  return menu;
}

Menu MenuOfQueryNamed(qbQueryBuilder& hub, const std::string& name) {
  const QuerySet& set = hub.QueriesNow();
  const StoredQuery* named = set.IsSingle() ? nullptr : set.FindNamed(set.shown, name);
  return named ? MenuOfQuery(hub, named->id) : Menu();
}

Menu MenuOfNewQueries(qbQueryBuilder& hub) {
  const auto entry = [&](Command command, QueryKindEnum kind) {
    return EntryFor(hub.Hub(), command, OnHub(hub, [kind](qbQueryBuilder& now) { AddInnerQuery(now, kind); }));
  };
  Menu menu{entry(Command::NewSubquery, QueryDerivedTable), entry(Command::NewCommonTable, QueryCommonTable),
            entry(Command::AddUnionMember, QueryMember)};
  if (hub.QueriesNow().shown != 0) {
    menu.push_back(EntryFor(hub.Hub(), Command::LeaveQuery, OnHub(hub, [](qbQueryBuilder& now) { LeaveQuery(now); })));
  }
  return menu;
}

namespace {

// The cell's text; "" where there is no such cell, and where it holds no expression.
std::string TextOfCell(const qbQueryBuilder& hub, std::int32_t row, std::int32_t column) {
  const Ref<qbGridPane> grid = hub.GridPane();
  const bool isThere = grid && row >= 1 && row <= grid->RowCount() && column <= grid->ColumnCount() &&
                       (column == kColumnColumn || column >= kColumnCriteria);
  return isThere
             ? RowReader(grid->Grid()->Rows()->At(static_cast<std::size_t>(row))).Text(static_cast<std::size_t>(column))
             : std::string();
}

// What tells the queries of a text apart, each in its parentheses: their tables, or how each begins where that says the
// same of several.
std::vector<std::string> NamesOf(const std::string& text, const std::vector<InnerQueryPlace>& places) {
  constexpr std::size_t kLongest = 40;
  std::vector<std::string> names;
  names.reserve(places.size());
  for (const InnerQueryPlace& place : places) {
    names.push_back(ShortWithQueries(text.substr(place.begin - 1, place.end - place.begin + 2)));
  }
  const std::vector<std::string> byTables = names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (std::ranges::count(byTables, byTables[i]) == 1) continue;
    const std::string query = OnOneLine(text.substr(places[i].begin, places[i].end - places[i].begin));
    const std::string_view begin = Trim(FirstCharacters(query, kLongest));
    names[i] = "(" + std::string(begin) + (begin.size() < query.size() ? "\u2026)" : ")");
  }
  return names;
}

// An entry for each query of a text, which `open` opens by its number from 1.
template <typename Open>
Menu OpenEntries(qbQueryBuilder& hub, const std::string& text, const Open& open) {
  Menu menu;
  const std::vector<std::string> names = NamesOf(text, InnerQueriesIn(text));
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto number = static_cast<std::int32_t>(i) + 1;
    const Phrase name = names.size() == 1 ? Phrase(text::MenuOpenQuery) : Phrase(text::OpenThisQuery, InMenu(names[i]));
    menu.push_back({hub.Say(name), i == 0 ? KeyTextOf(Command::GoToQueryAtCaret) : std::string(),
                    OnHub(hub, [=](qbQueryBuilder& now) { open(now, number); })});
  }
  return menu;
}

// The one of a join's relationships whose condition has queries; nothing when none has, and for one that is not drawn.
Ref<qbRelationship> WithQueries(const Ref<qbRelationship>& join) {
  const Ref<qbWholeJoin> whole = WholeOf(*join);
  if (!whole) return nullptr;
  for (const Ref<qbRelationship>& one : *whole) {
    if (!InnerQueriesIn(one->Condition()).empty()) return one;
  }
  return nullptr;
}

}  // namespace

Menu MenuOfQueriesInJoin(qbQueryBuilder& hub, const Ref<qbRelationship>& join) {
  const Ref<qbRelationship> one = WithQueries(join);
  if (!one) return {};
  const WeakRef<qbRelationship> known = one;
  return OpenEntries(hub, one->Condition(), [known](qbQueryBuilder& now, std::int32_t number) {
    if (const Ref<qbRelationship> still = known.lock()) now.ShowQueryInJoin(still, number);
  });
}

bool OpenQueryInJoin(qbQueryBuilder& hub, const Ref<qbRelationship>& join) {
  const Ref<qbRelationship> one = WithQueries(join);
  if (one) hub.ShowQueryInJoin(one, 1);
  return one != nullptr;
}

Menu MenuOfQueriesInCell(qbQueryBuilder& hub, std::int32_t row, std::int32_t column) {
  Menu menu = OpenEntries(hub, TextOfCell(hub, row, column),
                          [=](qbQueryBuilder& now, std::int32_t number) { now.ShowQueryInCell(row, column, number); });
  const bool isCriterion = column >= kColumnCriteria && !TextOfCell(hub, row, kColumnColumn).empty();
  if (menu.empty() && isCriterion) {
    menu.push_back({hub.Say(text::NewSubqueryItem), "",
                    OnHub(hub, [=](qbQueryBuilder& now) { now.AddQueryInCell(row, column); })});
  }
  return menu;
}

bool OpenQueryInCell(qbQueryBuilder& hub, std::int32_t row, std::int32_t column) {
  if (InnerQueriesIn(TextOfCell(hub, row, column)).empty()) return false;
  hub.ShowQueryInCell(row, column, 1);
  return true;
}

bool OpenQueryNamed(qbQueryBuilder& hub, const std::string& name) {
  const QuerySet& set = hub.QueriesNow();
  const StoredQuery* named = set.IsSingle() ? nullptr : set.FindNamed(set.shown, name);
  return named && hub.ShowQuery(named->id);
}

namespace {

// Nothing where a listener has taken the join away.
void SelectJoin(const qbQueryBuilder& hub, const JoinPlace& place) {
  const Ref<qbEntities> tables = hub.Entities();
  const Ref<qbEntity> table = tables ? tables->Item(static_cast<std::int32_t>(place.table) + 1) : nullptr;
  const auto number = static_cast<std::int32_t>(place.join) + 1;
  if (!table || number > table->Relationships()->Count()) return;
  hub.DiagramPane()->SelectObject(table->Relationships()->Item(number));
}

}  // namespace

bool LeaveQuery(qbQueryBuilder& hub) {
  const StoredQuery shown = hub.QueriesNow().Shown();
  const Ref<qbQueryBuilder> alive = hub.Hub();  // a listener may let go of it
  if (shown.kind == QueryMain || !hub.ShowQuery(shown.parent)) return false;
  if (shown.kind != QueryInCell) return true;
  if (shown.cell.join) {
    SelectJoin(hub, *shown.cell.join);
    return true;
  }
  const Ref<qbGridPane> grid = hub.GridPane();
  const auto row = static_cast<std::int32_t>(shown.cell.row) + 1;
  const auto column = static_cast<std::int32_t>(shown.cell.column);
  const bool isThere = grid && column >= 1 && column <= grid->ColumnCount() && row <= grid->RowCount();
  if (isThere) grid->Grid()->GotoRowCol(row, column);
  return true;
}

void AddInnerQuery(qbQueryBuilder& hub, QueryKindEnum kind) {
  const Ref<qbQueryBuilder> alive = hub.Hub();  // a listener may let go of it
  const std::int32_t id = hub.AddQuery(kind, {});
  const StoredQuery* added = hub.QueriesNow().Find(id);
  if (!added) return;
  if (kind == QueryMember) {
    hub.ShowQuery(id);
    return;
  }
  if (!hub.Entities() || !hub.DiagramPane()) return;
  for (const Ref<qbEntity>& entity : *hub.Entities()) {
    if (entity->TagVariant().Text() == added->name) return hub.DiagramPane()->SelectObject(entity);
  }
}

}  // namespace zrqrybld
