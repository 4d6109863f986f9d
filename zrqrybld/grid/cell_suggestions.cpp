#include "zrqrybld/grid/cell_suggestions.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/grid/grid_layout.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

// An editor counts characters, predictive text bytes.
std::size_t BytesOf(std::string_view text, std::int32_t characters) {
  return FirstCharacters(text, static_cast<std::size_t>(std::max(characters, 0))).size();
}
std::int32_t CharactersOf(std::string_view text, std::size_t bytes) {
  return static_cast<std::int32_t>(CharacterCount(text.substr(0, bytes)));
}

}  // namespace

CellSuggestions::CellSuggestions(Cell cell, Ref<qbIntelliList> list)
    : cell_(std::move(cell)), typing_(*this, std::move(list)) {
  typing_.List()->Prepare();
  links_.push_back(cell_.editor.Changed.Connect([this] { OnChanged(); }));
  links_.push_back(cell_.editor.MouseDown.Connect([this](const MouseEvent&) { Close(); }));
}

void CellSuggestions::SetBounds(const PixelRect& bounds) {
  bounds_ = bounds;
  Close();
}

bool CellSuggestions::OnKeyDown(const KeyEvent& event) {
  typed_ = false;
  if (typing_.OnKeyDown(event)) {
    if (typing_.List()->IsOpen()) cell_.closeOther();
    return true;
  }
  typed_ = !event.text.empty();
  return false;
}

void CellSuggestions::OnChanged() {
  const bool typed = std::exchange(typed_, false);
  if (cell_.isOtherOpen()) {
    Close();
  } else {
    typing_.OnEdited(typed);
  }
}

// --- The editor ---

TextRange CellSuggestions::Selection() const {
  const std::string text = Text();
  const std::size_t start = BytesOf(text, cell_.editor.SelStart());
  return {start, BytesOf(text, cell_.editor.SelStart() + cell_.editor.SelLength()) - start};
}

void CellSuggestions::Select(TextRange part) {
  const std::string text = Text();
  const std::int32_t start = CharactersOf(text, part.start);
  cell_.editor.Select(start, CharactersOf(text, part.start + part.length) - start);
}

void CellSuggestions::Replace(TextRange part, const std::string& text) {
  Select(part);
  cell_.editor.SetSelText(text);
}

// Below the cell, and where in the cell the text begins that is being completed.
void CellSuggestions::ShowList(const qbIntelliList& list) {
  if (!list.IsOpen()) {
    if (popup_) popup_->Close();
    return;
  }
  if (!popup_) {
    popup_ = cell_.surface.MakePopupList();
    links_.push_back(popup_->Chosen.Connect([this](std::int32_t index) { typing_.List()->Accept(index); }));
  }
  const std::string before = Text().substr(0, list.From());
  const Pixels left = bounds_.left + kGridTextPadding + cell_.surface.Metrics().TextWidth(before, cell_.font);
  PixelRect place = bounds_;
  place.left = std::min(left, bounds_.Right());
  place.width = bounds_.Right() - place.left;
  popup_->Open(place, list.Entries(), static_cast<std::int32_t>(list.Selected()));
}

}  // namespace zrqrybld
