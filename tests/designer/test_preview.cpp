// The result preview: what F5 runs, what is shown, and that the window never waits.
#include <QAction>
#include <QClipboard>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>
#include <csignal>

#include "designer/preview_pane.h"
#include "designer/query_preview.h"
#include "designer/result_model.h"
#include "designer/result_table.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/palettes.h"
#include "tests/qt/pictures.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::Utf8;

// Measures for how long at most the window did not react.
class Heartbeat {
 public:
  Heartbeat() {
    clock_.start();
    QObject::connect(&timer_, &QTimer::timeout, [this] { longest_ = std::max(longest_, clock_.restart()); });
    timer_.start(5);
  }
  qint64 Longest() { return std::max(longest_, clock_.elapsed()); }

 private:
  QTimer timer_;
  QElapsedTimer clock_;
  qint64 longest_ = 0;
};

constexpr qint64 kNoticed = 250;  // milliseconds, on a machine with other work
constexpr const char* kEndless =
    "SELECT count(*) FROM Employees a, Employees b, Employees c, Employees d, Employees e, Employees f, Employees g, "
    "Employees h, Employees i, Employees j, Employees k, Employees l";

class Preview : public test::DesignerWindow {
 protected:
  ~Preview() override { EXPECT_TRUE(PreviewJob::WaitForAll(std::chrono::seconds(10))); }
  PreviewPane& Pane() { return window.Preview(); }
  void Type(const QString& sql) {
    Designer().SqlView().setFocus();
    Designer().SqlView().selectAll();
    Designer().SqlView().insertPlainText(sql);
  }
  void PressF5() {
    QApplication::setActiveWindow(&window);  // behind a dialog off the screen none is
    QTest::keyClick(&window, Qt::Key_F5);
  }
  bool Ends() {
    return QTest::qWaitFor([&] { return !Pane().IsRunning(); }, 10000);
  }
  void RunDirectly(const std::string& sql, const std::string& connectionString) {
    Pane().setVisible(true);
    Pane().Run(RunnerFor(*Hub().GetToolkit().Providers(), connectionString), sql, DialectFor(SQLSyntaxMSSQL));
  }
  std::string Cell(int row, int column) { return Utf8(Pane().Table().model()->index(row, column).data().toString()); }
  // The text that is underlined.
  std::string Faulty() {
    const QTextDocument& document = *Designer().SqlView().document();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
      for (const QTextLayout::FormatRange& range : block.layout()->formats()) {
        if (range.format.underlineStyle() == QTextCharFormat::NoUnderline) continue;
        return Utf8(block.text().mid(range.start, range.length));
      }
    }
    return {};
  }
};

// What cannot be drawn is refused once, with its reason; who asks again gets its rows, and diagram and grid, which hold
// another query, are out of reach until it is applied or taken back.
TEST_F(Preview, RunsATextThatCannotBeDrawnWhenAskedAgain) {
  OpenSampleWith({"Customers"});
  Type("WITH w AS MATERIALIZED (SELECT City FROM Customers) SELECT City FROM w -- all places");
  const auto enabled = [this] { return Designer().DiagramView().isEnabled() && Designer().GridView().isEnabled(); };
  PressF5();
  EXPECT_FALSE(Pane().IsRunning());
  EXPECT_EQ(Faulty(), "MATERIALIZED");
  EXPECT_TRUE(enabled());
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Utf8(Pane().Failure()), "");
  EXPECT_GT(Pane().Rows().RowsHeld(), 0U);
  EXPECT_FALSE(enabled());
  const QImage greyed = window.grab().toImage();
  Type("SELECT City FROM Customers WHERE City = :where");
  EXPECT_FALSE(enabled());
  WithDialog([this] { PressF5(); },
             [](QDialog& dialog) {
               auto* value = dialog.findChild<QLineEdit*>();
               ASSERT_TRUE(value);
               QTest::keyClicks(value, "Berlin");
               QTest::keyClick(value, Qt::Key_Return);
             });
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Utf8(Pane().Failure()), "");
  EXPECT_GT(Pane().Rows().RowsHeld(), 0U);
  EXPECT_TRUE(enabled());
  EXPECT_NE(greyed, window.grab().toImage());
}

