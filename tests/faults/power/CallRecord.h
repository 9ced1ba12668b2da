// Records this process's changes to a folder and its files, in order.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
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
// Whether the path exists; called before a call that may create it.
bool isThere(const char* path);
std::uint64_t inodeOf(const char* path);
std::uint64_t positionOf(int file);

void created(const char* path);
void linked(const char* path);
void renamed(const char* from, const char* to);
void removed(const char* path, std::uint64_t inode);
void wrote(int file, const void* bytes, std::size_t count, std::uint64_t at);
void resized(int file, std::uint64_t size);
void synced(int file);

}  // namespace record

}  // namespace quillon::test
