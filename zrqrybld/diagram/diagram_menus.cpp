#include "zrqrybld/diagram/diagram_menus.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/auto_joins.h"
#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_edits.h"
#include "zrqrybld/diagram/diagram_layout.h"
#include "zrqrybld/diagram/diagram_minimap.h"
#include "zrqrybld/diagram/diagram_pictures.h"
#include "zrqrybld/diagram/diagram_properties.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/key_join.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/host/command_entry.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {
namespace {

using Targets = DiagramMenuTargets;

Menu MenuForSurface(const Targets& targets) {
  const Ref<QueryContext> context = targets.site.Context();
  const CommandGround ground{.connection = context && context->source.IsConnected(),
                             .tables = targets.entities.Count() > 0};
  const auto entry = [&](Command command, std::function<void()> action, bool enabled = true) {
    return EntryFor(context, command, std::move(action), enabled && CanGive(command, ground));
  };
  MenuEntry minimap = entry(Command::ShowMinimap, [&map = targets.minimap] { map.Show(!map.Shown()); });
  minimap.checked = targets.minimap.Shown();
  Menu menu{entry(Command::AddTables, [&edits = targets.edits] { edits.RequestTables(); })};
  if (context) std::ranges::move(context->design.MenuOfNewQueries(), std::back_inserter(menu));
  Menu view{
      MenuEntry::Separator(),
      entry(Command::Arrange, [&layout = targets.layout] { layout.Arrange(); }),
      entry(Command::FitToWindow, [&camera = targets.camera] { camera.ZoomToFit(); }),
      entry(
          Command::ActualSize, [&camera = targets.camera] { camera.SetZoom(1, {}); }, targets.camera.Zoom() != 1),
      minimap,
      MenuEntry::Separator(),
      entry(Command::SelectAllTables,
            [&selection = targets.selection, &entities = targets.entities] { selection.SelectAll(entities); }),
      entry(Command::CopyPicture, [&pictures = targets.pictures] { pictures.Copy(); }),
      entry(
          Command::SavePicture, [&pictures = targets.pictures] { pictures.AskToSave(); }, context != nullptr),
  };
  std::ranges::move(view, std::back_inserter(menu));
  return menu;
}

// The tables that the source's foreign keys link to this one, each with its joins.
MenuEntry RelatedTo(const Targets& targets, const qbEntity& entity) {
  constexpr std::size_t kMost = 30;
  MenuEntry related{Say(targets.site.Context(), text::MenuAddRelated), ""};
  const Ref<QueryContext> context = targets.site.Context();
  std::vector<std::string> names;
  try {
    if (context) names = RelatedTables(*context, entity);
  } catch (const Error&) {
    // A source that cannot tell leaves the rest of the menu as it is.
  }
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    related.entries.push_back({InMenu(names[i]), "", [&site = targets.site, name = names[i]] {
                                 TablePicker(site.Context()).AddTables({name});
                               }});
  }
  if (names.size() > 1) {
    related.entries.push_back(MenuEntry::Separator());
    related.entries.push_back({Say(targets.site.Context(), text::MenuAllOfThem), "",
                               [&site = targets.site, names] { TablePicker(site.Context()).AddTables(names); }});
  }
  related.enabled = !names.empty();
  return related;
}

// The table at the join's end may be added again where there is a source that tells its columns.
MenuEntry JoinAgainEntry(const Targets& targets, const Ref<qbRelationship>& join, const Ref<qbEntity>& end) {
  const Ref<QueryContext> context = targets.site.Context();
  return {Say(context, text::MenuJoinAgain), "", [&edits = targets.edits, join, end] { edits.JoinAgain(join, end); },
          context && context->source.IsConnected()};
}

