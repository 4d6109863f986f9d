// The rows of a statement: in which order they are shown, which of them, and how they are written for other programs.
#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolButton>

#include "designer/export_window.h"
#include "designer/print_window.h"
#include "designer/query_preview.h"
#include "designer/result_table.h"
#include "designer/row_export.h"
#include "designer/value_window.h"
#include "tests/designer/access_faults.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/pictures.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

using test::Utf8;

ResultValue Text(const char* text) { return TextValue(ResultKind::Text, text); }
ResultValue Digits(const char* text) { return TextValue(ResultKind::Number, text); }

void Fill(ResultModel& model) {
  model.Begin({"n", "t", "t"});
  model.Append({{Digits("10"), Text("b"), Text("")},
                {Digits("9"), Text("=1+1"), {}},
                {{}, Text("A, \"x\"\n| y"), Text("-")},
                {Digits("-3"), Text("a"), BinaryValue("\x01", 1)}},
               false);
}

TEST(RowExport, WritesWhatOthersRead) {
  ResultModel model;
  Fill(model);
  const struct {
    const char* name;
    RowExport how;
    const char* expected;
  } cases[] = {
      {"csv",
       {.format = RowFormat::Csv},
       "n,t,t\r\n10,b,\"\"\r\n9,'=1+1,\r\n,\"A, \"\"x\"\"\n| y\",'-\r\n-3,a,1 byte  0x01\r\n"},
      {"csv as it is, without names",
       {.format = RowFormat::Csv, .names = false, .formulasAsText = false},
       "10,b,\"\"\r\n9,=1+1,\r\n,\"A, \"\"x\"\"\n| y\",-\r\n-3,a,1 byte  0x01\r\n"},
      {"tsv",
       {.format = RowFormat::Tsv},
       "n\tt\tt\n10\tb\t\n9\t'=1+1\t\n\t\"A, \"\"x\"\"\n| y\"\t'-\n-3\ta\t1 byte  0x01\n"},
      {"json",
       {.format = RowFormat::Json},
       "[\n  {\"n\": 10, \"t\": \"b\", \"t 2\": \"\"},\n  {\"n\": 9, \"t\": \"=1+1\", \"t 2\": null},\n"
       "  {\"n\": null, \"t\": \"A, \\\"x\\\"\\n| y\", \"t 2\": \"-\"},\n"
       "  {\"n\": -3, \"t\": \"a\", \"t 2\": \"1 byte  0x01\"}\n]\n"},
      {"markdown",
       {.format = RowFormat::Markdown},
       "| n | t | t |\n| ---: | --- | --- |\n| 10 | b |  |\n| 9 | =1+1 | *NULL* |\n"
       "| *NULL* | A, \"x\"<br>\\| y | - |\n| -3 | a | 1 byte  0x01 |\n"},
  };
  for (const auto& c : cases) {
    RowExport how = c.how;
    ExportWindow::TakeAll(model, how);
    std::string written;
    const auto write = [&](const QByteArray& piece) {
      written += piece.toStdString();
      return true;
    };
    EXPECT_TRUE(WriteRows(model, how, write)) << c.name;
    EXPECT_EQ(written, c.expected) << c.name;
    EXPECT_FALSE(WriteRows(model, how, [](const QByteArray&) { return false; })) << c.name;
  }
}

std::string Column(const ResultModel& model, int column) {
  std::string text;
  for (int row = 0; row < model.rowCount(); ++row) text += Utf8(model.index(row, column).data().toString()) + " ";
  return text;
}

TEST(ResultRows, AreSortedAndFilteredHere) {
  ResultModel model;
  Fill(model);
  const QPersistentModelIndex ten = model.index(0, 0);
  model.sort(0, Qt::AscendingOrder);
  EXPECT_EQ(Column(model, 0), "NULL -3 9 10 ");
  EXPECT_EQ(ten.row(), 3) << "what is selected goes with its row";
  model.sort(1, Qt::DescendingOrder);
  EXPECT_EQ(Column(model, 0), "10 NULL -3 9 ") << "in any case";
  model.SetFilter("A");
  EXPECT_EQ(Column(model, 0), "NULL -3 ") << "in any column and case";
  EXPECT_FALSE(ten.isValid());
  model.Append({{Digits("7"), Text("zA"), {}}, {Digits("8"), Text("z"), Text("z")}}, false);
  EXPECT_EQ(Column(model, 0), "NULL -3 7 ");
  model.SortAnew();
  EXPECT_EQ(Column(model, 0), "7 NULL -3 ");
  model.SetFilter({});
  model.sort(-1, Qt::AscendingOrder);
  EXPECT_EQ(Column(model, 0), "10 9 NULL -3 7 8 ");
}

