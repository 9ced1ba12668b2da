// A temporary folder, removed with its test.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace quillon::test {

class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    auto name = (parent / "quillon-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder in " + parent.string());
    path_ = std::filesystem::canonical(name);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  // In memory, for tests that create thousands of files and need no durability.
  static std::filesystem::path fastParent() {
    auto usual = std::filesystem::temp_directory_path();
    return usual.string().starts_with("/dev/shm/") || !std::filesystem::is_directory("/dev/shm") ? usual : "/dev/shm";
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

inline std::string fileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void setFileBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// The mode, as chmod takes it.
inline unsigned modeOf(const std::filesystem::path& path) {
  return static_cast<unsigned>(std::filesystem::symlink_status(path).permissions());
}

}  // namespace quillon::test
