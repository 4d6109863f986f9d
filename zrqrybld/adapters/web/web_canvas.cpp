#include "zrqrybld/adapters/web/web_canvas.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zrqrybld/adapters/web/page.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kMostWidths = 20000;

int InkNumber(const Ink& ink) {
  constexpr unsigned kOwn = 0x1000000;
  constexpr unsigned kSystem = 0x2000000;
  if (const auto* role = std::get_if<ColorRole>(&ink)) return static_cast<int>(*role);
  const Color color = std::get<Color>(ink);
  if (color.IsSystem()) return static_cast<int>(kSystem | color.SystemNumber());
  return static_cast<int>(kOwn | color.Red() << 16 | color.Green() << 8 | color.Blue());
}

std::vector<double> Coordinates(std::span<const PixelPoint> points) {
  std::vector<double> flat;
  flat.reserve(points.size() * 2);
  for (const PixelPoint& point : points) flat.insert(flat.end(), {point.x.Value(), point.y.Value()});
  return flat;
}

}  // namespace

std::string CssFont(const Font& font) {
  constexpr double kPixelsPerPoint = 96.0 / 72;
  std::string css = font.italic ? "italic " : "";
  if (font.bold) css += "bold ";
  css += font.points > 0 ? NumberText(std::round(font.points * kPixelsPerPoint * 100) / 100) + "px " : "inherit ";
  // A family is a name: no quote and no end of one in it ends the text.
  std::string family;
  std::ranges::copy_if(font.family, std::back_inserter(family),
                       [](char c) { return c != '"' && c != '\\' && c != '\n'; });
  return css + (family.empty() ? "inherit" : "\"" + family + "\"");
}

Pixels WebMetrics::TextWidth(std::string_view text, const Font& font) const {
  const std::string css = CssFont(font);
  const std::string key = css + '\n' + std::string(text);
  if (const auto known = widths_.find(key); known != widths_.end()) return Pixels(known->second);
  if (widths_.size() >= kMostWidths) widths_.clear();
  const double width = std::ceil(zrp_text_width(surface_, text.data(), LengthOf(text), css.c_str()));
  widths_.emplace(key, width);
  return Pixels(width);
}

Pixels WebMetrics::LineHeight(const Font& font) const {
  return Pixels(std::ceil(zrp_line_height(surface_, CssFont(font).c_str())));
}

void WebCanvas::FillRect(const PixelRect& rect, const Ink& ink, Pixels radius) {
  if (rect.Empty()) return;
  zrp_fill(rect.left.Value(), rect.top.Value(), rect.width.Value(), rect.height.Value(), InkNumber(ink),
           radius.Value());
}

void WebCanvas::StrokeRect(const PixelRect& rect, const Ink& ink, Pixels width, Pixels radius) {
  if (rect.Empty() || width <= 0_px) return;
  zrp_stroke(rect.left.Value(), rect.top.Value(), rect.width.Value(), rect.height.Value(), InkNumber(ink),
             width.Value(), radius.Value());
}

void WebCanvas::DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels radius) {
  if (points.size() < 2 || width <= 0_px) return;
  zrp_lines(Coordinates(points).data(), static_cast<int>(points.size()), InkNumber(ink), width.Value(), radius.Value());
}

void WebCanvas::FillPolygon(std::span<const PixelPoint> points, const Ink& ink) {
  if (points.size() < 3) return;
  zrp_polygon(Coordinates(points).data(), static_cast<int>(points.size()), InkNumber(ink));
}

void WebCanvas::DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) {
  if (rect.Empty() || text.empty()) return;
  if (style.quietBytes > 0 && style.quietBytes < text.size()) {
    TextStyle quiet{style.quietInk, style.font};
    quiet.font.bold = false;
    const std::string_view lead = text.substr(0, style.quietBytes);
    const Pixels width = std::min(metrics_.TextWidth(lead, quiet.font), rect.width);
    DrawText({rect.left, rect.top, width, rect.height}, lead, quiet);
    DrawText({rect.left + width, rect.top, rect.width - width, rect.height}, text.substr(style.quietBytes),
             {style.ink, style.font});
    return;
  }
  zrp_text(rect.left.Value(), rect.top.Value(), rect.width.Value(), rect.height.Value(), text.data(), LengthOf(text),
           InkNumber(style.ink), CssFont(style.font).c_str(), static_cast<int>(style.alignment));
}

void WebCanvas::DrawImage(const PixelRect& rect, const Image& image) {
  if (rect.Empty() || image.Width() <= 0 || image.Height() <= 0) return;
  zrp_image(rect.left.Value(), rect.top.Value(), rect.width.Value(), rect.height.Value(), image.Pixels().data(),
            image.Width(), image.Height());
}

void WebCanvas::DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) {
  if (rect.Empty()) return;
  const int flags = (state.checked ? 1 : 0) | (state.mixed ? 2 : 0) | (state.hover ? 4 : 0) | (state.pressed ? 8 : 0) |
                    (state.disabled ? 16 : 0);
  zrp_part(static_cast<int>(part), rect.left.Value(), rect.top.Value(), rect.width.Value(), rect.height.Value(), flags);
}

void WebCanvas::PushClip(const PixelRect& rect) {
  zrp_clip(rect.left.Value(), rect.top.Value(), rect.width.Value(), rect.height.Value());
}

void WebCanvas::PopClip() { zrp_back(); }

void WebCanvas::PushView(PixelPoint origin, double zoom) { zrp_view(origin.x.Value(), origin.y.Value(), zoom); }

void WebCanvas::PopView() { zrp_back(); }

}  // namespace zrqrybld
