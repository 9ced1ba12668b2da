#include "bench/AllocationCount.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace quillon::bench {
namespace {

thread_local bool counting = false;
thread_local std::size_t inUse = 0;
thread_local std::size_t most = 0;

}  // namespace

AllocationCount::AllocationCount() {
  inUse = 0;
  most = 0;
  counting = true;
}
AllocationCount::~AllocationCount() {
  counting = false;
}
std::size_t AllocationCount::kept() const {
  return inUse;
}
std::size_t AllocationCount::peak() const {
  return most;
}

}  // namespace quillon::bench

void* operator new(std::size_t size) {
  using namespace quillon::bench;
  void* const memory = std::malloc(std::max<std::size_t>(size, 1));
  if (!memory) throw std::bad_alloc();
  if (counting) {
    inUse += malloc_usable_size(memory);
    most = std::max(most, inUse);
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  using namespace quillon::bench;
  if (memory && counting) inUse -= malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}
