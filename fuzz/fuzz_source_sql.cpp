// Any bytes as a statement for each kind of source in each of its modes: what is let through is let through again as it
// is sent, nothing in it stands elsewhere, and what must hold no ";" holds none.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/adapters/run/source_sql.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace {

using namespace zrqrybld;

struct Source {
  const char* name;
  std::optional<std::string_view> told;
};
constexpr Source kSources[] = {
    {"SQLite", {}},          {"PostgreSQL", {}}, {"PostgreSQL", "on"},         {"PostgreSQL", "off"},
    {"MariaDB", {}},         {"MariaDB", ""},    {"MariaDB", "ANSI_QUOTES"},   {"MariaDB", "NO_BACKSLASH_ESCAPES"},
    {"Oracle", {}},          {"MySQL", "MSSQL"}, {"Microsoft SQL Server", {}}, {"Somebody's", {}},
    {"Microsoft Access", {}}};

// False when the statement is refused, which has a number and a reason.
template <class Action>
bool Passes(Action action) {
  try {
    action();
    return true;
  } catch (const Error& error) {
    if (error.Number() == 0 || error.Description().empty()) std::abort();
    return false;
  }
}

void Send(std::string_view sql, const Source& source) {
  const SourceMode mode = ModeOf(source.name, source.told);
  Passes([&] { RequireSpoken(sql, DialectFor(SQLSyntaxMSSQL), source.name); });
  if (!Passes([&] { RequireOneSelect(sql, mode); })) return;

  const std::string sent = StatementToSend(sql, mode);
  if (sent.size() != sql.size()) std::abort();
  for (std::size_t i = 0; i < sent.size(); ++i) {
    if (sent[i] != sql[i] && sent[i] != ' ') std::abort();
  }
  if (!Passes([&] { RequireOneSelect(sent, mode); }) || StatementToSend(sent, mode) != sent) std::abort();
  std::string whole;
  if (mode.family == SourceFamily::PostgreSql && Passes([&] { whole = WithoutSemicolons(sent, mode); })) {
    if (whole.find(';') != std::string::npos) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const Source& source : kSources) Send({reinterpret_cast<const char*>(data), size}, source);
  return 0;
}
