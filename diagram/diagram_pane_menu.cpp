// The pane's context menus. A host application may change each before it is shown.
#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "base/texts_diagram.h"
#include "diagram/auto_joins.h"
#include "diagram/diagram_pane.h"
#include "diagram/join_properties.h"
#include "diagram/relationships.h"
#include "diagram/table_picker.h"
#include "platform/commands.h"

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

// `row` is the box's row that is meant, 0 for the whole box.
void qbDiagramPane::ShowContextMenu(const Ref<Object>& object, std::size_t row, PixelPoint at) {
  if (!IsSelected(object)) SelectObject(object);  // a group stays selected
  if (object && !IsSelected(object)) return;      // a listener has removed it or selected another
  Ref<Object> shown = object;
  Menu menu;
  if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) {
    if (const Ref<qbEntityItem> item = entity->Items()->Item(static_cast<std::int32_t>(row))) {
      entity->EntityBox()->SetSelectedRow(row);
      shown = item;
      menu = MenuForColumn(entity, item);
    } else {
      menu = MenuForBox(entity);
    }
  } else if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
    menu = MenuForJoin(join);
  } else {
    menu = MenuForSurface();
  }
  BeforeContextMenu.Raise(shown, menu);
  if (!menu.empty()) GetSurface().ShowMenu(menu, at);
}

Menu qbDiagramPane::MenuForSurface() {
  const Ref<QueryContext> context = Context();
  const bool any = entities_->Count() > 0;
  return {
      {Say(Context(), text::MenuAddTables), KeyTextOf(Command::AddTables), [this] { RequestTables(); },
       context && context->IsConnected()},
      MenuEntry::Separator(),
      {Say(Context(), text::MenuArrange), "", [this] { Arrange(); }, any},
      {Say(Context(), text::MenuFitWindow), "", [this] { ZoomToFit(); }, any},
      {Say(Context(), text::MenuActualSize), KeyTextOf(Command::ActualSize), [this] { SetZoom(1, {}); }, zoom_ != 1},
      MenuEntry::Separator(),
      {Say(Context(), text::MenuSelectAll), KeyTextOf(Command::SelectAllTables), [this] { SelectAll(); }, any},
      {Say(Context(), text::MenuCopyPicture), KeyTextOf(Command::CopyPicture), [this] { CopyPicture(); }, any},
      {Say(Context(), text::MenuSavePicture), "", [this] { AskToSavePicture(); }, any && context},
  };
}

Menu qbDiagramPane::MenuForBox(const Ref<qbEntity>& entity) {
  const Ref<qbEntityList> box = entity->EntityBox();
  const bool minimized = box->Minimized();
  const bool several = !alsoSelected_.empty();
  return {
      {Say(Context(), text::MenuAlias), KeyTextOf(Command::RenameTable), [this, entity] { AskForAlias(entity); },
       Context() != nullptr},
      MenuEntry::Separator(),
      {Say(Context(), text::MenuTickAll), "", [this, entity] { CheckAll(entity, true, false); }},
      {Say(Context(), text::MenuTickKeys), "", [this, entity] { CheckAll(entity, true, true); }},
      {Say(Context(), text::MenuUntickAll), "", [this, entity] { CheckAll(entity, false, false); }},
      MenuEntry::Separator(),
      RelatedTo(entity),
      MenuEntry::Separator(),
      {Say(Context(), minimized ? text::MenuRestore : text::MenuMinimise), KeyTextOf(Command::MinimizeTable),
       [this, box, minimized] { Minimize(*box, !minimized); }},
      {Say(Context(), text::MenuFitColumns), "",
       [this, box] {
         const StepScope step(Context(), kStepResizeTable, box->Caption());
         FitBox(box);
       },
       !minimized},
      MenuEntry::Separator(),
      {Say(Context(), several ? text::MenuRemoveSelected : text::MenuRemove), KeyTextOf(Command::DeleteSelected),
       [this] { DeleteSelected(); }},
  };
}

