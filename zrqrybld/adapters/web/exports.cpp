// What the page calls. Numbers are those of page.h; a number that nobody has any more does nothing. Texts that are
// returned are the caller's to free.
#include <emscripten.h>

#include <string>

#include "zrqrybld/adapters/web/fields.h"
#include "zrqrybld/adapters/web/page.h"
#include "zrqrybld/adapters/web/web_designer.h"
#include "zrqrybld/automation/c_boundary.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/platform/accessible.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

using namespace zrqrybld;

#define ZRW extern "C" EMSCRIPTEN_KEEPALIVE

namespace {

constexpr std::size_t kMostAccessible = 4000;  // nodes; what does not fit is reached by scrolling

template <class Call>
void OnControl(int surface, Call&& call) {
  WebSurface::With(surface, [&](WebSurface& shown) {
    const Ref<Control> control = shown.GetControl();
    if (control) call(shown, *control);
  });
}

template <class Call>
void OnDesigner(int number, Call&& call) {
  if (WebDesigner* designer = WebDesigner::Find(number)) designer->Home().Run([&] { call(*designer); });
}

PixelPoint At(double x, double y) { return {Pixels(x), Pixels(y)}; }

std::int32_t Mirrored(std::int32_t key) {
  return key == KeyCodeLeft ? KeyCodeRight : key == KeyCodeRight ? KeyCodeLeft : key;
}

int Flags(const AccessibleState& s) {
  const bool all[] = {s.focused,  s.selected, s.checkable, s.checked,   s.mixed,     s.expandable,
                      s.expanded, s.editable, s.invalid,   s.offscreen, s.selectable};
  int flags = 0;
  for (std::size_t i = 0; i < std::size(all); ++i) flags |= all[i] ? 1 << i : 0;
  return flags;
}

std::string BoundsText(const PixelRect& r) {
  std::string text;
  for (const Pixels part : {r.left, r.top, r.width, r.height}) {
    text += std::to_string(static_cast<int>(part.Value())) + " ";
  }
  return text;
}

void ListAccessible(const WebSurface& surface, const AccessibleTree& tree, const AccessibleId& id, int depth,
                    const AccessibleId& current, Fields& nodes) {
  if (nodes.size() >= kMostAccessible) return;
  const AccessibleInfo info = tree.Describe(id);
  const int flags = Flags(info.state) | (id == current ? 1 << 16 : 0);
  nodes.push_back(Packed({std::to_string(depth), std::to_string(static_cast<int>(info.role)), info.name,
                          info.description, std::to_string(flags), BoundsText(surface.InElement(info.bounds))}));
  for (std::size_t i = 0; i < tree.ChildCount(id); ++i) {
    ListAccessible(surface, tree, tree.ChildAt(id, i), depth + 1, current, nodes);
  }
}

}  // namespace

// --- Designers ---

ZRW int zrw_new() {
  try {
    return WebDesigner::Make().Number();
  } catch (const std::exception&) {
    return 0;  // without memory
  }
}
ZRW int zrw_part(int number, int which) {
  const WebDesigner* designer = WebDesigner::Find(number);
  if (!designer) return 0;
  return which == 0 ? designer->Diagram().Number() : which == 1 ? designer->Grid().Number() : designer->Area().Number();
}
ZRW void zrw_start(int number) {
  OnDesigner(number, [](WebDesigner& designer) { designer.Start(); });
}
ZRW void zrw_end(int number) { WebDesigner::End(number); }
// Counted: to be released by zrq_release.
ZRW zrq_handle zrw_handle(int number) {
  zrq_handle handle = 0;
  OnDesigner(number, [&](WebDesigner& designer) { handle = Handles().Add(RefTo(designer.Hub())); });
  return handle;
}
// The texts of the language table by number.
ZRW char* zrw_caption(int number, int id) {
  std::string text;
  OnDesigner(number, [&](WebDesigner& designer) { text = designer.Hub().GetLanguageString(id); });
  return Given(text);
}
// What stands on the page around the panes: for each command its text and its key, then plain texts.
ZRW char* zrw_words(int number) {
  Fields words;
  OnDesigner(number, [&](WebDesigner& designer) {
    for (const Command command : {Command::AddTables, Command::Undo, Command::Redo, Command::GroupRows,
                                  Command::Arrange, Command::ApplyText, Command::ClearQuery}) {
      words.push_back(Packed({designer.Hub().Say(RowOf(command).text), KeyTextOf(command)}));
    }
    for (const TextId id :
         {text::SqlName, text::AddPair, text::MenuRemovePair, text::JoinPairsLabel, text::JoinConditionLabel,
          text::FilterByName, text::StringLabel, text::SearchPieces, text::Pieces, text::ChoosePiece}) {
      words.push_back(designer.Hub().Say(id));
    }
  });
  return Given(Packed(words));
}
ZRW char* zrw_ask(int number, int window, const char* what, const char* arguments) {
  std::string text;
  OnDesigner(number,
             [&](WebDesigner& designer) { text = designer.GetDialogs().Ask(window, what, Unpacked(arguments)); });
  return Given(text);
}
ZRW void zrw_answer(int number, int window, int accepted, const char* answer) {
  OnDesigner(number,
             [&](WebDesigner& designer) { designer.GetDialogs().Answer(window, accepted != 0, Unpacked(answer)); });
}

