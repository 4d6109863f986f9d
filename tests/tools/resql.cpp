// resql: statements as the designer writes them anew, for measuring over many statements.
//
//   resql DATABASE OUT FILE...
//
// Each FILE holds one statement. It is parsed in a designer on the SQLite database, in the four dialects that can be
// parsed, and the text that the designer writes then goes to OUT/<dialect>/<name of FILE>. One line a file and dialect
// on the standard output: the dialect, the file, and "ok" or the reason why it was refused.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"

namespace {

using namespace zrqrybld;

Ref<qbQueryBuilder> OpenDesigner(const std::string& database) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  hub->GetToolkit().Providers()->Register(std::make_shared<SqliteProvider>());
  if (!database.empty()) hub->Connect("Provider=SQLite;Data Source=" + database);
  if (hub->LastError()) throw Error(*hub->LastError());
  return hub;
}

std::string Rewritten(qbSQLPane& pane, const std::string& sql, std::string& reason) {
  try {
    pane.ParseSQLStatement(sql);
    return pane.SQLStatement();
  } catch (const std::exception& error) {
    const std::string text = error.what();
    reason = text.substr(text.find('\n') + 1);
    return {};
  }
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 4) {
    std::cerr << "usage: resql DATABASE OUT FILE...\n";
    return EXIT_FAILURE;
  }
  for (const Dialect& dialect : AllDialects()) {
    if (!dialect.canBeParsed) continue;
    const std::filesystem::path folder = std::filesystem::path(argv[2]) / dialect.name;
    std::filesystem::create_directories(folder);
    const Ref<qbQueryBuilder> hub = OpenDesigner(argv[1]);
    hub->SQLPane()->SetSQLSyntax(dialect.syntax);
    for (int i = 3; i < argc; ++i) {
      const std::filesystem::path path = argv[i];
      std::ifstream stream(path, std::ios::binary);
      const std::string sql{std::istreambuf_iterator<char>(stream), {}};
      std::string reason = "ok";
      const std::string text = Rewritten(*hub->SQLPane(), sql, reason);
      if (reason == "ok") std::ofstream(folder / path.filename(), std::ios::binary) << ReplaceAll(text, "\r\n", "\n");
      std::cout << dialect.name << '\t' << path.filename().string() << '\t' << ReplaceAll(reason, "\n", " ") << '\n';
    }
  }
} catch (const std::exception& error) {
  std::cerr << "resql: " << error.what() << '\n';
  return EXIT_FAILURE;
}
