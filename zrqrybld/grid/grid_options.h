// What a form stores of a grid control, and of its combo, with what a new one has.
#pragma once

#include "zrqrybld/platform/font.h"

namespace zrqrybld {

struct GridOptions {
  bool allowColumnResize = true;
  bool allowRowInsert = true;
  Font font;
  bool fillsWidth = false;  // this and those below are not stored
  bool rowKeysTakeCurrent = false;
  bool hasCellButtons = false;
};

struct ComboOptions {
  bool hideEdit = false;
};

}  // namespace zrqrybld
