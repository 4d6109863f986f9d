#include "zrqrybld/grid/simple_combo.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/grid/grid_layout.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/stored_values.h"

namespace zrqrybld {
namespace {

constexpr Pixels kButtonWidth = 20_px;
constexpr std::int32_t kPageOfItems = 8;

constexpr StoredTable kStored = {
    Stored<ComboOptions, &ComboOptions::hideEdit>("HideEdit"),
};

}  // namespace

void zrSimpleCombo::AboutBox() {
  GetSurface().ShowMenu({{Phrase(text::AboutCombo).English(), "", {}, false}}, {Bounds().left, Bounds().top});
}

// --- The text box ---

TextEditor& zrSimpleCombo::TextBox() {
  if (txtCombo_) return *txtCombo_;
  txtCombo_ = GetSurface().MakeTextEditor();
  txtCombo_->SetFont(font_);
  txtCombo_->SetMaxLength(maxLength_);
  txtCombo_->SetText(text_);
  PlaceTextBox();
  links_.push_back(txtCombo_->Changed.Connect([this] { TextChanged(); }));
  links_.push_back(txtCombo_->KeyDown.Connect([this](const KeyEvent& key, bool& kept) { kept |= TextBoxKey(key); }));
  links_.push_back(txtCombo_->KeyUp.Connect([this](const KeyEvent& key) { KeyUp.Raise(key.keyCode, key.shift); }));
  links_.push_back(txtCombo_->FocusLost.Connect([this] {
    CloseList();
    FocusLost.Raise();
  }));
  links_.push_back(txtCombo_->DblClick.Connect([this] { DblClick.Raise(); }));
  const auto forward = [this](Event<const MouseEvent&>& from, Event<std::int32_t, std::int32_t, float, float>& to) {
    links_.push_back(from.Connect([&to](const MouseEvent& event) {
      to.Raise(event.button, event.shift, static_cast<float>(event.position.x.Value()),
               static_cast<float>(event.position.y.Value()));
    }));
  };
  forward(txtCombo_->MouseDown, MouseDown);
  forward(txtCombo_->MouseMove, MouseMove);
  forward(txtCombo_->MouseUp, MouseUp);
  return *txtCombo_;
}

void zrSimpleCombo::OnSurfaceChanged() {
  text_ = Text();
  links_.clear();
  txtCombo_.reset();
  cboList_.reset();
  visible_ = false;
}

void zrSimpleCombo::SetText(std::string_view text) {
  const ScopedValue setting(setting_, true);
  TextBox().SetText(text);
}

// Tells a pick from typing; typing narrows the list to what holds the text.
void zrSimpleCombo::TextChanged() {
  if (choosing_) {
    Click.Raise();
    return;
  }
  const std::string text = Text();
  const auto found = std::ranges::find(items_, text);
  listIndex_ = found == items_.end() ? -1 : static_cast<std::int32_t>(found - items_.begin());
  if (!setting_ && visible_) {
    if (assisted_ && !AnyBeginsWith(text)) {
      CloseList();
    } else {
      ShowMatches(text, assisted_ || text.empty() ? Mark::Chosen : Mark::Beginning);
    }
  }
  Change.Raise();
}

void zrSimpleCombo::TypeOver(const std::string& text) {
  if (options_.hideEdit) {
    SearchFor({0, ShiftNone, text});
    return;
  }
  TextBox().Select(0, static_cast<std::int32_t>(CharacterCount(Text())));
  TextBox().SetSelText(text);
}

// --- Properties ---

void zrSimpleCombo::Clear() {
  items_.clear();
  listIndex_ = -1;
  CloseList();
}

void zrSimpleCombo::SetFont(const zrqrybld::Font& font) {
  font_ = font;
  if (txtCombo_) txtCombo_->SetFont(font);
}

void zrSimpleCombo::SetMaxLength(std::int32_t characters) {
  maxLength_ = std::max(characters, 0);
  if (txtCombo_) txtCombo_->SetMaxLength(maxLength_);
}

void zrSimpleCombo::SetHideEdit(bool hide) {
  options_.hideEdit = hide;
  if (txtCombo_) txtCombo_->SetVisible(visible_ && !hide);
  GetSurface().Invalidate(Bounds());
  PropertyChanged.Raise(StoredKey<&ComboOptions::hideEdit>(kStored));
}

void zrSimpleCombo::ReadProperties(const PropertyStore& store) {
  ReadStored(kStored, store, options_);
  if (txtCombo_) txtCombo_->SetVisible(visible_ && !options_.hideEdit);
}

void zrSimpleCombo::WriteProperties(PropertyStore& store) const { WriteStored(kStored, store, options_); }

// --- Place ---

PixelRect zrSimpleCombo::Bounds() const {
  if (!bounds_.Empty()) return bounds_;
  const PixelSize view = GetSurface().ViewSize();
  return {{}, {}, view.width, view.height};
}

PixelRect zrSimpleCombo::ButtonRect() const {
  const PixelRect bounds = Bounds();
  const Pixels width = std::min(kButtonWidth, bounds.width);
  return {bounds.Right() - width, bounds.top, width, bounds.height};
}

// An open list would stay behind.
void zrSimpleCombo::SetBounds(const PixelRect& bounds) {
  if (bounds != bounds_) CloseList();
  bounds_ = bounds;
  PlaceTextBox();
  GetSurface().Invalidate(Bounds());
}

void zrSimpleCombo::PlaceTextBox() {
  const PixelRect bounds = Bounds();
  if (txtCombo_) txtCombo_->SetBounds({bounds.left, bounds.top, bounds.width - ButtonRect().width, bounds.height});
}

void zrSimpleCombo::Show() {
  visible_ = true;
  TextBox().SetVisible(!options_.hideEdit);
  if (!options_.hideEdit) {
    TextBox().Select(0, static_cast<std::int32_t>(CharacterCount(Text())));
    TextBox().SetFocus();
  }
  GetSurface().Invalidate(Bounds());
}

void zrSimpleCombo::Hide() {
  visible_ = false;
  pressed_ = false;
  CloseList();
  if (txtCombo_) txtCombo_->SetVisible(false);
  GetSurface().Invalidate(Bounds());
}

void zrSimpleCombo::Paint(Canvas& canvas, const PixelRect& dirty) const {
  const PixelRect bounds = Bounds();
  if (!bounds.Overlaps(dirty)) return;
  canvas.FillRect(bounds, ColorRole::Box);
  const PixelRect button = ButtonRect();
  if (options_.hideEdit) {
    const PixelRect text{bounds.left, bounds.top, bounds.width - button.width, bounds.height};
    canvas.DrawText(text.Inset(kGridTextPadding, {}), search_.empty() ? Text() : search_, {ColorRole::Text, font_});
  }
  canvas.DrawPart(ThemedPart::DropButton, button, {.pressed = pressed_});
}

// --- Mouse and keyboard ---

void zrSimpleCombo::OnMouseDown(const MouseEvent& event) {
  const PixelRect bounds = Bounds();
  const bool onButton = ButtonRect().Contains(event.position) || (options_.hideEdit && bounds.Contains(event.position));
  if (event.button != ButtonLeft || !onButton) return;
  ToggleList();
  pressed_ = IsListOpen();
  GetSurface().Invalidate(bounds);
}

void zrSimpleCombo::OnMouseUp(const MouseEvent&) {
  pressed_ = false;
  GetSurface().Invalidate(Bounds());
}

bool zrSimpleCombo::OnKeyDown(const KeyEvent& event) {
  if (TextBoxKey(event)) return true;
  return options_.hideEdit && SearchFor(event);
}

// Returns whether the key is kept from the text box.
bool zrSimpleCombo::TextBoxKey(const KeyEvent& event) {
  bool kept = false;
  KeyOffered.Raise(event, kept);
  if (kept) return true;
  const bool plain = event.shift == ShiftNone;
  const bool opens = Asks(event, Command::OpenList) ||
                     (event.shift == ShiftAlt && (event.keyCode == KeyCodeDown || event.keyCode == KeyCodeUp));
  if (opens) {
    ToggleList();
    return true;
  }
  if (plain && event.keyCode == KeyCodeUp) return StepInList(-1);
  if (plain && event.keyCode == KeyCodeDown) return StepInList(1);
  if (plain && IsListOpen()) {
    if (event.keyCode == KeyCodePageUp) return StepInList(-kPageOfItems);
    if (event.keyCode == KeyCodePageDown) return StepInList(kPageOfItems);
    if (event.keyCode == KeyCodeEscape) {
      CloseList();
      return true;
    }
    if (event.keyCode == KeyCodeEnter && cboList_->Highlighted() >= 0) {
      Pick(cboList_->Highlighted(), true);
      return true;
    }
  }
  std::int32_t keyCode = event.keyCode;
  KeyDown.Raise(keyCode, event.shift);
  if (keyCode == 0 && event.keyCode != 0) return true;
  std::size_t position = 0;
  while (position < event.text.size()) {
    KeyPress.Raise(static_cast<std::int32_t>(DecodeUtf8(event.text, position)));
  }
  return false;
}

// A hidden text box takes no keys: what is typed looks for an item.
bool zrSimpleCombo::SearchFor(const KeyEvent& event) {
  if (event.keyCode == KeyCodeBack && !search_.empty()) {
    search_ = FirstCharacters(search_, CharacterCount(search_) - 1);
  } else if (!event.text.empty()) {
    search_ += event.text;
  } else {
    return false;
  }
  ShowMatches(search_, Mark::First);
  GetSurface().Invalidate(Bounds());
  return true;
}

// --- The list ---

void zrSimpleCombo::ToggleList() {
  if (IsListOpen()) {
    CloseList();
  } else {
    OpenList();
  }
}

void zrSimpleCombo::OpenList() {
  search_.clear();
  ShowMatches("", Mark::Chosen);
}

// Opens the list with the items that hold the text, without regard to case, or lets it go when there are none. What is
// typed stands for the item that it is, else for the first that begins with it: Enter takes that.
void zrSimpleCombo::ShowMatches(std::string_view filter, Mark mark) {
  if (!IsListOpen()) {
    bool cancel = false;
    BeforeDropDown.Raise(cancel);
    if (cancel) {
      search_.clear();
      return;
    }
  }
  const std::string wanted = FoldCase(filter);
  std::vector<ListEntry> texts;
  shown_.clear();
  std::int32_t highlighted = -1;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (!wanted.empty() && FoldCase(items_[i]).find(wanted) == std::string::npos) continue;
    const auto place = static_cast<std::int32_t>(texts.size());
    const std::string item = FoldCase(items_[i]);
    const bool begins = highlighted < 0 && item.starts_with(wanted);
    if (mark == Mark::Beginning ? begins || item == wanted : static_cast<std::int32_t>(i) == listIndex_) {
      highlighted = place;
    }
    shown_.push_back(static_cast<std::int32_t>(i));
    texts.push_back({items_[i]});
  }
  if (texts.empty()) {
    CloseList();
    return;
  }
  if (!cboList_) {
    cboList_ = GetSurface().MakePopupList();
    links_.push_back(cboList_->Chosen.Connect([this](std::int32_t index) { Pick(index, false); }));
  }
  cboList_->Open(Bounds(), std::move(texts), mark == Mark::First ? 0 : highlighted);
}

