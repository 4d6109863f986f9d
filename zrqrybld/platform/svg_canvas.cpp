#include "zrqrybld/platform/svg_canvas.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/theme_colors.h"

namespace zrqrybld {
namespace {

constexpr double kFontPixels = 12;
constexpr double kBaseline = 4.2;  // below the middle of a line; not every viewer can centre a text itself

// The system colours that the library itself uses, as roles.
ColorRole RoleOfSystemColor(std::uint32_t number) {
  switch (number) {
    case 5:
      return ColorRole::Box;
    case 12:
      return ColorRole::Surface;
    case 13:
      return ColorRole::RowSelected;
    case 15:
      return ColorRole::BoxFrame;
    default:
      return ColorRole::Text;
  }
}

std::string LightColor(const Ink& ink) {
  const auto* role = std::get_if<ColorRole>(&ink);
  Color color = role ? LightColorOf(*role) : std::get<Color>(ink);
  if (color.IsSystem()) color = LightColorOf(RoleOfSystemColor(color.SystemNumber()));
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string text = "#";
  for (const unsigned part : {color.Red(), color.Green(), color.Blue()}) {
    text += kHex[part >> 4];
    text += kHex[part & 15];
  }
  return text;
}

// Markup in names is text; characters that no XML document may hold are dropped.
std::string Escaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t c = DecodeUtf8(text, i);
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        if (c >= 0x20 && c != 0xFFFE && c != 0xFFFF) AppendUtf8(result, c);
    }
  }
  return result;
}

std::string Number(double value) { return NumberText(std::round(value * 100) / 100); }

std::string Attribute(std::string_view name, double value) {
  return " " + std::string(name) + "=\"" + Number(value) + "\"";
}

std::string Place(const PixelRect& rect) {
  return Attribute("x", rect.left.Value()) + Attribute("y", rect.top.Value()) +
         Attribute("width", std::max(rect.width.Value(), 0.0)) +
         Attribute("height", std::max(rect.height.Value(), 0.0));
}

std::string PointText(PixelPoint point) { return Number(point.x.Value()) + " " + Number(point.y.Value()); }

// A line with its bends rounded: straight to a little before the bend, then a curve to a little behind it.
std::string RoundedPath(std::span<const PixelPoint> points, Pixels radius) {
  std::string path;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const PixelPoint point = points[i];
    const bool bends = i > 0 && i + 1 < points.size() && radius > 0_px;
    if (!bends) {
      path += (i == 0 ? "M" : "L") + PointText(point);
      continue;
    }
    const auto toward = [&](PixelPoint other) {
      const double dx = (other.x - point.x).Value();
      const double dy = (other.y - point.y).Value();
      const double length = std::hypot(dx, dy);
      const double reach = length == 0 ? 0 : std::min(radius.Value(), length / 2) / length;
      return PixelPoint{point.x + Pixels(dx * reach), point.y + Pixels(dy * reach)};
    };
    path += "L" + PointText(toward(points[i - 1])) + "Q" + PointText(point) + " " + PointText(toward(points[i + 1]));
  }
  return path;
}

}  // namespace

SvgCanvas::SvgCanvas(PixelSize size, Colors colors) : size_(size), colors_(std::move(colors)) {}

std::string SvgCanvas::ColorOf(const Ink& ink) const { return colors_ ? colors_(ink) : LightColor(ink); }

std::string SvgCanvas::Picture() const {
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"";
  text += Attribute("width", size_.width.Value()) + Attribute("height", size_.height.Value());
  text += " viewBox=\"0 0 " + Number(size_.width.Value()) + " " + Number(size_.height.Value()) + "\"";
  text += " font-family=\"sans-serif\"" + Attribute("font-size", kFontPixels) + ">\n";
  return text + body_ + "</svg>\n";
}

void SvgCanvas::FillRect(const PixelRect& rect, const Ink& ink, Pixels radius) {
  if (rect.Empty()) return;
  body_ += "<rect" + Place(rect) + (radius > 0_px ? Attribute("rx", radius.Value()) : "") + " fill=\"" + ColorOf(ink) +
           "\"/>\n";
}

void SvgCanvas::StrokeRect(const PixelRect& rect, const Ink& ink, Pixels width, Pixels radius) {
  if (rect.Empty()) return;
  body_ += "<rect" + Place(rect.Inset(width / 2)) + (radius > 0_px ? Attribute("rx", radius.Value()) : "") +
           " fill=\"none\" stroke=\"" + ColorOf(ink) + "\"" + Attribute("stroke-width", width.Value()) + "/>\n";
}

void SvgCanvas::DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels radius) {
  if (points.size() < 2) return;
  body_ += "<path d=\"" + RoundedPath(points, radius) + "\" fill=\"none\" stroke=\"" + ColorOf(ink) + "\"" +
           Attribute("stroke-width", width.Value()) + "/>\n";
}

