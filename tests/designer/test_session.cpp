// From one start to the next: what the window remembers, what it must not, and work that survives a crash.
#include <signal.h>

#include <QAction>
#include <QDir>
#include <QFile>
#include <QInputDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QProcess>
#include <QProcessEnvironment>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <algorithm>

#include "designer/key_list.h"
#include "designer/query_document.h"
#include "designer/recent_connections.h"
#include "designer/result_model.h"
#include "tests/designer/access_faults.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/modal.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/adapters/qt/tables_window.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using test::RecoveryFiles;
using test::Utf8;

// Settings and data of this test's own, in the place where the designer itself would keep them.
class Session : public testing::Test {
 protected:
  Session() { test::KeepIn(folder.path()); }
  ~Session() override { qunsetenv("XDG_DATA_HOME"); }

  // Everything that was kept on the disk.
  std::string Kept() const {
    QSettings().sync();
    std::string text;
    for (QDir at : {QDir(folder.filePath("config") + "/zrqrybld"), QDir(Recovery::Folder())}) {
      for (const QString& name : at.entryList(QDir::Files)) {
        QFile file(at.filePath(name));
        if (file.open(QIODevice::ReadOnly)) text += file.readAll().toStdString();
      }
    }
    return text;
  }
  // Answers the offer of lost work by a button.
  static bool AnswerOffer(MainWindow& window, const char* button) {
    WhenOpen<QMessageBox>([button](QMessageBox& box) {
      for (QAbstractButton* offered : box.buttons()) {
        if (offered->text().remove('&') == button) offered->click();
      }
    });
    return window.OfferLostWork();
  }
  static qbQueryBuilder& Hub(MainWindow& window) { return window.Tab().Hub(); }

  QTemporaryDir folder;
};

TEST_F(Session, TheWindowComesBackAsItWasLeft) {
  const auto column = [](MainWindow& window) { return Hub(window).GridPane()->Grid()->Columns()->Item("alias"); };
  QSize left;
  {
    MainWindow window;
    window.BeginSession();
    window.show();
    window.resize(900, 640);
    Hub(window).DiagramPane()->SetZoom(1.5, {});
    column(window)->SetWidth(3000);
    left = window.size();
    window.close();
  }
  {
    MainWindow script;  // remembers nothing, and keeps nothing
    EXPECT_EQ(Hub(script).DiagramPane()->Zoom(), 1);
    script.close();
  }
  QSettings().setValue("window/panes", "no state of a splitter");
  MainWindow window;
  window.BeginSession();
  window.show();
  EXPECT_EQ(window.size(), left);
  EXPECT_EQ(Hub(window).DiagramPane()->Zoom(), 1.5);
  EXPECT_EQ(column(window)->Width(), 3000);
}

TEST_F(Session, TheStatusLineSaysWhatHappenedLast) {
  MainWindow window;
  const auto said = [&] { return Utf8(window.statusBar()->currentMessage()); };
  window.OpenDatabase(ZRQRYBLD_SAMPLE_DB);
  EXPECT_EQ(said(), "Connected to store.db");
  window.AddTables({"Customers"});
  const std::string step = said();
  EXPECT_NE(step.find("Customers"), std::string::npos) << step;
  for (QAction* action : window.findChildren<QAction*>()) {
    if (action->shortcut() == QKeySequence(Qt::CTRL | Qt::Key_Z)) action->trigger();
  }
  EXPECT_EQ(said(), "Undone: " + step);
  ASSERT_EQ(window.Document().SaveAs(folder.filePath("said.zrq")), QString());
  EXPECT_NE(said().find("said.zrq"), std::string::npos);
}

