#include "zrqrybld/diagram/diagram_keys.h"

#include <algorithm>
#include <string>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_camera.h"
#include "zrqrybld/diagram/diagram_edits.h"
#include "zrqrybld/diagram/diagram_finder.h"
#include "zrqrybld/diagram/diagram_gestures.h"
#include "zrqrybld/diagram/diagram_minimap.h"
#include "zrqrybld/diagram/diagram_mouse.h"
#include "zrqrybld/diagram/diagram_pictures.h"
#include "zrqrybld/diagram/diagram_properties.h"
#include "zrqrybld/diagram/diagram_selection.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/diagram_walk.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/key_join.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_reports.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr double kZoomKeyStep = 1.25;
constexpr int kStretchFirstStep = 4;
constexpr int kStretchLargestStep = 48;

// Whether a key stands for characters rather than for a command. Some keyboards tell AltGr as Ctrl and Alt.
bool Types(const KeyEvent& event) {
  const std::int32_t held = event.shift & (ShiftCtrl | ShiftAlt);
  if (held == ShiftCtrl || held == ShiftAlt) return false;
  const bool visible = !event.text.empty() && static_cast<unsigned char>(event.text.front()) > ' ';
  return visible || event.keyCode == KeyCodeEnter || event.keyCode == KeyCodeSpace;
}

bool IsVertical(std::int32_t arrow) { return arrow == KeyCodeUp || arrow == KeyCodeDown; }

// -1 for the arrows to the left and up, 1 for the others.
int SignOf(std::int32_t arrow) { return arrow == KeyCodeLeft || arrow == KeyCodeUp ? -1 : 1; }

}  // namespace

bool DiagramKeys::Down(const KeyEvent& event) {
  std::int32_t keyCode = event.keyCode;
  site_.KeyDown.Raise(keyCode, event.shift);
  const Key key{keyCode, event.shift};
  if (Asks(key, Command::ScrollDiagram)) return Scroll(keyCode);
  // Where nothing can be moved, one of the keys leaves the query.
  if (Asks(key, Command::MoveBox) && NudgeSelected(keyCode)) return true;
  if (Asks(key, Command::LeaveQuery)) return LeaveQuery();
  if (Asks(key, Command::MoveBox)) return false;
  if (Asks(key, Command::ResizeBox)) return StretchSelected(keyCode);
  if (Asks(key, Command::MinimizeTable)) return ToggleMinimized();
  if (Asks(key, Command::NextStop)) return walk_.SelectNext(1);
  if (Asks(key, Command::PreviousStop)) return walk_.SelectNext(-1);
  if (Asks(key, Command::GoToQueryAtCaret)) return OpenQuery();
  if (Asks(key, Command::ContextMenu)) return ShowMenu();
  if (keyCode == 0 && event.keyCode != 0) return false;  // a handler has taken it away
  if (Types(event)) return OnCharacters(keyCode, event);
  if ((event.shift & ShiftCtrl) != 0) return OnControlKey(keyCode, event);
  return event.shift == ShiftNone && OnPlainKey(keyCode);
}

// A key for characters raises `KeyPress` for each and then does what it does: a command of the pane or, where it is
// none, finding what begins so. A handler that takes all characters away has dealt with the key.
bool DiagramKeys::OnCharacters(std::int32_t keyCode, const KeyEvent& event) {
  const std::string given = event.keyCode == KeyCodeEnter ? "\r" : event.keyCode == KeyCodeSpace ? " " : event.text;
  std::string text;  // an input method may give several characters at once
  for (std::size_t at = 0; at < given.size();) {
    char32_t character = DecodeUtf8(given, at);
    site_.KeyPress.Raise(character);
    if (character != 0) AppendUtf8(text, character);
  }
  if (text.empty()) return true;
  if (text == given && event.shift == ShiftNone && OnPlainKey(keyCode)) return true;
  return static_cast<unsigned char>(text.front()) > ' ' && finder_.TypeAhead(text);
}

bool DiagramKeys::OnPlainKey(std::int32_t keyCode) {
  const Ref<qbEntity> entity = selection_.Entity();
  const auto page = entity ? static_cast<int>(std::max<std::size_t>(entity->EntityBox()->VisibleRowCount(), 1)) : 1;
  const Key key{keyCode};
  if (Asks(key, Command::AddTables)) return edits_.RequestTables();
  if (Asks(key, Command::DeleteSelected)) return edits_.DeleteSelected();
  if (Asks(key, Command::ShowMinimap)) {
    targets_.minimap.Show(!targets_.minimap.Shown());
    return true;
  }
  if (Asks(key, Command::RenameTable)) {
    if (entity) edits_.AskForAlias(entity);
    return entity != nullptr;
  }
  switch (keyCode) {
    case KeyCodeUp:
      return walk_.MoveCurrentRow(-1);
    case KeyCodeDown:
      return walk_.MoveCurrentRow(1);
    case KeyCodePageUp:
      return walk_.MoveCurrentRow(-page);
    case KeyCodePageDown:
      return walk_.MoveCurrentRow(page);
    case KeyCodeHome:
      return walk_.GoToRow(1);
    case KeyCodeEnd:
      return entity && walk_.GoToRow(entity->EntityBox()->Rows().Count());
    case KeyCodeSpace:
      mouse_.HoldSpace();  // ticks when it is let go, unless it has panned meanwhile
      return true;
    case KeyCodeEnter:
      return walk_.Enter();
    case KeyCodeBack:
      return finder_.TakeBack();
    case KeyCodeEscape:
      return Escape();
    default:
      return false;
  }
}

