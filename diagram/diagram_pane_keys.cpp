// The pane's keyboard.
#include <algorithm>
#include <utility>

#include "base/text.h"
#include "base/texts_diagram.h"
#include "diagram/diagram_pane.h"
#include "diagram/relationships.h"
#include "platform/commands.h"

namespace zrqrybld {
namespace {

constexpr double kZoomKeyStep = 1.25;
constexpr auto kTypeAheadPause = std::chrono::seconds(1);
constexpr int kResizeFirstStep = 4;
constexpr int kResizeLargestStep = 48;

// Whether a key stands for characters rather than for a command. Some keyboards tell AltGr as Ctrl and Alt.
bool Types(const KeyEvent& event) {
  const std::int32_t held = event.shift & (ShiftCtrl | ShiftAlt);
  if (held == ShiftCtrl || held == ShiftAlt) return false;
  const bool visible = !event.text.empty() && static_cast<unsigned char>(event.text.front()) > ' ';
  return visible || event.keyCode == KeyCodeEnter || event.keyCode == KeyCodeSpace;
}

bool IsArrow(std::int32_t keyCode) { return keyCode >= KeyCodeLeft && keyCode <= KeyCodeDown; }

}  // namespace

bool qbDiagramPane::OnKeyDown(const KeyEvent& event) {
  std::int32_t keyCode = event.keyCode;
  KeyDown.Raise(keyCode, event.shift);
  if (IsArrow(keyCode) && event.shift == (ShiftShift | ShiftAlt)) {
    const bool vertical = keyCode == KeyCodeUp || keyCode == KeyCodeDown;
    const int sign = keyCode == KeyCodeLeft || keyCode == KeyCodeUp ? -1 : 1;
    ScrollBy(vertical ? Orientation::Vertical : Orientation::Horizontal,
             sign * (vertical ? vertical_.step : horizontal_.step));
    return true;
  }
  if (IsArrow(keyCode) && event.shift == ShiftAlt) return MoveSelectedBox(keyCode);
  if (IsArrow(keyCode) && event.shift == (ShiftCtrl | ShiftShift)) return ResizeSelectedBox(keyCode);
  if (Asks(Key{keyCode, event.shift}, Command::MinimizeTable)) {
    const Ref<qbEntity> entity = SelectedEntity();
    if (entity) Minimize(*entity->EntityBox(), !entity->EntityBox()->Minimized());
    return entity != nullptr;
  }
  if (keyCode == KeyCodeTab && (event.shift == ShiftNone || event.shift == ShiftShift)) {
    return SelectNext(event.shift == ShiftShift ? -1 : 1);
  }
  if (Asks(Key{keyCode, event.shift}, Command::ContextMenu)) {
    const Ref<qbEntity> entity = SelectedEntity();
    const std::size_t row = entity ? entity->EntityBox()->SelectedRow() : 0;
    ShowContextMenu(selected_, row != 0 && entity->EntityBox()->IsRowVisible(row) ? row : 0, MenuPlaceOfSelection());
    return true;
  }
  if (keyCode == 0 && event.keyCode != 0) return false;  // a handler has taken it away
  if (Types(event)) return OnCharacters(keyCode, event);
  if ((event.shift & ShiftCtrl) != 0) return OnControlKey(keyCode, event);
  return event.shift == ShiftNone && OnPlainKey(keyCode);
}

// A key for characters raises `KeyPress` for each and then does what it does: a command of the pane or, where it is
// none, finding what begins so. A handler that takes all characters away has dealt with the key.
bool qbDiagramPane::OnCharacters(std::int32_t keyCode, const KeyEvent& event) {
  const std::string given = event.keyCode == KeyCodeEnter ? "\r" : event.keyCode == KeyCodeSpace ? " " : event.text;
  std::string text;  // an input method may give several characters at once
  for (std::size_t at = 0; at < given.size();) {
    char32_t character = DecodeUtf8(given, at);
    KeyPress.Raise(character);
    if (character != 0) AppendUtf8(text, character);
  }
  if (text.empty()) return true;
  if (text == given && event.shift == ShiftNone && OnPlainKey(keyCode)) return true;
  return static_cast<unsigned char>(text.front()) > ' ' && TypeAhead(text);
}

bool qbDiagramPane::OnPlainKey(std::int32_t keyCode) {
  const Key key{keyCode};
  const Ref<qbEntity> entity = SelectedEntity();
  if (Asks(key, Command::AddTables)) return RequestTables();
  if (Asks(key, Command::DeleteSelected)) return DeleteSelected();
  if (Asks(key, Command::RenameTable)) {
    if (entity) AskForAlias(entity);
    return entity != nullptr;
  }
  const auto page = entity ? static_cast<int>(std::max<std::size_t>(entity->EntityBox()->VisibleRowCount(), 1)) : 1;
  switch (keyCode) {
    case KeyCodeUp:
      return MoveCurrentRow(-1);
    case KeyCodeDown:
      return MoveCurrentRow(1);
    case KeyCodePageUp:
      return MoveCurrentRow(-page);
    case KeyCodePageDown:
      return MoveCurrentRow(page);
    case KeyCodeHome:
      return GoToRow(1);
    case KeyCodeEnd:
      return entity && GoToRow(entity->EntityBox()->Rows().Count());
    case KeyCodeSpace:
      if (!spaceHeld_) spaceWasUsed_ = !std::holds_alternative<NoGesture>(gesture_);
      spaceHeld_ = true;  // ticks when it is let go, unless it has panned meanwhile
      return true;
    case KeyCodeEnter:
      return EnterSelected();
    case KeyCodeEscape:
      if (CancelGesture() || EndKeyJoin()) return true;
      if (!selected_) return false;
      DropSelection();
      return true;
    default:
      return false;
  }
}

bool qbDiagramPane::OnControlKey(std::int32_t keyCode, const KeyEvent& event) {
  const PixelSize view = GetSurface().ViewSize();
  const PixelPoint middle{view.width / 2, view.height / 2};
  if (keyCode == KeyCodePlus || event.text == "+" || event.text == "=") {
    SetZoom(zoom_ * kZoomKeyStep, middle);
    return true;
  }
  if (keyCode == KeyCodeMinus || event.text == "-") {
    SetZoom(zoom_ / kZoomKeyStep, middle);
    return true;
  }
  const Key key{keyCode, event.shift};
  if (Asks(key, Command::ActualSize)) {
    SetZoom(1, middle);
    return true;
  }
  if (Asks(key, Command::SelectAllTables)) {
    SelectAll();
    return true;
  }
  if (Asks(key, Command::CopyPicture)) return CopyPicture();
  if (Asks(key, Command::FindName)) {
    AskAndFind();
    return Context() != nullptr;
  }
  if (Asks(key, Command::JoinFromHere)) return keyJoin_ ? EnterSelected() : BeginKeyJoin();
  return false;
}

bool qbDiagramPane::RequestTables() {
  const Ref<QueryContext> context = Context();
  if (!context || !context->IsConnected()) return false;
  context->RequestTables();
  return true;
}

void qbDiagramPane::OnKeyUp(const KeyEvent& event) {
  std::int32_t keyCode = event.keyCode;
  KeyUp.Raise(keyCode, event.shift);
  if (IsArrow(event.keyCode)) resizeStep_ = 0;
  // A listener may take the key from the row, not from the hand that lets it go.
  if (event.keyCode != KeyCodeSpace || !std::exchange(spaceHeld_, false)) return;
  if (keyCode == KeyCodeSpace && !spaceWasUsed_) ToggleCurrentRow();
}

void qbDiagramPane::OnFocusChanged(bool focused) {
  focused_ = focused;
  if (!focused) {
    spaceHeld_ = false;
    CancelGesture();
  }
  Refresh();
}

// One step of the scroll bar in that direction; the box stays on the surface.
bool qbDiagramPane::MoveSelectedBox(std::int32_t keyCode) {
  const Ref<qbEntity> entity = SelectedEntity();
  if (!entity) return false;
  const StepScope step(Context(), kStepNudgeTables);
  const ScreenScale scale = GetSurface().Scale();
  TwipsPoint by;
  if (keyCode == KeyCodeLeft) by.x = -scale.TwipsX(Pixels(horizontal_.step));
  if (keyCode == KeyCodeRight) by.x = scale.TwipsX(Pixels(horizontal_.step));
  if (keyCode == KeyCodeUp) by.y = -scale.TwipsY(Pixels(vertical_.step));
  if (keyCode == KeyCodeDown) by.y = scale.TwipsY(Pixels(vertical_.step));
  const std::vector<Ref<qbEntity>> group = SelectedEntities();
  for (const Ref<qbEntity>& one : group) {
    const TwipsRect& bounds = one->EntityBox()->Bounds();
    by = {std::max(by.x, std::min(-bounds.left, Twips{})), std::max(by.y, std::min(-bounds.top, Twips{}))};
  }
  for (const Ref<qbEntity>& one : group) {
    const TwipsRect& bounds = one->EntityBox()->Bounds();
    one->EntityBox()->SetBounds(bounds.Moved(by.x, by.y));
  }
  ScrollIntoView(scale.ToPixels(entity->EntityBox()->Bounds()));
  return true;
}

// The step grows while the key is held.
bool qbDiagramPane::ResizeSelectedBox(std::int32_t keyCode) {
  const Ref<qbEntity> entity = SelectedEntity();
  if (!entity) return false;
  const StepScope step(Context(), kStepStretchTable, entity->Caption());
  resizeStep_ = std::clamp(resizeStep_ * 5 / 4 + 1, kResizeFirstStep, kResizeLargestStep);
  const ScreenScale scale = GetSurface().Scale();
  PixelRect place = scale.ToPixels(entity->EntityBox()->Bounds());
  const auto by = Pixels(resizeStep_);
  const auto [narrowest, lowest] = SmallestBox();
  if (keyCode == KeyCodeLeft) place.width = std::min(place.width, std::max(place.width - by, narrowest));
  if (keyCode == KeyCodeRight) place.width += by;
  const Ref<qbEntityList> box = entity->EntityBox();
  if (!box->Minimized()) {
    if (keyCode == KeyCodeUp) place.height = std::min(place.height, std::max(place.height - by, lowest));
    if (keyCode == KeyCodeDown) place.height += by;
  }
  box->SetBounds(scale.ToTwips(place));
  return true;
}

bool qbDiagramPane::GoToRow(std::size_t row) {
  const Ref<qbEntity> entity = SelectedEntity();
  if (!entity || entity->EntityBox()->Rows().Count() == 0) return false;
  qbEntityList& box = *entity->EntityBox();
  row = std::clamp<std::size_t>(row, 1, box.Rows().Count());
  box.SetSelectedRow(row);
  if (row < box.FirstVisibleRow()) box.ScrollTo(row);
  const std::size_t visible = std::max<std::size_t>(box.VisibleRowCount(), 1);
  if (row >= box.FirstVisibleRow() + visible) box.ScrollTo(row - visible + 1);
  if (box.IsRowVisible(row)) ScrollIntoView(GetSurface().Scale().ToPixels(box.ItemBounds(row)));
  return true;
}

bool qbDiagramPane::MoveCurrentRow(int delta) {
  const Ref<qbEntity> entity = SelectedEntity();
  if (!entity) return false;
  const auto row = static_cast<std::int64_t>(entity->EntityBox()->SelectedRow()) + delta;
  return GoToRow(static_cast<std::size_t>(std::max<std::int64_t>(row, 1)));
}

bool qbDiagramPane::ToggleCurrentRow() {
  const Ref<qbEntity> entity = SelectedEntity();
  const Ref<qbEntityItem> item = entity ? entity->SelectedItem() : nullptr;
  if (!item) return false;
  item->SetChecked(!item->Checked());
  return true;
}

// Boxes in their order, then joins; behind the last one the key goes on to the window.
bool qbDiagramPane::SelectNext(int direction) {
  std::vector<Ref<Object>> objects;
  for (std::int32_t i = 1; i <= entities_->Count(); ++i) objects.push_back(entities_->Item(i));
  for (const Ref<qbLine>& line : lines_) {
    if (const Ref<qbRelationship> join = line->Relationship()) objects.push_back(join);
  }
  const auto at = std::ranges::find(objects, selected_);
  std::ptrdiff_t next = 0;
  if (at != objects.end()) {
    next = at - objects.begin() + direction;
  } else if (direction < 0) {
    next = static_cast<std::ptrdiff_t>(objects.size()) - 1;
  }
  if (next < 0 || next >= static_cast<std::ptrdiff_t>(objects.size())) {
    DropSelection();
    return false;
  }
  SelectObject(objects[static_cast<std::size_t>(next)]);
  if (const Ref<qbEntity> entity = SelectedEntity()) {
    RaiseToTop(entity->EntityBox());
    ScrollIntoView(GetSurface().Scale().ToPixels(entity->EntityBox()->Bounds()));
  }
  return true;
}

// Into a box: its first row becomes current. A join shows its properties.
bool qbDiagramPane::EnterSelected() {
  if (keyJoin_) {
    if (!IsKeyJoinTarget()) return true;
    const Ref<qbEntity> source = EntityOf(*keyJoin_->box);
    const std::size_t row = keyJoin_->box->PositionOf(keyJoin_->row);
    EndKeyJoin();
    if (source && row != 0) AddJoin(source, row, SelectedEntity(), SelectedEntity()->EntityBox()->SelectedRow(), true);
    return true;
  }
  if (const Ref<qbRelationship> join = SelectedJoin()) {
    const Ref<QueryContext> context = Context();
    if (context) context->RelationshipActivated(join);
    return true;
  }
  const Ref<qbEntity> entity = SelectedEntity();
  return entity && entity->EntityBox()->SelectedRow() == 0 && GoToRow(1);
}

// --- A join by keyboard ---

bool qbDiagramPane::BeginKeyJoin() {
  const Ref<qbEntity> entity = SelectedEntity();
  const Ref<BoxRow> row = entity ? entity->EntityBox()->Rows().At(entity->EntityBox()->SelectedRow()) : nullptr;
  if (!row || row->Text() == "*") return false;
  keyJoin_ = KeyJoin{entity->EntityBox(), row};
  Refresh();
  return true;
}

// Returns whether there was one.
bool qbDiagramPane::EndKeyJoin() {
  if (!keyJoin_) return false;
  keyJoin_.reset();
  Refresh();
  return true;
}

bool qbDiagramPane::IsKeyJoinTarget() const {
  const Ref<qbEntity> target = SelectedEntity();
  if (!target || target->EntityBox() == keyJoin_->box) return false;
  const Ref<BoxRow> row = target->EntityBox()->Rows().At(target->EntityBox()->SelectedRow());
  return row && row->Text() != "*";
}

// What is typed within a second is one word.
bool qbDiagramPane::TypeAhead(std::string_view text) {
  const Ref<qbEntity> entity = SelectedEntity();
  if (!entity) return false;
  const auto now = std::chrono::steady_clock::now();
  if (now - typedAheadAt_ > kTypeAheadPause) typedAhead_.clear();
  typedAheadAt_ = now;
  const bool begins = typedAhead_.empty();
  typedAhead_ += text;
  const qbEntityList& box = *entity->EntityBox();
  // The first letter goes on to the next match, further ones stay on a row that still matches.
  const std::size_t after = begins || box.SelectedRow() == 0 ? box.SelectedRow() : box.SelectedRow() - 1;
  const std::size_t row = box.FindRow(typedAhead_, after);
  if (row != 0) GoToRow(row);
  return true;
}

// --- Finding ---

// The next caption or row behind the current one that holds the text in any letter case, from the beginning again
// behind the last one.
qbDiagramPane::FoundPlace qbDiagramPane::FindName(const std::string& part) const {
  const std::string wanted = FoldCase(part);
  const Ref<qbEntity> current = SelectedEntity();
  const std::size_t currentRow = current ? current->EntityBox()->SelectedRow() : 0;
  FoundPlace first;
  bool behind = current == nullptr;
  for (std::int32_t i = 1; i <= entities_->Count(); ++i) {
    const Ref<qbEntity> entity = entities_->Item(i);
    const BoxRows& rows = entity->EntityBox()->Rows();
    for (std::size_t row = 0; row <= rows.Count(); ++row) {
      const std::string& text = row == 0 ? entity->Caption() : rows.At(row)->Text();
      if (FoldCase(text).find(wanted) != std::string::npos) {
        if (behind) return {entity, row};
        if (!first.entity) first = {entity, row};
      }
      behind = behind || (entity == current && row == currentRow);
    }
  }
  return first;
}

void qbDiagramPane::AskAndFind() {
  const Ref<QueryContext> context = Context();
  if (!context) return;
  TextDialog dialog{context->Say(text::FindCaption), context->Say(text::FindLabel), sought_};
  dialog.problem = [this](const std::string& text) -> std::string {
    if (text.empty()) return " ";
    return FindName(text).entity ? "" : Say(Context(), text::FindNothing);
  };
  const std::optional<std::string> part = context->GetToolkit().GetDialogs().ShowTextPrompt(dialog);
  if (!part || part->empty()) return;
  sought_ = *part;
  const FoundPlace found = FindName(sought_);
  if (!found.entity) return;
  SelectObject(found.entity);
  if (SelectedEntity() != found.entity) return;  // a listener has decided otherwise
  RaiseToTop(found.entity->EntityBox());
  ScrollIntoView(GetSurface().Scale().ToPixels(found.entity->EntityBox()->Bounds()));
  if (found.row != 0) GoToRow(found.row);
}

// Listeners are asked about each; what they keep stays selected when it is the selected object.
bool qbDiagramPane::DeleteSelected() {
  if (!selected_) return false;
  std::vector<Ref<Object>> objects{selected_};
  objects.insert(objects.end(), alsoSelected_.begin(), alsoSelected_.end());
  std::erase_if(objects, [this](const Ref<Object>& object) {
    bool cancel = false;
    BeforeDeleteObject.Raise(object, cancel);
    return cancel;
  });
  const Ref<qbEntity> one = SelectedEntity();
  const StepScope step(Context(),
                       !one                    ? kStepDeleteJoin
                       : alsoSelected_.empty() ? kStepRemoveTable
                                               : kStepRemoveTables,
                       one && one->EntityBox() ? one->Caption() : std::string());
  for (const Ref<Object>& object : objects) {
    if (object == selected_) DropSelection();
    if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) {
      if (entity->EntityBox()) entities_->Remove(entity->Index());
    } else if (const auto join = std::dynamic_pointer_cast<qbRelationship>(object)) {
      if (const Ref<qbEntity> source = join->Source()) source->Relationships()->Remove(join->Index());
    }
  }
  return true;
}

}  // namespace zrqrybld
