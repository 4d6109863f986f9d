// The diagram by real mouse and key events: each row of the table is a user's way from three joined tables to what can
// be seen afterwards.
#include <QClipboard>
#include <QMenu>
#include <QPushButton>
#include <map>

#include "tests/data_table.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/hands.h"
#include "tests/qt/modal.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/join_window.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

class DiagramGestures : public test::DesignerWindow {
 protected:
  void Begin() {
    Hub().DiagramPane()->Clear();
    Hub().DiagramPane()->SetZoom(1, {});
    Grid().SetShowGroupBy(false);
    ASSERT_EQ(test::Utf8(window.AddTables({"Customers", "Order", "Order Lines"}).join("; ")), "");
    Designer().DiagramView().setFocus();
    heard_.clear();
    QTest::qWait(1);
  }

  // --- Places ---

  static std::string_view TableOf(std::string_view place) { return place.substr(0, place.find_first_of(".-/>_")); }

  const qbRelationship& JoinNumber(std::size_t number) {
    for (std::int32_t i = 1; i <= Hub().Entities()->Count(); ++i) {
      const qbRelationships& joins = *Hub().Entities()->Item(i)->Relationships();
      for (std::int32_t j = 1; j <= joins.Count(); ++j) {
        if (--number == 0) return *joins.Item(j);
      }
    }
    throw std::runtime_error("no such join");
  }

  // "empty", "line 1", "+30,20" from the pointer, "700,5"; "Order" is a caption, "Order.City" a row, "Order.City!" its
  // check box, "Order-" the minimise button, "Order>" the right edge, "Order_" the lower one, "Order/" their corner.
  QPoint At(const std::string& place) {
    const auto comma = place.find(',');
    if (comma != std::string::npos) {
      const bool relative = place.front() == '+';
      const QPoint given(std::stoi(place.substr(relative ? 1 : 0)), std::stoi(place.substr(comma + 1)));
      return relative ? pointer_ + given : given;
    }
    if (place == "empty") return {Diagram()->width() - 20, Diagram()->height() - 20};
    const ScreenScale scale;
    if (place.starts_with("line ")) {
      const std::vector<PixelPoint> points = JoinNumber(std::stoul(place.substr(5))).Line()->Points(scale);
      return InView(scale.ToTwips(PixelPoint{(points[1].x + points[2].x) / 2, (points[1].y + points[2].y) / 2}));
    }
    const std::string table(TableOf(place));
    if (!Hub().Entities()->Item(table)) throw std::runtime_error("no table at " + place);
    const std::string rest = place.substr(table.size());
    const TwipsRect box = Box(table.c_str()).Bounds();
    if (rest.empty()) return Caption(table.c_str());
    if (rest == "-") return InView({box.Right() - Twips(16 * 15), box.top + Twips(14 * 15)});
    if (rest == ">") return InView({box.Right(), box.CenterY()}) - QPoint(1, 0);
    if (rest == "_") return InView({box.CenterX(), box.Bottom()}) - QPoint(0, 1);
    if (rest == "/") return InView({box.Right(), box.Bottom()}) - QPoint(1, 1);
    const bool tick = rest.ends_with('!');
    const std::string column = rest.substr(1, rest.size() - (tick ? 2 : 1));
    return tick ? CheckBox(table.c_str(), column.c_str()) : RowText(table.c_str(), column.c_str());
  }

  // --- What a user does ---

  static Qt::KeyboardModifiers Modifiers(std::string& text) {
    Qt::KeyboardModifiers modifiers;
    for (const auto& [name, modifier] : {std::pair{"Ctrl+", Qt::ControlModifier},
                                         {"Shift+", Qt::ShiftModifier},
                                         {"Alt+", Qt::AltModifier},
                                         {"Shift+", Qt::ShiftModifier}}) {
      if (!text.starts_with(name)) continue;
      modifiers |= modifier;
      text.erase(0, std::string_view(name).size());
    }
    return modifiers;
  }