TEST_F(Session, NoSecretIsEverKept) {
  const std::string source = "Provider=SQLite;Data Source=" ZRQRYBLD_SAMPLE_DB;
  for (const char* secret : {";PWD=s3cret", ";Password='s3cret'", ";Extended Properties=\"X=1;PWD=s3cret\"",
                             ";Access Token=s3cret", ";Extended Properties=\"api_key=s3cret\""}) {
    RememberConnection(source + secret);
    MainWindow window;
    window.BeginSession();
    ASSERT_EQ(window.OpenConnection(source + secret), QString());
    window.AddTables({"Customers"});
    Hub(window).SetSavePassword(true);  // as far as the query's own file is concerned
    ASSERT_TRUE(QTest::qWaitFor([] { return RecoveryFiles().size() == 1; }));
    EXPECT_NE(Kept().find("Customers"), std::string::npos);
    EXPECT_EQ(Kept().find("s3cret"), std::string::npos) << Kept();
  }
  EXPECT_EQ(RecoveryFiles().size(), 0) << "removed at a clean end";
  ASSERT_EQ(RecentConnections().size(), 2);
  EXPECT_TRUE(RecentConnections()[0].asksPassword);

  // The user is asked for it again.
  MainWindow window;
  window.show();
  QAction* first = nullptr;
  for (QMenu* menu : window.findChildren<QMenu*>()) {
    if (!menu->title().startsWith("Connect to R")) continue;
    Q_EMIT menu->aboutToShow();
    first = menu->actions().first();
  }
  ASSERT_TRUE(first);
  WhenOpen<QInputDialog>([](QInputDialog& dialog) {
    EXPECT_EQ(dialog.textEchoMode(), QLineEdit::Password);
    dialog.setTextValue("s3;cret");
    dialog.accept();
  });
  first->trigger();
  EXPECT_TRUE(Hub(window).IsConnected());
  EXPECT_NE(Hub(window).Connection()->ConnectionString().find("PWD=\"s3;cret\""), std::string::npos);
}

TEST_F(Session, WorkSurvivesAKillAndGoesWhenItIsSafe) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  environment.insert("XDG_CONFIG_HOME", folder.filePath("other config"));
  process.setProcessEnvironment(environment);
  process.start(ZRQRYBLD_DESIGNER, {ZRQRYBLD_SAMPLE_DB, "--add-table", "Customers", "--tick", "Customers.City"});
  ASSERT_TRUE(QTest::qWaitFor([] { return RecoveryFiles().size() == 1; }, 15000));
  EXPECT_FALSE(Recovery::FindLost()) << "it still runs";
  kill(static_cast<pid_t>(process.processId()), SIGKILL);
  process.waitForFinished();

  MainWindow window;
  window.BeginSession();
  window.show();
  const auto answer = [&](const char* button) { return AnswerOffer(window, button); };
  EXPECT_FALSE(answer("Ask Later"));
  EXPECT_TRUE(answer("Bring Back"));
  EXPECT_NE(Utf8(window.Statement()).find("Customers.City"), std::string::npos);
  EXPECT_TRUE(Hub(window).IsConnected());
  EXPECT_TRUE(window.Document().IsModified());
  EXPECT_EQ(RecoveryFiles().size(), 1) << "now this window's";
  EXPECT_FALSE(window.OfferLostWork());
  ASSERT_EQ(window.Document().SaveAs(folder.filePath("saved.zrq")), QString());
  EXPECT_EQ(RecoveryFiles().size(), 0);

  // What is typed and not applied is work, too; and so is a query whose source is gone.
  auto& text = window.Tab().Designer().SqlView();
  text.setFocus();
  text.selectAll();
  text.insertPlainText("SELECT half a statem");
  ASSERT_TRUE(QTest::qWaitFor([] { return RecoveryFiles().size() == 1; }));
  const QString kept = QDir(Recovery::Folder()).filePath(RecoveryFiles().first());
  QFile file(kept);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray bytes = file.readAll().replace("store.db", "gone.db");
  Hub(window).SQLPane()->RevertEditedText();
  QFile lost(QDir(Recovery::Folder()).filePath("1.recovery"));
  ASSERT_TRUE(lost.open(QIODevice::WriteOnly) && lost.write(bytes) == bytes.size());
  lost.close();
  QTimer::singleShot(500, [] {
    if (auto* remark = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) remark->accept();
  });
  EXPECT_TRUE(answer("Bring Back"));
  EXPECT_EQ(window.TabCount(), 2) << "what was open stays";
  EXPECT_TRUE(Hub(window).SQLPane()->IsEdited());
  EXPECT_EQ(Hub(window).SQLPane()->SQLStatement(), "SELECT half a statem");
  EXPECT_GT(Hub(window).Entities()->Item("Customers")->Items()->Count(), 3) << "with its columns";
}

