// A service that brings statements from one dialect into another: example_service FROM TO reads a statement a line, and
// answers with a line of JSON for each, in their order. Two threads work, each with designers of its own.
#include <array>
#include <cstdio>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <zrqrybld/base/error.h>
#include <zrqrybld/hub/query_builder.h>

using namespace zrqrybld;

namespace {

std::string Quoted(const std::string& text) {
  std::string json = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') json += '\\';
    if (static_cast<unsigned char>(c) >= ' ') {
      json += c;
    } else if (json.back() != ' ') {
      json += ' ';  // line ends and TABs: it stays one line
    }
  }
  return json + '"';
}

// One designer for each statement: none meets what another has left.
std::string Answer(const std::string& statement, const Dialect& from, const Dialect& to) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  qbSQLPane& sql = *hub->SQLPane();
  try {
    sql.SetSQLSyntax(from.syntax);
    sql.ParseSQLStatement(statement);
    sql.SetSQLSyntax(to.syntax);
    sql.Refresh();
  } catch (const Error& error) {
    return "{\"error\": " + Quoted(error.Description()) + "}";
  }
  std::string remarks;
  for (const std::string& remark : sql.Remarks()) remarks += (remarks.empty() ? "" : ", ") + Quoted(remark);
  return "{\"sql\": " + Quoted(sql.SQLStatement()) + ", \"remarks\": [" + remarks + "]}";
}

}  // namespace

int main(int argc, char** argv) {
  const Dialect* from = argc == 3 ? FindDialect(argv[1]) : nullptr;
  const Dialect* to = argc == 3 ? FindDialect(argv[2]) : nullptr;
  if (!from || !to) {
    std::fprintf(stderr, "usage: example_service FROM TO\n");
    return 2;
  }
  std::array<std::string, 2> statements, answers;
  for (bool more = true; more;) {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < statements.size() && (more = bool(std::getline(std::cin, statements[i]))); ++i) {
      threads.emplace_back([&, i] { answers[i] = Answer(statements[i], *from, *to); });
    }
    const std::size_t asked = threads.size();
    threads.clear();  // waits for them
    for (std::size_t i = 0; i < asked; ++i) std::printf("%s\n", answers[i].c_str());
  }
}
