// Reading statements: into a tree and back to text, and into the designer and back.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/designer.h"
#include "sql/statement_parser.h"
#include "sql/statement_printer.h"

namespace zrqrybld::bench {
namespace {

// 150 and 900 bytes, as people write them.
constexpr std::string_view kShort =
    "SELECT c.name, o.total FROM customers c INNER JOIN orders o ON c.id = o.customer_id WHERE o.total > 100 AND "
    "c.city = 'Berlin' ORDER BY o.total DESC";
constexpr std::string_view kLong =
    "SELECT DISTINCT c.id, c.name AS customer, c.city, c.country, o.id AS order_id, o.order_date, o.ship_date, "
    "p.name AS product, p.price, l.quantity, l.quantity * p.price * (1 - l.discount) AS amount, s.name AS supplier "
    "FROM customers AS c INNER JOIN orders AS o ON o.customer_id = c.id INNER JOIN lines AS l ON l.order_id = o.id "
    "INNER JOIN products AS p ON p.id = l.product_id LEFT JOIN suppliers AS s ON s.id = p.supplier_id WHERE "
    "(c.country = 'Germany' OR c.country = 'Austria' OR c.country IN ('Switzerland', 'France')) AND o.order_date "
    "BETWEEN '2020-01-01' AND '2020-12-31' AND p.price >= 10.5 AND p.name LIKE 'A%' AND l.discount IS NOT NULL AND "
    "NOT (l.quantity < 5 AND p.price > 1000) AND EXISTS (SELECT 1 FROM stock k WHERE k.product_id = p.id AND "
    "k.amount > 0) AND CASE WHEN o.ship_date IS NULL THEN 0 ELSE 1 END = 1 ORDER BY c.country, c.city DESC, "
    "o.order_date, amount DESC";

void Parse(benchmark::State& state, std::string_view sql) {
  for (auto _ : state) benchmark::DoNotOptimize(ParseSelect(sql).items);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sql.size()));
}
BENCHMARK_CAPTURE(Parse, short, kShort);
BENCHMARK_CAPTURE(Parse, long, kLong);

void ParseAndPrint(benchmark::State& state, std::string_view sql) {
  for (auto _ : state) benchmark::DoNotOptimize(PrintStatement(ParseSelect(sql)).data());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sql.size()));
}
BENCHMARK_CAPTURE(ParseAndPrint, short, kShort);
BENCHMARK_CAPTURE(ParseAndPrint, long, kLong);

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
  for (auto _ : state) benchmark::DoNotOptimize(PrintStatement(ParseSelect(sql)).data());
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