// It is asked about at each start until somebody decides, and is never lost unasked.
TEST_F(Session, WorkThatCannotBeReadIsPutAside) {
  QDir().mkpath(Recovery::Folder());
  QFile kept(QDir(Recovery::Folder()).filePath("torn.recovery"));
  ASSERT_TRUE(kept.open(QIODevice::WriteOnly) && kept.write("{\"file\": \"a") > 0);
  kept.close();
  MainWindow window;
  window.show();
  EXPECT_FALSE(AnswerOffer(window, "Ask Later"));
  EXPECT_EQ(RecoveryFiles().size(), 1);
  EXPECT_FALSE(AnswerOffer(window, "Put Aside"));
  EXPECT_EQ(RecoveryFiles().size(), 0);
  QFile aside(kept.fileName() + ".aside");
  ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
  EXPECT_EQ(aside.readAll(), "{\"file\": \"a");
  EXPECT_FALSE(window.OfferLostWork()) << "nothing is left to offer";
}

TEST(KeyList, IsFiltered) {
  KeyList list(EnglishTexts());
  list.show();
  auto* tree = list.findChild<QTreeWidget*>();
  const auto shown = [&] {
    int count = 0;
    for (QTreeWidgetItemIterator it(tree, QTreeWidgetItemIterator::NotHidden); *it; ++it)
      count += (*it)->parent() != nullptr;
    return count;
  };
  EXPECT_GT(shown(), 30);
  list.findChild<QLineEdit*>()->setText("ctrl+space");
  EXPECT_EQ(shown(), 1);
}

// --- The first minutes ---

template <class Button>
void ClickOn(const QWidget& page, const QString& text) {
  for (Button* button : page.findChildren<Button*>()) {
    if (button->text() == text) return button->click();
  }
  ADD_FAILURE() << "there is no button " << text.toStdString();
}

TEST_F(Session, WithoutASourceTheWindowBeginsWithTheWaysToGetOne) {
  MainWindow window;
  const auto* start = window.findChild<StartPage*>();
  EXPECT_FALSE(start->isVisibleTo(&window)) << "a script is offered nothing";
  window.BeginSession();
  window.show();
  EXPECT_TRUE(start->isVisible());
  EXPECT_FALSE(window.findChild<SchemaTree*>()->isVisible());
  EXPECT_EQ(test::AccessFaults(window), "");
  ClickOn<QAbstractButton>(*start, "Begin without a source");
  EXPECT_FALSE(start->isVisible());
  EXPECT_TRUE(window.findChild<QueryDesignerWidget*>()->isVisible());
}

TEST_F(Session, ASourceUsedLastIsOneClickAwayAndItsTablesAreOffered) {
  RememberConnection("Provider=SQLite;Data Source=" ZRQRYBLD_SAMPLE_DB);
  MainWindow window;
  window.BeginSession();
  window.show();
  auto* list = window.findChild<StartPage*>()->findChild<QListWidget*>();
  ASSERT_EQ(list->count(), 1);
  EXPECT_EQ(list->item(0)->text(), "store.db");
  bool offered = false;
  QTimer answer;  // the picker runs its own loop
  QObject::connect(&answer, &QTimer::timeout, [&] {
    auto* picker = qobject_cast<TablesWindow*>(QApplication::activeModalWidget());
    if (!picker) return;
    offered = true;
    picker->reject();
  });
  answer.start(10);
  list->setCurrentRow(0);
  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_TRUE(QTest::qWaitFor([&] { return offered && !QApplication::activeModalWidget(); }));
  EXPECT_FALSE(list->isVisible());
  EXPECT_EQ(window.findChild<SchemaTree*>()->findChild<QTreeWidget*>()->topLevelItemCount(), 12);
}

