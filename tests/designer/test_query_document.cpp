#include <gtest/gtest.h>

#include <QAction>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <stdexcept>

#include "designer/query_document.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/modal.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

class QueryDocumentTest : public test::DesignerWindow {
 protected:
  void SetUp() override {
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    OpenSampleWith({"Order", "Customers"});
    ASSERT_EQ(window.TickColumn("Customers.City"), QString());
    statement = Statement();
  }
  QAction& CommandFor(QKeySequence::StandardKey key) {
    for (QAction* action : window.findChildren<QAction*>()) {
      if (action->shortcut() == QKeySequence(key)) return *action;
    }
    throw std::runtime_error("no such command");
  }
  QString File(const char* name) const { return folder.filePath(name); }
  // Asks for a new query and answers the question about unsaved changes.
  void NewAndAnswer(QMessageBox::StandardButton answer) {
    bool asked = false;
    WhenOpen<QMessageBox>([&](QMessageBox& box) {
      asked = true;
      box.button(answer)->click();
    });
    CommandFor(QKeySequence::New)
        .trigger();  // a key would be lost: no window is active behind a question off the screen
    EXPECT_TRUE(asked);
  }

  QTemporaryDir folder;
  std::string statement;
};

TEST_F(QueryDocumentTest, ASavedQueryComesBackWithItsSource) {
  ASSERT_EQ(window.Document().SaveAs(File("a.zrq")), QString());
  EXPECT_FALSE(window.Document().IsModified());
  EXPECT_TRUE(window.windowTitle().startsWith("a.zrq"));
  CommandFor(QKeySequence::New).trigger();
  EXPECT_EQ(Hub().Entities()->Count(), 0);
  MainWindow other;
  ASSERT_EQ(other.Document().Open(File("a.zrq")), QString());
  EXPECT_EQ(test::Utf8(other.Statement()), statement);
  EXPECT_FALSE(other.Document().IsModified());
  EXPECT_TRUE(other.windowTitle().contains("store.db"));
}

TEST_F(QueryDocumentTest, UnsavedChangesAreAskedFor) {
  EXPECT_TRUE(window.Document().IsModified());
  NewAndAnswer(QMessageBox::Cancel);
  EXPECT_EQ(Statement(), statement);
  NewAndAnswer(QMessageBox::Discard);
  EXPECT_NE(Statement(), statement);
  ASSERT_EQ(window.TickColumn("Customers.City").isEmpty(), false);

  ASSERT_EQ(window.AddTables({"Order"}), QStringList());
  ASSERT_EQ(window.Document().SaveAs(File("b.zrq")), QString());
  Hub().Entities()->Item("Order")->SetLeft(4000);  // the statement says nothing of it
  NewAndAnswer(QMessageBox::Save);
  EXPECT_EQ(Hub().Entities()->Count(), 0);
  ASSERT_EQ(window.Document().Open(File("b.zrq")), QString());
  EXPECT_EQ(Hub().Entities()->Item("Order")->Left(), 4000);
}

TEST_F(QueryDocumentTest, WhatCannotBeOpenedOrSavedCostsNothing) {
  QFile broken(File("broken.zrq"));
  ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
  broken.write("Begin Entity\r\nTagVariant=Products\r\nEnd Entity\r\nBegin GridData\r\nx,1=1\r\nEnd GridData\r\n");
  broken.close();
  QFile elsewhere(File("elsewhere.zrq"));
  ASSERT_TRUE(elsewhere.open(QIODevice::WriteOnly));
  elsewhere.write(
      "ConnectionString=Provider=SQLite;Data Source=/nowhere.db\r\nBegin Entity\r\nTagVariant=Products\r\nEnd "
      "Entity\r\n");
  elsewhere.close();
  for (const char* file : {"broken.zrq", "missing.zrq"}) {
    EXPECT_NE(window.Document().Open(File(file)), QString());
    EXPECT_EQ(Statement(), statement);
    EXPECT_TRUE(Hub().IsConnected());
  }
  EXPECT_NE(window.Document().SaveAs(File("no/such/folder.zrq")), QString());
  EXPECT_TRUE(window.Document().IsModified());
  // A source that has moved: the one in use serves, and the user is told; without one the query stays closed.
  QString remark;
  EXPECT_EQ(window.Document().Open(File("elsewhere.zrq"), &remark), QString());
  EXPECT_NE(remark, QString());
  EXPECT_GT(Hub().Entities()->Item("Products")->Items()->Count(), 1);
  MainWindow unconnected;
  EXPECT_NE(unconnected.Document().Open(File("elsewhere.zrq")), QString());
}

