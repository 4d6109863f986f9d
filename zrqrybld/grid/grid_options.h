// What a form stores of a grid control, and of its combo, with what a new one has.
#pragma once

#include "zrqrybld/platform/font.h"

namespace zrqrybld {

struct GridOptions {
  bool allowColumnResize = true;
  bool allowRowInsert = true;
  Font font;
};

struct ComboOptions {
  bool hideEdit = false;
};

}  // namespace zrqrybld
