// The designer's window as its user drives it: by mouse and keys alone, from the tables to the rows of the statement.
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <algorithm>

#include "adapters/qt/tables_window.h"
#include "tests/designer/designer_window_test.h"
#include "tests/sqlite/database_file.h"

namespace zrqrybld {
namespace {

using test::DesignerWindow;
using test::Utf8;

std::string RowCount(const std::string& statement) {
  return test::QueryText(ZRQRYBLD_SAMPLE_DB, "SELECT count(*) FROM (" + statement + ")");
}

// The list of the tab in front.
QListView* ShownList(QDialog& dialog) {
  const QList<QListView*> lists = dialog.findChildren<QListView*>();
  const auto shown = std::ranges::find_if(lists, [](const QListView* list) { return list->isVisible(); });
  return shown == lists.end() ? nullptr : *shown;
}

TEST_F(DesignerWindow, ClicksOnCheckBoxesOfThreeTablesMakeTheStatementOfTheirRows) {
  OpenSampleWith({"Customers", "Order", "Order Lines"});
  EXPECT_EQ(GridRows(), "");
  for (const auto& [table, column] :
       {std::pair{"Customers", "CompanyName"}, {"Order", "OrderDate"}, {"Order Lines", "Quantity"}}) {
    Click(CheckBox(table, column));
    EXPECT_TRUE(Item(table, column)->Checked()) << table;
  }
  EXPECT_EQ(GridRows(), "Customers.CompanyName Order.OrderDate Order Lines.Quantity");
  EXPECT_EQ(
      Statement(),
      "SELECT \n\tCustomers.CompanyName, \n\t\"Order\".OrderDate, \n\t\"Order Lines\".Quantity\n"
      "FROM \nCustomers,\n\"Order\",\n\"Order Lines\"\n"
      "WHERE\n\t(\"Order\".CustomerID = Customers.CustomerID AND \n\t\"Order Lines\".OrderID = \"Order\".OrderID)");
  EXPECT_EQ(Utf8(Designer().SqlView().toPlainText()), Statement());
  EXPECT_EQ(RowCount(Statement()), "2970");

  // And back: a second click takes the column out of the grid and out of the text.
  Click(CheckBox("Order", "OrderDate"));
  EXPECT_FALSE(Item("Order", "OrderDate")->Checked());
  EXPECT_EQ(GridRows(), "Customers.CompanyName Order Lines.Quantity");
  EXPECT_EQ(Statement().find("OrderDate"), std::string::npos);
}

TEST_F(DesignerWindow, AClickOnTheGridsOutputUnticksTheColumn) {
  OpenSampleWith({"Customers"});
  Click(CheckBox("Customers", "City"));
  ASSERT_EQ(GridRows(), "Customers.City");
  const PixelRect cell = Grid().Grid()->GetRowColumnXY(1, "output");
  QTest::mouseClick(Designer().GridView().viewport(), Qt::LeftButton, {},
                    QPoint(qRound((cell.left + cell.width / 2).Value()), qRound(cell.CenterY().Value())));
  EXPECT_FALSE(Item("Customers", "City")->Checked());
  EXPECT_EQ(GridRows(), "-Customers.City");
  EXPECT_EQ(Statement().find("City"), std::string::npos);
}

TEST_F(DesignerWindow, TheDialectBoxRewritesTheStatement) {
  OpenSampleWith({"Customers", "Order", "Order Lines"});
  Click(CheckBox("Customers", "City"));
  auto* box = window.findChild<QComboBox*>();
  ASSERT_TRUE(box);
  const struct {
    const char* dialect;
    const char* from;  // how FROM begins
  } cases[] = {
      {"MSSQL", "FROM \n\tCustomers\n\tINNER JOIN"},
      {"OpenSQL", "FROM \n\t( Customers\n\tINNER JOIN"},
      {"Access", "FROM \n\t(Customers\n\tINNER JOIN"},
      {"Oracle", "FROM \nCustomers,\n"},
      {"Generic", "FROM \nCustomers,\n"},
  };
  for (const auto& c : cases) {
    QTest::mouseClick(box, Qt::LeftButton);
    QAbstractItemView* list = box->view();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(list->window()));
    const QModelIndex entry = list->model()->index(box->findText(c.dialect), 0);
    QTest::mouseMove(list->viewport(), list->visualRect(entry).center());
    QTest::qWait(QApplication::doubleClickInterval() / 8);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(entry).center());
    // A combo box takes no click that comes at once after its list has opened.
    if (!QTest::qWaitFor([&] { return Utf8(box->currentText()) == c.dialect; }, 100)) {
      QTest::qWait(QApplication::doubleClickInterval());
      QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(entry).center());
    }
    EXPECT_EQ(Utf8(box->currentText()), c.dialect);
    EXPECT_NE(Statement().find(c.from), std::string::npos) << c.dialect << "\n" << Statement();
  }
}