TEST(ValueWindow, ShowsBytesInLines) {
  EXPECT_EQ(Utf8(ByteLines(BinaryValue(std::string("AB\0\xff", 4), 4))),
            "00000000  41 42 00 ff                                      AB..\n");
}

class RowsPane : public test::DesignerWindow {
 protected:
  ~RowsPane() override {
    Pane().Clear();  // a source that has further rows waits for who wants them
    EXPECT_TRUE(PreviewJob::WaitForAll(std::chrono::seconds(10)));
  }
  PreviewPane& Pane() { return window.Preview(); }
  void Run(const std::string& sql) {
    OpenSample();
    window.Tab().Panes().ShowRows(true);
    Pane().Run(RunnerFor(*Hub().GetToolkit().Providers(), Hub().Connection()->ConnectionString()), sql,
               DialectFor(SQLSyntaxSQLite));
    ASSERT_TRUE(Ends());
  }
  bool Ends() {
    return QTest::qWaitFor([&] { return !Pane().IsRunning(); }, 10000);
  }
  void Press(const char* button) {
    for (QToolButton* one : Pane().findChildren<QToolButton*>()) {
      if (one->text() == button && one->isVisible()) return one->click();
    }
    ADD_FAILURE() << "there is no button " << button;
  }
};

constexpr auto kManyRows = "SELECT a.OrderID, b.OrderID AS x FROM \"Order\" a, \"Order\" b";  // a million

TEST_F(RowsPane, SaysWhatWasFetchedSortedAndFiltered) {
  Run(kManyRows);
  QTableView& table = Pane().Table();
  EXPECT_TRUE(Pane().Summary().startsWith("First 500 rows fetched in")) << Utf8(Pane().Summary());
  Press("More");
  ASSERT_TRUE(Ends());
  EXPECT_EQ(Pane().Rows().RowsHeld(), 1000u);
  // The numbers stand beside their rows, also where rows come while one scrolls.
  QTest::keyClick(&table, Qt::Key_End, Qt::ControlModifier);
  ASSERT_TRUE(Ends());
  QTest::qWait(10);
  EXPECT_EQ(table.currentIndex().row(), 999);
  for (const int row : {997, 998, 999}) {
    EXPECT_GT(table.rowViewportPosition(row), 0) << "it is seen";
    EXPECT_EQ(table.verticalHeader()->sectionViewportPosition(row), table.rowViewportPosition(row)) << row;
  }
  KeepPicture(Paint(window), "rows-end");
  Press("All");
  QTest::qWait(20);
  Pane().Stop();
  ASSERT_TRUE(Ends());
  const std::size_t held = Pane().Rows().RowsHeld();
  EXPECT_LT(held, ResultModel::kMostRows);
  EXPECT_TRUE(Pane().Rows().HasMore()) << "stopped, and can go on";
  QHeaderView& header = *table.horizontalHeader();
  const auto click = [&] {
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, {header.sectionViewportPosition(1) + 20, 8});
  };
  click();
  EXPECT_TRUE(Pane().Summary().contains("only the fetched rows are sorted, by x")) << Utf8(Pane().Summary());
  click();
  click();
  EXPECT_FALSE(Pane().Summary().contains("sorted")) << "the third click is the source's order";
  QTest::keyClick(&table, Qt::Key_F, Qt::ControlModifier);
  QTest::keyClicks(QApplication::focusWidget(), "no such value");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Pane().Summary().contains("; 0 of "); })) << Utf8(Pane().Summary());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  EXPECT_TRUE(table.hasFocus());
  Press("All");
  ASSERT_TRUE(Ends());
  EXPECT_GE(Pane().Rows().RowsHeld(), ResultModel::kMostRows);
  EXPECT_TRUE(Pane().Summary().contains("more are not held")) << Utf8(Pane().Summary());
}

TEST_F(RowsPane, AValueIsSeenAsAWhole) {
  Run("SELECT NULL AS a, '' AS b, '{\"k\": [1, 2]}' AS c, x'414200' AS d");
  std::string seen;
  for (int column = 0; column < 4; ++column) {
    Pane().Table().setCurrentIndex(Pane().Rows().index(0, column));
    WithDialog([&] { QTest::keyClick(&Pane().Table(), Qt::Key_F2, Qt::ShiftModifier); },
               [&](QDialog& dialog) {
                 seen += Utf8(dialog.findChild<QLabel*>()->text()) + "|" +
                         Utf8(dialog.findChild<QPlainTextEdit*>()->toPlainText()) + "\n";
                 KeepPicture(Paint(dialog), "value-" + std::to_string(column));
                 EXPECT_EQ(test::AccessFaults(dialog), "");
               });
  }
  EXPECT_EQ(
      seen,
      "NULL: there is no value.|\nAn empty text.|\n13 characters|{\n    \"k\": [\n        1,\n        2\n    ]\n}\n\n"
      "3 bytes|00000000  41 42 00                                         AB.\n\n");
}

