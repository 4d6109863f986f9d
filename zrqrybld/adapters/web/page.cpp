#include "zrqrybld/adapters/web/page.h"

#include <emscripten.h>

// The calls are forwarded as they are: what they do is in page.js, which can be read and replaced without a compiler.
// clang-format off
EM_JS(double, zrp_text_width, (int s, const char* t, int n, const char* f), { return Module.page.of(s).textWidth(UTF8ToString(t, n), UTF8ToString(f)); });
EM_JS(double, zrp_line_height, (int s, const char* f), { return Module.page.of(s).lineHeight(UTF8ToString(f)); });
EM_JS(void, zrp_fill, (double x, double y, double w, double h, int ink, double r), { Module.page.fill(x, y, w, h, ink, r); });
EM_JS(void, zrp_stroke, (double x, double y, double w, double h, int ink, double line, double r), { Module.page.stroke(x, y, w, h, ink, line, r); });
EM_JS(void, zrp_lines, (const double* p, int n, int ink, double w, double r), { Module.page.lines(HEAPF64.subarray(p >> 3, (p >> 3) + 2 * n), ink, w, r); });
EM_JS(void, zrp_polygon, (const double* p, int n, int ink), { Module.page.polygon(HEAPF64.subarray(p >> 3, (p >> 3) + 2 * n), ink); });
EM_JS(void, zrp_text, (double x, double y, double w, double h, const char* t, int n, int ink, const char* f, int align), { Module.page.text(x, y, w, h, UTF8ToString(t, n), ink, UTF8ToString(f), align); });
EM_JS(void, zrp_image, (double x, double y, double w, double h, const void* p, int columns, int rows), { Module.page.image(x, y, w, h, HEAPU8.subarray(p, p + 4 * columns * rows), columns, rows); });
EM_JS(void, zrp_part, (int part, double x, double y, double w, double h, int flags), { Module.page.part(part, x, y, w, h, flags); });
EM_JS(void, zrp_clip, (double x, double y, double w, double h), { Module.page.clip(x, y, w, h); });
EM_JS(void, zrp_view, (double x, double y, double zoom), { Module.page.view(x, y, zoom); });
EM_JS(void, zrp_back, (void), { Module.page.back(); });

EM_JS(void, zrp_invalidate, (int s, double x, double y, double w, double h), { Module.page.of(s).invalidate(x, y, w, h); });
EM_JS(void, zrp_scroll_bar, (int s, int vertical, int value, int maximum, int page, int step), { Module.page.of(s).scrollBar(vertical, value, maximum, page, step); });
EM_JS(void, zrp_cursor, (int s, int cursor), { Module.page.of(s).cursor(cursor); });
EM_JS(void, zrp_capture, (int s, int captured), { Module.page.of(s).capture(captured != 0); });
EM_JS(void, zrp_focus, (int s), { Module.page.of(s).focus(); });
EM_JS(void, zrp_ticking, (int s, int on), { Module.page.of(s).ticking(on != 0); });
EM_JS(void, zrp_menu, (int s, double x, double y, const char* f, int n), { Module.page.of(s).menu(x, y, UTF8ToString(f, n)); });
EM_JS(void, zrp_drag, (int s, const char* t, int n), { Module.page.of(s).drag(UTF8ToString(t, n)); });
EM_JS(void, zrp_copy, (const char* t, int n), { Module.page.copy(UTF8ToString(t, n)); });
EM_JS(int, zrp_picture, (int s, double w, double h, const char* t, int n), { return Module.page.of(s).picture(w, h, UTF8ToString(t, n)) ? 1 : 0; });

EM_JS(void, zrp_editor_make, (int e, int s), { Module.page.editorMake(e, s); });
EM_JS(void, zrp_editor_end, (int e), { Module.page.of(e).end(); });
EM_JS(void, zrp_editor_place, (int e, double x, double y, double w, double h), { Module.page.of(e).place(x, y, w, h); });
EM_JS(void, zrp_editor_show, (int e, int visible, const char* t, int n), { Module.page.of(e).show(visible != 0, UTF8ToString(t, n)); });
EM_JS(void, zrp_editor_font, (int e, const char* f), { Module.page.of(e).font(UTF8ToString(f)); });
EM_JS(void, zrp_editor_limit, (int e, int n), { Module.page.of(e).limit(n); });
EM_JS(void, zrp_editor_set, (int e, const char* t, int n), { Module.page.of(e).set(UTF8ToString(t, n)); });
EM_JS(char*, zrp_editor_text, (int e), { return Module.page.give(Module.page.of(e).text()); });
EM_JS(int, zrp_editor_start, (int e), { return Module.page.of(e).start(); });
EM_JS(int, zrp_editor_selected, (int e), { return Module.page.of(e).selected(); });
EM_JS(void, zrp_editor_select, (int e, int start, int n), { Module.page.of(e).select(start, n); });
EM_JS(void, zrp_editor_replace, (int e, const char* t, int n), { Module.page.of(e).replace(UTF8ToString(t, n)); });
EM_JS(void, zrp_editor_focus, (int e), { Module.page.of(e).focus(); });
EM_JS(int, zrp_editor_focused, (int e), { return Module.page.of(e).focused() ? 1 : 0; });
EM_JS(void, zrp_list_open, (int l, int s, double x, double y, double w, double h, const char* f, int n, int highlighted), { Module.page.listOpen(l, s, [x, y, w, h], UTF8ToString(f, n), highlighted); });
EM_JS(void, zrp_list_open_at, (int l, int a, int character, const char* f, int n, int highlighted), { Module.page.listOpen(l, a, Module.page.of(a).placeOf(character), UTF8ToString(f, n), highlighted); });
EM_JS(void, zrp_list_close, (int l), { Module.page.listClose(l); });
EM_JS(void, zrp_list_highlight, (int l, int i), { Module.page.listHighlight(l, i); });

EM_JS(void, zrp_area_set, (int a, const char* t, int n), { Module.page.of(a).set(UTF8ToString(t, n)); });
EM_JS(void, zrp_area_read_only, (int a, int on), { Module.page.of(a).readOnly(on != 0); });
EM_JS(void, zrp_area_remarks, (int a, const char* f, int n), { Module.page.of(a).remarks(UTF8ToString(f, n)); });
EM_JS(void, zrp_area_commands, (int a, const char* f, int n), { Module.page.of(a).commands(UTF8ToString(f, n)); });
EM_JS(void, zrp_area_fault, (int a, int start, int n), { Module.page.of(a).fault(start, n); });
EM_JS(void, zrp_area_select, (int a, int start, int n), { Module.page.of(a).select(start, n); });
EM_JS(void, zrp_area_replace, (int a, int start, int n, const char* t, int length), { Module.page.of(a).replace(start, n, UTF8ToString(t, length)); });

EM_JS(void, zrp_dialog, (int d, int dialog, const char* kind, const char* f, int n), { Module.page.of(d).dialog(dialog, UTF8ToString(kind), UTF8ToString(f, n)); });
EM_JS(int, zrp_confirm, (int d, const char* t, int n), { return Module.page.of(d).confirm(UTF8ToString(t, n)) ? 1 : 0; });
EM_JS(void, zrp_busy, (int d, int busy), { Module.page.of(d).busy(busy != 0); });
EM_JS(void, zrp_failed, (int d, const char* t, int n), { Module.page.of(d).failed(UTF8ToString(t, n)); });
EM_JS(void, zrp_saved, (int d, const char* t, int n), { Module.page.of(d).saved(UTF8ToString(t, n)); });
EM_JS(void, zrp_changed, (int d, int what), { Module.page.of(d).changed(what); });
// clang-format on
