#include "zrqrybld/diagram/icons.h"

#include <algorithm>
#include <array>

namespace zrqrybld {
namespace {

// Draws in a square of 16 by 16 units.
class IconPen {
 public:
  IconPen(Canvas& canvas, const PixelRect& rect, const Ink& ink) : canvas_(canvas), ink_(ink) {
    const Pixels side = std::min(rect.width, rect.height);
    unit_ = side / 16;
    origin_ = {rect.CenterX() - side / 2, rect.CenterY() - side / 2};
  }

  void Line(double x1, double y1, double x2, double y2) const {
    const std::array<PixelPoint, 2> points{At(x1, y1), At(x2, y2)};
    canvas_.DrawPolyline(points, ink_, Stroke());
  }
  void Frame(double x, double y, double width, double height, double radius) const {
    canvas_.StrokeRect(Area(x, y, width, height), ink_, Stroke(), unit_ * radius);
  }
  void Fill(double x, double y, double width, double height) const {
    canvas_.FillRect(Area(x, y, width, height), ink_);
  }

 private:
  PixelPoint At(double x, double y) const { return {origin_.x + unit_ * x, origin_.y + unit_ * y}; }
  PixelRect Area(double x, double y, double width, double height) const {
    return {origin_.x + unit_ * x, origin_.y + unit_ * y, unit_ * width, unit_ * height};
  }
  Pixels Stroke() const { return std::max(unit_ * 1.5, 1_px); }

  Canvas& canvas_;
  const Ink& ink_;
  Pixels unit_;
  PixelPoint origin_{};
};

}  // namespace

void DrawIcon(Canvas& canvas, Icon icon, const PixelRect& rect, const Ink& ink) {
  const IconPen pen(canvas, rect, ink);
  switch (icon) {
    case Icon::Table:
      pen.Frame(1.5, 2.5, 13, 11, 1.5);
      pen.Fill(2, 3, 12, 3);
      pen.Line(6, 6, 6, 13);
      pen.Line(2, 9.5, 14, 9.5);
      break;
    case Icon::View:
      pen.Frame(1.5, 2.5, 13, 11, 1.5);
      pen.Line(2, 6, 14, 6);
      pen.Line(5, 9, 11, 9);
      pen.Line(5, 11, 9, 11);
      break;
    case Icon::Query:  // a table within a frame of its own
      pen.Frame(1.5, 1.5, 13, 13, 3);
      pen.Frame(4.5, 5, 7, 6, 0.5);
      pen.Fill(4.5, 5, 7, 2);
      break;
    case Icon::Joined:
      pen.Line(2, 8, 14, 8);
      pen.Fill(1, 5.5, 5, 5);
      pen.Fill(10, 5.5, 5, 5);
      break;
    case Icon::Ascending:
      pen.Line(8, 3.5, 8, 13);
      pen.Line(4.5, 7, 8, 3.5);
      pen.Line(8, 3.5, 11.5, 7);
      break;
    case Icon::Descending:
      pen.Line(8, 3, 8, 12.5);
      pen.Line(4.5, 9, 8, 12.5);
      pen.Line(8, 12.5, 11.5, 9);
      break;
    case Icon::Filter:
      pen.Line(2.5, 3.5, 13.5, 3.5);
      pen.Line(2.5, 3.5, 6.7, 8.5);
      pen.Line(13.5, 3.5, 9.3, 8.5);
      pen.Line(6.7, 8.5, 6.7, 13.5);
      pen.Line(9.3, 8.5, 9.3, 11.5);
      pen.Line(6.7, 13.5, 9.3, 11.5);
      break;
    case Icon::Minimize:
      pen.Line(4, 10, 8, 6);
      pen.Line(8, 6, 12, 10);
      break;
    case Icon::Restore:
      pen.Line(4, 6, 8, 10);
      pen.Line(8, 10, 12, 6);
      break;
    case Icon::Key:
      pen.Frame(0.5, 4, 8, 8, 4);
      pen.Line(8, 8, 15.5, 8);
      pen.Line(12, 8, 12, 11.5);
      pen.Line(15, 8, 15, 12);
      break;
  }
}

void DrawTypeIcon(Canvas& canvas, TypeKind kind, const PixelRect& rect, const Ink& ink) {
  const IconPen pen(canvas, rect, ink);
  switch (kind) {
    case TypeKind::None:
      return;
    case TypeKind::Number:  // a number sign
      pen.Line(6.5, 3, 4.5, 13);
      pen.Line(11.5, 3, 9.5, 13);
      pen.Line(3, 6.3, 13.5, 6.3);
      pen.Line(2.5, 9.8, 13, 9.8);
      return;
    case TypeKind::Text:  // a capital A
      pen.Line(3.5, 13, 8, 3);
      pen.Line(8, 3, 12.5, 13);
      pen.Line(5.2, 9.5, 10.8, 9.5);
      return;
    case TypeKind::Date:  // a calendar sheet
      pen.Frame(2.5, 3.5, 11, 10, 1.5);
      pen.Line(3, 7, 13, 7);
      pen.Line(5.5, 2, 5.5, 5);
      pen.Line(10.5, 2, 10.5, 5);
      return;
    case TypeKind::YesNo:  // a tick
      pen.Line(3, 8.5, 6.5, 12);
      pen.Line(6.5, 12, 13, 4.5);
      return;
    case TypeKind::Binary:  // two blocks
      pen.Frame(2.5, 4, 5, 8, 1);
      pen.Frame(8.5, 4, 5, 8, 1);
      return;
    case TypeKind::Other:
      pen.Frame(4, 4, 8, 8, 4);
      return;
  }
}

}  // namespace zrqrybld