  void Do(const std::string& step) {
    const std::size_t blank = std::min(step.find(' '), step.size());
    const std::string what = step.substr(0, blank);
    std::string rest = blank < step.size() ? step.substr(blank + 1) : "";
    if (what == "choose") return Choose(QString::fromStdString(rest));
    if (what == "picture") return KeepPictures(rest);
    if (what == "lose") return Designer().SqlView().setFocus();
    const Qt::KeyboardModifiers modifiers = Modifiers(rest);
    if (what == "key" || what == "hold" || what == "let") {
      const QKeyCombination key = QKeySequence(QString::fromStdString(rest))[0];
      if (what != "let") QTest::keyPress(&Designer().DiagramView(), key.key(), modifiers);
      if (what != "hold") QTest::keyRelease(&Designer().DiagramView(), key.key(), modifiers);
    } else if (what == "type") {
      QTest::keyClicks(&Designer().DiagramView(), QString::fromStdString(rest));
    } else if (what == "wheel") {
      const std::size_t next = rest.find(' ');
      TurnWheel(*Diagram(), pointer_ = At(rest.substr(next + 1)), std::stoi(rest), modifiers);
    } else if (what == "drop" || what == "over") {
      const bool dropped = what == "drop";
      DragOnto(*Diagram(), pointer_, QString::fromStdString(rest), dropped ? DragEnd::Dropped : DragEnd::CarriedAway);
      QDragLeaveEvent again;  // which is told once only
      if (!dropped) QApplication::sendEvent(Diagram(), &again);
    } else {
      Mouse(what, rest, modifiers);
    }
  }

  void Mouse(std::string what, const std::string& place, Qt::KeyboardModifiers modifiers) {
    Qt::MouseButton button = Qt::LeftButton;
    if (what.starts_with("mid")) button = Qt::MiddleButton;
    if (button == Qt::MiddleButton) what.erase(0, 3);
    if (!place.empty()) pointer_ = At(place);
    if (what == "press") QTest::mousePress(Diagram(), button, modifiers, pointer_);
    if (what == "release") QTest::mouseRelease(Diagram(), button, modifiers, pointer_);
    if (what == "click") QTest::mouseClick(Diagram(), button, modifiers, pointer_);
    if (what == "double") {
      QTest::mouseClick(Diagram(), button, modifiers, pointer_);
      QTest::mouseDClick(Diagram(), button, modifiers, pointer_);
    }
    if (what == "move") QTest::mouseMove(Diagram(), pointer_);
    if (what == "wait") QTest::qWait(300);
  }