TEST_F(DesignerWindow, TheTablePickerAddsTablesWithTheirJoins) {
  OpenSample();
  WithDialog([&] { QTest::keyClick(&window, Qt::Key_F7); },
             [&](QDialog& dialog) {
               ASSERT_TRUE(qobject_cast<TablesWindow*>(&dialog));
               QListView* list = ShownList(dialog);
               for (const char* name : {"Order", "Customers"}) {
                 const QModelIndexList found =
                     list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchExactly);
                 ASSERT_EQ(found.size(), 1) << name;
                 list->scrollTo(found.front());
                 const QPoint place = list->visualRect(found.front()).center();
                 QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
                 QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
               }
               // The dialog stays open; the window behind it shows what was added.
               EXPECT_TRUE(dialog.isVisible());
               EXPECT_EQ(Hub().Entities()->Count(), 2);
               auto* filter = dialog.findChild<QLineEdit*>();
               filter->setFocus();
               filter->clear();
               QTest::keyClicks(filter, "lines");
               QTest::keyClick(filter, Qt::Key_Return);
               EXPECT_EQ(Hub().Entities()->Count(), 3);
               QTest::keyClick(&dialog, Qt::Key_Escape);
               EXPECT_FALSE(dialog.isVisible());
             });
  ASSERT_TRUE(Hub().Entities()->Item("Order Lines"));
  EXPECT_EQ(Hub().Entities()->Item("Order")->Relationships()->Count(), 1);
  EXPECT_EQ(Hub().Entities()->Item("Order Lines")->Relationships()->Count(), 1);
  EXPECT_TRUE(Item("Order Lines", "LineNo")->Bold()) << "a part of the primary key";
  Click(CheckBox("Order Lines", "Quantity"));
  EXPECT_EQ(RowCount(Statement()), "2970");
}

// --- What goes wrong ---

// Everything a failure must leave alone.
class DesignerWindowFailures : public DesignerWindow {
 protected:
  DesignerWindowFailures() {
    folder_ = QDir(files_.path());
    Write("text.db", "This is no database.\nIt is a text that somebody has given a wrong name.\n");
    Write("short.db", "SQLite format 3");
    Write("empty.db", "");
    folder_.mkdir("folder.db");
  }
  QString Path(const char* name) const { return folder_.filePath(name); }
  void Write(const char* name, const char* text) const {
    QFile file(Path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }

 private:
  QTemporaryDir files_;
  QDir folder_;
};

TEST_F(DesignerWindowFailures, AFileThatCannotBeOpenedIsAMessageAndTheQueryStays) {
  const struct {
    const char* file;
    const char* message;  // a part of it
  } cases[] = {
      {"missing.db", "missing.db"},  {"missing/missing.db", "missing.db"}, {"folder.db", "folder.db"},
      {"text.db", "not a database"}, {"short.db", "not a database"},
  };
  // First without a query, so that the very first file may be a wrong one.
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const std::string message = Utf8(window.OpenDatabase(Path(c.file)));
    EXPECT_NE(message.find(c.message), std::string::npos) << message;
    EXPECT_FALSE(Hub().IsConnected());
  }
  OpenSampleWith({"Customers", "Order"});
  Click(CheckBox("Customers", "City"));
  const std::string statement = Statement();
  const QString title = window.windowTitle();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const std::string message = Utf8(window.OpenDatabase(Path(c.file)));
    EXPECT_NE(message.find(c.message), std::string::npos) << message;
    EXPECT_EQ(Statement(), statement);
    EXPECT_EQ(GridRows(), "Customers.City");
    EXPECT_EQ(window.windowTitle(), title);
  }
  // The database before is still open.
  EXPECT_EQ(Utf8(window.AddTables({"Order Lines"}).join("; ")), "");
  Click(CheckBox("Order Lines", "Quantity"));
  EXPECT_EQ(RowCount(Statement()), "2970");
  EXPECT_FALSE(QFile::exists(Path("missing.db"))) << "opening has made the file";
}