// A string that came with a file is shown, without its secrets and as it stands, and opened when the user says so; one
// that was used before is not asked for again, and one that could run something never.
TEST_F(QueryDocumentTest, AFilesConnectionIsShownBeforeItIsOpened) {
  qputenv("XDG_DATA_HOME", folder.path().toUtf8());
  const QString copy = File("copy<b>.db");
  ASSERT_TRUE(QFile::copy(ZRQRYBLD_SAMPLE_DB, copy));
  const auto write = [&](const char* name, const QString& connection) {
    QFile file(File(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        ("ConnectionString=" + connection + "\r\nBegin Entity\r\nTagVariant=Products\r\nEnd Entity\r\n").toUtf8());
  };
  write("strange.zrq", "Provider=SQLite;Data Source=" + copy + ";Token=s3cret");
  write("evil.zrq", "Driver=/tmp/libevil.so;Server=<b>x</b>");
  MainWindow script;
  EXPECT_TRUE(script.Document().Open(File("strange.zrq")).contains("--connect-saved"));
  MainWindow user;
  user.BeginSession();
  int asked = 0;
  const auto open = [&](const char* name, QMessageBox::ButtonRole answer) {
    WhenOpen<QMessageBox>([&](QMessageBox& box) {
      ++asked;
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_TRUE(box.informativeText().contains("copy<b>.db;Token=***")) << test::Utf8(box.informativeText());
      for (QAbstractButton* button : box.buttons()) {
        if (box.buttonRole(button) == answer) return button->click();
      }
    });
    return user.Document().Open(File(name));
  };
  EXPECT_NE(open("strange.zrq", QMessageBox::RejectRole), QString());
  EXPECT_EQ(open("strange.zrq", QMessageBox::AcceptRole), QString());
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(user.Document().Open(File("strange.zrq")), QString()) << "asked again";
  MainWindow other;
  other.BeginSession();
  EXPECT_TRUE(other.Document().Open(File("evil.zrq")).contains("configured on this computer"));
  script.SetConnectSaved(true);
  EXPECT_TRUE(script.Document().Open(File("evil.zrq")).contains("configured on this computer"));
  WhenOpen<QMessageBox>([](QMessageBox& box) {
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    box.accept();
  });
  other.ShowError("<img src=x>");
}

TEST_F(QueryDocumentTest, AFileThatWasReadInPartIsNotWrittenOverUnasked) {
  ASSERT_EQ(window.Document().SaveAs(File("later.zrq")), QString());
  QFile file(File("later.zrq"));
  ASSERT_TRUE(file.open(QIODevice::Append));
  file.write("Begin Note\r\n    Text=of a later release\r\nEnd Note\r\n");
  file.close();
  QString remark;
  ASSERT_EQ(window.Document().Open(File("later.zrq"), &remark), QString());
  EXPECT_TRUE(remark.contains("Note")) << test::Utf8(remark);
  const auto saveAndAnswer = [&](QMessageBox::StandardButton answer) {
    bool asked = false;
    WhenOpen<QMessageBox>([&](QMessageBox& box) {
      asked = true;
      box.button(answer)->click();
    });
    CommandFor(QKeySequence::Save).trigger();
    EXPECT_TRUE(asked);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const bool whole = file.readAll().contains("later release");
    file.close();
    return whole;
  };
  EXPECT_TRUE(saveAndAnswer(QMessageBox::Cancel));
  EXPECT_FALSE(saveAndAnswer(QMessageBox::Save));
  CommandFor(QKeySequence::Save).trigger();  // asks no more
}

}  // namespace
}  // namespace zrqrybld
