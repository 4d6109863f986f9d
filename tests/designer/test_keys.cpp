// Every key of the designer by real key events, line by line of tests/data/keys.txt.
#include <signal.h>

#include <QFile>
#include <QMenu>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/data_table.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/hands.h"
#include "tests/qt/pictures.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/qt/find_frame.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

class Keys : public test::DesignerWindow {
 protected:
  void Prepare() {
    OpenSampleWith({"Customers", "Order", "Order Lines"});
    ASSERT_EQ(window.TickColumn("Customers.City"), QString());
    ASSERT_EQ(window.TickColumn("Order.OrderID"), QString());
    before_ = Box("Customers").Bounds();
  }
  void Focus(const std::string& pane) {
    QWidget* const view = pane == "diagram" ? static_cast<QWidget*>(&Designer().DiagramView())
                          : pane == "grid"  ? static_cast<QWidget*>(&Designer().GridView())
                                            : static_cast<QWidget*>(&Designer().SqlView());
    view->setFocus(Qt::TabFocusReason);
  }

  /// Presses the keys one by one, also while a menu or a dialog runs its own loop. Returns the state at the moment to
  /// look.
  std::string Press(const std::string& keys) {
    Begin(keys);
    SendNext();
    return End();
  }

  void Begin(const std::string& keys) {
    seen_.clear();
    sent_ = 0;
    std::istringstream stream(keys);
    for (std::string key; stream >> key;) keys_.push_back(key);
    count_ = keys_.size();
  }
  /// The same while what is called between this and `End` runs a loop of its own.
  void BeginSoon(const std::string& keys) {
    Begin(keys);
    QTimer::singleShot(5 * kPause, &window, [this] { SendNext(); });
  }
  std::string End() {
    EXPECT_TRUE(QTest::qWaitFor([this] { return sent_ == count_ && !QApplication::activeModalWidget(); }));
    return seen_.empty() ? State() : seen_;
  }

  std::string State();

 private:
  void SendNext() {
    if (keys_.empty()) return;
    QTimer::singleShot(kPause, &window, [this] { SendNext(); });
    const std::string key = keys_.front();
    keys_.erase(keys_.begin());
    Send(key);
    ++sent_;
  }
  static QWidget* Target() {
    if (QWidget* popup = QApplication::activePopupWidget()) return popup;
    if (QWidget* modal = QApplication::activeModalWidget()) return modal->focusWidget() ? modal->focusWidget() : modal;
    return QApplication::focusWidget();
  }
  void Send(const std::string& key);
  void Point(const std::string& what, const QString& place);
  std::string MenuPlace(const QMenu& menu);

  static constexpr int kPause = 20;  // milliseconds: a dialog that has opened gets the keyboard
  std::vector<std::string> keys_;
  std::size_t sent_ = 0;
  std::size_t count_ = 0;
  std::string seen_;
  TwipsRect before_;
};

