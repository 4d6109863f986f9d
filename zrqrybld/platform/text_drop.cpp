#include "zrqrybld/platform/text_drop.h"

#include <utility>

#include "zrqrybld/platform/input.h"

namespace zrqrybld {

bool TextDrop::Over(const std::string& text, const MouseEvent& event, std::int32_t effect) {
  const DragOverStateEnum state = text_ ? DragOver : DragEnter;
  text_ = text;
  at_ = event.position;
  over_.Raise(text, effect, event.button, event.shift, static_cast<float>(event.position.x.Value()),
              static_cast<float>(event.position.y.Value()), state);
  return effect != 0;
}

void TextDrop::Leave(bool tell) {
  const std::optional<std::string> text = std::exchange(text_, std::nullopt);
  if (!text || !tell) return;
  std::int32_t effect = 0;
  over_.Raise(*text, effect, ButtonNone, ShiftNone, static_cast<float>(at_.x.Value()),
              static_cast<float>(at_.y.Value()), DragLeave);
}

void TextDrop::Drop(const std::string& text, const MouseEvent& event) const {
  std::int32_t effect = 1;
  drop_.Raise(text, effect, event.button, event.shift, static_cast<float>(event.position.x.Value()),
              static_cast<float>(event.position.y.Value()));
}

}  // namespace zrqrybld