  // Opens the context menu where the pointer is and goes through it by keys: "Sort > Ascending".
  void Choose(const QString& path) {
    QStringList names = path.split(QStringLiteral(" > "));
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (!menu) return;
      const QString wanted = names.isEmpty() ? QString() : names.takeFirst();
      for (QAction* action : menu->actions()) {
        if (!action->isEnabled() || !action->text().remove(QLatin1Char('&')).startsWith(wanted)) continue;
        menu->setActiveAction(action);
        KeepPicture(Paint(*menu), "menu-" + test::Utf8(wanted.simplified().remove(QLatin1Char(' '))));
        if (menu->isVisible()) QTest::keyClick(menu, Qt::Key_Return);
        return;
      }
      ADD_FAILURE() << "the menu has no " << test::Utf8(wanted);
      while (QWidget* open = QApplication::activePopupWidget()) open->close();
    });
    timer.start(20);
    QTest::mouseClick(Diagram(), Qt::RightButton, {}, pointer_);
  }

  void KeepPictures(const std::string& name) {
    for (const auto& [scheme, palette] : TestPalettes()) {
      if (scheme != "light" && scheme != "dark") continue;
      const ScopedPalette scoped(palette);
      for (const int scale : {1, 2}) {
        KeepPicture(Paint(Designer().DiagramView(), scale),
                    "diagram-" + name + "-" + scheme + "-" + std::to_string(scale));
      }
    }
  }

  // --- What can be seen ---

  std::string Joins() {
    std::string text;
    for (std::int32_t i = 1; i <= Hub().Entities()->Count(); ++i) {
      const qbRelationships& joins = *Hub().Entities()->Item(i)->Relationships();
      for (std::int32_t j = 1; j <= joins.Count(); ++j) {
        const qbRelationship& join = *joins.Item(j);
        text += (text.empty() ? "" : " ") + join.Source()->Caption() + "." + join.SourceItem()->Text() + ">" +
                join.Target()->Caption() + "." + join.TargetItem()->Text() +
                (join.Comparison() != JoinEqual ? std::string(SignOf(join.Comparison())) : "") +
                (join.Condition().empty() ? "" : "?" + join.Condition()) +
                (join.Kind() != JoinKind() ? ":" + std::to_string(join.Kind().Bits()) : "");
      }
    }
    return text;
  }

  std::string Selected() {
    const Ref<Object> object = Hub().DiagramPane()->SelectedObject();
    if (std::dynamic_pointer_cast<qbRelationship>(object)) return "a join";
    std::string text;
    for (const Ref<qbEntity>& entity : Hub().DiagramPane()->SelectedEntities()) {
      const Ref<qbEntityItem> item = entity->SelectedItem();
      text += (text.empty() ? "" : " + ") + entity->Caption() + (item ? "." + item->Text() : "");
    }
    return text;
  }

  // What the boxes show of the grid, for instance "Order.Freight<1 Sum?": descending as the first, summed, with
  // criteria.
  std::string Notes() {
    std::string text;
    for (std::int32_t i = 1; i <= Hub().Entities()->Count(); ++i) {
      const qbEntityList& box = *Hub().Entities()->Item(i)->EntityBox();
      for (std::size_t row = 1; row <= box.Rows().Count(); ++row) {
        const ColumnNote& note = box.Rows().At(row)->Note();
        if (note == ColumnNote{}) continue;
        text += (text.empty() ? "" : " ") + box.Caption() + "." + box.Rows().At(row)->Text();
        if (note.sort != 0) text += (note.sort > 0 ? ">" : "<") + note.order;
        text += (note.aggregate.empty() ? "" : " ") + note.aggregate + (note.filtered ? "?" : "");
      }
    }
    return text;
  }

  // The answer to "joins", "notes", "selected", "grid", "tables", "zoom", "scrolled", "cursor", "heard", "dragged",
  // "statement", "copied" or "Order: left", "top", "width", "height", "first" (in pixels; the first visible row).
  std::string Answer(const std::string& question) {
    const qbDiagramPane& pane = *Hub().DiagramPane();
    ControlWidget& view = Designer().DiagramView();
    if (question == "joins") return Joins();
    if (question == "notes") return Notes();
    if (question == "selected") return Selected();
    if (question == "grid") return GridRows();
    if (question == "zoom") return std::to_string(std::lround(pane.Zoom() * 100));
    if (question == "cursor") return std::to_string(Diagram()->cursor().shape());
    if (question == "heard") return heard_;
    if (question == "copied") return QGuiApplication::clipboard()->image().isNull() ? "no" : "yes";
    if (question == "scrolled") {
      return std::to_string(view.horizontalScrollBar()->value()) + "," +
             std::to_string(view.verticalScrollBar()->value());
    }
    if (question == "tables") {
      std::string text;
      for (std::int32_t i = 1; i <= Hub().Entities()->Count(); ++i) {
        text += (i > 1 ? ", " : "") + Hub().Entities()->Item(i)->Caption();
      }
      return text;
    }
    const std::size_t last = question.rfind(' ');
    const qbEntityList& box = Box(question.substr(0, last).c_str());
    const std::string what = question.substr(last + 1);
    const PixelRect place = ScreenScale{}.ToPixels(box.Bounds());
    const std::map<std::string, double> facts{{"left", place.left.Value()},
                                              {"top", place.top.Value()},
                                              {"width", place.width.Value()},
                                              {"height", place.height.Value()},
                                              {"first", static_cast<double>(box.FirstVisibleRow())}};
    return std::to_string(std::lround(facts.at(what)));
  }

  std::string heard_;
  QPoint pointer_;
};

