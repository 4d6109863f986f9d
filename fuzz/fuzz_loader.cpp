// Any bytes in a designer without a source: what is read is written as a statement that is read and written the same.
#include <cstdlib>

#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace {

using namespace zrqrybld;

Ref<qbQueryBuilder> MakeDesigner() {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  return hub;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr SQLSyntaxEnum kSyntaxes[] = {SQLSyntaxMSSQL, SQLSyntaxOracle, SQLSyntaxAccess, SQLSyntaxGeneric};
  if (size == 0) return 0;
  const Ref<qbQueryBuilder> hub = MakeDesigner();
  qbSQLPane& pane = *hub->SQLPane();
  pane.SetSQLSyntax(kSyntaxes[data[0] % 4]);
  try {
    pane.ParseSQLStatement(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  } catch (const Error&) {
    return 0;
  }
  const std::string written = pane.SQLStatement();
  pane.ParseSQLStatement(written);
  if (pane.SQLStatement() != written) std::abort();
  return 0;
}
