#include <gtest/gtest.h>

#include <QApplication>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <stdexcept>

#include "tests/data_table.h"
#include "tests/qt/palettes.h"
#include "tests/qt/probe_control.h"
#include "zrqrybld/adapters/qt/control_widget.h"
#include "zrqrybld/adapters/qt/qt_input.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/error.h"

namespace zrqrybld {
namespace {

using Log = std::vector<std::string>;

class ControlWidgetTest : public testing::Test {
 protected:
  ControlWidgetTest() : control(std::make_shared<ProbeControl>()), widget(control) {
    widget.resize(300, 200);
    widget.show();
    QApplication::setActiveWindow(&widget);
    widget.setFocus();
    QApplication::processEvents();
    control->TakeLog();
  }

  // The widget tells the control while it goes; what a test hung in must not hear of it.
  void TearDown() override {
    control->react = nullptr;
    control->paint = nullptr;
  }

  Ref<ProbeControl> control;
  ControlWidget widget;
};

TEST_F(ControlWidgetTest, KeysArriveWithTheirCodes) {
  for (const test::Row& row : test::ReadRows("widget_keys.txt")) {
    SCOPED_TRACE(row.place);
    const QKeyCombination key = QKeySequence(ToQString(row[0]))[0];
    QKeyEvent event(QEvent::KeyPress, key.key(), key.keyboardModifiers(), ToQString(row[1]));
    QApplication::sendEvent(&widget, &event);
    EXPECT_EQ(control->TakeLog(), Log{"key " + row[2]});
    EXPECT_TRUE(event.isAccepted());
  }
}

TEST_F(ControlWidgetTest, AnUnusedKeyIsOfferedOnceAndGoesOn) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  const auto first = std::make_shared<ProbeControl>();
  auto* inner = new ControlWidget(first);
  auto* other = new ControlWidget(std::make_shared<ProbeControl>());
  layout->addWidget(inner);
  layout->addWidget(other);
  window.show();
  QApplication::setActiveWindow(&window);
  inner->setFocus();
  first->TakeLog();

  QTest::keyClick(inner, Qt::Key_Tab);
  EXPECT_TRUE(inner->hasFocus()) << "the control used the key";
  first->useKeys = false;
  first->TakeLog();
  QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
  QApplication::sendEvent(inner, &down);
  EXPECT_FALSE(down.isAccepted());
  QTest::keyPress(inner, Qt::Key_Tab);
  EXPECT_TRUE(other->hasFocus());
  EXPECT_EQ(first->log, (Log{"key 40 shift 0 \"\"", "key 9 shift 0 \"\"", "blur"}));
}

TEST_F(ControlWidgetTest, AHeldKeyIsReleasedOnce) {
  for (const bool repeated : {true, true, false}) {
    QKeyEvent event(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), repeated);
    QApplication::sendEvent(&widget, &event);
  }
  EXPECT_EQ(control->log, Log{"keyup 32"});
}

TEST_F(ControlWidgetTest, TheMouseArrivesInViewCoordinates) {
  QWidget* view = widget.viewport();
  QTest::mousePress(view, Qt::LeftButton, Qt::ShiftModifier, {10, 20});
  const auto move = [&](QPointF at, Qt::MouseButtons held) {
    QMouseEvent event(QEvent::MouseMove, at, view->mapToGlobal(at), Qt::NoButton, held, Qt::ControlModifier);
    QApplication::sendEvent(view, &event);
  };
  move({-5, 400}, Qt::LeftButton | Qt::RightButton);
  QTest::mouseRelease(view, Qt::LeftButton, Qt::NoModifier, {12, 22});
  move({7, 8}, Qt::NoButton);
  QTest::mousePress(view, Qt::RightButton, Qt::AltModifier, {1, 2});
  QTest::mouseRelease(view, Qt::RightButton, Qt::NoModifier, {1, 2});
  QTest::mousePress(view, Qt::BackButton, Qt::NoModifier, {1, 2});  // not one of the three
  QTest::mouseRelease(view, Qt::BackButton, Qt::NoModifier, {1, 2});
  QTest::mouseDClick(view, Qt::LeftButton, Qt::NoModifier, {3, 4});
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(view, &leave);
  Log expected = {"down 1 shift 1 at 10,20", "move 3 shift 2 at -5,400", "up 1 shift 0 at 12,22",
                  "move 0 shift 2 at 7,8",   "down 2 shift 4 at 1,2",    "up 2 shift 0 at 1,2"};
  Log log = control->TakeLog();
  ASSERT_GE(log.size(), expected.size());
  EXPECT_EQ(Log(log.begin(), log.begin() + static_cast<std::ptrdiff_t>(expected.size())), expected);
  EXPECT_EQ(std::ranges::count(log, "double 1 shift 0 at 3,4"), 1);
  EXPECT_EQ(log.back(), "leave");
}

