// Any bytes: an error has its place in the text; what is read prints as a statement that is read and prints the same.
#include <cstdlib>

#include "tests/print_statement.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/query_outline.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zrqrybld;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string printed;
  try {
    OutlineQuery(text, AllDialects()[size % AllDialects().size()]);
    printed = test::PrintStatement(ParseSelect(text, {.openParenthesesInFrom = size % 2 == 0}));
  } catch (const SyntaxError& error) {
    if (!error.Offset() || *error.Offset() > size || error.Message().empty()) std::abort();
    return 0;
  }
  if (test::PrintStatement(ParseSelect(printed)) != printed) std::abort();
  return 0;
}