// --- Surfaces ---

ZRW void zrw_resize(int surface, double width, double height, int rightToLeft) {
  WebSurface::With(surface, [&](WebSurface& s) { s.Resize({Pixels(width), Pixels(height)}, rightToLeft != 0); });
}
ZRW void zrw_font(int surface) {
  WebSurface::With(surface, [](WebSurface& s) { s.FontChanged(); });
}
ZRW void zrw_paint(int surface, double x, double y, double width, double height) {
  WebSurface::With(surface, [&](WebSurface& s) { s.Paint({Pixels(x), Pixels(y), Pixels(width), Pixels(height)}); });
}
ZRW void zrw_paint_picture(int surface) {
  WebSurface::With(surface, [](WebSurface& s) { s.PaintPicture(); });
}
// 0 down, 1 move, 2 up, 3 double click, 4 leave.
ZRW void zrw_mouse(int surface, int kind, int button, int shift, double x, double y) {
  OnControl(surface, [&](WebSurface& s, Control& control) {
    const MouseEvent mouse{button, shift, s.OnSurface(At(x, y))};
    switch (kind) {
      case 0:
        return control.OnMouseDown(mouse);
      case 1:
        return control.OnMouseMove(mouse);
      case 2:
        return control.OnMouseUp(mouse);
      case 3:
        return control.OnDoubleClick(mouse);
      default:
        return control.OnMouseLeave();
    }
  });
}
ZRW void zrw_wheel(int surface, int shift, double x, double y, double linesX, double linesY) {
  OnControl(surface, [&](WebSurface& s, Control& control) {
    control.OnWheel({shift, s.OnSurface(At(x, y)), s.IsRightToLeft() ? -linesX : linesX, linesY});
  });
}
ZRW int zrw_key(int surface, int down, int code, int shift, const char* typed) {
  bool used = false;
  OnControl(surface, [&](WebSurface& s, Control& control) {
    const KeyEvent key{s.IsRightToLeft() ? Mirrored(code) : code, shift, typed};
    if (down != 0) {
      used = control.OnKeyDown(key);
    } else {
      control.OnKeyUp(key);
    }
  });
  return used;
}
ZRW void zrw_focus(int surface, int focused) {
  OnControl(surface, [&](WebSurface&, Control& control) { control.OnFocusChanged(focused != 0); });
}
ZRW void zrw_scroll(int surface, int vertical, int value) {
  OnControl(surface, [&](WebSurface&, Control& control) {
    control.OnScroll(vertical != 0 ? Orientation::Vertical : Orientation::Horizontal, value);
  });
}
ZRW void zrw_tick(int surface) {
  OnControl(surface, [](WebSurface&, Control& control) { control.OnTick(); });
}
// 0 over, which returns whether it may be dropped; 1 leave; 2 drop.
ZRW int zrw_drag(int surface, int kind, const char* text, int shift, double x, double y) {
  bool allowed = false;
  OnControl(surface, [&](WebSurface& s, Control& control) {
    const MouseEvent mouse{ButtonLeft, shift, s.OnSurface(At(x, y))};
    if (kind == 0) allowed = control.OnDragOver(text, mouse);
    if (kind == 1) control.OnDragLeave();
    if (kind == 2) control.OnDrop(text, mouse);
  });
  return allowed;
}
ZRW void zrw_menu(int surface, int entry) {
  WebSurface::With(surface, [&](WebSurface& s) { s.ChooseEntry(entry); });
}
ZRW void zrw_clipboard(int surface, const char* text) {
  WebSurface::With(surface, [&](WebSurface& s) { s.ClipboardIs(text); });
}
ZRW char* zrw_tip(int surface, double x, double y) {
  std::string tip;
  OnControl(surface, [&](WebSurface& s, Control& control) { tip = control.ToolTipAt(s.OnSurface(At(x, y))); });
  return Given(tip);
}
// The accessible objects in the order of their tree, each packed: depth, role, name, description, state,
// and where it stands: left, top, width and height.
ZRW char* zrw_accessible(int surface) {
  Fields nodes;
  OnControl(surface, [&](WebSurface& s, Control& control) {
    if (const AccessibleTree* tree = control.Accessible()) ListAccessible(s, *tree, {}, 0, tree->Current(), nodes);
  });
  return Given(Packed(nodes));
}
// Does an action of the object at a place of that order: 0 focus, 1 press, 2 toggle, 3 menu.
ZRW int zrw_perform(int surface, int place, int action) {
  bool done = false;
  OnControl(surface, [&](WebSurface&, Control& control) {
    AccessibleTree* tree = control.Accessible();
    if (!tree) return;
    AccessibleId found;
    const auto walk = [&](const auto& self, const AccessibleId& id) -> bool {
      if (place-- == 0) {
        found = id;
        return true;
      }
      for (std::size_t i = 0; i < tree->ChildCount(id); ++i) {
        if (self(self, tree->ChildAt(id, i))) return true;
      }
      return false;
    };
    if (walk(walk, {})) done = tree->Perform(found, static_cast<AccessibleAction>(action));
  });
  return done;
}

