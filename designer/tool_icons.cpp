#include "designer/tool_icons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <algorithm>
#include <iterator>
#include <string_view>

namespace zrqrybld {
namespace {

// What is drawn, in a square of 24 by 24: "M x y" moves, "L x y" draws a line, "C" a curve with two control points,
// "Z" closes. `filled` is filled, `lines` are drawn.
struct Drawing {
  const char* lines;
  const char* filled;
};
struct Shape {
  Command command;
  Drawing drawing;
};
constexpr Shape kShapes[] = {
    {Command::NewQuery, {"M 6 3 L 14 3 L 19 8 L 19 21 L 6 21 Z M 14 3 L 14 8 L 19 8", ""}},
    {Command::OpenQuery, {"M 3 19 L 3 6 L 9 6 L 11 8 L 18 8 L 18 11 M 3 19 L 6 11 L 21 11 L 18 19 Z", ""}},
    {Command::SaveQuery,
     {"M 4 4 L 16 4 L 20 8 L 20 20 L 4 20 Z M 8 4 L 8 9 L 15 9 L 15 4 M 7 20 L 7 14 L 17 14 L 17 20", ""}},
    {Command::OpenDatabase,
     {"M 4 6 C 4 3 20 3 20 6 C 20 9 4 9 4 6 L 4 18 C 4 21 20 21 20 18 L 20 6 M 4 12 C 4 15 20 15 20 12", ""}},
    {Command::Connect, {"M 9 3 L 9 8 M 15 3 L 15 8 M 6 8 L 18 8 L 18 11 C 18 18 6 18 6 11 Z M 12 16 L 12 21", ""}},
    {Command::Undo, {"M 8 5 L 4 9 L 8 13 M 4 9 L 14 9 C 21 9 21 19 14 19 L 9 19", ""}},
    {Command::Redo, {"M 16 5 L 20 9 L 16 13 M 20 9 L 10 9 C 3 9 3 19 10 19 L 15 19", ""}},
    {Command::AddTables,
     {"M 3 5 L 17 5 L 17 10 M 11 19 L 3 19 L 3 5 M 3 9 L 17 9 M 8 9 L 8 19 M 18 13 L 18 21 M 14 17 L 22 17", ""}},
    {Command::RunPreview, {"", "M 7 4 L 19 12 L 7 20 Z"}},
    {Command::StopPreview, {"", "M 6 6 L 18 6 L 18 18 L 6 18 Z"}},
    {Command::GroupRows, {"M 17 5 L 6 5 L 12 12 L 6 19 L 17 19", ""}},
    {Command::FitToWindow,
     {"M 4 9 L 4 4 L 9 4 M 15 4 L 20 4 L 20 9 M 20 15 L 20 20 L 15 20 M 9 20 L 4 20 L 4 15 M 9 9 L 15 9 L 15 15 L 9 15 "
      "Z",
      ""}},
    {Command::Arrange,
     {"M 3 4 L 10 4 L 10 9 L 3 9 Z M 14 4 L 21 4 L 21 9 L 14 9 Z M 8 15 L 16 15 L 16 20 L 8 20 Z M 6 9 L 6 12 L 18 12 "
      "L "
      "18 9 M 12 12 L 12 15",
      ""}},
};

constexpr Drawing kGlyphs[] = {
    {"M 3 5 L 21 5 L 21 19 L 3 19 Z M 3 10 L 21 10 M 9 10 L 9 19", "M 3 5 L 21 5 L 21 9 L 3 9 Z"},
    {"M 3 5 L 21 5 L 21 19 L 3 19 Z M 3 9 L 21 9 M 7 13 L 17 13 M 7 16 L 13 16", ""},
    {"M 4 12 C 4 8 10 8 10 12 C 10 16 4 16 4 12 M 10 12 L 21 12 L 21 16 M 16 12 L 16 15", ""},
    {"M 3 3 L 21 3 L 21 21 L 3 21 Z M 7 8 L 17 8 L 17 16 L 7 16 Z", "M 7 8 L 17 8 L 17 11 L 7 11 Z"},
};

QPainterPath PathOf(std::string_view drawing) {
  QPainterPath path;
  const QStringList words =
      QString::fromLatin1(drawing.data(), static_cast<qsizetype>(drawing.size())).split(' ', Qt::SkipEmptyParts);
  qsizetype at = 0;
  const auto point = [&] {
    const QPointF read(words.value(at).toDouble(), words.value(at + 1).toDouble());
    at += 2;
    return read;
  };
  while (at < words.size()) {
    const QString what = words[at++];
    if (what == "M") path.moveTo(point());
    if (what == "L") path.lineTo(point());
    if (what == "Z") path.closeSubpath();
    if (what == "C") {
      const QPointF first = point();
      const QPointF second = point();
      path.cubicTo(first, second, point());
    }
  }
  return path;
}

// Paints in the middle of the place, in a square of 24 by 24 units.
class DrawnIcon : public QIconEngine {
 public:
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const double side = std::min(rect.width(), rect.height());
    painter->translate(QRectF(rect).center() - QPointF(side / 2, side / 2));
    painter->scale(side / 24, side / 24);
    Draw(*painter, mode, state);
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, picture.rect(), mode, state);
    return picture;
  }

 protected:
  virtual void Draw(QPainter& painter, QIcon::Mode mode, QIcon::State state) const = 0;
};

class CommandIcon final : public DrawnIcon {
 public:
  explicit CommandIcon(const Drawing& drawing) : drawing_(drawing) {}
  QIconEngine* clone() const override { return new CommandIcon(drawing_); }

 protected:
  void Draw(QPainter& painter, QIcon::Mode mode, QIcon::State) const override {
    const QColor ink = QApplication::palette().color(mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active,
                                                     QPalette::ButtonText);
    painter.setPen(QPen(ink, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(PathOf(drawing_.lines));
    painter.fillPath(PathOf(drawing_.filled), ink);
  }

 private:
  const Drawing& drawing_;
};

class WindowIcon final : public DrawnIcon {
 public:
  QIconEngine* clone() const override { return new WindowIcon; }

 protected:
  void Draw(QPainter& painter, QIcon::Mode, QIcon::State) const override {
    constexpr QRgb kGround = 0xFF2563A8;
    constexpr QRgb kBox = 0xFFFFFFFF;
    constexpr QRgb kCaption = 0xFF9CC4EE;
    constexpr QRgb kJoin = 0xFFFFC24A;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(kGround));
    painter.drawRoundedRect(QRectF(1, 1, 22, 22), 5, 5);
    painter.setPen(QPen(QColor(kJoin), 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(PathOf("M 10 10 L 12 10 L 12 15 L 14 15"));
    painter.setPen(Qt::NoPen);
    for (const QRectF& box : {QRectF(3.5, 5, 7, 9), QRectF(13.5, 10, 7, 9)}) {
      painter.setBrush(QColor(kBox));
      painter.drawRoundedRect(box, 1, 1);
      painter.setBrush(QColor(kCaption));
      painter.drawRoundedRect(QRectF(box.topLeft(), QSizeF(box.width(), 2.8)), 1, 1);
    }
  }
};

}  // namespace

QIcon IconOf(Command command) {
  const Shape* shape = std::ranges::find(kShapes, command, &Shape::command);
  return shape == std::end(kShapes) ? QIcon() : QIcon(new CommandIcon(shape->drawing));
}

QIcon IconOf(Glyph glyph) { return QIcon(new CommandIcon(kGlyphs[static_cast<std::size_t>(glyph)])); }

QIcon ProgramIcon() { return QIcon(new WindowIcon); }

}  // namespace zrqrybld
