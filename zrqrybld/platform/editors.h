// Native text widgets and lists behind narrow interfaces. Caret, input methods and clipboard are the
// toolkit's own and are never rewritten here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/platform/font.h"
#include "zrqrybld/platform/list_entry.h"

namespace zrqrybld {

struct KeyEvent;
struct MouseEvent;

/// Something that the user can do with a text, offered as a button beside it.
struct TextCommand {
  std::string caption;
  std::function<void()> run;
};

/// A text of many lines, such as the SQL pane's. Lines end in CR LF towards the core.
class ZRQRYBLD_API TextArea {
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

  /// Underlines a piece of the text as faulty, in bytes of `Text()`, and brings it into view; a length of 0 takes the
  /// mark away. So does every change of the text.
  virtual void SetFault(std::size_t offset, std::size_t length) = 0;
  /// Sets a piece of the text off quietly, in bytes of `Text()`; a length of 0 takes that away. So does every change
  /// of the text. A text area that cannot show it leaves it out.
  virtual void SetPart([[maybe_unused]] std::size_t offset, [[maybe_unused]] std::size_t length) {}
  /// Where the caret stands, in bytes of `Text()`.
  virtual std::size_t Caret() const { return 0; }
  /// The buttons beside the text, in place of those before; an empty list takes them away.
  virtual void SetCommands(std::vector<TextCommand> commands) = 0;

  /// The user has changed the text. Not raised by `SetText`.
  Event<> Edited;
  /// The user has left the text for another part of the window.
  Event<> Left;
  /// A key goes down, before it acts: `KeyCode` (0 takes the key away from the text), `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyDown;
  Event<std::int32_t&, std::int32_t> KeyUp;
  /// A key types a character, which a listener may change; 0 types nothing.
  Event<char32_t&> KeyPress;
};

/// One line of text over a part of a control, such as the cell of a grid. Positions in the text count characters from
/// 0.
class ZRQRYBLD_API TextEditor {
 public:
  TextEditor() = default;
  TextEditor(const TextEditor&) = delete;
  TextEditor& operator=(const TextEditor&) = delete;
  virtual ~TextEditor() = default;

  /// Where it stands, in pixels of the surface that has made it.
  virtual void SetBounds(const PixelRect& bounds) = 0;
  /// Shows or hides it; hidden at first. Hiding takes the focus away from it.
  virtual void SetVisible(bool visible) = 0;
  virtual void SetFont(const Font& font) = 0;
  /// The longest text it takes, in characters; 0 means any.
  virtual void SetMaxLength(std::int32_t characters) = 0;

  /// The text as it is now.
  virtual std::string Text() const = 0;
  /// Replaces the text; the caret stands at its end. Raises `Changed` when it is another one.
  virtual void SetText(std::string_view text) = 0;
  /// Where the selected characters begin, or the caret stands, and how many are selected.
  virtual std::int32_t SelStart() const = 0;
  virtual std::int32_t SelLength() const = 0;
  /// Selects characters; what lies beyond the text is left out.
  virtual void Select(std::int32_t start, std::int32_t length) = 0;
  /// The selected characters; setting them replaces the selection and raises `Changed`.
  virtual std::string SelText() const = 0;
  virtual void SetSelText(std::string_view text) = 0;

  /// Asks for the keyboard.
  virtual void SetFocus() = 0;
  virtual bool HasFocus() const = 0;

  /// The text is another one now, by the user or by program.
  Event<> Changed;
  /// A key, before the editor acts on it; the last argument set to true keeps it from the editor.
  Event<const KeyEvent&, bool&> KeyDown;
  Event<const KeyEvent&> KeyUp;
  /// The keyboard has gone elsewhere; not for the time of the editor's own menu.
  Event<> FocusLost;
  /// The mouse on the editor; places count from its top left corner.
  Event<> DblClick;
  Event<const MouseEvent&> MouseDown;
  Event<const MouseEvent&> MouseMove;
  Event<const MouseEvent&> MouseUp;
};

/// A list of texts that opens below a part of a control, without taking the keyboard. Indexes count from 0; -1 is none.
class ZRQRYBLD_API PopupList {
 public:
  PopupList() = default;
  PopupList(const PopupList&) = delete;
  PopupList& operator=(const PopupList&) = delete;
  virtual ~PopupList() = default;

  /// Opens below the rectangle (above it where there is no room), or shows other entries while it is open.
  virtual void Open(const PixelRect& owner, std::vector<ListEntry> entries, std::int32_t highlighted) = 0;
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;
  /// The text that stands out, which Enter would take.
  virtual std::int32_t Highlighted() const = 0;
  /// Makes a text stand out and scrolls it into view.
  virtual void Highlight(std::int32_t index) = 0;

  /// The user has clicked a text.
  Event<std::int32_t> Chosen;
};

}  // namespace zrqrybld
