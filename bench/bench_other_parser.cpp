// Reading and printing next to another parser, over the same statements in one run; built where that is installed.
#include <benchmark/benchmark.h>
#include <pg_query.h>

#include <chrono>
#include <stdexcept>

#include "bench/statements.h"
#include "tests/print_statement.h"
#include "zrqrybld/sql/statement_parser.h"

namespace zrqrybld::bench {
namespace {

void ReadAndPrintOurs(const std::string& sql) {
  benchmark::DoNotOptimize(test::PrintStatement(ParseSelect(sql)).data());
}

void ReadAndPrintTheirs(const std::string& sql) {
  const PgQueryProtobufParseResult tree = pg_query_parse_protobuf(sql.c_str());
  if (tree.error) throw std::runtime_error(tree.error->message);
  const PgQueryDeparseResult text = pg_query_deparse_protobuf(tree.parse_tree);
  benchmark::DoNotOptimize(text.query);
  pg_query_free_deparse_result(text);
  pg_query_free_protobuf_parse_result(tree);
}

template <class Work>
double Seconds(Work work, const std::string& sql) {
  const auto start = std::chrono::steady_clock::now();
  work(sql);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One after the other in turn, so that what else the machine does falls on both.
void BesideAnotherParser(benchmark::State& state, std::string_view text) {
  const std::string sql(text);
  double ours = 0;
  double theirs = 0;
  for (auto _ : state) {
    ours += Seconds(ReadAndPrintOurs, sql);
    theirs += Seconds(ReadAndPrintTheirs, sql);
  }
  const auto count = static_cast<double>(state.iterations());
  state.counters["ours_us"] = ours * 1e6 / count;
  state.counters["theirs_us"] = theirs * 1e6 / count;
  state.counters["ratio"] = theirs / ours;
}
BENCHMARK_CAPTURE(BesideAnotherParser, short, kShortStatement);
BENCHMARK_CAPTURE(BesideAnotherParser, long, kLongStatement);

}  // namespace
}  // namespace zrqrybld::bench