TEST_F(Preview, ShowsRowsByTheirKindsAndReadsOnWhileScrolling) {
  OpenSampleWith({"Order Lines", "Order"});
  window.SetSyntax("MSSQL");
  EXPECT_FALSE(Pane().isVisible());
  for (const char* column : {"Order.OrderDate", "Order.Comment", "Order Lines.Quantity"}) window.TickColumn(column);
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Utf8(Pane().Failure()), "");
  EXPECT_TRUE(Pane().isVisible());
  EXPECT_EQ(Pane().Rows().RowsHeld(), PreviewJob::kBlockRows);
  EXPECT_TRUE(Pane().Summary().contains("First 500 rows fetched in")) << Utf8(Pane().Summary());
  QAbstractItemModel& model = *Pane().Table().model();
  EXPECT_TRUE(model.index(0, 2).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
  EXPECT_FALSE(model.index(0, 0).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
  Pane().Table().scrollToBottom();
  ASSERT_TRUE(QTest::qWaitFor([&] { return Pane().Rows().RowsHeld() > PreviewJob::kBlockRows; }));
  for (int i = 0; i < 20 && Pane().Rows().HasMore(); ++i) {
    ASSERT_TRUE(Ends());
    Pane().Table().scrollToBottom();
  }
  ASSERT_TRUE(Ends());
  EXPECT_EQ(std::to_string(Pane().Rows().RowsHeld()),
            test::QueryText(ZRQRYBLD_SAMPLE_DB, "SELECT count(*) FROM (" + Statement() + ")"));
  window.TickColumn("Order.Freight");
  EXPECT_TRUE(Pane().Summary().contains("changed since")) << Utf8(Pane().Summary());

  const test::DatabaseFile file(
      "CREATE TABLE t (a, \"b\tc\"); INSERT INTO t VALUES (NULL, 'x\ty'), (2, x'00'), ('=1+1', -3)");
  RunDirectly("SELECT * FROM t", "Data Source=" + file.Path());
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Cell(0, 0) + Cell(0, 1) + Cell(1, 1), "NULLx y1 byte  0x00");
  QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
  EXPECT_TRUE(Pane().Table().hasFocus());
  QTest::keyClick(&Pane().Table(), Qt::Key_F6);
  EXPECT_TRUE(Designer().DiagramView().hasFocus());
  Pane().TakeFocus();
  Pane().Table().selectAll();
  QTest::keyClick(&Pane().Table(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Utf8(QApplication::clipboard()->text()), "a\t\"b\tc\"\n\t\"x\ty\"\n2\t1 byte  0x00\n'=1+1\t-3\n");
  Pane().Table().setCurrentIndex(Pane().Table().model()->index(1, 0));
  QTest::keyClick(&Pane().Table(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(Utf8(QApplication::clipboard()->text()), "2\n");
}

TEST_F(Preview, SaysWhyNothingIsRun) {
  PressF5();
  EXPECT_TRUE(Pane().Failure().contains("no data source"));
  OpenSampleWith({"Employees"});
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_TRUE(Pane().Failure().contains("no column yet")) << Utf8(Pane().Failure());
  window.SetSyntax("MSSQL");
  Type("SELECT nofunc(Employees.LastName) FROM Employees");
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_FALSE(Hub().SQLPane()->IsEdited()) << "applied first";
  EXPECT_TRUE(Pane().Failure().contains("nofunc")) << Utf8(Pane().Failure());
  EXPECT_EQ(Faulty(), "nofunc");
  Type("SELECT FROM FROM");
  PressF5();
  EXPECT_TRUE(Hub().SQLPane()->IsEdited()) << "what cannot be applied is not run";
  EXPECT_EQ(Utf8(Pane().Failure()), "") << "that was another statement's";
  EXPECT_TRUE(Designer().SqlView().isVisible()) << "where the text says what is wrong";
  Designer().SqlView().selectAll();
  Hub().SQLPane()->RevertEditedText();
  Type("SELECT TOP 3 LastName FROM Employees");
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_TRUE(Pane().Failure().contains("does not know TOP")) << Utf8(Pane().Failure());
  EXPECT_EQ(Faulty(), "TOP");
  Hub().DiagramPane()->Clear();
  window.AddTables({"Employees"});
  window.TickColumn("Employees.EmployeeID");
  Hub().GridPane()->SetValue(1, "criteria", "1; DROP TABLE x");
  Hub().SQLPane()->Refresh();
  PressF5();
  EXPECT_TRUE(Pane().Failure().contains("cannot be read")) << Statement();
}

TEST_F(Preview, ParametersAreAskedForFirst) {
  OpenSampleWith({"Employees"});
  window.SetSyntax("MSSQL");
  Type("SELECT LastName FROM Employees WHERE EmployeeID = ?PARAM(Who, 3, Id, integer) AND nofunc() = 1");
  WithDialog([&] { PressF5(); }, [](QDialog& dialog) { dialog.reject(); });
  EXPECT_FALSE(Pane().IsRunning() || !Pane().Failure().isEmpty()) << "cancelled";
  WithDialog([&] { PressF5(); }, [](QDialog& dialog) { dialog.accept(); });
  ASSERT_TRUE(Ends());
  EXPECT_TRUE(Pane().Failure().contains("nofunc")) << Utf8(Pane().Failure());
  EXPECT_EQ(Faulty(), "") << "the place behind a value is another one in the text";
  Type("SELECT LastName FROM Employees WHERE EmployeeID = ?PARAM(Who, 3, Id, integer)");
  WithDialog([&] { PressF5(); }, [](QDialog& dialog) { dialog.accept(); });
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Pane().Rows().RowsHeld(), 1u) << Utf8(Pane().Failure());
}

TEST_F(Preview, TheWindowNeverWaits) {
  OpenSample();
  const std::string source = Hub().Connection()->ConnectionString();
  Heartbeat heartbeat;
  RunDirectly(kEndless, source);
  QTest::qWait(400);
  EXPECT_TRUE(Pane().IsRunning());
  QTest::keyClick(&window, Qt::Key_F5, Qt::ShiftModifier);
  EXPECT_FALSE(Pane().IsRunning());
  EXPECT_TRUE(Pane().Summary().startsWith("Stopped after")) << Utf8(Pane().Summary());
  EXPECT_TRUE(PreviewJob::WaitForAll(std::chrono::seconds(5))) << "the source has stopped, too";

  RunDirectly(kEndless, source);
  QTest::qWait(50);
  EXPECT_EQ(window.OpenConnection(source), QString());  // reconnected meanwhile
  EXPECT_FALSE(Pane().IsRunning());
  {
    MainWindow other;
    other.show();
    other.Preview().Run(RunnerFor(*Hub().GetToolkit().Providers(), source), kEndless, DialectFor(SQLSyntaxMSSQL));
    QTest::qWait(50);
    other.close();
  }
  RunDirectly(kEndless, source);
  QTest::qWait(50);
  EXPECT_LT(heartbeat.Longest(), kNoticed);
  RunDirectly("SELECT 1 UNION ALL SELECT abs(-9223372036854775808)", source);
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Cell(0, 0), "1") << "the rows before a failure stay";
  EXPECT_TRUE(Pane().Failure().contains("overflow")) << Utf8(Pane().Failure());
  RunDirectly("SELECT 1", source);
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Cell(0, 0), "1") << "nothing of the statement before";
}

