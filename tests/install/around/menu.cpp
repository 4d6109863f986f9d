#include <zrqrybld/hub/query_builder.h>

using namespace zrqrybld;

void Print(const qbDiagramPane& pane);

void Example(const Ref<qbDiagramPane>& pane) {
  // EXAMPLE
}
