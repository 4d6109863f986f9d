#include "zrqrybld/base/near_names.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_base.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kLongest = 64;  // bytes

// How many letters are missing, too many, wrong or exchanged with their neighbours. Both are at most `kLongest` long.
std::size_t Distance(std::string_view a, std::string_view b) {
  using Row = std::array<std::size_t, kLongest + 1>;
  Row beforeLast{}, last{}, row{};
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeLast = std::exchange(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = a[i - 1] == b[j - 1];
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
      const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (exchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[b.size()];
}

}  // namespace

NearestName::NearestName(std::string_view written)
    : written_(FoldCase(written)),
      distance_(written_.size() <= 2   ? 1
                : written_.size() <= 5 ? 2
                                       : 3) {}

void NearestName::Offer(std::string_view name) {
  if (written_.size() > kLongest || name.size() > kLongest || distance_ == 0) return;
  const std::string folded = FoldCase(name);
  const std::size_t longer = std::max(folded.size(), written_.size());
  if (folded.size() > kLongest || longer - std::min(folded.size(), written_.size()) >= distance_) return;
  const std::size_t distance = Distance(written_, folded);
  if (distance >= distance_) return;
  distance_ = distance;
  best_ = name;
}

Phrase NearestName::With(Phrase sentence) const {
  return best_.empty() ? sentence : Phrase(text::DidYouMean, std::move(sentence), best_);
}

}  // namespace zrqrybld
