// Memory taken from operator new.
#pragma once

#include <cstddef>

namespace quillon::bench {

/// Counts allocations and deallocations on its thread from its construction on, whatever the SDK's own threads do. One
/// instance at a time.
class AllocationCount {
 public:
  AllocationCount();
  ~AllocationCount();
  AllocationCount(const AllocationCount&) = delete;
  AllocationCount& operator=(const AllocationCount&) = delete;

  /// Bytes in use now, and the peak.
  [[nodiscard]] std::size_t kept() const;
  [[nodiscard]] std::size_t peak() const;
};

}  // namespace quillon::bench