// A table with joins to several others is asked for the one that it is to be joined to again.
MenuEntry BoxAgainEntry(const Targets& targets, const Ref<qbEntity>& entity) {
  constexpr std::size_t kMost = 30;
  std::vector<Ref<qbRelationship>> joins;
  std::unordered_set<const qbWholeJoin*> seen;
  for (const Ref<qbLine>& line : targets.scene.LinesAt(*entity->EntityBox())) {
    const Ref<qbRelationship> join = line->Relationship();
    if (!join || join->Source() == join->Target() || !seen.insert(line->Whole().get()).second) continue;
    joins.push_back(join);
    if (joins.size() == kMost) break;
  }
  if (joins.size() == 1) return JoinAgainEntry(targets, joins.front(), entity);
  MenuEntry again = JoinAgainEntry(targets, nullptr, entity);
  again.enabled = again.enabled && !joins.empty();
  again.action = {};
  for (const Ref<qbRelationship>& join : joins) {
    MenuEntry one = JoinAgainEntry(targets, join, entity);
    one.text = InMenu((join->Source() == entity ? join->Target() : join->Source())->Caption());
    again.entries.push_back(std::move(one));
  }
  return again;
}

Menu MenuForBox(const Targets& targets, const Ref<qbEntity>& entity) {
  DiagramEdits& edits = targets.edits;
  const Ref<qbEntityList> box = entity->EntityBox();
  const bool minimized = box->Minimized();
  const bool several = !targets.selection.Others().empty();
  Menu menu;
  if (const Ref<QueryContext> context = targets.site.Context()) {
    menu = context->design.MenuOfQuery(entity->TagVariant().Text());
    if (!menu.empty()) menu.push_back(MenuEntry::Separator());
  }
  Menu ofTable{
      EntryFor(
          targets.site.Context(), Command::RenameTable, [&edits, entity] { edits.AskForAlias(entity); },
          targets.site.Context() != nullptr),
      BoxAgainEntry(targets, entity),
      MenuEntry::Separator(),
      {Say(targets.site.Context(), text::MenuTickAll), "",
       [&edits, entity] { edits.TickColumns(entity, true, false); }},
      {Say(targets.site.Context(), text::MenuTickKeys), "",
       [&edits, entity] { edits.TickColumns(entity, true, true); }},
      {Say(targets.site.Context(), text::MenuUntickAll), "",
       [&edits, entity] { edits.TickColumns(entity, false, false); }},
      MenuEntry::Separator(),
      RelatedTo(targets, *entity),
      MenuEntry::Separator(),
      {Say(targets.site.Context(), minimized ? text::MenuRestore : text::MenuMinimise),
       KeyTextOf(Command::MinimizeTable), [&edits, box, minimized] { edits.Minimize(*box, !minimized); }},
      {Say(targets.site.Context(), text::MenuFitColumns), "", [&edits, box] { edits.FitBox(box); }, !minimized},
      MenuEntry::Separator(),
      {Say(targets.site.Context(), several ? text::MenuRemoveSelected : text::MenuRemove),
       KeyTextOf(Command::DeleteSelected), [&edits] { edits.DeleteSelected(); }},
  };
  std::ranges::move(ofTable, std::back_inserter(menu));
  return menu;
}

