// Any bytes as a query file: what is loaded saves as a file that loads and saves the same.
#include <cstdlib>

#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace {

using namespace zrqrybld;

Ref<qbQueryBuilder> MakeDesigner(bool withItems) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  hub->SetConnectOnLoad(false);
  hub->SetSaveLoadEntityItems(withItems);
  return hub;
}

std::string Saved(qbQueryBuilder& hub) { return hub.SaveQueryToText(); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const bool withItems = size % 2 == 0;
  const Ref<qbQueryBuilder> hub = MakeDesigner(withItems);
  try {
    if (!hub->LoadQuery(std::string(reinterpret_cast<const char*>(data), size), true)) std::abort();
  } catch (const Error& error) {
    if (error.Number() != ErrorLoadingQuery || hub->state() != InfoDone) std::abort();
    return 0;
  }
  const std::string text = Saved(*hub);
  const Ref<qbQueryBuilder> second = MakeDesigner(withItems);
  second->LoadQuery(text, true);
  if (Saved(*second) != text) std::abort();
  return 0;
}
