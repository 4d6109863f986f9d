#include "tests/fakes/recording_canvas.h"

#include <array>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::array<std::string_view, 27> kRoleNames = {"Surface",
                                                         "SurfaceText",
                                                         "Box",
                                                         "BoxFrame",
                                                         "CaptionActive",
                                                         "CaptionActiveText",
                                                         "CaptionInactive",
                                                         "CaptionInactiveText",
                                                         "Text",
                                                         "QuietText",
                                                         "RowHover",
                                                         "RowSelected",
                                                         "RowSelectedText",
                                                         "RowAlternate",
                                                         "GridLine",
                                                         "Disabled",
                                                         "Join",
                                                         "JoinHover",
                                                         "JoinSelected",
                                                         "KeyIcon",
                                                         "Focus",
                                                         "Error",
                                                         "Warning",
                                                         "Keyword",
                                                         "Literal",
                                                         "Comment",
                                                         "Identifier"};
static_assert(kRoleNames.size() == static_cast<std::size_t>(ColorRole::Identifier) + 1);

constexpr std::array<std::string_view, 5> kPartNames = {"CheckBox", "ColumnHeader", "RowHeader", "DropButton",
                                                        "FocusRectangle"};
static_assert(kPartNames.size() == static_cast<std::size_t>(ThemedPart::FocusRectangle) + 1);

std::string Describe(Pixels length) { return NumberText(length.Value()); }
std::string Describe(PixelPoint point) { return Describe(point.x) + "," + Describe(point.y); }
std::string Describe(const PixelRect& rect) {
  return Describe(PixelPoint{rect.left, rect.top}) + " " + Describe(rect.width) + "x" + Describe(rect.height);
}
std::string Describe(const Ink& ink) {
  if (const auto* role = std::get_if<ColorRole>(&ink)) return std::string(kRoleNames[static_cast<std::size_t>(*role)]);
  const Color color = std::get<Color>(ink);
  return color.IsSystem() ? "system" + std::to_string(color.SystemNumber()) : "color" + std::to_string(color.value);
}
std::string Describe(std::span<const PixelPoint> points) {
  std::string text;
  for (const PixelPoint& point : points) text += (text.empty() ? "" : " ") + Describe(point);
  return text;
}

}  // namespace

std::string RecordingCanvas::Text() const {
  std::string text;
  for (const std::string& line : lines_) text += line + "\n";
  return text;
}

void RecordingCanvas::FillRect(const PixelRect& rect, const Ink& ink, Pixels) {
  lines_.push_back("fill " + Describe(rect) + " " + Describe(ink));
}

void RecordingCanvas::StrokeRect(const PixelRect& rect, const Ink& ink, Pixels, Pixels) {
  lines_.push_back("frame " + Describe(rect) + " " + Describe(ink));
}

void RecordingCanvas::DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels) {
  lines_.push_back("line " + Describe(points) + " " + Describe(ink) + " " + Describe(width));
}

void RecordingCanvas::FillPolygon(std::span<const PixelPoint> points, const Ink& ink) {
  lines_.push_back("polygon " + Describe(points) + " " + Describe(ink));
}

void RecordingCanvas::DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) {
  const std::string quiet =
      style.quietBytes == 0 ? "" : " quiet " + std::to_string(style.quietBytes) + " " + Describe(style.quietInk);
  lines_.push_back("text " + Describe(rect) + " " + Describe(style.ink) + (style.font.bold ? " bold" : "") + quiet +
                   " \"" + std::string(text) + "\"");
}

void RecordingCanvas::DrawImage(const PixelRect& rect, const Image& image) {
  lines_.push_back("image " + Describe(rect) + " " + std::to_string(image.Width()) + "x" +
                   std::to_string(image.Height()));
}

void RecordingCanvas::DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) {
  lines_.push_back("part " + std::string(kPartNames[static_cast<std::size_t>(part)]) + " " + Describe(rect) +
                   (state.checked ? " checked" : "") + (state.mixed ? " mixed" : "") + (state.hover ? " hover" : "") +
                   (state.pressed ? " pressed" : "") + (state.disabled ? " disabled" : ""));
}

void RecordingCanvas::PushClip(const PixelRect& rect) { lines_.push_back("clip " + Describe(rect)); }

void RecordingCanvas::PopClip() { lines_.emplace_back("unclip"); }

void RecordingCanvas::PushView(PixelPoint origin, double zoom) {
  lines_.push_back("view " + Describe(origin) + " " + NumberText(zoom));
}

void RecordingCanvas::PopView() { lines_.emplace_back("unview"); }

}  // namespace zrqrybld
