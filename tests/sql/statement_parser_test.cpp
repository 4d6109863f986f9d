#include "zrqrybld/sql/statement_parser.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include "tests/data_table.h"
#include "tests/print_statement.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

std::string Repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (; count > 0; --count) result += text;
  return result;
}

// The statement printed, or "! line:column message".
std::string Printed(std::string_view sql, const ParseOptions& options = {}) {
  try {
    return test::PrintStatement(ParseSelect(sql, options));
  } catch (const SyntaxError& error) {
    EXPECT_EQ(error.Number(), ErrorParsingText);
    EXPECT_LE(error.Offset().value_or(sql.size() + 1), sql.size());
    return "! " + std::to_string(error.Place().line) + ":" + std::to_string(error.Place().column) + " " +
           error.Message();
  }
}

// What is printed says the same: it prints as itself.
TEST(StatementParser, ReadsWhatPeopleWrite) {
  for (const test::Row& row : test::ReadRows("statements.txt")) {
    SCOPED_TRACE(row.place);
    const std::string printed = Printed(row[0]);
    EXPECT_EQ(printed, row[1]);
    if (printed.starts_with('!')) continue;
    EXPECT_EQ(Printed(printed), printed);
  }
}

TEST(StatementParser, ParenthesesInFromMayStayOpenWhereTheDialectLeavesThemSo) {
  const ParseOptions lenient{.openParenthesesInFrom = true};
  EXPECT_EQ(Printed("SELECT FROM ((A INNER JOIN B ON A.x = B.x), ((C, ((D WHERE A.y = 1", lenient),
            "SELECT FROM A INNER JOIN B ON A.x = B.x CROSS JOIN (C CROSS JOIN D) WHERE A.y = 1");
  EXPECT_EQ(Printed("SELECT FROM (A, (B INNER JOIN C ON B.x = C.x", lenient),
            "SELECT FROM A CROSS JOIN (B INNER JOIN C ON B.x = C.x)");
}

// What is long costs no depth; what is too deep is an error, not the end of the program.
TEST(StatementParser, LongChainsAndDeepNestingEndWell) {
  const std::string head = "SELECT a FROM t WHERE ";
  for (const char* more : {" AND a > 1", " OR a = 2", " || a", " + -a * (b)"}) {
    const std::string sql = head + "a = 0" + Repeated(more, 100'000);
    EXPECT_EQ(Printed(sql).size(), sql.size()) << more;
  }
  EXPECT_EQ(Printed(head + Repeated("(", 900) + "a" + Repeated(")", 900)).front(), 'S');
  std::string from = "SELECT a FROM " + Repeated("(", 3000) + "T";
  for (int i = 0; i < 3000; ++i) from += " INNER JOIN U ON x = y)";
  EXPECT_EQ(Printed(from), "SELECT a FROM T" + Repeated(" INNER JOIN U ON x = y", 3000));
  for (const std::string& deep :
       {head + Repeated("(", 100'000), head + Repeated("NOT ", 100'000) + "a", head + "a" + Repeated(" = a", 100'000),
        head + Repeated("f(", 100'000), head + Repeated("CASE WHEN ", 100'000),
        "SELECT a FROM " + Repeated("(", 100'000), "SELECT a FROM t" + Repeated(" LEFT JOIN t", 100'000)}) {
    EXPECT_EQ(Printed(deep).front(), '!');
  }
  const std::string arrays = head + Repeated("ARRAY[", 2'000) + "1" + Repeated("]", 2'000);
  EXPECT_EQ(Printed(arrays, {.hasSubscripts = true}).front(), '!');
}

// What a call takes there is several times as much, and twice as much by clang without optimization.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kLittleStack = std::size_t{4} << 20;
#elif defined(__clang__) && !defined(__OPTIMIZE__)
constexpr std::size_t kLittleStack = std::size_t{1} << 20;
#else
constexpr std::size_t kLittleStack = std::size_t{512} << 10;
#endif

// A host's thread may have little stack: what is deep is read in it or refused, and neither ends it.
TEST(StatementParser, AThreadWithLittleStackReadsWhatIsDeep) {
  pthread_attr_t little;
  pthread_attr_init(&little);
  pthread_attr_setstacksize(&little, kLittleStack);
  pthread_t thread;
  const auto work = [](void*) -> void* {
    const std::string head = "SELECT a FROM t WHERE ";
    EXPECT_EQ(Printed(head + Repeated("(", 990) + "a" + Repeated(" + 1)", 990)).front(), 'S');
    for (const char* deep : {"(1 + ", "f(", "CASE WHEN ", "NOT ", "a IN (1, ", "-(", "(a, "}) {
      for (const std::size_t levels : {100u, 240u, 990u}) {
        const char* const closing = deep[0] == 'C' ? " THEN 1 END" : deep[0] == 'N' ? "" : ")";
        Printed(head + Repeated(deep, levels) + "a" + Repeated(closing, levels));
      }
    }
    for (const std::size_t levels : {100u, 240u}) {
      Printed(head + Repeated("ARRAY[", levels) + "1" + Repeated("]", levels), {.hasSubscripts = true});
    }
    std::string from = "SELECT a FROM " + Repeated("(", 990) + "T";
    for (int i = 0; i < 990; ++i) from += " INNER JOIN U ON x = y)";
    EXPECT_EQ(Printed(from).front(), 'S');
    Printed("SELECT a FROM t" + Repeated(" LEFT JOIN (t", 990) + Repeated(" INNER JOIN u ON a = b) ON c = d", 990));
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &little, work, nullptr), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&little);
}

}  // namespace
}  // namespace zrqrybld