TEST_F(RowsPane, IsExportedAsChosen) {
  Run("SELECT 1 AS a, '=x' AS b UNION ALL SELECT 2, NULL");
  const auto exportBy = [&](const char* format, bool selected, const char* button) {
    QApplication::setActiveWindow(&window);  // behind a dialog off the screen none is
    WithDialog([&] { QTest::keyClick(&window, Qt::Key_E, Qt::ControlModifier); },
               [&](QDialog& dialog) {
                 dialog.findChild<QComboBox*>()->setCurrentText(format);
                 KeepPicture(Paint(dialog), "export");
                 const auto press = [&](auto buttons, const QString& text) {
                   for (auto* one : buttons) {
                     if (one->text().remove('&').startsWith(text)) return one->click();
                   }
                 };
                 if (selected) press(dialog.findChildren<QRadioButton*>(), "Selected");
                 press(dialog.findChildren<QPushButton*>(), button);
               });
    return Utf8(QApplication::clipboard()->text());
  };
  QApplication::clipboard()->clear();
  EXPECT_EQ(exportBy("JSON", false, "Cancel"), "");
  EXPECT_EQ(exportBy("CSV (comma-separated)", false, "Copy"), "a,b\r\n1,'=x\r\n2,\r\n");
  Pane().Table().setSelectionMode(QAbstractItemView::MultiSelection);
  Pane().Table().setCurrentIndex(Pane().Rows().index(0, 1));
  Pane().Table().setCurrentIndex(Pane().Rows().index(1, 0));
  EXPECT_EQ(exportBy("TSV (tab-separated)", true, "Copy"), "a\tb\n\t'=x\n2\t\n") << "what is selected, and its gaps";
}

TEST_F(RowsPane, GoesToTheErrorInTheStatement) {
  OpenSampleWith({"Employees"});
  Designer().SqlView().setFocus();
  Designer().SqlView().selectAll();
  Designer().SqlView().insertPlainText("SELECT Employees.LastName, nofunc(Employees.LastName) FROM Employees");
  QTest::keyClick(&window, Qt::Key_F5);
  ASSERT_TRUE(Ends());
  EXPECT_FALSE(Designer().SqlView().isVisible()) << "the rows are in front";
  for (QPushButton* button : Pane().findChildren<QPushButton*>()) {
    if (button->text() == "Go to the Error") button->click();
  }
  EXPECT_TRUE(Designer().SqlView().hasFocus());
  QTextCursor caret = Designer().SqlView().textCursor();
  caret.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor, 6);
  EXPECT_EQ(Utf8(caret.selectedText()), "nofunc");
}

TEST_F(RowsPane, IsPrintedWithDiagramAndStatement) {
  OpenSampleWith({"Customers", "Order"});
  for (const char* column : {"Customers.CompanyName", "Order.OrderDate", "Order.Freight", "Order.Comment"}) {
    window.TickColumn(column);
  }
  const QTemporaryDir folder;
  const auto pages = [&](PrintWindow& dialog) {
    const QString path = folder.filePath("a.pdf");
    EXPECT_EQ(Utf8(dialog.SaveTo(path)), "");
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_TRUE(bytes.startsWith("%PDF"));
    return bytes.count("/Type /Page\n");
  };
  Hub().SetSelectTopRecords("20");
  QTest::keyClick(&window, Qt::Key_F5);
  ASSERT_TRUE(Ends());
  PrintWindow first(Designer(), Pane().Rows(), "a.zrq", EnglishTexts(), PrintWindow::Target::Paper, &window);
  EXPECT_EQ(pages(first), 2) << "the diagram, and statement and rows";
  first.show();
  KeepPicture(Paint(first), "print");
  for (QPushButton* button : first.findChildren<QPushButton*>()) {
    if (!button->text().startsWith("Pre&view")) continue;
    WithDialog([button] { button->click(); },
               [](QDialog& preview) {
                 preview.resize(1100, 800);
                 for (QAction* view : preview.findChildren<QAction*>()) {
                   if (view->text().contains("acing")) view->trigger();
                 }
                 QTest::qWait(50);
                 KeepPicture(Paint(preview), "print-preview");
               });
  }
  Run(kManyRows);
  Press("More");
  ASSERT_TRUE(Ends());
  Press("More");
  ASSERT_TRUE(Ends());
  PrintWindow rows(Designer(), Pane().Rows(), "b", EnglishTexts(), PrintWindow::Target::Pdf, &window);
  EXPECT_GT(pages(rows), 10) << "a thousand of 1,500 rows";
  EXPECT_NE(Utf8(rows.SaveTo(folder.filePath("no/such/b.pdf"))), "");
}

}  // namespace
}  // namespace zrqrybld
