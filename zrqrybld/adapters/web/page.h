// What the library asks of the page: functions that are JavaScript, in imports/page.js.
//
// Surfaces, editors, lists, text areas and designers are numbers there. Texts go as UTF-8 with their length; those that
// come back were allocated by the page and are freed by `Taken`. Places are CSS pixels.
#pragma once

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

extern "C" {
// In the font of the surface's element, as far as the font inherits it.
double zrp_text_width(int surface, const char* text, int length, const char* font);
double zrp_line_height(int surface, const char* font);

// Drawing, on the surface that is being painted. An ink is the number of a role, 0x1000000 and a colour, or 0x2000000
// and the number of a system colour.
void zrp_fill(double x, double y, double width, double height, int ink, double radius);
void zrp_stroke(double x, double y, double width, double height, int ink, double line, double radius);
void zrp_lines(const double* points, int count, int ink, double width, double radius);
void zrp_polygon(const double* points, int count, int ink);
void zrp_text(double x, double y, double width, double height, const char* text, int length, int ink, const char* font,
              int alignment);
void zrp_image(double x, double y, double width, double height, const void* pixels, int columns, int rows);
void zrp_part(int part, double x, double y, double width, double height, int flags);
void zrp_clip(double x, double y, double width, double height);
void zrp_view(double x, double y, double zoom);
void zrp_back(void);

// Surfaces.
void zrp_invalidate(int surface, double x, double y, double width, double height);
void zrp_scroll_bar(int surface, int vertical, int value, int maximum, int page, int step);
void zrp_cursor(int surface, int cursor);
void zrp_capture(int surface, int captured);
void zrp_focus(int surface);
void zrp_ticking(int surface, int ticking);
void zrp_menu(int surface, double x, double y, const char* fields, int length);
void zrp_drag(int surface, const char* text, int length);
void zrp_copy(const char* text, int length);
// The picture is painted by `zrw_paint_picture`; copied without a name.
int zrp_picture(int surface, double width, double height, const char* name, int length);

// In-place editors, and lists.
void zrp_editor_make(int editor, int surface);
void zrp_editor_end(int editor);
void zrp_editor_place(int editor, double x, double y, double width, double height);
void zrp_editor_show(int editor, int visible, const char* name, int length);
void zrp_editor_font(int editor, const char* font);
void zrp_editor_limit(int editor, int characters);
void zrp_editor_set(int editor, const char* text, int length);
char* zrp_editor_text(int editor);
int zrp_editor_start(int editor);
int zrp_editor_selected(int editor);
void zrp_editor_select(int editor, int start, int length);
void zrp_editor_replace(int editor, const char* text, int length);
void zrp_editor_focus(int editor);
int zrp_editor_focused(int editor);
void zrp_list_open(int list, int surface, double x, double y, double width, double height, const char* fields,
                   int length, int highlighted);
// Below a character of a text area.
void zrp_list_open_at(int list, int area, int character, const char* fields, int length, int highlighted);
void zrp_list_close(int list);
void zrp_list_highlight(int list, int index);

// Text areas; places are UTF-16 units of the text with LF line ends.
void zrp_area_set(int area, const char* text, int length);
void zrp_area_read_only(int area, int readOnly);
void zrp_area_remarks(int area, const char* fields, int length);
void zrp_area_commands(int area, const char* fields, int length);
void zrp_area_fault(int area, int start, int length);
void zrp_area_select(int area, int start, int length);
void zrp_area_replace(int area, int start, int length, const char* text, int textLength);

// Windows and what is told.
void zrp_dialog(int designer, int dialog, const char* kind, const char* fields, int length);
int zrp_confirm(int designer, const char* text, int length);
void zrp_busy(int designer, int busy);
void zrp_failed(int designer, const char* text, int length);
void zrp_saved(int designer, const char* path, int length);
void zrp_changed(int designer, int what);
}

namespace zrqrybld {

inline int LengthOf(std::string_view text) { return static_cast<int>(text.size()); }

/// The text that the page has allocated, which is freed.
inline std::string Taken(char* text) {
  std::string result(text ? text : "");
  std::free(text);
  return result;
}

/// A copy for the page, which frees it; 0 without memory.
inline char* Given(std::string_view text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy) {
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = 0;
  }
  return copy;
}

}  // namespace zrqrybld
