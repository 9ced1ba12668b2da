// How much memory a piece of work takes from operator new.
#pragma once

#include <cstddef>

namespace quillon::bench {

/// Counts, on all threads, what is allocated and freed between its construction and the reading of its figures. One at
/// a time.
class AllocationCount {
 public:
  AllocationCount();
  ~AllocationCount();
  AllocationCount(const AllocationCount&) = delete;
  AllocationCount& operator=(const AllocationCount&) = delete;

  /// Bytes in use now, and the most that were in use at once.
  [[nodiscard]] std::size_t kept() const;
  [[nodiscard]] std::size_t peak() const;
};

}  // namespace quillon::bench
