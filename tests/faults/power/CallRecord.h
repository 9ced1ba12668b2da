// Records this process's changes to a folder and its files, in order.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::test {

struct DiskCall {
  enum class Kind { create, link, rename, remove, write, resize, syncFile, syncFolder, mark };

  Kind kind;
  std::uint64_t file = 0;   // the number of its inode
  std::string name;         // of the file in the folder; the new one of a rename; the text of a mark
  std::string before = {};  // of a rename
  std::uint64_t at = 0;     // of a write; of a resize, the new size
  std::string bytes = {};   // of a write
};

// Starts recording all threads' calls on the folder. Its file system must never reuse inode numbers.
void recordCalls(const std::filesystem::path& folder);
// Adds a mark: what this process, or its user, knows from here on.
void markCall(std::string text);
// Stops recording and returns the calls.
std::vector<DiskCall> recordedCalls();

// For the interposed functions: a call that was just made.
namespace record {

bool isOn();
std::uint64_t inodeOf(const char* path);  // 0: nothing is there
std::uint64_t positionOf(int file);

// Without a number, the one of what is at the path now.
void atPath(DiskCall::Kind kind, const char* path, std::uint64_t file = 0, const char* before = "");
// A sync is the folder's if that is what was synced.
void inFile(DiskCall::Kind kind, int file, std::uint64_t at = 0, std::string_view bytes = {});

}  // namespace record

}  // namespace quillon::test