QTreeWidgetItem* ItemNamed(const QTreeWidget& tree, const QString& name) {
  return tree.findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

TEST_F(Session, AColumnOfTheTreeBringsItsTableAndWhatLinksIt) {
  MainWindow window;
  window.BeginSession();
  window.show();
  ASSERT_EQ(Utf8(window.OpenDatabase(ZRQRYBLD_SAMPLE_DB)), "");
  ASSERT_EQ(window.AddTables({"Customers"}), QStringList());
  auto* dock = window.findChild<SchemaTree*>();
  auto* tree = dock->findChild<QTreeWidget*>();
  ASSERT_TRUE(tree->isVisible());
  QTreeWidgetItem* table = ItemNamed(*tree, "Products");
  ASSERT_TRUE(table);
  EXPECT_EQ(table->childCount(), 0) << "columns are read when they are looked at";
  tree->scrollToItem(table);
  QTest::qWait(10);  // laid out
  const QPoint place(40, tree->visualItemRect(table).center().y());
  QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, place);
  QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, place);
  EXPECT_TRUE(Hub(window).Entities()->Item("Products")) << "a double click adds it";
  Hub(window).Undo();
  table->setExpanded(true);
  QTreeWidgetItem* column = ItemNamed(*tree, "ProductName");
  ASSERT_TRUE(column);
  EXPECT_NE(Utf8(column->text(1)), "");
  EXPECT_TRUE(ItemNamed(*tree, "ProductID")->font(0).bold());

  tree->setCurrentItem(column);
  tree->setFocus();
  QTest::keyClick(tree, Qt::Key_Return);
  const std::string joined = Utf8(window.Statement());
  EXPECT_NE(joined.find("Products.ProductName"), std::string::npos) << joined;
  EXPECT_EQ(Hub(window).Entities()->Count(), 4) << joined;
  EXPECT_EQ(std::ranges::count(joined, '='), 3) << joined;
  // One step: one undo brings back the diagram with one table.
  Hub(window).Undo();
  EXPECT_EQ(Hub(window).Entities()->Count(), 1);
  // A table that is there is ticked where it stands.
  tree->setCurrentItem(ItemNamed(*tree, "Customers"));
  tree->currentItem()->setExpanded(true);
  tree->setCurrentItem(ItemNamed(*tree, "CompanyName"));
  QTest::keyClick(tree, Qt::Key_Return);
  EXPECT_EQ(Hub(window).Entities()->Count(), 1);
  EXPECT_NE(window.Statement().indexOf("Customers.CompanyName"), -1);

  auto* filter = dock->findChild<QLineEdit*>();
  filter->setText("CUSTOM");
  EXPECT_FALSE(ItemNamed(*tree, "Customers")->isHidden());
  EXPECT_TRUE(ItemNamed(*tree, "Suppliers")->isHidden());
}

TEST_F(Session, TheTitleTellsWhatIsUnsaved) {
  MainWindow window;
  window.BeginSession();
  window.show();
  ASSERT_EQ(Utf8(window.OpenDatabase(ZRQRYBLD_SAMPLE_DB)), "");
  EXPECT_EQ(Utf8(window.windowTitle()), "store.db[*] - Query Designer");
  EXPECT_FALSE(window.isWindowModified());
  ASSERT_EQ(window.AddTables({"Customers"}), QStringList());
  EXPECT_TRUE(QTest::qWaitFor([&] { return window.isWindowModified(); }));
  Hub(window).Undo();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window.isWindowModified(); }));
}

// --- Several queries ---

void Give(const MainWindow& window, const char* key) {
  for (QAction* action : window.findChildren<QAction*>()) {
    if (action->shortcut() == QKeySequence(key)) return action->trigger();
  }
  ADD_FAILURE() << "no command has " << key;
}