TEST_F(ControlWidgetTest, TheWheelCountsLinesDownAndRight) {
  const struct {
    QPoint pixels;
    QPoint angle;
    const char* expected;
  } cases[] = {
      {{}, {0, -120}, "wheel 0,3 shift 1"},
      {{}, {0, 240}, "wheel 0,-6 shift 1"},
      {{}, {-120, 0}, "wheel 3,0 shift 1"},
      {{0, -1000}, {0, -120}, nullptr},  // a touch pad's own pixels count, whatever the font
  };
  for (const auto& [pixels, angle, expected] : cases) {
    QWheelEvent event({5, 5}, {5, 5}, pixels, angle, Qt::NoButton, Qt::ShiftModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget.viewport(), &event);
    const double line = widget.Metrics().LineHeight({}).Value();
    EXPECT_EQ(control->TakeLog(), Log{expected ? expected : "wheel 0," + Number(1000 / line) + " shift 1"});
  }
}

TEST_F(ControlWidgetTest, ScrollBarsSpeakOnlyWhenTheUserMovesThem) {
  const ScrollState state{.value = 40, .maximum = 500, .page = 150, .step = 16};
  widget.SetScrollBar(Orientation::Vertical, state);
  QApplication::processEvents();
  const QScrollBar& bar = *widget.verticalScrollBar();
  EXPECT_TRUE(bar.isVisible());
  EXPECT_EQ((ScrollState{bar.value(), bar.maximum(), bar.pageStep(), bar.singleStep()}), state);
  EXPECT_LT(widget.ViewSize().width, 300_px);
  for (const std::string& entry : control->TakeLog()) EXPECT_TRUE(entry.starts_with("resize")) << entry;

  control->react = [&](const std::string& entry) {  // as a control does: it states the new position
    if (entry.starts_with("vertical")) widget.SetScrollBar(Orientation::Vertical, {77, 500, 150, 16});
  };
  widget.verticalScrollBar()->setValue(77);
  EXPECT_EQ(control->TakeLog(), Log{"vertical 77"});
  widget.horizontalScrollBar()->setRange(0, 10);
  widget.horizontalScrollBar()->setValue(3);
  EXPECT_EQ(control->TakeLog().back(), "horizontal 3");

  widget.SetScrollBar(Orientation::Vertical, {});
  QApplication::processEvents();
  EXPECT_FALSE(bar.isVisible()) << "nothing to scroll";
}

// A bar that appears makes the view smaller, and the control then states its bars anew, from inside.
TEST_F(ControlWidgetTest, BarsSetWhileBarsAreSetEndAsTheControlWants) {
  const auto layOut = [&] {
    const PixelSize view = widget.ViewSize();
    const int height = static_cast<int>(view.height.Value());
    const int width = static_cast<int>(view.width.Value());
    widget.SetScrollBar(Orientation::Vertical, {0, std::max(0, 205 - height), height, 1});
    widget.SetScrollBar(Orientation::Horizontal, {0, std::max(0, 295 - width), width, 1});
  };
  control->react = [&](const std::string& entry) {
    if (entry.starts_with("resize")) layOut();
  };
  layOut();
  QApplication::processEvents();
  EXPECT_EQ(widget.verticalScrollBar()->maximum(), 205 - widget.viewport()->height());
  EXPECT_EQ(widget.horizontalScrollBar()->maximum(), 295 - widget.viewport()->width());
  EXPECT_TRUE(widget.horizontalScrollBar()->isVisible()) << "there is no room left beside the vertical bar";
}

TEST_F(ControlWidgetTest, CursorCaptureFocusAndDragAreQts) {
  for (const auto& [cursor, shape] :
       {std::pair{Cursor::SizeDiagonalDown, Qt::SizeFDiagCursor}, std::pair{Cursor::NoDrop, Qt::ForbiddenCursor},
        std::pair{Cursor::Join, Qt::DragLinkCursor}, std::pair{Cursor::ColumnSplit, Qt::SplitHCursor},
        std::pair{Cursor::Arrow, Qt::ArrowCursor}}) {
    widget.SetCursor(cursor);
    EXPECT_EQ(widget.viewport()->cursor().shape(), shape);
  }
  widget.SetCapture(true);
  EXPECT_EQ(QWidget::mouseGrabber(), widget.viewport());
  widget.hide();
  EXPECT_EQ(QWidget::mouseGrabber(), nullptr) << "a hidden window must not keep the mouse";

  QString dragged;
  widget.SetDragHandler([&](const QString& text) { dragged = text; });
  widget.DragText("Größe");
  EXPECT_EQ(dragged, QStringLiteral("Größe"));
}