TEST_F(Preview, IsShownInSmallWindowsAndDarkColours) {
  OpenSampleWith({"Customers", "Order"});
  window.SetSyntax("MSSQL");
  for (const char* column : {"Customers.CompanyName", "Order.Comment", "Order.OrderDate", "Order.Freight"}) {
    window.TickColumn(column);
  }
  for (const NamedPalette& named : {TestPalettes()[0], TestPalettes()[1]}) {
    const ScopedPalette palette(named.palette);
    for (const QSize size : {QSize(800, 600), QSize(1120, 860)}) {
      window.resize(size);
      PressF5();
      ASSERT_TRUE(Ends());
      EXPECT_EQ(window.size(), size);
      EXPECT_GT(Pane().Table().rowAt(Pane().Table().viewport()->height() - 1) + 1, 2) << "too low to be of use";
      KeepPicture(Paint(window), "preview-" + named.name + "-" + std::to_string(size.width()));
    }
    Type("SELECT nofunc(Customers.City) FROM Customers");
    PressF5();
    ASSERT_TRUE(Ends());
    KeepPicture(Paint(window), "preview-error-" + named.name);
    Hub().DiagramPane()->Clear();
    window.AddTables({"Customers", "Order"});
    for (const char* column : {"Customers.CompanyName", "Order.Comment", "Order.OrderDate"}) window.TickColumn(column);
  }
}

