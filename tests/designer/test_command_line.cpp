// The designer as a script's tool: what it prints, where, and with which status it ends.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <set>
#include <string>

#include "tests/data_table.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

struct Outcome {
  int status;
  std::string output;
  std::string errors;
};

Outcome RunDesigner(const QStringList& arguments, const char* platform = "offscreen") {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("QT_QPA_PLATFORM", platform);
  environment.insert("QT_LOGGING_RULES", "default.warning=false");  // remarks of the platform plugin
  process.setProcessEnvironment(environment);
  process.start(ZRQRYBLD_DESIGNER, arguments);
  if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
    ADD_FAILURE() << "it did not end by itself: " << arguments.join(' ').toStdString();
    process.kill();
    process.waitForFinished();
    return {-1, {}, {}};
  }
  return {process.exitCode(), process.readAllStandardOutput().toStdString(),
          process.readAllStandardError().toStdString()};
}

QStringList Lines(const std::string& text) {
  return QString::fromStdString(ReplaceAll(text, "\r\n", "\n")).split('\n', Qt::SkipEmptyParts);
}

QStringList Sample(const QStringList& more) { return QStringList{"--db", ZRQRYBLD_SAMPLE_DB} + more; }

TEST(DesignerCommandLine, PrintsTheStatement) {
  std::set<std::string> dialects;
  for (const test::Record& record : test::ReadRecords("designer_statements.txt")) {
    SCOPED_TRACE(record.place);
    QStringList arguments = Sample({"--syntax", QString::fromStdString(record["syntax"]), "--print-sql"});
    for (const QString& table : Lines(record["tables"])) arguments << "--add-table" << table;
    for (const QString& tick : Lines(record["ticks"])) arguments << "--tick" << tick;
    const Outcome outcome = RunDesigner(arguments);
    EXPECT_EQ(outcome.output, ReplaceAll(record["statement"], "\r\n", "\n") + "\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    dialects.insert(UpperAscii(record["syntax"]));
  }
  EXPECT_EQ(dialects.size(), 5u) << "a dialect has no case";
}

TEST(DesignerCommandLine, TakesTheDatabaseAlsoWithoutItsOption) {
  const Outcome outcome = RunDesigner({ZRQRYBLD_SAMPLE_DB, "--add-table", "Categories", "--print-sql"});
  EXPECT_EQ(outcome.output, "SELECT \nFROM \n\tCategories\n");
  EXPECT_EQ(outcome.status, 0);
}

TEST(DesignerCommandLine, WrongOptionsEndItWithTwoAndOtherFailuresWithOne) {
  const QTemporaryDir files;
  const QString text = QDir(files.path()).filePath("text.db");
  QFile file(text);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("This is a text, and longer than the head of a database file would be: so it is read as one and refused.");
  file.close();

  for (const test::Row& row : test::ReadRows("command_line_failures.txt")) {
    SCOPED_TRACE(row.place + " " + row[0]);
    QStringList arguments;
    for (const std::string_view given : Split(row[0], " ")) {
      arguments << QString::fromStdString(ReplaceAll(
          ReplaceAll(ReplaceAll(given, "{folder}", files.path().toStdString()), "{sample}", ZRQRYBLD_SAMPLE_DB), "~",
          " "));
    }
    const Outcome outcome = RunDesigner(arguments);
    EXPECT_EQ(std::to_string(outcome.status), row[1]);
    EXPECT_EQ(outcome.output, "") << "a failure must leave nothing for the next program to read";
    EXPECT_NE(outcome.errors.find(ReplaceAll(row[2], "{folder}", files.path().toStdString())), std::string::npos)
        << outcome.errors;
    EXPECT_TRUE(outcome.errors.starts_with("zrqrybld-designer: ")) << outcome.errors;
  }
}

TEST(DesignerCommandLine, WhatOnlyPrintsNeedsNoDisplay) {
  for (const char* option : {"--help", "--version", "--list-dialects", "--list-keys"}) {
    const Outcome outcome = RunDesigner({option}, "xcb-without-a-server");
    EXPECT_EQ(outcome.status, 0) << option << ": " << outcome.errors;
    EXPECT_GT(outcome.output.size(), 10u) << option;
  }
}

TEST(DesignerCommandLine, TheDocumentedKeysAreThose) {
  QFile documented(ZRQRYBLD_DOCS "/keys.md");
  ASSERT_TRUE(documented.open(QIODevice::ReadOnly));
  EXPECT_EQ(documented.readAll().toStdString(), RunDesigner({"--list-keys"}).output)
      << "write it anew: zrqrybld-designer --list-keys > docs/keys.md";
}

TEST(DesignerCommandLine, SavesAPictureOfTheWindow) {
  const QTemporaryDir files;
  const auto picture = [&](const char* name, const QStringList& more) {
    const QString path = QDir(files.path()).filePath(name);
    const Outcome outcome = RunDesigner(Sample(more + QStringList{"--screenshot", path}));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.read(8) == QByteArray("\x89PNG\r\n\x1a\n")) << name;
    return QImage(path);
  };
  const QStringList query{"--add-table", "Customers", "--add-table", "Order"};
  const QImage tables = picture("tables.png", query);
  const QImage ticked = picture("ticked.png", query + QStringList{"--tick", "Customers.City"});
  EXPECT_GE(tables.width(), 800);
  EXPECT_GE(tables.height(), 600);
  EXPECT_NE(ticked, tables) << "the tick is not to be seen";
  // The text fits while the pane for it does: the picture shows a laid-out window, not one that is about to be.
  EXPECT_EQ(picture("again.png", query), tables) << "the same query gives another picture";
}

TEST(DesignerCommandLine, BeginsWithTheStatementOfAFile) {
  QTemporaryDir folder;
  const QString path = folder.filePath("query.sql");
  const auto outcomeOf = [&](const QByteArray& sql) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(sql) == sql.size());
    file.close();
    return RunDesigner(Sample({"--parse-sql", path, "--print-sql"}));
  };
  EXPECT_NE(outcomeOf("select City c from Customers").output.find("Customers.City AS c"), std::string::npos);
  const Outcome refused = outcomeOf("select Citty from Customers");
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.errors.find("Line 1, column 8"), std::string::npos) << refused.errors;
}

TEST(DesignerCommandLine, TellsItsOptionsAndItsVersion) {
  const Outcome help = RunDesigner({"--help"});
  EXPECT_EQ(help.status, 0);
  for (const char* option :
       {"--db", "--add-table", "--tick", "--syntax", "--parse-sql", "--print-sql", "--screenshot"}) {
    EXPECT_NE(help.output.find(option), std::string::npos) << option;
  }
  const Outcome version = RunDesigner({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_NE(version.output.find(ZRQRYBLD_VERSION), std::string::npos) << version.output;
}

}  // namespace
}  // namespace zrqrybld
