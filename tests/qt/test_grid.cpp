// The grid in a window, under real mouse and key events: the scenarios of tests/data/grid_gestures.txt.
#include <QAbstractItemView>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include "tests/fakes/recording_canvas.h"
#include "tests/hub_fixture.h"
#include "tests/player.h"
#include "tests/qt/hands.h"
#include "tests/qt/palettes.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/control_widget.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"

namespace zrqrybld {
namespace {

class GridWindow : public test::Player, public test::Designer {
 public:
  GridWindow() {
    Use();
    for (const char* table : {"Orders", "Customers"}) hub->AddTable(table);
    other_.setGeometry(0, 320, 900, 30);
    view.setGeometry(0, 0, 900, 320);
    window.resize(900, 350);
    window.show();
    QApplication::setActiveWindow(&window);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    view.setFocus();
    const auto log = [this](const char* name, auto& event) {
      links_.push_back(event.Connect([this, name](std::int32_t row, std::int32_t column, auto&&...) {
        Note(name + std::to_string(row) + "," + std::to_string(column));
      }));
    };
    log("r", control.RowColChange);
    log("e", control.BeforeEdit);
    log("a", control.AfterEdit);
    log("c", grid->AfterChange);
    log("m", control.ShowContextMenu);
    log("D", control.AfterDelete);
    log("I", control.AfterInsert);
    log("d", control.BeforeDropDown);
    links_.push_back(control.AfterMove.Connect([this](std::int32_t first, std::int32_t last, std::int32_t to) {
      Note("M" + std::to_string(first) + "," + std::to_string(last) + "," + std::to_string(to));
    }));
    links_.push_back(control.DblClick.Connect([this] { Note("x"); }));
    links_.push_back(control.MouseUp.Connect([this](std::int32_t, std::int32_t, float, float) { Note("u"); }));
    KnowActions();
    KnowAnswers();
  }

  zrGrid& control = *grid->Grid();
  QWidget window;
  ControlWidget view{grid->Grid(), &window};