// Open the sample, join, limit, run: nobody has to know what a dialect is. In another's words the way back is a button.
TEST_F(Preview, TheFirstStepsNeedNoDialect) {
  OpenSampleWith({"Customers", "Order"});
  EXPECT_EQ(Hub().SQLPane()->SQLSyntax(), SQLSyntaxSQLite);
  Hub().Entities()->Item("Order")->Relationships()->Item(1)->SetItemData(1);
  window.TickColumn("Customers.CompanyName");
  window.TickColumn("Order.OrderDate");
  const auto field = [this](const char* name) {
    QLineEdit* found = nullptr;
    for (QLineEdit* edit : window.findChildren<QLineEdit*>()) {
      if (edit->accessibleName() == name) found = edit;
    }
    return found;
  };
  QLineEdit* const limit = field("Row limit");
  ASSERT_TRUE(limit && limit->isVisible());
  limit->setFocus();
  QTest::keyClicks(limit, "5x");
  QTest::keyClick(limit, Qt::Key_Return);
  EXPECT_EQ(Hub().SelectTopRecords(), "5") << "a letter is no part of a limit";
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Utf8(Pane().Failure()), "");
  EXPECT_EQ(Pane().Rows().RowsHeld(), 5u);
  EXPECT_NE(Statement().find("LEFT JOIN"), std::string::npos) << Statement();

  window.SetSyntax("Generic");
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_NE(Utf8(Pane().Failure()).find("Choose the dialect SQLite"), std::string::npos) << Utf8(Pane().Failure());
  QPushButton* cure = nullptr;
  for (QPushButton* button : Pane().findChildren<QPushButton*>()) {
    if (button->isVisible() && button->text().startsWith("Switch")) cure = button;
  }
  ASSERT_TRUE(cure);
  KeepPicture(Paint(window), "preview-other-dialect");
  EXPECT_EQ(Utf8(cure->text()), "Switch to SQLite");
  cure->click();
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Utf8(Pane().Failure()), "");
  EXPECT_EQ(Pane().Rows().RowsHeld(), 5u);
  EXPECT_EQ(Hub().UndoText(), "Change dialect");
  Hub().Undo();
  EXPECT_EQ(Hub().SQLPane()->SQLSyntax(), SQLSyntaxGeneric);
}

TEST_F(Preview, RunsStatementsWithoutTables) {
  OpenSample();
  Type("SELECT 6 * 7 AS answer, EXISTS (SELECT 1 WHERE 1 > 2)");
  PressF5();
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Utf8(Pane().Failure()), "");
  EXPECT_EQ(Cell(0, 0) + Cell(0, 1), "420");
  EXPECT_EQ(GridRows(), ".6 * 7 .EXISTS (SELECT 1 WHERE 1 > 2)");
  KeepPicture(Paint(window), "preview-without-tables");
}

// --- Against servers, which tests/providers/servers.sh has started for this test alone ---

struct Server {
  const char* name;
  const char* variable;
  const char* endless;
};

class PreviewOnServers : public Preview, public testing::WithParamInterface<Server> {};

INSTANTIATE_TEST_SUITE_P(All, PreviewOnServers,
                         testing::Values(Server{"PostgreSql", "ZRQRYBLD_TEST_POSTGRESQL", "SELECT pg_sleep(60)"},
                                         Server{"MariaDb", "ZRQRYBLD_TEST_MARIADB", "SELECT SLEEP(60)"}),
                         [](const auto& test) { return test.param.name; });

TEST_P(PreviewOnServers, AServerThatHangsOrDiesIsNoneOfTheWindowsTrouble) {
  const std::string source = qgetenv(GetParam().variable).toStdString();
  const int process = qEnvironmentVariableIntValue((std::string(GetParam().variable) + "_PROCESS").c_str());
  if (source.empty() || process <= 0) {
    ASSERT_NE(qgetenv("CI"), "true") << "no server";
    GTEST_SKIP() << "no server";
  }
  Heartbeat heartbeat;
  RunDirectly("SELECT 1 AS a, NULL AS b", source);
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Utf8(Pane().Failure()) + Cell(0, 0) + Cell(0, 1), "1NULL");

  RunDirectly(GetParam().endless, source);
  QTest::qWait(500);
  Pane().Stop();
  EXPECT_TRUE(PreviewJob::WaitForAll(std::chrono::seconds(10))) << "stopped on the server";

  RunDirectly(GetParam().endless, source);
  QTest::qWait(500);
  kill(process, SIGSTOP);  // it does not even take a request to stop
  Pane().Stop();
  QTest::qWait(500);
  EXPECT_FALSE(Pane().IsRunning());
  kill(process, SIGCONT);
  EXPECT_TRUE(PreviewJob::WaitForAll(std::chrono::seconds(20)));

  RunDirectly(GetParam().endless, source);
  QTest::qWait(500);
  kill(process, SIGQUIT);
  if (std::string_view(GetParam().name) == "MariaDb") kill(process, SIGKILL);
  ASSERT_TRUE(Ends());
  EXPECT_NE(Utf8(Pane().Failure()), "");
  std::cout << GetParam().name << ": " << Utf8(Pane().Failure()) << '\n';
  RunDirectly("SELECT 1", source);
  ASSERT_TRUE(Ends());
  EXPECT_NE(Utf8(Pane().Failure()), "");
  EXPECT_LT(heartbeat.Longest(), kNoticed);
}

}  // namespace
}  // namespace zrqrybld
