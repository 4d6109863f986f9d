#include "zrqrybld/diagram/line_numbers.h"

#include "zrqrybld/diagram/entity_item.h"
#include "zrqrybld/diagram/join_line.h"

namespace zrqrybld {

LineEnds EndsOf(LineEnd one, LineEnd other) {
  if (other < one) std::swap(one, other);
  return {std::move(one), std::move(other)};
}

std::optional<LineEnds> RowsOf(const qbLine& line) {
  const Ref<qbRelationship> join = line.Relationship();
  const Ref<qbEntityItem> source = join ? join->SourceItem() : nullptr;
  const Ref<qbEntityItem> target = join ? join->TargetItem() : nullptr;
  if (!source || !target) return std::nullopt;
  return EndsOf({line.SourceBox().get(), source->Text()}, {line.TargetBox().get(), target->Text()});
}

void LineNumbers::GiveBack(const LineEnds& ends, int number) {
  const auto found = taken_.find(ends);
  found->second.GiveBack(number);
  if (found->second.AllFree()) taken_.erase(found);
}

}  // namespace zrqrybld