 private:
  void Around(const std::function<void()>& act) override {
    log_.clear();
    menu_.clear();
    toolkit->GetDialogs().messages.clear();
    changes_ = Changes([&] {
      act();
      QApplication::processEvents();
    });
  }
  void Note(const std::string& entry) { log_ += (log_.empty() ? "" : " ") + entry; }
  QPoint At(PixelPoint point) const { return {static_cast<int>(point.x.Value()), static_cast<int>(point.y.Value())}; }
  QPoint Cell(const std::string& row, const std::string& column) const {
    const PixelRect cell = grid->Grid()->GetRowColumnXY(std::stoi(row), column);
    return At({cell.CenterX(), cell.CenterY()});
  }
  QPoint Header(const std::string& row) const { return {8, Cell(row, "column").y()}; }
  // Without a window manager a menu that closes leaves no window active.
  QWidget* Focus() {
    if (!QApplication::focusWidget()) QApplication::setActiveWindow(&window);
    return QApplication::focusWidget();
  }
  QLineEdit* Editor() const { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); }
  // The widget at the place, as a click would find it.
  void Click(QPoint place, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers shift = {}) {
    QTest::mouseClick(view.viewport(), button, shift, place);
  }
  void Drag(QPoint from, QPoint to) {
    QTest::mouseMove(view.viewport(), from);
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, from);
    for (int step = 1; step <= 4; ++step) {
      const QPointF at = QPointF(from) + (QPointF(to) - QPointF(from)) * step / 4.0;
      QMouseEvent move(QEvent::MouseMove, at, view.viewport()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
      QApplication::sendEvent(view.viewport(), &move);
    }
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, to);
  }
  void Press(const std::string& name) {
    const QKeySequence keys(ToQString(name));
    QTest::keyClick(Focus(), keys[0].key(), keys[0].keyboardModifiers());
  }
  // A menu runs its own loop: it is read and closed from a timer.
  void WithMenu(const std::function<void()>& open) {
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [this] {
      auto* shown = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (!shown) return;
      menu_ = ToUtf8(shown->actions().first()->text().remove(QLatin1Char('&')).section(QLatin1Char('\t'), 0, 0));
      shown->close();
    });
    timer.start(5);
    open();
  }
  QAbstractItemView* Popup() const {
    for (QAbstractItemView* list : view.findChildren<QAbstractItemView*>(QStringLiteral("popupList"))) {
      if (list->isVisible()) return list;
    }
    return nullptr;
  }

  // A text from outside over a row.
  void DragText(const Words& w, DragEnd end) { DragOnto(*view.viewport(), Cell(w[1], "alias"), ToQString(w[2]), end); }
  // The row above which the insertion bar is drawn; 0 without one.
  int BarRow() const {
    RecordingCanvas canvas;
    grid->Grid()->Paint(canvas, {0_px, 0_px, 900_px, 320_px});
    for (const std::string& line : canvas.Lines()) {
      if (!line.starts_with("fill 0,") || !line.ends_with("x3 Focus")) continue;
      return static_cast<int>(grid->Grid()->GetRowColumnIndex({1_px, Pixels(std::stod(line.substr(7)) + 3)}).row);
    }
    return 0;
  }

  // What is seen, light and dark, at 100 and 200 %, the open list where it stands.
  void KeepPictures(const std::string& name) {
    for (const auto& [scheme, palette] : TestPalettes()) {
      if (scheme != "light" && scheme != "dark") continue;
      const ScopedPalette scoped(palette);
      for (const int scale : {1, 2}) {
        QImage image = Paint(window, scale);
        if (QWidget* list = Popup() ? Popup()->window() : nullptr; list && list != &window) {
          QPainter(&image).drawImage(window.mapFromGlobal(list->mapToGlobal(QPoint(0, 0))), Paint(*list, scale));
        }
        KeepPicture(image, "grid-" + name + "-" + scheme + "-" + std::to_string(scale));
      }
    }
  }

  // The pointer goes to a column's right edge, drags it, and waits there.
  void DragEdge(const std::string& column, int by) {
    const auto edge = [&] { return At({control.GetRowColumnXY(1, column).Right() - 2_px, 8_px}); };
    const QPoint from = edge();
    QTest::mouseMove(view.viewport(), from);
    if (by != 0) Drag(from, from + QPoint(by, 0));
    QTest::mouseMove(view.viewport(), edge());
  }

  void KnowActions() {
    actions["click"] = [this](const Words& w) { Click(Cell(w[1], w[2])); };
    actions["rclick"] = [this](const Words& w) { WithMenu([&] { Click(Cell(w[1], w[2]), Qt::RightButton); }); };
    actions["dclick"] = [this](const Words& w) {
      Click(Cell(w[1], w[2]));
      QWidget* under = window.childAt(Cell(w[1], w[2]));
      QTest::mouseDClick(under, Qt::LeftButton, {}, under->mapFrom(&window, Cell(w[1], w[2])));
    };
    actions["header"] = [this](const Words& w) {
      Click(Header(w[1]), Qt::LeftButton, w.size() > 2 ? Qt::ShiftModifier : Qt::NoModifier);
    };
    actions["drag"] = [this](const Words& w) { Drag(Header(w[1]), Header(w[2])); };
    actions["edge"] = [this](const Words& w) { DragEdge(w[1], std::stoi(w[2])); };
    actions["allbox"] = [this](auto&) {
      const PixelRect cell = control.GetRowColumnXY(1, "output");
      Click(At({cell.left + 12_px, 12_px}));
    };
    actions["button"] = [this](auto&) {
      const PixelRect cell = control.GetRowColumnXY(control.Row(), control.Column());
      // An editor is as wide as the text that it begins with.
      const int right = Editor() ? Editor()->geometry().right() + 12 : 0;
      Click(At({std::max(cell.Right() - 8_px, Pixels(right)), cell.CenterY()}));
    };
    actions["keys"] = [this](const Words& w) {
      // One by one: the first may move the focus into an editor.
      for (const char key : w[1]) QTest::keyClick(Focus(), key);
    };
    actions["key"] = [this](const Words& w) {
      if (w[1] == "Menu") {
        WithMenu([&] { Press(w[1]); });
      } else {
        Press(w[1]);
      }
    };
    actions["pick"] = [this](const Words& w) {
      QAbstractItemView* list = Popup();
      ASSERT_TRUE(list);
      const auto found = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, ToQString(w[1]));
      ASSERT_FALSE(found.isEmpty());
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(found.first()).center());
    };
    actions["leave"] = [this](auto&) { other_.setFocus(); };
    actions["over"] = [this](const Words& w) { DragText(w, DragEnd::Stays); };
    actions["drop"] = [this](const Words& w) { DragText(w, DragEnd::Dropped); };
    actions["away"] = [this](const Words& w) { DragText(w, DragEnd::CarriedAway); };
    actions["picture"] = [this](const Words& w) { KeepPictures(w[1]); };
    actions["wheel"] = [this](const Words& w) {
      TurnWheel(*view.viewport(), view.viewport()->rect().center(), std::stoi(w[1]));
    };
    actions["more"] = [this](const Words& w) {
      for (int i = std::stoi(w[1]); i > 0; --i) control.Rows()->Add();
    };
    actions["tick"] = [this](const Words& w) { Tick(w[1].substr(0, w[1].find('.')), w[1].substr(w[1].find('.') + 1)); };
    actions["clipboard"] = [](const Words& w) { QApplication::clipboard()->setText(ToQString(w[1])); };
    actions["lock"] = [this](auto&) { grid->SetLockTables(true); };
    actions["norows"] = [this](auto&) { control.SetAllowRowInsert(false); };
    actions["nosize"] = [this](auto&) { control.SetAllowColumnResize(false); };
    actions["custom"] = [this](auto&) { grid->SetCustomContextMenu(true); };
    actions["refuse"] = [this](auto&) {
      links_.push_back(control.BeforeDropDown.Connect([](std::int32_t, std::int32_t, bool& cancel) { cancel = true; }));
    };
  }

  void KnowAnswers() {
    answers["log"] = [this](auto&) { return log_; };
    answers["menu"] = [this](auto&) { return menu_; };
    answers["changes"] = [this](auto&) { return std::to_string(changes_); };
    answers["rows"] = [this](auto&) { return Rows(); };
    answers["sql"] = [this](auto&) { return Sql(); };
    answers["count"] = [this](auto&) { return std::to_string(grid->RowCount()); };
    answers["current"] = [this](auto&) {
      return std::to_string(control.Row()) + "," + std::to_string(control.Column());
    };
    answers["selection"] = [this](auto&) {
      return std::to_string(control.Selection().first) + "-" + std::to_string(control.Selection().last);
    };
    answers["cell"] = [this](const std::string& of) {
      return Designer::Cell(std::stoi(of), of.substr(of.find(' ') + 1));
    };
    answers["hint"] = [this](const std::string& of) {
      return control.Rows()->Item(std::stoi(of))->Hint(of.substr(of.find(' ') + 1));
    };
    answers["width"] = [this](const std::string& of) { return Variant(control.Columns()->Item(of)->Width()).Text(); };
    answers["focus"] = [this](auto&) {
      const QWidget* focus = QApplication::focusWidget();
      return std::string(focus == &view ? "grid" : focus == &other_ ? "other" : Editor() ? "text" : "nowhere");
    };
    answers["editor"] = [this](auto&) { return std::string(control.IsEditing() ? "combo" : ""); };
    answers["text"] = [this](auto&) { return Editor() ? ToUtf8(Editor()->text()) : "no editor"; };
    answers["selected"] = [this](auto&) { return Editor() ? ToUtf8(Editor()->selectedText()) : "no editor"; };
    answers["cursor"] = [this](auto&) { return std::to_string(view.viewport()->cursor().shape()); };
    answers["ticked"] = [this](auto&) { return Ticked(); };
    answers["bar"] = [this](auto&) { return std::to_string(BarRow()); };
    // Whether the open editor stands inside its cell, wherever that is now.
    answers["incell"] = [this](auto&) {
      const PixelRect cell = control.GetRowColumnXY(control.Row(), control.Column());
      const QPoint corner = Editor() ? Editor()->mapTo(view.viewport(), QPoint(0, 0)) : QPoint(-999, -999);
      const double down = corner.y() - cell.top.Value();
      return std::string(down >= 0 && down < 4 && corner.x() >= cell.left.Value() ? "yes" : "no");
    };
    answers["top"] = [this](auto&) {
      return Variant(static_cast<double>(view.verticalScrollBar()->value() > 0)).Text();
    };
    answers["popup"] = [this](auto&) { return PopupTexts(); };
    // Whether an open list stands over the cell that is edited.
    answers["covers"] = [this](auto&) {
      constexpr Pixels kFrame = 3_px;  // around the text
      const PixelRect cell = control.GetRowColumnXY(control.Row(), control.Column()).Inset(kFrame, kFrame);
      if (!Popup()) return std::string("no list");
      const QRect shown(view.viewport()->mapToGlobal(At({cell.left, cell.top})),
                        view.viewport()->mapToGlobal(At({cell.Right() - 1_px, cell.Bottom() - 1_px})));
      return std::string(Popup()->geometry().intersects(shown) ? "yes" : "no");
    };
    answers["highlighted"] = [this](auto&) { return Popup() ? ToUtf8(Popup()->currentIndex().data().toString()) : ""; };
    answers["messages"] = [this](auto&) {
      std::string all;
      for (const auto& message : toolkit->GetDialogs().messages) all += message.text;
      return all;
    };
  }

  std::string PopupTexts() const {
    std::string texts;
    const QAbstractItemView* list = Popup();
    for (int i = 0; list && i < list->model()->rowCount(); ++i) {
      texts += (i > 0 ? " " : "") + ToUtf8(list->model()->index(i, 0).data().toString());
    }
    return texts;
  }

  QLineEdit other_{&window};
  std::vector<EventConnection> links_;
  std::string log_;
  std::string menu_;
  int changes_ = 0;
};