// What the grid can be told of a column; the box's own menu stands below. No entry holds the context: whoever keeps a
// menu would keep the designer.
Menu MenuForColumn(const Targets& targets, const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
  const Ref<QueryContext> context = targets.site.Context();
  const std::string table = entity->Caption();
  const std::string column = item->Text();
  const std::optional<ColumnUse> use = context ? context->design.UseOfColumn(table, column) : std::nullopt;
  const bool all = column == "*";
  const auto report = [&site = targets.site](const auto& what) {
    if (const Ref<QueryContext> now = site.Context()) what(now->reports);
  };
  MenuEntry sort{Say(targets.site.Context(), text::MenuSort), "", {}, use && !all};
  for (const auto& [name, type] :
       {std::pair{text::MenuAscending, "Ascending"}, {text::MenuDescending, "Descending"}, {text::MenuUnsorted, ""}}) {
    sort.entries.push_back(
        {Say(context, name), "",
         [=, type = type] { report([&](DesignReports& to) { to.SortByColumn(table, column, type); }); }, true,
         use && EqualsNoCase(use->sortType, type)});
  }
  MenuEntry group{Say(targets.site.Context(), text::MenuGroup), "", {}, use.has_value()};
  if (use) {
    for (const Ref<qbDBFunction>& function : *context->source.DBFunctions()) {
      if ((function->Flags() & 1) == 0) continue;
      group.entries.push_back(
          {InMenu(function->DisplayText()), "",
           [=, name = function->Name()] { report([&](DesignReports& to) { to.GroupColumn(table, column, name); }); },
           true, EqualsNoCase(use->groupBy, function->DisplayText())});
    }
  }
  return {
      {Say(targets.site.Context(), text::MenuOutput), KeyTextOf(Command::TickColumn),
       [entity, column] {
         const Ref<qbEntityItem> now = entity->Items()->FindByText(column, true);
         if (now) now->SetChecked(!now->Checked());
       },
       true, item->Checked()},
      std::move(sort),
      std::move(group),
      {Say(targets.site.Context(), text::MenuAddCriterion), "",
       [=] { report([&](DesignReports& to) { to.GoToCriterion(table, column); }); }, use && !all},
      MenuEntry::Separator(),
      EntryFor(
          context, Command::JoinFromHere, [&keyJoin = targets.keyJoin] { keyJoin.Begin(); }, !all),
      MenuEntry::Separator(),
      {Say(targets.site.Context(), text::MenuTable), "", {}, true, false, MenuForBox(targets, entity)},
  };
}

// Only the kinds that the dialect can write, and the one that the join has.
MenuEntry KindsOf(const Targets& targets, const qbWholeJoin& whole, const Ref<qbRelationship>& join) {
  const Ref<QueryContext> context = targets.site.Context();
  const JoinKind now = whole.KindFor(*join);
  const auto kind = [&](JoinKind value, const std::string& text) {
    return MenuEntry{text, "", [&edits = targets.edits, join, value] { edits.SetKind(join, value); }, true,
                     now == value};
  };
  MenuEntry kinds{Say(targets.site.Context(), text::MenuKind), ""};
  kinds.entries = {
      kind({}, Say(targets.site.Context(), text::MenuMatchingOnly)),
      kind({.allOfSource = true}, Say(context, {text::MenuAllRowsFrom, InMenu(join->Source()->Caption())})),
      kind({.allOfTarget = true}, Say(context, {text::MenuAllRowsFrom, InMenu(join->Target()->Caption())}))};
  const bool hasFull = !context || context->design.HasFullJoin();
  MenuEntry full =
      kind({.allOfTarget = true, .allOfSource = true}, Say(targets.site.Context(), text::MenuAllRowsFromBoth));
  full.enabled = hasFull;
  if (hasFull || full.checked) kinds.entries.push_back(std::move(full));
  kinds.entries.push_back(MenuEntry::Separator());
  const std::string source = InMenu(join->Source()->Caption());
  const std::string target = InMenu(join->Target()->Caption());
  const auto question = [&](JoinExistenceEnum existence, TextId name, const std::string& asks,
                            const std::string& asked) {
    kinds.entries.push_back(kind(JoinKind::Asking(existence), Say(context, {name, asks, asked})));
  };
  question(JoinTargetExists, text::MenuWithTarget, source, target);
  question(JoinTargetMissing, text::MenuWithoutTarget, source, target);
  question(JoinSourceExists, text::MenuWithSource, target, source);
  question(JoinSourceMissing, text::MenuWithoutSource, target, source);
  return kinds;
}

