#include "command/options.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

struct VerbRow {
  std::string_view name;
  Verb verb;
  bool needsSource;
  std::size_t leastFiles;
  std::size_t mostFiles;
};
constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);
constexpr VerbRow kVerbs[] = {
    {"help", Verb::Help, false, 0, kAnyNumber},
    {"--help", Verb::Help, false, 0, kAnyNumber},
    {"-h", Verb::Help, false, 0, kAnyNumber},
    {"--version", Verb::Version, false, 0, 0},
    {"tables", Verb::Tables, true, 0, 0},
    {"translate", Verb::Translate, true, 1, kAnyNumber},
    {"show", Verb::Show, false, 1, 1},
    {"picture", Verb::Picture, false, 1, 1},
    {"check", Verb::Check, false, 1, kAnyNumber},
};

// The names of the dialects whose statements can be read, or of those that can only be written, or of all.
std::string DialectNames(bool readable, bool writable) {
  std::string names;
  for (const Dialect& dialect : AllDialects()) {
    if (!(dialect.canBeParsed ? readable : writable)) continue;
    names += (names.empty() ? "" : ", ") + std::string(dialect.name);
  }
  return names;
}

SQLSyntaxEnum ReadDialect(std::string_view name) {
  if (const Dialect* dialect = FindDialect(name)) return dialect->syntax;
  throw UsageError("there is no dialect \"" + std::string(name) + "\"; there are " + DialectNames(true, true));
}

}  // namespace

CommandOptions ReadOptions(std::span<const std::string> arguments) {
  if (arguments.empty()) throw UsageError("a command is missing");
  const auto* row = std::ranges::find(kVerbs, std::string_view(arguments[0]), &VerbRow::name);
  if (row == std::end(kVerbs)) throw UsageError("there is no command \"" + arguments[0] + "\"");
  CommandOptions options;
  options.verb = row->verb;
  bool onlyFiles = false;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    const auto value = [&] {
      if (i + 1 >= arguments.size()) throw UsageError(std::string(argument) + " wants a value");
      return arguments[++i];
    };
    if (onlyFiles || argument == "-" || !argument.starts_with('-')) {
      options.files.emplace_back(argument);
    } else if (argument == "--") {
      onlyFiles = true;
    } else if (argument == "--help" || argument == "-h") {
      options.verb = Verb::Help;
      return options;
    } else if (argument == "--db") {
      options.connectionString = "Provider=SQLite;Data Source=" + ConnectionString::QuoteValue(value());
    } else if (argument == "--connect") {
      options.connectionString = value();
    } else if (argument == "--from") {
      options.from = ReadDialect(value());
    } else if (argument == "--to") {
      options.to = ReadDialect(value());
    } else if (argument == "-o" || argument == "--output") {
      options.output = value();
    } else if (argument == "--json") {
      options.json = true;
    } else {
      throw UsageError("there is no option " + std::string(argument));
    }
  }
  if (options.verb == Verb::Help) return options;
  const std::string name(row->name);
  if (row->needsSource && options.connectionString.empty()) throw UsageError(name + " needs --db or --connect");
  if (options.files.size() < row->leastFiles) throw UsageError(name + " needs a file");
  if (options.files.size() > row->mostFiles) throw UsageError(name + " takes fewer files");
  return options;
}

std::string HelpText() {
  return ReplaceAll(ReplaceAll(R"(Usage: zrqb COMMAND [OPTION...] [FILE...]

  tables     lists the tables and views of a data source
  translate  reads SELECT statements and writes them in another dialect, a statement a file
  show       tells a query file's statement, tables and parameters
  picture    draws the diagram of a query file as SVG
  check      reads statements and query files and tells errors as file:line:column: message

  --db FILE          the data source: an SQLite database
  --connect STRING   the data source: a connection string
  --from DIALECT     of the statements read, Generic unless told:
                     @readable
  --to DIALECT       of the statements written: also @written
  -o, --output FILE  writes there instead of to the standard output; of translate with several files, a folder
  --json             writes JSON
  --version, --help

FILE "-" is the standard input. Show, picture and check work without a data source; a query file then shows the columns that it
holds itself, and check looks at the form of statements only.

Translate, show and check tell what may surprise about a statement as file: remark: message.

Exit status: 0 when all went well, 1 when something could not be read or written, 2 when the command line makes no sense, 3 when
all went well and there are remarks.
)",
                               "@readable", DialectNames(true, false)),
                    "@written", DialectNames(false, true));
}

}  // namespace zrqrybld
