#include "zrqrybld/grid/checked_header.h"

namespace zrqrybld {
namespace {

// Cells that were never set do not count.
CheckState Count(const zrGridRows& rows, std::size_t column) {
  CheckState state = CheckState::None;
  for (const Ref<zrGridRow>& row : rows) {
    const Variant& value = row->ValueAt(column);
    if (value.IsEmpty()) continue;
    const CheckState cell = value == Variant(true) ? CheckState::On : CheckState::Off;
    if (state == CheckState::None) state = cell;
    if (state != cell) return CheckState::Mixed;
  }
  return state;
}

}  // namespace

CheckState CheckedHeader::StateOf(const zrGridRows& rows, std::size_t column) const {
  if (!counted_ || counted_->first != column) counted_ = {column, Count(rows, column)};
  return counted_->second;
}

}  // namespace zrqrybld