void SvgCanvas::FillPolygon(std::span<const PixelPoint> points, const Ink& ink) {
  if (points.size() < 3) return;
  body_ += "<path d=\"" + RoundedPath(points, 0_px) + "Z\" fill=\"" + ColorOf(ink) + "\"/>\n";
}

// The text is clipped to its place, since only the viewer knows its width.
void SvgCanvas::DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) {
  if (rect.Empty() || text.empty()) return;
  const bool left = style.alignment == TextAlignment::Left;
  const bool right = style.alignment == TextAlignment::Right;
  const Pixels x = left ? rect.left : right ? rect.Right() : rect.CenterX();
  PushClip(rect);
  body_ += "<text" + Attribute("x", x.Value()) + Attribute("y", rect.CenterY().Value() + kBaseline) + " fill=\"" +
           ColorOf(style.ink) + "\"";
  if (!left) body_ += right ? " text-anchor=\"end\"" : " text-anchor=\"middle\"";
  if (style.font.bold) body_ += " font-weight=\"bold\"";
  if (style.font.italic) body_ += " font-style=\"italic\"";
  if (!style.font.family.empty()) body_ += " font-family=\"" + Escaped(style.font.family) + "\"";
  body_ += " xml:space=\"preserve\">";
  if (style.quietBytes > 0) {
    body_ += "<tspan font-weight=\"normal\" fill=\"" + ColorOf(style.quietInk) + "\">" +
             Escaped(text.substr(0, style.quietBytes)) + "</tspan>";
    text.remove_prefix(std::min(style.quietBytes, text.size()));
  }
  body_ += Escaped(text) + "</text>\n";
  PopClip();
}

// A picture's pixels, one square each: pictures here are icons of some dozens of pixels.
void SvgCanvas::DrawImage(const PixelRect& rect, const Image& image) {
  if (rect.Empty() || image.Width() <= 0 || image.Height() <= 0) return;
  const Pixels width = rect.width / image.Width();
  const Pixels height = rect.height / image.Height();
  for (int y = 0; y < image.Height(); ++y) {
    for (int x = 0; x < image.Width(); ++x) {
      const std::uint32_t pixel = image.Pixels()[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.Width()) +
                                                 static_cast<std::size_t>(x)];
      if (pixel >> 24 < 0x80) continue;
      FillRect({rect.left + width * x, rect.top + height * y, width, height},
               Color::Rgb((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF));
    }
  }
}

void SvgCanvas::DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) {
  switch (part) {
    case ThemedPart::CheckBox: {
      FillRect(rect, ColorRole::Box, 2_px);
      StrokeRect(rect, ColorRole::QuietText, 1_px, 2_px);
      if (!state.checked) return;
      const auto at = [&](double x, double y) {
        return PixelPoint{rect.left + rect.width * x, rect.top + rect.height * y};
      };
      const std::array<PixelPoint, 3> tick{at(0.22, 0.52), at(0.42, 0.74), at(0.78, 0.26)};
      DrawPolyline(tick, ColorRole::Text, 2_px);
      return;
    }
    case ThemedPart::ColumnHeader:
    case ThemedPart::RowHeader:
      FillRect(rect, state.pressed ? ColorRole::RowSelected : ColorRole::CaptionInactive);
      StrokeRect(rect, ColorRole::GridLine, 1_px);
      return;
    case ThemedPart::DropButton: {
      FillRect(rect, ColorRole::CaptionInactive, 2_px);
      const std::array<PixelPoint, 3> arrow{PixelPoint{rect.CenterX() - 4_px, rect.CenterY() - 2_px},
                                            PixelPoint{rect.CenterX() + 4_px, rect.CenterY() - 2_px},
                                            PixelPoint{rect.CenterX(), rect.CenterY() + 3_px}};
      FillPolygon(arrow, ColorRole::Text);
      return;
    }
    case ThemedPart::FocusRectangle:
      StrokeRect(rect, ColorRole::Focus, 2_px);
      return;
  }
}

void SvgCanvas::PushClip(const PixelRect& rect) {
  const std::string name = "c" + std::to_string(++clips_);
  body_ += "<clipPath id=\"" + name + "\"><rect" + Place(rect) + "/></clipPath><g clip-path=\"url(#" + name + ")\">\n";
}

void SvgCanvas::PopClip() { body_ += "</g>\n"; }

void SvgCanvas::PushView(PixelPoint origin, double zoom) {
  body_ += "<g transform=\"translate(" + PointText(origin) + ") scale(" + Number(zoom) + ")\">\n";
}

void SvgCanvas::PopView() { body_ += "</g>\n"; }

}  // namespace zrqrybld