bool zrSimpleCombo::AnyBeginsWith(std::string_view text) const {
  const std::string wanted = FoldCase(text);
  return std::ranges::any_of(items_, [&wanted](const std::string& item) {
    const std::string folded = FoldCase(item);
    return folded.starts_with(wanted) || folded.substr(folded.rfind('.') + 1).starts_with(wanted);
  });
}

void zrSimpleCombo::CloseList() {
  if (!std::exchange(search_, {}).empty()) GetSurface().Invalidate(Bounds());  // the text is shown again
  if (IsListOpen()) cboList_->Close();
}

void zrSimpleCombo::SetListIndex(std::int32_t index) {
  if (index < -1 || index >= static_cast<std::int32_t>(items_.size())) ThrowNoSuchItem();
  if (index == -1) {
    listIndex_ = -1;
  } else {
    Choose(index);
  }
}

void zrSimpleCombo::Choose(std::int32_t index) {
  const std::string text = items_[static_cast<std::size_t>(index)];
  listIndex_ = index;
  const ScopedValue choosing(choosing_, true);
  CloseList();
  TextBox().SetText(text);
  GetSurface().Invalidate(Bounds());
}

void zrSimpleCombo::Pick(std::int32_t shownIndex, bool byEnter) {
  if (shownIndex < 0 || shownIndex >= static_cast<std::int32_t>(shown_.size())) return;
  const Ref<Object> alive = shared_from_this();  // a listener may end the edit and more
  Choose(shown_[static_cast<std::size_t>(shownIndex)]);
  Picked.Raise(byEnter);
}

// In the open list another item stands out; in the closed one it is chosen at once.
bool zrSimpleCombo::StepInList(std::int32_t by) {
  if (IsListOpen()) {
    const auto last = static_cast<std::int32_t>(shown_.size()) - 1;
    const std::int32_t from = cboList_->Highlighted();
    const std::int32_t to = from < 0 && by < 0 ? -1 : std::clamp(from + by, 0, last);
    if (to >= 0) cboList_->Highlight(to);
    return true;
  }
  const std::int32_t to = listIndex_ + by;
  if (to >= 0 && to < static_cast<std::int32_t>(items_.size())) Choose(to);
  return true;
}

}  // namespace zrqrybld