TEST_F(Session, SeveralQueriesAreOpenEachWithItsOwn) {
  MainWindow window;
  window.BeginSession();
  window.show();
  ASSERT_EQ(Utf8(window.OpenDatabase(ZRQRYBLD_SAMPLE_DB)), "");
  window.AddTables({"Customers"});
  window.TickColumn("Customers.City");
  const QString first = window.Statement();
  Give(window, "Ctrl+T");
  ASSERT_EQ(window.TabCount(), 2);
  EXPECT_TRUE(Hub(window).IsConnected()) << "with the same source";
  EXPECT_EQ(Hub(window).Entities()->Count() + Hub(window).CanUndo(), 0);
  window.AddTables({"Order"});
  window.TickColumn("Order.Freight");
  window.SetSyntax("MSSQL");
  EXPECT_TRUE(QTest::qWaitFor([] { return RecoveryFiles().size() == 2; })) << "both are kept";
  Give(window, "Ctrl+Tab");
  EXPECT_EQ(window.Statement(), first) << "its own dialect";
  EXPECT_EQ(Hub(window).UndoText(), "Tick Customers.City");
  ASSERT_EQ(window.Document().SaveAs(folder.filePath("a.zrq")), QString());
  EXPECT_TRUE(window.windowTitle().startsWith("a.zrq"));
  Give(window, "Ctrl+Shift+Tab");
  EXPECT_FALSE(window.windowTitle().startsWith("a.zrq"));
  window.OpenQuery(folder.filePath("a.zrq"));
  EXPECT_EQ(window.TabCount(), 2) << "it was open";
  EXPECT_EQ(window.Statement(), first);
  Give(window, "Ctrl+Tab");

  window.resize(1024, 680);
  QTest::keyClick(&window, Qt::Key_F5);
  EXPECT_TRUE(QTest::qWaitFor([&] { return window.Preview().Rows().RowsHeld() > 0; }));
  KeepPicture(Paint(window), "tabs-1024");

  const auto close = [&](const char* key, QMessageBox::StandardButton answer) {
    WhenOpen<QMessageBox>([answer](QMessageBox& box) { box.button(answer)->click(); });
    Give(window, key);
  };
  close("Ctrl+W", QMessageBox::Cancel);
  EXPECT_EQ(window.TabCount(), 2);
  Give(window, "Ctrl+Tab");
  close("Ctrl+Q", QMessageBox::Cancel);  // the one that is behind is asked about
  EXPECT_TRUE(window.isVisible());
  EXPECT_NE(window.Statement(), first) << "and shown";
  close("Ctrl+W", QMessageBox::Discard);
  EXPECT_EQ(window.TabCount(), 1);
  EXPECT_EQ(window.Statement(), first);
  EXPECT_TRUE(QTest::qWaitFor([] { return RecoveryFiles().isEmpty(); }));
}

TEST_F(Session, PanesAreMaximisedHiddenAndRemembered) {
  {
    MainWindow window;
    window.BeginSession();
    window.show();
    ASSERT_EQ(Utf8(window.OpenDatabase(ZRQRYBLD_SAMPLE_DB)), "");
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QueryDesignerWidget& designer = window.Tab().Designer();
    PaneLayout& panes = window.Tab().Panes();
    designer.GridView().setFocus();
    Give(window, "Ctrl+M");
    EXPECT_TRUE(designer.GridView().isVisible() && !designer.DiagramView().isVisible());
    designer.FocusPane(1);
    EXPECT_TRUE(designer.SqlView().hasFocus() && !designer.GridView().isVisible()) << "the next one, as large";
    Give(window, "Ctrl+M");
    EXPECT_TRUE(designer.GridView().isVisible() && designer.DiagramView().isVisible());
    designer.GridView().setFocus();
    Give(window, "Ctrl+Shift+M");
    EXPECT_EQ(designer.sizes()[1], 0);
    EXPECT_FALSE(designer.GridView().hasFocus());
    QTest::mouseDClick(designer.handle(1), Qt::LeftButton);
    EXPECT_GT(designer.sizes()[1], 0);
    QTest::mouseDClick(designer.handle(1), Qt::LeftButton);
    EXPECT_EQ(designer.sizes()[1], 0);
    designer.DiagramView().setFocus();
    designer.FocusPane(1);
    EXPECT_GT(designer.sizes()[1], 0) << "F6 brings it back";
    EXPECT_FALSE(panes.RowsShown());
    panes.SetRowsInTab(false);
    panes.ShowRows(true);
    EXPECT_TRUE(window.Preview().isVisible() && designer.SqlView().isVisible());
    Give(window, "Shift+F9");
    EXPECT_TRUE(window.Tab().ConditionsShown());
    window.close();
  }
  MainWindow window;
  window.BeginSession();
  EXPECT_FALSE(window.Tab().Panes().RowsInTab());
  window.Tab().Panes().SetRowsInTab(true);
  EXPECT_TRUE(window.Tab().Panes().RowsInTab());
  EXPECT_TRUE(window.Tab().ConditionsShown());
  EXPECT_TRUE(window.OpenTab().ConditionsShown());
  Give(window, "Shift+F9");
  EXPECT_FALSE(window.Tab().ConditionsShown());
}

}  // namespace
}  // namespace zrqrybld