// The pairs of columns that can go without the join going with them.
MenuEntry PairsOf(const Targets& targets, const qbWholeJoin& whole) {
  constexpr std::size_t kMost = 30;
  MenuEntry pairs{Say(targets.site.Context(), text::MenuRemovePair), ""};
  const std::vector<Ref<qbRelationship>> joins = whole.Relationships();
  for (std::size_t i = 0; i < std::min(joins.size(), kMost); ++i) {
    pairs.entries.push_back({InMenu(IsConditionAlone(*joins[i]) ? joins[i]->Condition() : DescribeEnds(*joins[i])), "",
                             [&edits = targets.edits, join = joins[i]] { edits.RemovePair(join); }});
  }
  return pairs;
}

Menu MenuForJoin(const Targets& targets, const Ref<qbRelationship>& join) {
  DiagramEdits& edits = targets.edits;
  const Ref<QueryContext> context = targets.site.Context();
  const Ref<qbWholeJoin> whole = WholeOf(*join);
  Menu menu{
      KindsOf(targets, *whole, join),
      EntryFor(
          context, Command::OpenSelected,
          [&site = targets.site, join] {
            if (const Ref<QueryContext> now = site.Context()) now->reports.RelationshipActivated(join);
          },
          context && context->design.CanEditJoins()),
      {Say(targets.site.Context(), text::MenuReverse), "", [&edits, join] { edits.ReverseJoin(join); },
       whole->CanReverse()},
      JoinAgainEntry(targets, join, join->Target()),
      MenuEntry::Separator(),
      EntryFor(context, Command::DeleteSelected, [&edits] { edits.DeleteSelected(); }),
  };
  if (whole->Count() > 1) menu.insert(menu.end() - 1, PairsOf(targets, *whole));
  Menu ofQueries = context ? context->design.MenuOfJoin(join) : Menu();
  if (ofQueries.empty()) return menu;
  ofQueries.push_back(MenuEntry::Separator());
  menu.insert(menu.begin(), ofQueries.begin(), ofQueries.end());
  return menu;
}

}  // namespace

PixelPoint MenuPlaceOfSelection(const DiagramMenuTargets& targets) {
  const Surface& surface = targets.site.GetSurface();
  PixelRect place{kSurfaceMargin, kSurfaceMargin, {}, {}};
  if (const Ref<qbEntity> entity = targets.selection.Entity(); entity && entity->EntityBox()) {
    place = targets.camera.PlaceOf(*entity->EntityBox());
    place.top += targets.properties.MetricsOn(surface).captionHeight * targets.camera.Zoom();
  } else if (const Ref<qbRelationship> join = targets.selection.Join(); join && join->Line()) {
    const std::vector<PixelPoint>& points = join->Line()->Points(surface.Scale());
    if (points.size() > 2) place = targets.camera.ToPane({points[1].x, (points[1].y + points[2].y) / 2, {}, {}});
  }
  const PixelSize view = surface.ViewSize();
  return {std::clamp(place.left, 0_px, std::max(view.width, 0_px)),
          std::clamp(place.top, 0_px, std::max(view.height, 0_px))};
}

void ShowContextMenu(const DiagramMenuTargets& targets, const Ref<Object>& object, std::size_t row, PixelPoint at) {
  DiagramSelection& selection = targets.selection;
  if (!selection.Contains(object)) selection.Select(object);  // a group stays selected
  if (object && !selection.Contains(object)) return;          // a listener has removed it or selected another
  Ref<Object> shown = object;
  Menu menu;
  if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) {
    if (const Ref<qbEntityItem> item = entity->Items()->Item(static_cast<std::int32_t>(row))) {
      entity->EntityBox()->SetSelectedRow(row);
      shown = item;
      menu = MenuForColumn(targets, entity, item);
    } else {
      menu = MenuForBox(targets, entity);
    }
  } else if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    menu = MenuForJoin(targets, join);
  } else {
    menu = MenuForSurface(targets);
  }
  targets.site.BeforeContextMenu.Raise(shown, menu);
  if (!menu.empty()) targets.site.GetSurface().ShowMenu(menu, at);
}

}  // namespace zrqrybld
