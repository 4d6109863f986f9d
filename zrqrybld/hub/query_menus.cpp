#include "zrqrybld/hub/query_menus.h"

#include <functional>
#include <optional>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/command_entry.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"

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
  const std::optional<std::string> name = hub.GetToolkit().GetDialogs().ShowTextPrompt(dialog);
  if (name && hub.QueriesNow().Find(id)) hub.RenameQuery(id, *name);
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
  if (query->kind == QueryMain) return menu;
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

bool OpenQueryNamed(qbQueryBuilder& hub, const std::string& name) {
  const QuerySet& set = hub.QueriesNow();
  const StoredQuery* named = set.IsSingle() ? nullptr : set.FindNamed(set.shown, name);
  return named && hub.ShowQuery(named->id);
}

bool LeaveQuery(qbQueryBuilder& hub) {
  const StoredQuery& shown = hub.QueriesNow().Shown();
  return shown.kind != QueryMain && hub.ShowQuery(shown.parent);
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
