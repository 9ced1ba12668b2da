// Faults of the system calls by which this process works on the files of one folder.
#pragma once

#include <filesystem>

namespace quillon::test {

enum class Effect {
  kill,           // the process dies in place of the call
  failing,        // the call fails with EIO
  full,           // the call and all later ones that need room on the disk fail with ENOSPC; others are not counted
  noDescriptors,  // the call and all later ones that open a file fail with EMFILE; others are not counted
  interrupted,    // the call fails with EINTR
  shortened,      // the write takes half of its bytes; other calls are not counted
};

// From now on calls on the folder and the files in it are counted, in all threads, and the one of that number, counted
// from 1, is struck. Left alone is what cannot usefully fail, such as close.
void breakCalls(const std::filesystem::path& folder, Effect effect, int number);
// Ends that. True when the fault has struck.
bool restoreCalls();

}  // namespace quillon::test