// --- Editors and lists ---

ZRW void zrw_editor_changed(int editor) {
  WebTextEditor::With(editor, [](WebTextEditor& e) { e.Changed.Raise(); });
}
ZRW int zrw_editor_key(int editor, int down, int code, int shift, const char* typed) {
  bool kept = false;
  WebTextEditor::With(editor, [&](WebTextEditor& e) {
    const KeyEvent key{code, shift, typed};
    if (down != 0) {
      e.KeyDown.Raise(key, kept);
    } else {
      e.KeyUp.Raise(key);
    }
  });
  return kept;
}
ZRW void zrw_editor_left(int editor) {
  WebTextEditor::With(editor, [](WebTextEditor& e) { e.FocusLost.Raise(); });
}
// As zrw_mouse; places count from the editor's corner.
ZRW void zrw_editor_mouse(int editor, int kind, int button, int shift, double x, double y) {
  WebTextEditor::With(editor, [&](WebTextEditor& e) {
    const MouseEvent mouse{button, shift, At(x, y)};
    if (kind == 0) e.MouseDown.Raise(mouse);
    if (kind == 1) e.MouseMove.Raise(mouse);
    if (kind == 2) e.MouseUp.Raise(mouse);
    if (kind == 3) e.DblClick.Raise();
  });
}
ZRW void zrw_list_pointed(int list, int index) {
  WebPopupList::With(list, [&](WebPopupList& l) { l.Pointed(index); });
}
ZRW void zrw_list_chosen(int list, int index) {
  WebPopupList::With(list, [&](WebPopupList& l) { l.Chosen.Raise(index); });
}

// --- The text ---

ZRW void zrw_area_input(int area, const char* text, int start, int length, int typed) {
  WebTextArea::With(area, [&](WebTextArea& a) { a.Input(text, start, length, typed != 0); });
}
ZRW void zrw_area_selected(int area, int start, int length) {
  WebTextArea::With(area, [&](WebTextArea& a) { a.SelectionIs(start, length); });
}
ZRW int zrw_area_key(int area, int down, int code, int shift, const char* typed) {
  bool used = false;
  WebTextArea::With(area, [&](WebTextArea& a) { used = a.OnKey({code, shift, typed}, down != 0); });
  return used;
}
ZRW void zrw_area_focus(int area, int focused) {
  WebTextArea::With(area, [&](WebTextArea& a) { a.FocusIs(focused != 0); });
}
ZRW void zrw_area_command(int area, int command) {
  WebTextArea::With(area, [&](WebTextArea& a) { a.RunCommand(static_cast<std::size_t>(command)); });
}
ZRW char* zrw_area_colors(int area) {
  std::string pieces;
  WebTextArea::With(area, [&](WebTextArea& a) { pieces = a.Highlighting(); });
  return Given(pieces);
}
ZRW char* zrw_area_brackets(int area) {
  std::string places;
  WebTextArea::With(area, [&](WebTextArea& a) { places = a.Brackets(); });
  return Given(places);
}