[[maybe_unused]] const bool kScenarios = test::RegisterScenarios<GridWindow>("GridWindowScenario", "grid_gestures.txt");

// As wide as their captions, in every language; what the user made wider stays so.
TEST(QtGrid, ColumnsOfTheDesignerShowTheirCaptions) {
  QueryDesignerWidget designer;
  qbQueryBuilder& hub = designer.QueryBuilder();
  zrGrid& grid = *hub.GridPane()->Grid();
  const auto expectWide = [&] {
    for (const Ref<zrGridColumn> column : *grid.Columns()) {
      if (column->Width() == 0) continue;
      const Pixels text = designer.GridView().Metrics().TextWidth(column->Caption(), grid.Font());
      EXPECT_GT(column->Width(), ScreenScale{}.TwipsX(text).Value()) << column->Caption();
    }
  };
  expectWide();
  const float user = grid.Columns()->Item(1)->Width() * 2;
  grid.Columns()->Item(1)->SetWidth(user);
  hub.LoadLanguageFile(std::string(ZRQRYBLD_TEST_DATA) + "/../../samples/languages/german.txt");
  ASSERT_EQ(grid.Columns()->Item(kColumnOutput)->Caption(), "Ausgabe");
  expectWide();
  EXPECT_EQ(grid.Columns()->Item(1)->Width(), user);
}

}  // namespace
}  // namespace zrqrybld
