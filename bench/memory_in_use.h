// What the process holds.
#pragma once

#include <unistd.h>

#include <fstream>

namespace zrqrybld::bench {

/// In millions of bytes.
inline double MemoryInUse() {
  std::ifstream file("/proc/self/statm");
  double pages = 0;
  file >> pages >> pages;
  return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

}  // namespace zrqrybld::bench
