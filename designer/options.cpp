#include "designer/options.h"

#include <QCommandLineParser>
#include <QTextStream>
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "designer/appearance.h"
#include "designer/key_list.h"
#include "designer/query_document.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

[[noreturn]] void EndWithUsageError(const QString& message) {
  QTextStream(stderr) << "zrqrybld-designer: " << message << "\nTry --help.\n";
  std::exit(2);
}

}  // namespace

bool OnlyPrints(std::span<const char* const> arguments) {
  constexpr std::string_view kPrinting[] = {"--help",          "-h",         "--help-all", "--version", "-v",
                                            "--list-dialects", "--list-keys"};
  return std::ranges::any_of(arguments, [&](const char* argument) {
    return std::ranges::find(kPrinting, std::string_view(argument)) != std::end(kPrinting);
  });
}

DesignerOptions ReadCommandLine(const QStringList& arguments) {
  QStringList dialects;
  for (const Dialect& dialect : AllDialects()) dialects += ToQString(dialect.name);

  QCommandLineParser parser;
  parser.setApplicationDescription("Designs SELECT statements over a database.");
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument("file", "The query (*.zrq) or the SQLite database to open.", "[file]");
  const QCommandLineOption database("db", "The SQLite database to open.", "FILE");
  const QCommandLineOption connect("connect", "Connect with this connection string, for instance DSN=name.", "STRING");
  const QCommandLineOption connectSaved("connect-saved", "Connect as the query file says, without a question.");
  const QCommandLineOption table("add-table", "Add a table or view; may be given several times.", "NAME");
  const QCommandLineOption tick("tick", "Tick a column; may be given several times.", "TABLE.COLUMN");
  const QCommandLineOption syntax("syntax", "Write the statement in this dialect: " + dialects.join(", ") + ".",
                                  "NAME");
  const QCommandLineOption listDialects("list-dialects", "Print the names of the dialects and end.");
  const QCommandLineOption listKeys("list-keys", "Print what the keys do and end.");
  const QCommandLineOption language("language", "Take the captions from this language file.", "FILE");
  QStringList themes;
  for (const AppearanceName& theme : AllAppearances()) themes += theme.key;
  const QCommandLineOption theme("theme", "Look like this: " + themes.join(", ") + ".", "NAME");
  const QCommandLineOption parse("parse-sql", "Begin with the query of the statement in this file.", "FILE");
  const QCommandLineOption save("save", "Save the query to this file and end.", "FILE");
  const QCommandLineOption print("print-sql", "Print the statement and end.");
  const QCommandLineOption screenshot("screenshot", "Save a picture of the window and end.", "FILE");
  const QCommandLineOption measure("measure-start", "Say how long it took until the window could be used, and end.");
  parser.addOptions({database, connect, connectSaved, table, tick, syntax, listDialects, listKeys, language, theme,
                     parse, save, print, screenshot, measure});
  if (!parser.parse(arguments)) EndWithUsageError(parser.errorText());
  if (parser.isSet("help")) parser.showHelp(0);
  if (parser.isSet("version")) parser.showVersion();
  if (parser.isSet(listDialects)) {
    QTextStream(stdout) << dialects.join('\n') << '\n';
    std::exit(0);
  }

  if (parser.isSet(listKeys)) {
    QTextStream(stdout) << KeyTables(EnglishTexts());
    std::exit(0);
  }

  const QStringList files = parser.positionalArguments();
  const bool hasQuery = !files.isEmpty() && QueryDocument::IsQueryFile(files.first());
  if (files.size() - (hasQuery ? 1 : 0) + parser.values(database).size() + parser.values(connect).size() > 1)
    EndWithUsageError("more than one database");
  DesignerOptions options;
  if (hasQuery) options.query = files.first();
  options.database = files.isEmpty() || hasQuery ? parser.value(database) : files.first();
  options.save = parser.value(save);
  options.connection = parser.value(connect);
  options.connectSaved = parser.isSet(connectSaved);
  options.tables = parser.values(table);
  options.ticks = parser.values(tick);
  options.language = parser.value(language);
  options.syntax = parser.value(syntax);
  options.theme = parser.value(theme);
  options.parseSql = parser.value(parse);
  options.printSql = parser.isSet(print);
  options.measureStart = parser.isSet(measure);
  options.screenshot = parser.value(screenshot);
  if (!options.syntax.isEmpty() && !FindDialect(ToUtf8(options.syntax))) {
    EndWithUsageError("there is no dialect \"" + options.syntax + "\"; known are " + dialects.join(", "));
  }
  if (!options.theme.isEmpty() && !themes.contains(options.theme)) {
    EndWithUsageError("there is no theme \"" + options.theme + "\"; known are " + themes.join(", "));
  }
  return options;
}

}  // namespace zrqrybld
