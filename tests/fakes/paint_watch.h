// Whether a control has asked to be painted when it looks different: a window keeps the old picture until then.
#pragma once

#include <cstddef>
#include <string>

#include "zrqrybld/platform/control.h"

namespace zrqrybld::test {

/// Watches a control on its headless surface.
class PaintWatch {
 public:
  explicit PaintWatch(const Control& control);
  /// Fails when the control looks different from the last time and has not asked since then.
  void Check();

 private:
  std::size_t Asked() const;
  std::string Picture() const;

  const Control& control_;
  std::size_t asked_;
  std::string picture_;
};

}  // namespace zrqrybld::test
