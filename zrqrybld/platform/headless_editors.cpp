#include "zrqrybld/platform/headless_editors.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {

void HeadlessFocus::Move(HeadlessTextEditor* editor) {
  HeadlessTextEditor* left = std::exchange(editor_, editor);
  if (left && left != editor) left->FocusLost.Raise();
}

void HeadlessTextEditor::SetText(std::string_view text) {
  const bool changed = text != text_;
  text_ = text;
  selStart_ = static_cast<std::int32_t>(CharacterCount(text_));
  selLength_ = 0;
  if (changed) Changed.Raise();
}

void HeadlessTextEditor::Select(std::int32_t start, std::int32_t length) {
  const auto count = static_cast<std::int32_t>(CharacterCount(text_));
  selStart_ = std::clamp(start, 0, count);
  selLength_ = std::clamp(length, 0, count - selStart_);
}

std::pair<std::size_t, std::size_t> HeadlessTextEditor::SelectedBytes() const {
  const std::size_t before = FirstCharacters(text_, static_cast<std::size_t>(selStart_)).size();
  const std::size_t end =
      FirstCharacters(text_, static_cast<std::size_t>(selStart_) + static_cast<std::size_t>(selLength_)).size();
  return {before, end - before};
}

std::string HeadlessTextEditor::SelText() const {
  const auto [offset, count] = SelectedBytes();
  return text_.substr(offset, count);
}

void HeadlessTextEditor::SetSelText(std::string_view text) {
  const auto [offset, count] = SelectedBytes();
  std::string whole = text_;
  whole.replace(offset, count, text);
  const std::int32_t caret = selStart_ + static_cast<std::int32_t>(CharacterCount(text));
  const bool changed = whole != text_;
  text_ = std::move(whole);
  Select(caret, 0);
  if (changed) Changed.Raise();
}

void HeadlessTextEditor::Type(std::string_view text) {
  const std::size_t kept = CharacterCount(text_) - static_cast<std::size_t>(selLength_);
  const auto longest = static_cast<std::size_t>(maxLength_);
  SetSelText(maxLength_ == 0 ? text : FirstCharacters(text, longest > kept ? longest - kept : 0));
}

bool HeadlessTextEditor::Press(std::int32_t keyCode, std::int32_t shift) {
  bool kept = false;
  const KeyEvent key{keyCode, shift};
  KeyDown.Raise(key, kept);
  KeyUp.Raise(key);
  return kept;
}

}  // namespace zrqrybld