void Keys::Send(const std::string& key) {
  const auto rest = [&](std::string_view prefix) { return QString::fromStdString(key.substr(prefix.size())); };
  if (!Target()) QApplication::setActiveWindow(&window);  // behind a dialog off the screen none is
  QWidget* const target = Target();
  ASSERT_TRUE(target) << key;
  const QPoint middle = Diagram()->rect().center();
  if (key == "?") {
    seen_ = State();
  } else if (key.starts_with("type:")) {
    // The first letter may open an editor that gets the others.
    const QString letters = rest("type:").replace('_', ' ');
    for (const QChar letter : letters) QTest::keyClick(Target(), letter.toLatin1());
  } else if (key.starts_with("tick:") || key.starts_with("menu:") || key.starts_with("cell:") ||
             key.starts_with("line:") || key.starts_with("drag:>")) {
    Point(key.substr(0, 4), rest(key.starts_with("drag:>") ? "drag:>" : "tick:").replace('_', ' '));
  } else if (key.starts_with("press:")) {
    QTest::keyPress(target, Qt::Key_Space);
  } else if (key.starts_with("release:")) {
    QTest::keyRelease(target, Qt::Key_Space);
  } else if (key.starts_with("wheel:")) {
    const auto held = key == "wheel:Ctrl" ? Qt::ControlModifier : Qt::ShiftModifier;
    TurnWheel(*Diagram(), middle, key == "wheel:Ctrl" ? -1 : 1, held);
  } else if (key.starts_with("drag:")) {
    const QStringList way = rest("drag:").split(',');
    QTest::mousePress(Diagram(), Qt::LeftButton, {}, middle);
    QTest::mouseMove(Diagram(), middle + QPoint(way[0].toInt(), way[1].toInt()));
    QTest::mouseRelease(Diagram(), Qt::LeftButton, {}, middle + QPoint(way[0].toInt(), way[1].toInt()));
  } else {
    const QKeyCombination keys = QKeySequence::fromString(QString::fromStdString(key))[0];
    ASSERT_NE(keys.key(), Qt::Key_unknown) << key;
    const bool back = keys.key() == Qt::Key_Tab && keys.keyboardModifiers() == Qt::ShiftModifier;
    QTest::keyClick(target, back ? Qt::Key_Backtab : keys.key(), keys.keyboardModifiers());
  }
}

// What a mouse does at a place that has a name.
void Keys::Point(const std::string& what, const QString& place) {
  const QStringList parts = place.split(what == "drag" ? '>' : '.');
  const auto column = [&](const QString& name) {
    return RowText(name.section('.', 0, 0).toUtf8(), name.section('.', 1).toUtf8());
  };
  if (what == "tick") {
    Click(CheckBox(parts[0].toUtf8(), parts[1].toUtf8()));
  } else if (what == "menu") {
    QTest::mouseClick(Diagram(), Qt::RightButton, {}, column(place));
  } else if (what == "cell") {
    const PixelRect cell =
        Grid().Grid()->GetRowColumnXY(parts[0].toInt(), test::Utf8(QString(parts[1]).replace(' ', '_')));
    QTest::mouseClick(Designer().GridView().viewport(), Qt::LeftButton, {},
                      {qRound(cell.CenterX().Value()), qRound(cell.CenterY().Value())});
  } else if (what == "line") {
    const auto joins = Hub().Entities()->Item(test::Utf8(place))->Relationships();
    const std::vector<PixelPoint>& points = joins->Item(1)->Line()->Points(ScreenScale{});
    const PixelPoint middle{(points[1].x + points[2].x) / 2, (points[1].y + points[2].y) / 2};
    QTest::mouseDClick(Diagram(), Qt::LeftButton, {}, InView(ScreenScale{}.ToTwips(middle)));
  } else {
    QTest::mousePress(Diagram(), Qt::LeftButton, {}, column(parts[0]));
    QTest::mouseMove(Diagram(), column(parts[0]) + QPoint(12, 0));
    QTest::mouseMove(Diagram(), column(parts[1]));
    QTest::mouseRelease(Diagram(), Qt::LeftButton, {}, column(parts[1]));
  }
}

// What of the design the menu was opened at.
std::string Keys::MenuPlace(const QMenu& menu) {
  if (const auto table = std::dynamic_pointer_cast<qbEntity>(Hub().DiagramPane()->SelectedObject())) {
    const PixelRect box = ScreenScale{}.ToPixels(table->EntityBox()->Bounds());
    const QPoint at = Diagram()->mapFromGlobal(menu.pos());
    const QRectF place(box.left.Value(), box.top.Value(), box.width.Value() + 30, box.height.Value() + 30);
    if (place.contains(at)) return "table";
  }
  const zrGrid& grid = *Grid().Grid();
  if (grid.Row() == 0) return "nothing";
  const PixelRect cell = grid.GetRowColumnXY(grid.Row(), grid.Column());
  const QPoint at = Designer().GridView().viewport()->mapFromGlobal(menu.pos());
  return std::abs(at.x() - cell.left.Value()) < 3 && std::abs(at.y() - cell.Bottom().Value()) < 3 ? "cell"
                                                                                                  : "elsewhere";
}