// The tables that the source's foreign keys link to this one, each with its joins.
MenuEntry qbDiagramPane::RelatedTo(const Ref<qbEntity>& entity) {
  constexpr std::size_t kMost = 30;
  MenuEntry related{Say(Context(), text::MenuAddRelated), ""};
  const Ref<QueryContext> context = Context();
  std::vector<std::string> names;
  try {
    if (context) names = RelatedTables(*context, *entity);
  } catch (const Error&) {
    // A source that cannot tell leaves the rest of the menu as it is.
  }
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    related.entries.push_back(
        {InMenu(names[i]), "", [context, name = names[i]] { TablePicker(context).AddTables({name}); }});
  }
  if (names.size() > 1) {
    related.entries.push_back(MenuEntry::Separator());
    related.entries.push_back(
        {Say(Context(), text::MenuAllOfThem), "", [context, names] { TablePicker(context).AddTables(names); }});
  }
  related.enabled = !names.empty();
  return related;
}

// What the grid can be told of a column; the box's own menu stands below.
Menu qbDiagramPane::MenuForColumn(const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
  const Ref<QueryContext> context = Context();
  const std::string table = entity->Caption();
  const std::string column = item->Text();
  const std::optional<ColumnUse> use = context ? context->UseOfColumn(table, column) : std::nullopt;
  const bool all = column == "*";
  MenuEntry sort{Say(Context(), text::MenuSort), "", {}, use && !all};
  for (const auto& [name, type] :
       {std::pair{text::MenuAscending, "Ascending"}, {text::MenuDescending, "Descending"}, {text::MenuUnsorted, ""}}) {
    sort.entries.push_back({Say(context, name), "", [=, type = type] { context->SortByColumn(table, column, type); },
                            true, use && EqualsNoCase(use->sortType, type)});
  }
  MenuEntry group{Say(Context(), text::MenuGroup), "", {}, use.has_value()};
  for (std::int32_t i = 1; use && i <= context->DBFunctions()->Count(); ++i) {
    const Ref<qbDBFunction> function = context->DBFunctions()->Item(i);
    if ((function->Flags() & 1) == 0) continue;
    group.entries.push_back({InMenu(function->DisplayText()), "",
                             [=, name = function->Name()] { context->GroupColumn(table, column, name); }, true,
                             EqualsNoCase(use->groupBy, function->DisplayText())});
  }
  return {
      {Say(Context(), text::MenuOutput), KeyTextOf(Command::TickColumn),
       [entity, column] {
         const Ref<qbEntityItem> now = entity->Items()->FindByText(column, true);
         if (now) now->SetChecked(!now->Checked());
       },
       true, item->Checked()},
      std::move(sort),
      std::move(group),
      {Say(Context(), text::MenuAddCriterion), "", [=] { context->GoToCriterion(table, column); }, use && !all},
      MenuEntry::Separator(),
      {Say(Context(), text::MenuJoinFromHere), KeyTextOf(Command::JoinFromHere), [this] { BeginKeyJoin(); }, !all},
      MenuEntry::Separator(),
      {Say(Context(), text::MenuTable), "", {}, true, false, MenuForBox(entity)},
  };
}

