#pragma once

#include <cstddef>
#include <fstream>

namespace tme {

/// Bytes of this process that lie in memory; 0 where the system does not say.
inline std::size_t ResidentBytes() {
  constexpr std::size_t kPage = 4096;
  std::ifstream statm("/proc/self/statm");
  std::size_t size = 0;
  std::size_t resident = 0;
  statm >> size >> resident;
  return resident * kPage;
}

}  // namespace tme