std::string Keys::State() {
  std::ostringstream state;
  const auto say = [&](const char* what, const auto& value) { state << what << "=" << value << ";\n"; };
  const QWidget* focus = QApplication::focusWidget();
  const auto holds = [&](const QWidget& pane) { return focus && (&pane == focus || pane.isAncestorOf(focus)); };
  say("pane", holds(Designer().DiagramView()) ? "diagram"
              : holds(Designer().GridView())  ? "grid"
              : holds(Designer().SqlView())   ? "sql"
              : holds(window.Preview())       ? "rows"
                                              : "none");
  say("editing", Grid().Grid()->IsEditing() ? "yes" : "no");
  const qbDiagramPane& diagram = *Hub().DiagramPane();
  const auto table = std::dynamic_pointer_cast<qbEntity>(diagram.SelectedObject());
  say("selected", table ? table->Caption() : diagram.SelectedObject() ? "join" : "-");
  say("row", table && table->SelectedItem() ? table->SelectedItem()->Text() : "-");
  std::string tables;
  std::int32_t joins = 0, kind = 0;
  for (std::int32_t i = 1; i <= Hub().Entities()->Count(); ++i) {
    const Ref<qbEntity> one = Hub().Entities()->Item(i);
    tables += (tables.empty() ? "" : " ") + one->Caption();
    joins += one->Relationships()->Count();
    for (std::int32_t j = 1; j <= one->Relationships()->Count(); ++j)
      kind |= one->Relationships()->Item(j)->Kind().Bits();
  }
  say("tables", tables);
  const PixelSize shown = Designer().DiagramView().ViewSize();
  std::int32_t seen = 0;
  for (std::int32_t i = 1; i <= Hub().Entities()->Count(); ++i) {
    const TwipsRect& box = Hub().Entities()->Item(i)->EntityBox()->Bounds();
    const QPoint from = InView({box.left, box.top}), to = InView({box.Right(), box.Bottom()});
    seen += QRect(0, 0, qRound(shown.width.Value()), qRound(shown.height.Value())).contains(QRect(from, to)) ? 1 : 0;
  }
  say("seen", seen);
  say("joins", joins);
  say("kind", kind == 0 ? "0" : "not 0");
  if (const Ref<qbEntity> customers = Hub().Entities()->Item("Customers")) {
    const TwipsRect now = customers->EntityBox()->Bounds();
    const auto pixels = [](Twips to, Twips from) { return qRound((to - from).Value() / 15); };
    state << "moved=" << pixels(now.left, before_.left) << "," << pixels(now.top, before_.top) << ";\n";
    state << "sized=" << pixels(now.width, before_.width) << "," << pixels(now.height, before_.height) << ";\n";
  }
  say("zoom", std::round(diagram.Zoom() * 100) / 100);
  const ControlWidget& view = Designer().DiagramView();
  say("scroll", view.horizontalScrollBar()->value() > 0 || view.verticalScrollBar()->value() > 0 ? "yes" : "no");
  say("grid", GridRows());
  const zrGrid& grid = *Grid().Grid();
  say("cell", std::to_string(grid.Row()) + "," +
                  (grid.Column() == 0 ? std::string() : grid.Columns()->Item(grid.Column())->Key()));
  say("alias", Grid().Value(1, "alias").Text());
  say("undo", Hub().UndoText());
  say("redo", Hub().RedoText());
  say("edited", Hub().SQLPane()->IsEdited() ? "yes" : "no");
  const auto isFindBar = [](const QWidget* one) { return dynamic_cast<const FindFrame*>(one) && one->isVisible(); };
  const auto findBar = [&](const QWidget& pane) {
    return std::ranges::any_of(pane.findChildren<QWidget*>(), isFindBar) ? "open" : "closed";
  };
  say("find", findBar(Designer().SqlView()));
  say("names", findBar(Designer().DiagramView()));
  if (const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
    say("menu", test::Utf8(menu->actions().value(0)->text().remove('&').section('\t', 0, 0)));
    say("at", MenuPlace(*menu));
  }
  if (const QWidget* modal = QApplication::activeModalWidget()) {
    say("dialog", test::Utf8(modal->windowTitle()));
  }
  const auto popup = [](const QWidget& pane) {
    return std::ranges::any_of(pane.findChildren<QWidget*>(QStringLiteral("popupList")), &QWidget::isVisible);
  };
  say("list", popup(Designer().GridView()) ? "open" : "closed");
  say("suggestions", popup(Designer().SqlView()) ? "open" : "closed");
  return state.str();
}

