#pragma once

#include <chrono>
#include <cstdint>

namespace quillon::bench {

struct Load {
  int clients = 1;  // one connection each, sending the next upload when the last one is answered
  std::chrono::milliseconds duration{3000};
};

struct LoadResult {
  std::int64_t acknowledged = 0;
  std::int64_t failed = 0;
  double seconds = 0;
};

// Sends uploads of one decision each, for random subjects. One thread.
LoadResult uploadTo(int port, const Load& load);

}  // namespace quillon::bench
