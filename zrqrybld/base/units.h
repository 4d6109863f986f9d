// Units of geometry and colour.
//
// The diagram and the grid keep their geometry in twips (1/1440 inch); a screen shows pixels. The
// two never mix without a screen's factor, so they are different types.
#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>

namespace zrqrybld {

/// A length in one unit. Lengths of different units cannot be added or compared.
template <class Unit>
class Length {
 public:
  constexpr Length() = default;
  constexpr explicit Length(double value) : value_(value) {}
  constexpr double Value() const { return value_; }

  friend constexpr Length operator+(Length a, Length b) { return Length(a.value_ + b.value_); }
  friend constexpr Length operator-(Length a, Length b) { return Length(a.value_ - b.value_); }
  friend constexpr Length operator-(Length a) { return Length(-a.value_); }
  friend constexpr Length operator*(Length a, double factor) { return Length(a.value_ * factor); }
  friend constexpr Length operator*(double factor, Length a) { return a * factor; }
  friend constexpr Length operator/(Length a, double divisor) { return Length(a.value_ / divisor); }
  friend constexpr double operator/(Length a, Length b) { return a.value_ / b.value_; }
  constexpr Length& operator+=(Length other) { return *this = *this + other; }
  constexpr Length& operator-=(Length other) { return *this = *this - other; }
  friend constexpr auto operator<=>(Length, Length) = default;

 private:
  double value_ = 0;
};

/// 1/1440 inch.
using Twips = Length<struct TwipsUnit>;
/// One picture element of the surface, before the screen's own scale.
using Pixels = Length<struct PixelsUnit>;

constexpr Pixels operator""_px(unsigned long long value) { return Pixels(static_cast<double>(value)); }
constexpr Pixels operator""_px(long double value) { return Pixels(static_cast<double>(value)); }
constexpr Twips operator""_twips(unsigned long long value) { return Twips(static_cast<double>(value)); }

template <class L>
struct Point {
  L x;
  L y;
  friend constexpr bool operator==(const Point&, const Point&) = default;
  friend constexpr Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
  friend constexpr Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
};

template <class L>
struct Size {
  L width;
  L height;
  friend constexpr bool operator==(const Size&, const Size&) = default;
};

/// A rectangle: its left and top edge belong to it, its right and bottom edge do not.
template <class L>
struct Rect {
  L left;
  L top;
  L width;
  L height;

  constexpr L Right() const { return left + width; }
  constexpr L Bottom() const { return top + height; }
  constexpr Point<L> TopLeft() const { return {left, top}; }
  constexpr L CenterX() const { return left + width / 2; }
  constexpr L CenterY() const { return top + height / 2; }
  constexpr bool Empty() const { return width <= L() || height <= L(); }
  constexpr bool Contains(Point<L> p) const { return p.x >= left && p.x < Right() && p.y >= top && p.y < Bottom(); }
  /// Whether the two share an area; rectangles that only touch do not.
  constexpr bool Overlaps(const Rect& other) const {
    return left < other.Right() && other.left < Right() && top < other.Bottom() && other.top < Bottom();
  }
  constexpr Rect Inset(L dx, L dy) const { return {left + dx, top + dy, width - dx * 2, height - dy * 2}; }
  constexpr Rect Inset(L d) const { return Inset(d, d); }
  constexpr Rect Moved(L dx, L dy) const { return {left + dx, top + dy, width, height}; }
  constexpr Rect Union(const Rect& other) const {
    if (Empty()) return other;
    if (other.Empty()) return *this;
    const L l = std::min(left, other.left);
    const L t = std::min(top, other.top);
    return {l, t, std::max(Right(), other.Right()) - l, std::max(Bottom(), other.Bottom()) - t};
  }
  friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

using TwipsPoint = Point<Twips>;
using TwipsSize = Size<Twips>;
using TwipsRect = Rect<Twips>;
using PixelPoint = Point<Pixels>;
using PixelSize = Size<Pixels>;
using PixelRect = Rect<Pixels>;

/// A screen's factors between the two units.
struct ScreenScale {
  double twipsPerPixelX = 15;
  double twipsPerPixelY = 15;

  constexpr Twips TwipsX(Pixels p) const { return Twips(p.Value() * twipsPerPixelX); }
  constexpr Twips TwipsY(Pixels p) const { return Twips(p.Value() * twipsPerPixelY); }
  constexpr Pixels PixelsX(Twips t) const { return Pixels(t.Value() / twipsPerPixelX); }
  constexpr Pixels PixelsY(Twips t) const { return Pixels(t.Value() / twipsPerPixelY); }
  constexpr PixelPoint ToPixels(TwipsPoint p) const { return {PixelsX(p.x), PixelsY(p.y)}; }
  constexpr TwipsPoint ToTwips(PixelPoint p) const { return {TwipsX(p.x), TwipsY(p.y)}; }
  constexpr PixelRect ToPixels(const TwipsRect& r) const {
    return {PixelsX(r.left), PixelsY(r.top), PixelsX(r.width), PixelsY(r.height)};
  }
  constexpr TwipsRect ToTwips(const PixelRect& r) const {
    return {TwipsX(r.left), TwipsY(r.top), TwipsX(r.width), TwipsY(r.height)};
  }
};

/// A colour as applications give it: 0x00BBGGRR, or 0x80000000 plus the number of a system colour.
struct Color {
  std::uint32_t value = 0;

  static constexpr Color System(std::uint32_t number) { return {0x80000000u | number}; }
  static constexpr Color Rgb(unsigned red, unsigned green, unsigned blue) {
    return {red | (green << 8) | (blue << 16)};
  }
  constexpr bool IsSystem() const { return (value & 0x80000000u) != 0; }
  constexpr std::uint32_t SystemNumber() const { return value & 0xFFu; }
  constexpr unsigned Red() const { return value & 0xFFu; }
  constexpr unsigned Green() const { return (value >> 8) & 0xFFu; }
  constexpr unsigned Blue() const { return (value >> 16) & 0xFFu; }
  friend constexpr bool operator==(Color, Color) = default;
};

}  // namespace zrqrybld