void ExpectState(const std::string& wanted, const std::string& state) {
  std::istringstream parts(wanted);
  for (std::string part; std::getline(parts, part, ';');) {
    part.erase(0, part.find_first_not_of(' '));
    EXPECT_NE(("\n" + state).find("\n" + part + ";"), std::string::npos) << part << "\n" << state;
  }
}

// A window a line: what one line leaves behind cannot help another.
class KeyTable : public Keys, public testing::WithParamInterface<std::size_t> {};

const std::vector<test::Row>& Table() {
  static const std::vector<test::Row> kRows = test::ReadRows("keys.txt");
  return kRows;
}

TEST_P(KeyTable, DoesWhatItSays) {
  const test::Row& row = Table()[GetParam()];
  SCOPED_TRACE(row.place + ": " + row[0] + ", " + row[1]);
  Prepare();
  Focus(row[0]);
  ExpectState(row[2], Press(row[1]));
}

INSTANTIATE_TEST_SUITE_P(Line, KeyTable, testing::Range(std::size_t{0}, Table().size()));

// --- Whole tasks, from the open source on ---

class TaskTable : public Keys, public testing::WithParamInterface<std::size_t> {};

const std::vector<test::Row>& Tasks() {
  static const std::vector<test::Row> kRows = test::ReadRows("tasks.txt");
  return kRows;
}

// How often a hand moves: a letter, a key with those that are held, a click, a drag.
std::size_t ActsOf(const std::string& script) {
  std::size_t acts = 0;
  std::istringstream stream(script);
  for (std::string act; stream >> act;) {
    acts += act.starts_with("type:") ? act.size() - 5 : act.starts_with("line:") ? 2 : act == "kill:" ? 0 : 1;
  }
  return acts;
}

// The first half of a task, in a process of its own that is killed when its work is kept.
void DoAndDie(const QString& folder, const std::string& acts) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("ZRQRYBLD_TEST_FOLDER", folder);
  environment.insert("ZRQRYBLD_TEST_ACTS", QString::fromStdString(acts));
  process.setProcessEnvironment(environment);
  process.setWorkingDirectory(folder);
  process.start(QCoreApplication::applicationFilePath(),
                {"--gtest_filter=Keys.DISABLED_UntilItIsKilled", "--gtest_also_run_disabled_tests"});
  const auto isDone = [&] { return QFile::exists(folder + "/done") && test::RecoveryFiles().size() == 1; };
  EXPECT_TRUE(QTest::qWaitFor(isDone, 60000)) << process.readAll().toStdString();
  kill(static_cast<pid_t>(process.processId()), SIGKILL);
  process.waitForFinished();
}

TEST_F(Keys, DISABLED_UntilItIsKilled) {
  test::KeepIn(qEnvironmentVariable("ZRQRYBLD_TEST_FOLDER"));
  window.BeginSession();
  OpenSample();
  Focus("diagram");
  Press(qgetenv("ZRQRYBLD_TEST_ACTS").toStdString());
  std::ofstream("done") << "done";
  QTest::qWait(60000);
}

// Tables of which each but the first belongs to another: a tree.
void MakeTables(const std::string& file, int count) {
  const test::Connection database(file);
  for (int i = 1; i <= count; ++i) {
    const std::string parent = i == 1 ? "" : " REFERENCES t_" + std::to_string(i / 2) + " (id)";
    database.Execute("CREATE TABLE t_" + std::to_string(i) + " (id INTEGER PRIMARY KEY, parent INTEGER" + parent + ")");
  }
}

