#include <iostream>
#include <memory>
#include <zrqrybld/hub/query_builder.h>
#include <zrqrybld/platform/headless.h>

void Example() {
  // EXAMPLE
}