TEST_F(DesignerWindowFailures, WrongNamesAreMessagesAndTheOthersAreAdded) {
  OpenSample();
  EXPECT_EQ(Utf8(window.AddTables({"Customers", "Nowhere", "", "Order"}).join("\n")),
            "There is no table or view named \"Nowhere\".\nThere is no table or view named \"\".");
  EXPECT_EQ(Hub().Entities()->Count(), 2);
  EXPECT_EQ(Hub().Entities()->Item("Order")->Relationships()->Count(), 1);
  for (const auto& [name, message] : {
           std::pair{"Customers.Nothing", "The table \"Customers\" has no column \"Nothing\"."},
           {"Suppliers.City", "\"Suppliers.City\" names no table of the diagram; write TABLE.COLUMN."},
           {"City", "\"City\" names no table of the diagram; write TABLE.COLUMN."},
           {"Customers.", "The table \"Customers\" has no column \"\"."},
           {"", "\"\" names no table of the diagram; write TABLE.COLUMN."},
       }) {
    EXPECT_EQ(Utf8(window.TickColumn(name)), message);
  }
  EXPECT_EQ(GridRows(), "");
  EXPECT_EQ(Utf8(window.TickColumn("Customers.City")), "");
  EXPECT_EQ(GridRows(), "Customers.City");
}

// The file goes bad while it is open: the message names the fault, and another file can be opened afterwards.
TEST_F(DesignerWindowFailures, ADatabaseThatBreaksWhileItIsOpenIsAMessage) {
  const QString path = Path("broken.db");
  ASSERT_TRUE(QFile::copy(ZRQRYBLD_SAMPLE_DB, path));
  ASSERT_EQ(Utf8(window.OpenDatabase(path)), "");
  ASSERT_EQ(Utf8(window.AddTables({"Customers"}).join("; ")), "");
  QFile file(path);
  ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
  ASSERT_TRUE(file.open(QIODevice::ReadWrite));
  file.write(QByteArray(static_cast<qsizetype>(file.size()), 'x'));
  file.close();
  const std::string message = MessageOf([&] { QTest::keyClick(&window, Qt::Key_F7); });
  EXPECT_NE(message.find("database"), std::string::npos) << message;
  EXPECT_FALSE(window.AddTables({"Order"}).isEmpty());
  EXPECT_EQ(Hub().Entities()->Count(), 1) << "a table was left half-made";

  OpenSampleWith({"Customers", "Order"});
  Click(CheckBox("Order", "OrderDate"));
  EXPECT_EQ(RowCount(Statement()), "1000");
}

TEST_F(DesignerWindowFailures, AnEmptyDatabaseHasNoTablesToPick) {
  ASSERT_EQ(Utf8(window.OpenDatabase(Path("empty.db"))), "");
  WithDialog([&] { QTest::keyClick(&window, Qt::Key_F7); },
             [&](QDialog& dialog) { EXPECT_EQ(ShownList(dialog)->model()->rowCount(), 0); });
  EXPECT_EQ(window.AddTables({"Customers"}).size(), 1);
  OpenSampleWith({"Customers"});
}

TEST_F(DesignerWindowFailures, WithoutADatabaseThereIsNothingToPickFrom) {
  bool opened = false;
  QTimer::singleShot(50, [&] {
    if (QWidget* dialog = QApplication::activeModalWidget()) {
      opened = true;
      dialog->close();
    }
  });
  QTest::keyClick(&window, Qt::Key_F7);
  QTest::qWait(100);
  EXPECT_FALSE(opened);
  EXPECT_EQ(window.AddTables({"Customers"}).size(), 1);
  EXPECT_EQ(Hub().Entities()->Count(), 0);
}

TEST_F(DesignerWindowFailures, ShownErrorsArePlainText) {
  EXPECT_EQ(MessageOf([&] { window.ShowError("There is no <b>table</b>."); }), "There is no <b>table</b>.");
}

}  // namespace
}  // namespace zrqrybld
