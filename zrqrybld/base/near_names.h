// NearestName: which of many names somebody may have meant who has written one that does not exist.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

/// Takes the names that exist, one after the other, in time of their lengths alone.
class NearestName {
 public:
  explicit NearestName(std::string_view written);

  /// One that exists. Of those that are equally near, the first counts.
  void Offer(std::string_view name);

  /// The nearest: one or two letters away, fewer for short names, without regard to case; "" when none is.
  const std::string& Best() const { return best_; }
  /// The sentence, and which name may have been meant.
  Phrase With(Phrase sentence) const;

 private:
  std::string written_;  // folded
  std::size_t distance_;
  std::string best_;
};

}  // namespace zrqrybld
