// The calls by which this process changes one folder and the files in it, in their order.
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
  std::string name;         // of the file, within the folder; of a rename, the new one; of a mark, what it says
  std::string before = {};  // of a rename
  std::uint64_t at = 0;     // of a write; of a resize, the new size
  std::string bytes = {};   // of a write
};

// From now on the calls of all threads on that folder are recorded. Files in it lie on a file system that gives no
// inode number twice.
void recordCalls(const std::filesystem::path& folder);
// Puts a remark among the calls: what this process, or its user, knows from here on.
void markCall(std::string text);
// Ends the recording.
std::vector<DiskCall> recordedCalls();

// For those who stand between the process and the system: what has just been done.
namespace record {

bool isOn();
// Whether the path leads to something; asked before a call that may create it.
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