// From the first drag to the last undo: two pairs drawn, the kind by menu, comparison and condition by keys, and at
// last a question.
TEST_F(DiagramGestures, AJoinOfTwoColumnsIsOneInEveryHand) {
  OpenSample();
  Begin();
  const std::string start = Joins();
  const auto play = [this](std::string_view steps) {
    for (const std::string_view step : Split(steps, ";")) Do(std::string(Trim(step)));
  };
  const std::string others = " Order Lines.OrderID>Order.OrderID";
  play("press Order.EmployeeID; move +60,40; move Customers.City; release");
  play("move line 1; choose Kind > All Rows from Customers");
  EXPECT_EQ(Joins(), "Order.CustomerID>Customers.CustomerID:1 Order.EmployeeID>Customers.City:1" + others);
  play("press Customers.Country; move +60,40; move Order.Freight; release; move empty; picture whole");
  EXPECT_EQ(Joins(),
            "Customers.Country>Order.Freight:2 Order.CustomerID>Customers.CustomerID:1 "
            "Order.EmployeeID>Customers.City:1" +
                others);

  WhenOpen<JoinWindow>([](JoinWindow& open) {
    const auto tabTo = [&](const char* name) {
      for (int i = 0; i < 30 && open.focusWidget()->accessibleName() != QString::fromUtf8(name); ++i) {
        QTest::keyClick(open.focusWidget(), Qt::Key_Tab);
      }
      EXPECT_EQ(open.focusWidget()->accessibleName(), QString::fromUtf8(name));
      return open.focusWidget();
    };
    QTest::keyClicks(tabTo("Comparison, pair 2"), "<=");
    QTest::keyClick(tabTo("Remove pair 3"), Qt::Key_Space);
    QWidget* condition = tabTo("Condition besides the columns");
    QTest::keyClicks(condition, "Customers.City = ");
    auto* accept = open.findChild<QPushButton*>();
    for (QPushButton* button : open.findChildren<QPushButton*>()) accept = button->isDefault() ? button : accept;
    EXPECT_FALSE(accept->isEnabled());
    QTest::keyClicks(condition, "'x'");
    EXPECT_TRUE(accept->isEnabled());
    KeepPicture(Paint(open), "join-window-whole");
    QTest::keyClick(condition, Qt::Key_Return, Qt::ControlModifier);
  });
  play("key Return");
  EXPECT_EQ(
      Joins(),
      "Order.CustomerID>Customers.CustomerID?Customers.City = 'x':1 Order.EmployeeID>Customers.City<=:1" + others);
  play("move empty; picture asked; move line 1; choose Kind > Customers without; move empty; picture missing");
  const std::string statement = Hub().SQLPane()->SQLStatement();
  EXPECT_NE(statement.find("NOT EXISTS (SELECT *"), std::string::npos) << statement;
  EXPECT_GT(statement.find("JOIN"), statement.find("EXISTS")) << "what hangs behind the order is asked about with it";
  play("key Del");
  EXPECT_EQ(Joins(), "Order Lines.OrderID>Order.OrderID");
  for (int i = 0; i < 6; ++i) Hub().Undo();
  EXPECT_EQ(Joins(), start);
}

TEST_F(DiagramGestures, DoWhatTheTableSays) {
  OpenSample();
  qbDiagramPane& pane = *Hub().DiagramPane();
  pane.SetOLEDropMode(OLEDropManual);
  std::vector<EventConnection> links;
  links.push_back(
      pane.OLEDragOver.Connect([&](const std::string&, std::int32_t&, auto, auto, auto, auto, std::int32_t state) {
        heard_ += (heard_.empty() ? "over" : " over") + std::to_string(state);
      }));
  links.push_back(pane.OLEDragDrop.Connect([&](const std::string& text, auto&&...) { heard_ += " drop " + text; }));
  Designer().DiagramView().SetDragHandler([&](const QString& text) { heard_ += "drag " + test::Utf8(text); });
  for (const test::Row& row : test::ReadRows("diagram_gestures.txt")) {
    SCOPED_TRACE(row.place + " " + row[0]);
    Begin();
    std::map<std::string, std::string> before;
    const auto expectations = Split(row[2], ";");
    const auto questionOf = [](std::string_view text) {
      return std::string(Trim(text.substr(0, text.find_first_of("=+"))));
    };
    for (const std::string_view one : expectations) before[questionOf(one)] = Answer(questionOf(one));
    for (const std::string_view step : Split(row[1], ";")) Do(std::string(Trim(step)));
    for (const std::string_view one : expectations) {
      const std::string question = questionOf(one);
      const std::size_t sign = one.find_first_of("=+");
      std::string expected(Trim(one.substr(sign + 1)));
      // "+=30" is thirty more than at first.
      if (one[sign] == '+') expected = std::to_string(std::stol(before[question]) + std::stol(expected.substr(1)));
      EXPECT_EQ(Answer(question), expected) << question;
    }
    if (QWidget::mouseGrabber()) ADD_FAILURE() << "the mouse is still captured";
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Escape, Qt::Key_Escape})
      QTest::keyClick(&Designer().DiagramView(), key);
  }
}

}  // namespace
}  // namespace zrqrybld
