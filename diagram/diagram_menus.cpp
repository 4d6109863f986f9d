#include "diagram/diagram_menus.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "diagram/auto_joins.h"
#include "diagram/diagram_camera.h"
#include "diagram/diagram_edits.h"
#include "diagram/diagram_pictures.h"
#include "diagram/diagram_properties.h"
#include "diagram/diagram_selection.h"
#include "diagram/diagram_site.h"
#include "diagram/entities.h"
#include "diagram/join_line.h"
#include "diagram/join_properties.h"
#include "diagram/key_join.h"
#include "diagram/relationships.h"
#include "diagram/table_picker.h"
#include "host/query_context.h"

namespace zrqrybld {
namespace {

using Targets = DiagramMenuTargets;

// A name inside a menu's text: its ampersands mark no access key.
std::string InMenu(const std::string& name) { return ReplaceAll(name, "&", "&&"); }

Menu MenuForSurface(const Targets& targets) {
  const Ref<QueryContext> context = targets.site.Context();
  const bool any = targets.entities.Count() > 0;
  return {
      {"&Add Tables...", "F7", [&edits = targets.edits] { edits.RequestTables(); }, context && context->IsConnected()},
      MenuEntry::Separator(),
      {"A&rrange", "", [&edits = targets.edits, &camera = targets.camera] { edits.Arrange(camera.VisibleWidth()); },
       any},
      {"&Fit to Window", "", [&camera = targets.camera] { camera.ZoomToFit(); }, any},
      {"&100 %", "Ctrl+0", [&camera = targets.camera] { camera.SetZoom(1, {}); }, targets.camera.Zoom() != 1},
      MenuEntry::Separator(),
      {"&Select All", "Ctrl+A",
       [&selection = targets.selection, &entities = targets.entities] { selection.SelectAll(entities); }, any},
      {"&Copy Picture", "Ctrl+C", [&pictures = targets.pictures] { pictures.Copy(); }, any},
      {"Sa&ve Picture...", "", [&pictures = targets.pictures] { pictures.AskToSave(); }, any && context},
  };
}

// The tables that the source's foreign keys link to this one, each with its joins.
MenuEntry RelatedTo(const Targets& targets, const qbEntity& entity) {
  constexpr std::size_t kMost = 30;
  MenuEntry related{"Add Re&lated Tables", ""};
  const Ref<QueryContext> context = targets.site.Context();
  std::vector<std::string> names;
  try {
    if (context) names = RelatedTables(*context, entity);
  } catch (const Error&) {
    // A source that cannot tell leaves the rest of the menu as it is.
  }
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    related.entries.push_back(
        {InMenu(names[i]), "", [context, name = names[i]] { TablePicker(context).AddTables({name}); }});
  }
  if (names.size() > 1) {
    related.entries.push_back(MenuEntry::Separator());
    related.entries.push_back({"&All of Them", "", [context, names] { TablePicker(context).AddTables(names); }});
  }
  related.enabled = !names.empty();
  return related;
}

Menu MenuForBox(const Targets& targets, const Ref<qbEntity>& entity) {
  DiagramEdits& edits = targets.edits;
  const Ref<qbEntityList> box = entity->EntityBox();
  const bool minimized = box->Minimized();
  const bool several = !targets.selection.Others().empty();
  return {
      {"Alia&s...", "F2", [&edits, entity] { edits.AskForAlias(entity); }, targets.site.Context() != nullptr},
      MenuEntry::Separator(),
      {"Tick &All Columns", "", [&edits, entity] { edits.TickColumns(entity, true, false); }},
      {"Tick &Key Columns", "", [&edits, entity] { edits.TickColumns(entity, true, true); }},
      {"&Untick All Columns", "", [&edits, entity] { edits.TickColumns(entity, false, false); }},
      MenuEntry::Separator(),
      RelatedTo(targets, *entity),
      MenuEntry::Separator(),
      {minimized ? "R&estore" : "&Minimise", "Shift+Space",
       [&edits, box, minimized] { edits.Minimize(*box, !minimized); }},
      {"&Fit to Columns", "", [&edits, box] { edits.FitBox(box); }, !minimized},
      MenuEntry::Separator(),
      {several ? "&Remove Selected Tables" : "&Remove", "Del", [&edits] { edits.DeleteSelected(); }},
  };
}

// What the grid can be told of a column; the box's own menu stands below.
Menu MenuForColumn(const Targets& targets, const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
  const Ref<QueryContext> context = targets.site.Context();
  const std::string table = entity->Caption();
  const std::string column = item->Text();
  const std::optional<ColumnUse> use = context ? context->UseOfColumn(table, column) : std::nullopt;
  const bool all = column == "*";
  MenuEntry sort{"&Sort", "", {}, use && !all};
  for (const auto& [text, type] :
       {std::pair{"&Ascending", "Ascending"}, {"&Descending", "Descending"}, {"&Unsorted", ""}}) {
    sort.entries.push_back({text, "", [=, type = type] { context->SortByColumn(table, column, type); }, true,
                            use && EqualsNoCase(use->sortType, type)});
  }
  MenuEntry group{"&Group or Aggregate", "", {}, use.has_value()};
  if (use) {
    for (const Ref<qbDBFunction>& function : *context->DBFunctions()) {
      if ((function->Flags() & 1) == 0) continue;
      group.entries.push_back({InMenu(function->DisplayText()), "",
                               [=, name = function->Name()] { context->GroupColumn(table, column, name); }, true,
                               EqualsNoCase(use->groupBy, function->DisplayText())});
    }
  }
  return {
      {"&Output", "Space",
       [entity, column] {
         const Ref<qbEntityItem> now = entity->Items()->FindByText(column, true);
         if (now) now->SetChecked(!now->Checked());
       },
       true, item->Checked()},
      std::move(sort),
      std::move(group),
      {"Add &Criterion", "", [=] { context->GoToCriterion(table, column); }, use && !all},
      MenuEntry::Separator(),
      {"&Join from Here", "Ctrl+J", [&keyJoin = targets.keyJoin] { keyJoin.Begin(); }, !all},
      MenuEntry::Separator(),
      {"&Table", "", {}, true, false, MenuForBox(targets, entity)},
  };
}

// Only the kinds that the dialect can write, and the one that the join has.
MenuEntry KindsOf(const Targets& targets, const Ref<qbRelationship>& join) {
  const Ref<QueryContext> context = targets.site.Context();
  const auto kind = [&](JoinKind value, const std::string& text) {
    return MenuEntry{text, "",
                     [&site = targets.site, join, value] {
                       const Ref<QueryContext> hub = site.Context();
                       const StepScope step(hub, kStepEditJoin);
                       SetJoinKind(*join, value);
                       if (hub) hub->QueryChanged();
                     },
                     true, join->Kind() == value};
  };
  MenuEntry kinds{"&Kind", ""};
  kinds.entries = {kind({}, "&Matching Rows Only"),
                   kind({.allOfSource = true}, "All Rows from &" + InMenu(join->Source()->Caption())),
                   kind({.allOfTarget = true}, "All Rows from &" + InMenu(join->Target()->Caption()))};
  const bool hasFull = !context || context->HasFullJoin();
  MenuEntry full = kind({.allOfTarget = true, .allOfSource = true}, "All Rows from &Both");
  full.enabled = hasFull;
  if (hasFull || full.checked) kinds.entries.push_back(std::move(full));
  return kinds;
}

Menu MenuForJoin(const Targets& targets, const Ref<qbRelationship>& join) {
  DiagramEdits& edits = targets.edits;
  const Ref<QueryContext> context = targets.site.Context();
  return {
      KindsOf(targets, join),
      {"&Properties...", "Enter", [context, join] { context->RelationshipActivated(join); },
       context && context->CanEditJoins()},
      {"&Reverse", "", [&edits, join] { edits.ReverseJoin(join); }},
      MenuEntry::Separator(),
      {"&Delete", "Del", [&edits] { edits.DeleteSelected(); }},
  };
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
