// Reading statements: into a tree and back to text, and into the designer and back.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/designer.h"
#include "bench/statements.h"
#include "tests/print_statement.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"
#include "zrqrybld/sql/statement_parser.h"

namespace zrqrybld::bench {
namespace {

void Parse(benchmark::State& state, std::string_view sql) {
  for (auto _ : state) benchmark::DoNotOptimize(ParseSelect(sql).items);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sql.size()));
}
BENCHMARK_CAPTURE(Parse, short, kShortStatement);
BENCHMARK_CAPTURE(Parse, long, kLongStatement);

void ParseAndPrint(benchmark::State& state, std::string_view sql) {
  for (auto _ : state) benchmark::DoNotOptimize(test::PrintStatement(ParseSelect(sql)).data());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sql.size()));
}
BENCHMARK_CAPTURE(ParseAndPrint, short, kShortStatement);
BENCHMARK_CAPTURE(ParseAndPrint, long, kLongStatement);

// --- By size ---

std::string Conditions(std::int64_t count) {
  std::string sql = "SELECT T0.C0 FROM T0 WHERE T0.C1 = 0";
  for (std::int64_t i = 1; i < count; ++i) sql += " AND T0.C" + std::to_string(i % 10) + " > " + std::to_string(i);
  return sql;
}

std::string Columns(std::int64_t count) {
  std::string sql = "SELECT T0.C0";
  for (std::int64_t i = 1; i < count; ++i) sql += ", T0.C" + std::to_string(i % 10) + " AS A" + std::to_string(i);
  return sql + " FROM T0";
}

// Nested, each join in parentheses.
std::string Joins(std::int64_t count) {
  std::string sql = "SELECT T0.C0 FROM " + std::string(static_cast<std::size_t>(count - 1), '(') + "T0";
  for (std::int64_t i = 1; i <= count; ++i) {
    const std::string table = "T" + std::to_string(i);
    sql += " INNER JOIN " + table + " ON " + table + ".C1 = T" + std::to_string(i - 1) + ".C0";
    if (i != count) sql += ")";
  }
  return sql;
}

void ParseBySize(benchmark::State& state, std::string (*make)(std::int64_t)) {
  const std::string sql = make(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(test::PrintStatement(ParseSelect(sql)).data());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sql.size()));
  state.SetComplexityN(state.range(0));
}
BENCHMARK_CAPTURE(ParseBySize, conditions, Conditions)->RangeMultiplier(10)->Range(10, 10000)->Complexity();
BENCHMARK_CAPTURE(ParseBySize, columns, Columns)->RangeMultiplier(10)->Range(10, 10000)->Complexity();
BENCHMARK_CAPTURE(ParseBySize, joins, Joins)->Arg(10)->Arg(100)->Arg(1000)->Complexity();

// Through the public controls: read, made the designer's query, and written anew. The tables are in the diagram
// already.
void Load(benchmark::State& state, std::string (*make)(std::int64_t)) {
  const std::string sql = make(state.range(0));
  const Ref<qbQueryBuilder> hub = MakeDesigner(10);
  hub->SQLPane()->SetSQLSyntax(SQLSyntaxMSSQL);
  hub->SQLPane()->ParseSQLStatement(sql);
  for (auto _ : state) hub->SQLPane()->ParseSQLStatement(sql);
  state.SetComplexityN(state.range(0));
}
BENCHMARK_CAPTURE(Load, conditions, Conditions)->RangeMultiplier(10)->Range(10, 10000)->Complexity();
BENCHMARK_CAPTURE(Load, columns, Columns)->RangeMultiplier(10)->Range(10, 10000)->Complexity();
BENCHMARK_CAPTURE(Load, joins, Joins)->Arg(10)->Arg(100)->Arg(1000)->Complexity();

}  // namespace
}  // namespace zrqrybld::bench