// Only the kinds that the dialect can write, and the one that the join has.
MenuEntry qbDiagramPane::KindsOf(const Ref<qbRelationship>& join) {
  const Ref<QueryContext> context = Context();
  const auto kind = [&](JoinKind value, const std::string& text) {
    return MenuEntry{text, "",
                     [this, join, value] {
                       const Ref<QueryContext> hub = Context();
                       const StepScope step(hub, kStepEditJoin);
                       SetJoinKind(*join, value);
                       if (hub) hub->QueryChanged();
                     },
                     true, join->Kind() == value};
  };
  MenuEntry kinds{Say(Context(), text::MenuKind), ""};
  kinds.entries = {
      kind({}, Say(Context(), text::MenuMatchingOnly)),
      kind({.allOfSource = true}, Say(context, {text::MenuAllRowsFrom, InMenu(join->Source()->Caption())})),
      kind({.allOfTarget = true}, Say(context, {text::MenuAllRowsFrom, InMenu(join->Target()->Caption())}))};
  const bool hasFull = !context || context->HasFullJoin();
  MenuEntry full = kind({.allOfTarget = true, .allOfSource = true}, Say(Context(), text::MenuAllRowsFromBoth));
  full.enabled = hasFull;
  if (hasFull || full.checked) kinds.entries.push_back(std::move(full));
  return kinds;
}

Menu qbDiagramPane::MenuForJoin(const Ref<qbRelationship>& join) {
  const Ref<QueryContext> context = Context();
  return {
      KindsOf(join),
      {Say(Context(), text::MenuProperties), KeyTextOf(Command::OpenSelected),
       [context, join] { context->RelationshipActivated(join); }, context && context->CanEditJoins()},
      {Say(Context(), text::MenuReverse), "", [this, join] { ReverseJoin(join); }},
      MenuEntry::Separator(),
      {Say(Context(), text::MenuDelete), KeyTextOf(Command::DeleteSelected), [this] { DeleteSelected(); }},
  };
}

// The join begins at the other end from now on. It returns the same rows; each end keeps its mark and its picture.
void qbDiagramPane::ReverseJoin(const Ref<qbRelationship>& join) {
  const Ref<qbEntity> source = join->Source();
  const Ref<qbEntity> target = join->Target();
  if (!source || !target) return;
  const Ref<QueryContext> context = Context();
  const StepScope step(context, kStepReverseJoin);
  const JoinKind kind = join->Kind();
  source->Relationships()->Remove(join->Index());
  if (!source->EntityBox() || !target->EntityBox()) return;  // a listener has removed one
  const Ref<qbRelationship> reversed = target->Relationships()->Add(source);
  reversed->SetLeftPicture(join->RightPicture());
  reversed->SetRightPicture(join->LeftPicture());
  reversed->SetSourceItemIndex(join->TargetItemIndex());
  reversed->SetTargetItemIndex(join->SourceItemIndex());
  SetJoinKind(*reversed, kind.Reversed());
  SelectObject(reversed);
}

void qbDiagramPane::AskForAlias(const Ref<qbEntity>& entity) {
  const Ref<QueryContext> context = Context();
  if (!context || !entity->EntityBox()) return;
  TextDialog dialog{context->Say(text::AliasCaption), context->Say(text::AliasLabel), entity->Caption()};
  dialog.problem = [this, entity](const std::string& text) -> std::string {
    if (text.find_first_not_of(' ') == std::string::npos) return Say(Context(), text::AliasNeeded);
    const Ref<qbEntity> other = entities_->Item(text);
    return other && other != entity ? Say(Context(), text::AliasTaken) : "";
  };
  const std::optional<std::string> name = context->GetToolkit().GetDialogs().ShowTextPrompt(dialog);
  if (name && entity->EntityBox() && dialog.problem(*name).empty()) entity->SetCaption(*name);
}

void qbDiagramPane::CheckAll(const Ref<qbEntity>& entity, bool checked, bool onlyKeys) {
  if (!entity->EntityBox()) return;  // a listener of the menu has removed it
  const StepScope step(Context(), checked ? kStepTickColumns : kStepUntickColumns, entity->Caption());
  for (std::int32_t i = 1; i <= entity->Items()->Count(); ++i) {
    const Ref<qbEntityItem> item = entity->Items()->Item(i);
    if (item->Text() == "*" && checked) continue;  // all columns are ticked one by one
    if (!onlyKeys || item->Bold()) item->SetChecked(checked);
  }
}

}  // namespace zrqrybld
