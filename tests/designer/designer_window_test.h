// What the tests of the designer's window share: the window on the sample database, and the places in it that a user
// would aim at.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QMessageBox>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <functional>
#include <string>

#include "designer/main_window.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/diagram/relationships.h"

namespace zrqrybld::test {

inline std::string Utf8(const QString& text) { return text.toStdString(); }

class DesignerWindow : public testing::Test {
 protected:
  DesignerWindow() {
    window.show();
    QApplication::setActiveWindow(&window);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }

  void OpenSample() { ASSERT_EQ(Utf8(window.OpenDatabase(ZRQRYBLD_SAMPLE_DB)), ""); }
  void OpenSampleWith(const QStringList& tables) {
    OpenSample();
    ASSERT_EQ(Utf8(window.AddTables(tables).join("; ")), "");
    QTest::qWait(1);  // the boxes are painted where they stand
  }

  QueryDesignerWidget& Designer() { return *window.findChild<QueryDesignerWidget*>(); }
  qbQueryBuilder& Hub() { return Designer().QueryBuilder(); }
  qbGridPane& Grid() { return *Hub().GridPane(); }
  QWidget* Diagram() { return Designer().DiagramView().viewport(); }
  std::string Statement() { return Utf8(window.Statement()); }
  qbEntityList& Box(const char* caption) { return *Hub().Entities()->Item(caption)->EntityBox(); }
  Ref<qbEntityItem> Item(const char* caption, const char* column) {
    return Hub().Entities()->Item(caption)->Items()->Item(column);
  }

  /// The rows of the grid that hold something, as "Table.Column", with "-" before those that are no output.
  std::string GridRows() {
    std::string text;
    for (std::int32_t row = 1; row <= Grid().RowCount(); ++row) {
      const std::string column = Grid().Value(row, "column").Text();
      if (column.empty()) continue;
      if (!text.empty()) text += ' ';
      if (Grid().Value(row, "output") != Variant(true)) text += '-';
      text += Grid().Value(row, "table").Text() + "." + column;
    }
    return text;
  }

  /// Where a point of the diagram's surface is seen in its window.
  QPoint InView(TwipsPoint point) {
    const PixelPoint pixels = ScreenScale{}.ToPixels(point);
    const double zoom = Hub().DiagramPane()->Zoom();
    const auto seen = [&](Pixels at, const QScrollBar* bar) {
      return qRound(((at + kSurfaceMargin) * zoom).Value()) - bar->value();
    };
    ControlWidget& view = Designer().DiagramView();
    return {seen(pixels.x, view.horizontalScrollBar()), seen(pixels.y, view.verticalScrollBar())};
  }

  /// The middle of a row's check box.
  QPoint CheckBox(const char* caption, const char* column) {
    const qbEntityList& box = Box(caption);
    const auto row = static_cast<std::size_t>(Item(caption, column)->Index());
    const TwipsRect place = box.ItemBounds(row);
    Twips first{}, last{};
    for (Twips x = place.left; x < place.Right(); x += Twips(15)) {
      if (box.HitTest({x, place.CenterY()}).part != BoxPart::CheckBox) continue;
      if (first == Twips{}) first = x;
      last = x;
    }
    EXPECT_GT(last, first) << caption << "." << column << " has no check box to be seen";
    return InView({(first + last) / 2, place.CenterY()});
  }

  QPoint RowText(const char* caption, const char* column) {
    const TwipsRect place = Box(caption).ItemBounds(static_cast<std::size_t>(Item(caption, column)->Index()));
    return InView({place.left + place.width / 2, place.CenterY()});
  }

  QPoint Caption(const char* caption) {
    const TwipsRect& place = Box(caption).Bounds();
    return InView({place.left + place.width / 2, place.top + Twips(150)});
  }

  void Click(QPoint place) { QTest::mouseClick(Diagram(), Qt::LeftButton, {}, place); }

  /// Runs `answer` on the dialog that `open` opens. Fails when none comes.
  void WithDialog(const std::function<void()>& open, const std::function<void(QDialog&)>& answer) {
    bool answered = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (!dialog || answered) return;
      answered = true;
      answer(*dialog);
      if (dialog->isVisible()) dialog->reject();
    });
    timer.start(10);
    open();
    // Opened by a key, the dialog runs its own loop within `open`; opened by a timer, it comes a little later.
    EXPECT_TRUE(QTest::qWaitFor([&] { return answered && !QApplication::activeModalWidget(); }));
  }

  /// The text of the message that `open` brings up.
  std::string MessageOf(const std::function<void()>& open) {
    std::string text;
    WithDialog(open, [&](QDialog& dialog) {
      auto* message = qobject_cast<QMessageBox*>(&dialog);
      ASSERT_TRUE(message);
      text = Utf8(message->text());
      QTest::keyClick(message, Qt::Key_Return);
    });
    return text;
  }

  MainWindow window;
};

}  // namespace zrqrybld::test
