// Faults of this process's system calls on the files of one folder.
#pragma once

#include <filesystem>

namespace quillon::test {

enum class Effect {
  kill,         // the process is killed instead of the call
  failing,      // the call fails with EIO
  full,         // this and all later calls that need disk space fail with ENOSPC; others are not counted
  interrupted,  // the call fails with EINTR
  shortened,    // the write takes half of its bytes; other calls are not counted
};

// Starts counting calls on the folder and its files in all threads, and strikes call `number`, from 1. Calls that
// cannot usefully fail, such as close, are exempt.
void breakCalls(const std::filesystem::path& folder, Effect effect, int number);
// Ends the fault. True when it has struck.
bool restoreCalls();

}  // namespace quillon::test
