// Included first by every file with mutants: selects the active mutant at run time.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace quillon::mutants {

// QUILLON_MUTANT has the number of the active mutant; none by default. QUILLON_MUTANTS_REACHED names a file with one
// byte per mutant, shared by all processes of a check, in which reached mutants are marked.
struct Choice {
  Choice() noexcept {
    if (const char* number = std::getenv("QUILLON_MUTANT")) chosen = std::strtol(number, nullptr, 10);
    const char* file = std::getenv("QUILLON_MUTANTS_REACHED");
    const int descriptor = file ? ::open(file, O_RDWR | O_CLOEXEC) : -1;
    if (descriptor < 0) return;
    const auto size = ::lseek(descriptor, 0, SEEK_END);
    void* memory = ::mmap(nullptr, static_cast<std::size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (memory != MAP_FAILED) reached = static_cast<volatile char*>(memory);
    ::close(descriptor);
  }

  long chosen = -1;
  volatile char* reached = nullptr;
};

inline bool isAlive(long number) noexcept {
  static const Choice choice;
  if (choice.reached) choice.reached[number] = 1;
  return number == choice.chosen;
}

}  // namespace quillon::mutants