bool DiagramKeys::Escape() {
  if (gestures_.Cancel() || keyJoin_.End()) return true;
  if (!selection_.Selected()) return false;
  selection_.Drop();
  return true;
}

// About the middle of the pane.
bool DiagramKeys::Zoom(double factor) {
  const PixelSize view = site_.GetSurface().ViewSize();
  camera_.SetZoom(factor, {view.width / 2, view.height / 2});
  return true;
}

bool DiagramKeys::OnControlKey(std::int32_t keyCode, const KeyEvent& event) {
  if (keyCode == KeyCodePlus || event.text == "+" || event.text == "=") return Zoom(camera_.Zoom() * kZoomKeyStep);
  if (keyCode == KeyCodeMinus || event.text == "-") return Zoom(camera_.Zoom() / kZoomKeyStep);
  const Key key{keyCode, event.shift};
  if (Asks(key, Command::ActualSize)) return Zoom(1);
  if (Asks(key, Command::SelectAllTables)) {
    selection_.SelectAll(targets_.entities);
    return true;
  }
  if (Asks(key, Command::CopyPicture)) return targets_.pictures.Copy();
  if (Asks(key, Command::FindName)) {
    finder_.AskAndFind();
    return site_.Context() != nullptr;
  }
  if (Asks(key, Command::JoinFromHere)) return keyJoin_.Drawn() ? walk_.Enter() : keyJoin_.Begin();
  return false;
}

void DiagramKeys::Up(const KeyEvent& event) {
  std::int32_t keyCode = event.keyCode;
  site_.KeyUp.Raise(keyCode, event.shift);
  stretchStep_ = 0;
  // A listener may take the key from the row, not from the hand that lets it go.
  if (event.keyCode == KeyCodeSpace && mouse_.ReleaseSpace() && keyCode == KeyCodeSpace) walk_.ToggleCurrentRow();
}

// --- Keys for the view and for boxes ---

bool DiagramKeys::Scroll(std::int32_t keyCode) {
  const Orientation orientation = IsVertical(keyCode) ? Orientation::Vertical : Orientation::Horizontal;
  camera_.ScrollBy(orientation, SignOf(keyCode) * camera_.Bar(orientation).step);
  return true;
}

// One step of the scroll bar in that direction; the box stays on the surface.
bool DiagramKeys::NudgeSelected(std::int32_t keyCode) {
  const ScreenScale scale = site_.GetSurface().Scale();
  TwipsPoint by;
  if (IsVertical(keyCode)) {
    by.y = scale.TwipsY(Pixels(camera_.Bar(Orientation::Vertical).step)) * SignOf(keyCode);
  } else {
    by.x = scale.TwipsX(Pixels(camera_.Bar(Orientation::Horizontal).step)) * SignOf(keyCode);
  }
  const Ref<qbEntity> entity = selection_.Entity();
  if (!edits_.Nudge(by)) return false;
  if (entity->EntityBox()) camera_.ScrollIntoView(*entity->EntityBox());  // unless a listener has removed it
  return true;
}

// The step grows while the key is held.
bool DiagramKeys::StretchSelected(std::int32_t keyCode) {
  if (!selection_.Entity()) return false;
  stretchStep_ = std::clamp(stretchStep_ * 5 / 4 + 1, kStretchFirstStep, kStretchLargestStep);
  const auto by = Pixels(SignOf(keyCode) * stretchStep_);
  return edits_.Stretch(IsVertical(keyCode) ? PixelPoint{{}, by} : PixelPoint{by, {}},
                        targets_.properties.SmallestBoxOn(site_.GetSurface()));
}

bool DiagramKeys::LeaveQuery() {
  const Ref<QueryContext> context = site_.Context();
  return context && context->reports.LeaveQuery();
}

// Of the join that is selected, or the one that the box stands for.
bool DiagramKeys::OpenQuery() {
  const Ref<QueryContext> context = site_.Context();
  if (!context) return false;
  if (const Ref<qbRelationship> join = selection_.Join()) return context->reports.OpenQueryInJoin(join);
  const Ref<qbEntity> entity = selection_.Entity();
  return entity && entity->EntityBox()->IsQuery() && context->reports.OpenQuery(entity->TagVariant().Text());
}

bool DiagramKeys::ToggleMinimized() {
  const Ref<qbEntity> entity = selection_.Entity();
  if (entity) edits_.Minimize(*entity->EntityBox(), !entity->EntityBox()->Minimized());
  return entity != nullptr;
}

bool DiagramKeys::ShowMenu() {
  const Ref<qbEntity> entity = selection_.Entity();
  const std::size_t row = entity ? entity->EntityBox()->SelectedRow() : 0;
  ShowContextMenu(targets_, selection_.Selected(), row != 0 && entity->EntityBox()->IsRowVisible(row) ? row : 0,
                  MenuPlaceOfSelection(targets_));
  return true;
}

}  // namespace zrqrybld
