#include <zrqrybld/hub/query_builder.h>

using namespace zrqrybld;

void Example(const Ref<qbQueryBuilder>& hub) {
  // EXAMPLE
}
