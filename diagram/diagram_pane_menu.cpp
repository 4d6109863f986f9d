// The pane's context menus. A host application may change each before it is shown.
#include <algorithm>

#include "base/text.h"
#include "diagram/diagram_pane.h"
#include "diagram/join_properties.h"
#include "diagram/relationships.h"

namespace zrqrybld {
namespace {

// A name inside a menu's text: its ampersands mark no access key.
std::string InMenu(const std::string& name) { return ReplaceAll(name, "&", "&&"); }

}  // namespace

// Below the selected box's caption, on the selected line's middle, as far as they can be seen.
PixelPoint qbDiagramPane::MenuPlaceOfSelection() const {
  PixelRect place{kSurfaceMargin, kSurfaceMargin, {}, {}};
  if (const Ref<qbEntity> entity = SelectedEntity(); entity && entity->EntityBox()) {
    place = PlaceOf(*entity->EntityBox());
    place.top += CurrentBoxMetrics().captionHeight * zoom_;
  } else if (const Ref<qbRelationship> join = SelectedJoin(); join && join->Line()) {
    const std::vector<PixelPoint>& points = join->Line()->Points(GetSurface().Scale());
    if (points.size() > 2) place = ToPane({points[1].x, (points[1].y + points[2].y) / 2, {}, {}});
  }
  const PixelSize view = GetSurface().ViewSize();
  return {std::clamp(place.left, 0_px, std::max(view.width, 0_px)),
          std::clamp(place.top, 0_px, std::max(view.height, 0_px))};
}

void qbDiagramPane::ShowContextMenu(const Ref<Object>& object, PixelPoint at) {
  SelectObject(object);
  if (object && selected_ != object) return;  // a listener has removed it or selected another
  Menu menu;
  if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) {
    menu = MenuForBox(entity);
  } else if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    menu = MenuForJoin(join);
  } else {
    menu = MenuForSurface();
  }
  BeforeContextMenu.Raise(object, menu);
  if (!menu.empty()) GetSurface().ShowMenu(menu, at);
}

Menu qbDiagramPane::MenuForSurface() {
  const Ref<QueryContext> context = Context();
  const bool any = entities_->Count() > 0;
  return {
      {"&Add Tables...", "F7", [context] { context->RequestTables(); }, context && context->IsConnected()},
      MenuEntry::Separator(),
      {"A&rrange", "", [this] { Arrange(); }, any},
      {"&Fit to Window", "", [this] { ZoomToFit(); }, any},
      {"&100 %", "Ctrl+0", [this] { SetZoom(1, {}); }, zoom_ != 1},
  };
}

Menu qbDiagramPane::MenuForBox(const Ref<qbEntity>& entity) {
  const Ref<qbEntityList> box = entity->EntityBox();
  const bool minimized = box->Minimized();
  return {
      {"Tick &All Columns", "", [this, entity] { CheckAll(entity, true, false); }},
      {"Tick &Key Columns", "", [this, entity] { CheckAll(entity, true, true); }},
      {"&Untick All Columns", "", [this, entity] { CheckAll(entity, false, false); }},
      MenuEntry::Separator(),
      {minimized ? "R&estore" : "&Minimise", "", [box, minimized] { box->SetMinimized(!minimized); }},
      {"&Fit to Columns", "", [this, box] { FitBox(box); }, !minimized},
      MenuEntry::Separator(),
      {"&Remove", "Del", [this] { DeleteSelected(); }},
  };
}

Menu qbDiagramPane::MenuForJoin(const Ref<qbRelationship>& join) {
  const Ref<qbEntity> source = join->Source();
  const Ref<qbEntity> target = join->Target();
  const Ref<QueryContext> context = Context();
  const auto kind = [&](std::int32_t value, const std::string& text) {
    return MenuEntry{text, "",
                     [this, join, value] {
                       const Ref<QueryContext> hub = Context();
                       const StepScope step(hub, "Edit join");
                       SetJoinKind(*join, value);
                       if (hub) hub->QueryChanged();
                     },
                     true, join->Kind() == value};
  };
  return {
      kind(0, "&Matching Rows Only"),
      kind(JoinAllOfSource, "All Rows from &" + InMenu(source->Caption())),
      kind(JoinAllOfTarget, "All Rows from &" + InMenu(target->Caption())),
      kind(JoinAllOfSource | JoinAllOfTarget, "All Rows from &Both"),
      MenuEntry::Separator(),
      {"&Properties...", "Enter", [context, join] { context->RelationshipActivated(join); }, context != nullptr},
      {"&Delete", "Del", [this] { DeleteSelected(); }},
  };
}

void qbDiagramPane::CheckAll(const Ref<qbEntity>& entity, bool checked, bool onlyKeys) {
  const StepScope step(Context(), checked ? "Tick columns" : "Untick columns");
  for (std::int32_t i = 1; i <= entity->Items()->Count(); ++i) {
    const Ref<qbEntityItem> item = entity->Items()->Item(i);
    if (item->Text() == "*" && checked) continue;  // all columns are ticked one by one
    if (!onlyKeys || item->Bold()) item->SetChecked(checked);
  }
}

}  // namespace zrqrybld
