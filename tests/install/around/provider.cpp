#include <zrqrybld/hub/query_builder.h>
#include <zrqrybld/platform/headless.h>
#include <iostream>
#include <memory>

void Example() {
  // EXAMPLE
}
