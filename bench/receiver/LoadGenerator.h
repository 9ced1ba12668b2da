#pragma once

#include <chrono>
#include <cstdint>

namespace quillon::bench {

struct Load {
  int clients = 1;  // each with a connection of its own, that sends the next upload when it has the answer to the last
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
