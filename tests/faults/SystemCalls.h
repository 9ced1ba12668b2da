// Faults and a record of this process's system calls on the files of one folder.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon::test {

// Starts counting calls on the folder and its files in all threads; call `number`, from 1, fails with the error. With
// ENOSPC only calls that need disk space count, and all later ones fail, too. Calls that cannot usefully fail, such as
// close, are exempt.
void breakCalls(const std::filesystem::path& folder, int error, int number);
// Ends the fault. True when it has struck.
bool restoreCalls();

// A change to the folder or its files.
struct DiskCall {
  enum class Kind { create, link, rename, remove, write, resize, syncFile, syncFolder, mark };

  Kind kind;
  std::uint64_t file = 0;   // the number of its inode
  std::string name;         // of the file in the folder; the new one of a rename; the text of a mark
  std::string before = {};  // of a rename
  std::uint64_t at = 0;     // of a write; of a resize, the new size
  std::string bytes = {};   // of a write
};

// Starts recording all threads' changes, in order. The folder's file system must never reuse inode numbers.
void recordCalls(const std::filesystem::path& folder);
// Adds a mark: what this process, or its user, knows from here on.
void markCall(std::string text);
// Stops recording and returns the calls.
std::vector<DiskCall> recordedCalls();

// The number of the inode; 0: nothing is there.
std::uint64_t inodeOf(const char* path);

}  // namespace quillon::test
