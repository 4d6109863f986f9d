// The designer's window: the dialect, and what goes wrong. Gestures and keys are in files of their own.
#include <QAction>
#include <QComboBox>
#include <QInputDialog>
#include <QListView>
#include <QTemporaryDir>

#include "tests/designer/designer_window_test.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

using test::DesignerWindow;
using test::Utf8;

std::string RowCount(const std::string& statement) {
  return test::QueryText(ZRQRYBLD_SAMPLE_DB, "SELECT count(*) FROM (" + statement + ")");
}

TEST_F(DesignerWindow, TheDialectBoxRewritesTheStatement) {
  OpenSampleWith({"Customers", "Order"});
  ASSERT_EQ(window.TickColumn("Customers.City"), QString());
  window.SetSyntax("Generic");
  auto* box = window.findChild<QComboBox*>();
  ASSERT_TRUE(box);
  EXPECT_NE(Statement().find("FROM \nCustomers,\n"), std::string::npos) << Statement();
  QTest::mouseClick(box, Qt::LeftButton);
  QAbstractItemView* list = box->view();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(list->window()));
  const QPoint place = list->visualRect(list->model()->index(box->findText("MSSQL"), 0)).center();
  QTest::mouseMove(list->viewport(), place);
  // A combo box takes no click that comes at once after its list has opened.
  EXPECT_TRUE(QTest::qWaitFor([&] {
    if (Utf8(box->currentText()) != "MSSQL") QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    return Utf8(box->currentText()) == "MSSQL";
  }));
  EXPECT_NE(Statement().find("FROM \n\tCustomers\n\tINNER JOIN"), std::string::npos) << Statement();
}

TEST_F(DesignerWindow, TheQueryMenuLimitsRowsAndDropsDoubles) {
  OpenSampleWith({"Customers"});
  window.TickColumn("Customers.City");
  const auto give = [this](const QString& entry) {
    for (QAction* action : window.findChildren<QAction*>()) {
      if (action->text() == entry) return action->trigger();
    }
    ADD_FAILURE() << "there is no entry " << Utf8(entry);
  };
  give("&Each Row Once");
  EXPECT_TRUE(Hub().DistinctRecords());
  for (const auto& [typed, limit] : {std::pair{"7", "7"}, {"x", "7"}, {"", ""}}) {
    WithDialog([&] { give("&Limit Rows..."); },
               [text = typed](QDialog& dialog) {
                 dynamic_cast<QInputDialog&>(dialog).setTextValue(text);
                 QTimer::singleShot(50, [] {
                   if (auto* refusal = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) refusal->accept();
                 });
                 dialog.accept();
               });
    EXPECT_EQ(Hub().SelectTopRecords(), limit) << typed;
  }
  Hub().Undo();
  Hub().Undo();
  give("&Each Row Once");
  EXPECT_FALSE(Hub().DistinctRecords());
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
  const QList<QAction*> actions = window.findChildren<QAction*>();
  const auto pick = std::ranges::find(actions, QKeySequence(Qt::Key_F7), &QAction::shortcut);
  ASSERT_NE(pick, actions.end());
  EXPECT_FALSE((*pick)->isEnabled()) << "there is nothing to pick from";
  EXPECT_EQ(window.AddTables({"Customers"}).size(), 1) << "without a database";
  OpenSample();
  EXPECT_TRUE((*pick)->isEnabled());
  EXPECT_EQ(Utf8(window.AddTables({"Customers", "Nowhere", "", "Order"}).join("\n")),
            "There is no table or view named \"Nowhere\".\nThere is no table or view named \"\".");
  EXPECT_EQ(Hub().Entities()->Item("Order")->Relationships()->Count(), 1);
  EXPECT_EQ(Utf8(window.TickColumn("")), "\"\" names no table of the diagram; write TABLE.COLUMN.");
  EXPECT_EQ(GridRows(), "");
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
             [&](QDialog& dialog) {
               for (const QListView* list : dialog.findChildren<QListView*>()) EXPECT_EQ(list->model()->rowCount(), 0);
             });
  EXPECT_EQ(window.AddTables({"Customers"}).size(), 1);
  OpenSampleWith({"Customers"});
}

TEST_F(DesignerWindowFailures, ShownErrorsArePlainText) {
  EXPECT_EQ(MessageOf([&] { window.ShowError("There is no <b>table</b>."); }), "There is no <b>table</b>.");
}

}  // namespace
}  // namespace zrqrybld
