// Functions over rows, made of pieces that the bytes choose: what is taken apart and put together again says the same,
// and can still be read as an expression.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "zrqrybld/base/error.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/window_call.h"

namespace {

constexpr std::string_view kPieces[] = {"SUM(",
                                        "x",
                                        ")",
                                        " OVER ",
                                        "(",
                                        "PARTITION BY ",
                                        ", ",
                                        "ORDER BY ",
                                        " DESC",
                                        " NULLS FIRST",
                                        " ROWS ",
                                        "BETWEEN ",
                                        "UNBOUNDED ",
                                        "PRECEDING ",
                                        " AND ",
                                        "CURRENT ROW ",
                                        "FOLLOWING ",
                                        "EXCLUDE TIES",
                                        "'a, b'",
                                        "/*c*/",
                                        "[q]",
                                        "\"w\"",
                                        "1 ",
                                        ".",
                                        " FILTER (WHERE y)",
                                        " IGNORE NULLS",
                                        " CASE WHEN a THEN b END ",
                                        "(SELECT 1)",
                                        "+",
                                        "rows ",
                                        "range ",
                                        "groups ",
                                        " WITHIN GROUP (ORDER BY z)",
                                        " RANGE ",
                                        " GROUPS ",
                                        " ASC",
                                        " NULLS LAST",
                                        "f(a, b)",
                                        " COLLATE d",
                                        "LAG(x, 1) OVER (",
                                        "partition ",
                                        "order ",
                                        " BY ",
                                        "NULLS ",
                                        "\xC3\xA4",
                                        "--e\r\n",
                                        "w ",
                                        "INTERVAL '1' DAY "};

bool IsExpression(std::string_view text) {
  using namespace zrqrybld;
  try {
    SyntaxArena arena(text.size() * 8 + 1024);
    ParseExpressionText(text, arena);
    return true;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zrqrybld;
  if (size == 0) return 0;
  std::string text;
  std::size_t place = 0;
  for (std::size_t i = 1; i < std::min<std::size_t>(size, 2000); ++i) {
    if (i == data[0]) place = text.size();
    text += kPieces[data[i] % std::size(kPieces)];
  }
  for (const std::size_t at : {place, text.size()}) {
    const std::optional<WindowCallPlace> found = FindWindowCall(text, at);
    if (!found) continue;
    if (found->offset > at || at > found->offset + found->length || found->offset + found->length > text.size())
      std::abort();
    const std::string written = WriteWindowCall(found->call);
    const std::optional<WindowCallPlace> again = FindWindowCall(written, written.size());
    if (!again || again->offset != 0 || again->length != written.size() || !(again->call == found->call)) std::abort();
    const std::string_view typed = std::string_view(text).substr(found->offset, found->length);
    if (IsExpression(typed) && !IsExpression(written)) std::abort();
    FaultOf(found->call, *FindDialect(at == place ? "SQLServer" : "PostgreSQL"));
  }
  FirstWindowCall(text);
  return 0;
}
