// Native text widgets behind narrow interfaces. Caret, input methods and clipboard are the
// toolkit's own and are never rewritten here.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/event.h"

namespace zrqrybld {

/// A text of many lines, such as the SQL pane's. Lines end in CR LF towards the core.
class TextArea {
 public:
  TextArea() = default;
  TextArea(const TextArea&) = delete;
  TextArea& operator=(const TextArea&) = delete;
  virtual ~TextArea() = default;

  /// The whole text, lines ended by CR LF.
  virtual std::string Text() const = 0;
  /// Replaces the text. Caret and scroll position stay as near as the new text allows.
  virtual void SetText(std::string_view text) = 0;
  virtual void SetReadOnly(bool readOnly) = 0;
  /// Sentences about the text, shown beside it without disturbing; an empty list takes them away.
  virtual void SetRemarks(const std::vector<std::string>& remarks) = 0;

  /// The user has changed the text. Not raised by `SetText`.
  Event<> Edited;
  /// A key goes down, before it acts: `KeyCode` (0 takes the key away from the text), `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyDown;
  Event<std::int32_t&, std::int32_t> KeyUp;
  /// A key types a character, which a listener may change; 0 types nothing.
  Event<char32_t&> KeyPress;
};

}  // namespace zrqrybld