TEST_F(ControlWidgetTest, AToolTipIsPlainText) {
  const auto ask = [&] {
    QHelpEvent event(QEvent::ToolTip, {5, 5}, widget.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(widget.viewport(), &event);
  };
  control->toolTip = "<b>bold</b>";
  ask();
  EXPECT_EQ(QToolTip::text(), QStringLiteral("&lt;b&gt;bold&lt;/b&gt;"));
  control->toolTip = "a < b & c";
  ask();
  EXPECT_EQ(QToolTip::text(), QStringLiteral("a < b & c"));
}

TEST_F(ControlWidgetTest, PaintsWhatIsDirtyInTheThemesColours) {
  control->paint = [](Canvas& c) { c.FillRect({10_px, 10_px, 20_px, 20_px}, ColorRole::JoinSelected); };
  const QImage light = widget.grab().toImage();
  EXPECT_EQ(light.pixelColor(15, 15), widget.GetTheme().Of(ColorRole::JoinSelected));
  EXPECT_EQ(light.pixelColor(50, 50), widget.GetTheme().Of(ColorRole::Surface));

  control->TakeLog();
  widget.setPalette(TestPalettes()[1].palette);
  EXPECT_EQ(control->TakeLog(), Log()) << "nothing that is going on is ended by other colours";
  const QImage dark = widget.grab().toImage();
  EXPECT_TRUE(widget.GetTheme().IsDark());
  EXPECT_EQ(dark.pixelColor(50, 50), widget.GetTheme().Of(ColorRole::Surface));
  EXPECT_NE(dark.pixelColor(50, 50), light.pixelColor(50, 50));
}

TEST_F(ControlWidgetTest, AFontChangeChangesTheMetrics) {
  const Pixels before = widget.Metrics().LineHeight({});
  control->TakeLog();
  QFont font = widget.font();
  font.setPointSizeF(font.pointSizeF() * 2);
  widget.setFont(font);
  EXPECT_GT(widget.Metrics().LineHeight({}), before * 1.5);
  EXPECT_EQ(control->TakeLog().front(), "surface");
}

TEST_F(ControlWidgetTest, NoExceptionLeavesAnEvent) {
  Log failures;
  widget.SetErrorHandler([&](const std::exception& error) { failures.emplace_back(error.what()); });
  control->react = [](const std::string& entry) {
    if (entry == "leave") throw 42;  // not even a standard exception
    throw Error(ErrorNoSuchItem, "failed: " + entry.substr(0, entry.find(' ')));
  };
  control->paint = [](Canvas& c) {
    const ClipScope clip(c, {0_px, 0_px, 5_px, 5_px});
    throw std::runtime_error("failed: paint");
  };
  QTest::mousePress(widget.viewport(), Qt::LeftButton, Qt::NoModifier, {1, 1});
  QTest::mouseRelease(widget.viewport(), Qt::LeftButton, Qt::NoModifier, {1, 1});
  QTest::keyClick(&widget, Qt::Key_A);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(widget.viewport(), &leave);
  widget.resize(310, 210);
  widget.grab();
  for (const char* expected : {"failed: down", "failed: up", "failed: key", "failed: keyup",
                               "An unknown error occurred.", "failed: resize", "failed: paint"}) {
    EXPECT_TRUE(std::ranges::count(failures, expected) > 0) << expected;
  }
  widget.SetErrorHandler([](const std::exception&) { throw std::runtime_error("the handler fails, too"); });
  QTest::mouseClick(widget.viewport(), Qt::LeftButton);
}

TEST(ControlWidgetLife, TheControlOutlivesItsWidget) {
  const auto control = std::make_shared<ProbeControl>();
  auto widget = std::make_unique<ControlWidget>(control);
  widget->resize(300, 200);
  widget->show();
  EXPECT_EQ(&control->GetSurface(), widget.get());
  widget.reset();
  EXPECT_EQ(control->GetSurface().ViewSize(), (PixelSize{800_px, 600_px})) << "back on its headless surface";
  control->GetSurface().InvalidateAll();
}

TEST(ControlWidgetLife, AControlMayTakeItselfOutWhileItIsCalled) {
  auto control = std::make_shared<ProbeControl>();
  const WeakRef<ProbeControl> weak = control;
  ControlWidget widget(control);
  widget.show();
  control->react = [&](const std::string& entry) {
    if (entry.starts_with("down")) widget.SetControl(nullptr);
  };
  control.reset();
  QTest::mousePress(widget.viewport(), Qt::LeftButton, Qt::NoModifier, {1, 1});
  EXPECT_TRUE(weak.expired()) << "the widget was its last owner";
  QTest::mouseRelease(widget.viewport(), Qt::LeftButton, Qt::NoModifier, {1, 1});
  widget.grab();  // an empty widget still paints
  widget.setFont(QFont(QStringLiteral("DejaVu Serif")));
}

TEST(ControlWidgetLife, AControlMovesToTheLastWidgetThatTookIt) {
  const auto control = std::make_shared<ProbeControl>();
  auto first = std::make_unique<ControlWidget>(control);
  ControlWidget second(control);
  first.reset();
  EXPECT_EQ(&control->GetSurface(), &second) << "the first widget must not take it out of the second";
}

}  // namespace
}  // namespace zrqrybld