TEST_P(TaskTable, EndsInWhatWasWanted) {
  const test::Row& row = Tasks()[GetParam()];
  SCOPED_TRACE(row.place + ": " + row[0]);
  const QTemporaryDir folder;
  test::KeepIn(folder.path());
  std::istringstream stream(row[1]);
  std::string source, acts, rest;
  stream >> source;
  std::getline(stream, acts);
  if (const std::size_t end = acts.find("kill:"); end != std::string::npos) {
    DoAndDie(folder.path(), acts.substr(0, end));
    window.BeginSession();
    BeginSoon(acts.substr(end + 5));
    EXPECT_TRUE(window.OfferLostWork());
    End();
    EXPECT_FALSE(window.Document().IsModified()) << "saved once more";
  } else {
    const std::string tables = folder.filePath("tables.db").toStdString();
    if (source == "tables:60") MakeTables(tables, 60);
    ASSERT_EQ(window.OpenDatabase(source == "sample:" ? ZRQRYBLD_SAMPLE_DB : QString::fromStdString(tables)),
              QString());
    Focus("diagram");
    Press(acts);
  }
  KeepPicture(Paint(window), "task-" + std::to_string(GetParam()));
  const std::string statement = ReplaceAll(ReplaceAll(Hub().SQLPane()->SQLStatement(), "\r\n", " "), "\t", "");
  if (!row[3].empty()) {
    EXPECT_EQ(statement, row[3]);
  }
  if (row.cells.size() > 4) ExpectState(row[4], State());
  EXPECT_EQ(std::to_string(ActsOf(acts)), row[2]);
}

INSTANTIATE_TEST_SUITE_P(Line, TaskTable, testing::Range(std::size_t{0}, Tasks().size()));

// A UNION with a query in WITH and two in cells: its rows come, the file gives it back, and keys take it
// back to nothing.
TEST_F(Keys, AQueryOfQueriesIsRunSavedOpenedAndUndone) {
  const QTemporaryDir folder;
  test::KeepIn(folder.path());
  ASSERT_EQ(window.OpenDatabase(ZRQRYBLD_SAMPLE_DB), QString());
  const std::string empty = Hub().SaveQueryToText();
  Focus("diagram");
  const auto task =
      std::ranges::find_if(Tasks(), [](const test::Row& row) { return row[0].starts_with("Last order"); });
  ASSERT_NE(task, Tasks().end());
  const std::string acts = (*task)[1];
  Press(acts.substr(acts.find(' ')));
  const std::string statement = Statement();
  const std::string rows = test::Connection(ZRQRYBLD_SAMPLE_DB).Query(statement);
  EXPECT_EQ(std::ranges::count(rows, '\n') + 1, 10 + 12) << "all suppliers, and some customers";

  const QString file = folder.filePath("queries.zrq");
  Hub().SaveQuery(test::Utf8(file));
  int steps = 0;
  for (Focus("diagram"); Hub().CanUndo() && steps < 100; ++steps) Press("Ctrl+Z");
  EXPECT_EQ(Hub().SaveQueryToText(), empty) << steps << " steps";
  window.OpenQuery(file);
  EXPECT_EQ(Statement(), statement);
}

// Each pane looks different when it has the keyboard, with and without something that is current in it.
TEST_F(Keys, FocusIsAlwaysVisible) {
  Prepare();
  for (const char* pane : {"diagram", "grid", "sql"}) {
    for (const char* keys : {"", "Down Tab"}) {
      Focus(pane);
      if (std::string_view(pane) != "sql" && *keys != '\0') Press(keys);
      QWidget* view = QApplication::focusWidget();
      const QImage with = view->grab().toImage();
      Focus(std::string_view(pane) == "grid" ? "diagram" : "grid");
      EXPECT_NE(with, view->grab().toImage()) << pane << " " << keys;
    }
  }
}

}  // namespace
}  // namespace zrqrybld
