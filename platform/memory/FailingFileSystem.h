// A file system with injected faults.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/FileSystem.h"

namespace quillon {

// Forwards to another file system, unless `fault` returns a failure for a change, by its name ("write", "move",
// "remove", "createDirectories"). Thread-safe if the fault is.
class FailingFileSystem : public FileSystem {
 public:
  FailingFileSystem(std::shared_ptr<FileSystem> real, std::function<bool(std::string_view)> fault)
      : real_(std::move(real)), fault_(std::move(fault)) {}

  std::optional<std::filesystem::path> applicationSupportDirectory() const override {
    return real_->applicationSupportDirectory();
  }
  std::optional<FileStamp> stamp(const std::filesystem::path& file) const override { return real_->stamp(file); }
  Result<std::string> read(const std::filesystem::path& file, std::size_t maximumBytes) const override {
    return real_->read(file, maximumBytes);
  }
  Result<void> createDirectories(const std::filesystem::path& folder) override {
    return fault_("createDirectories") ? broken() : real_->createDirectories(folder);
  }
  Result<void> write(const std::filesystem::path& file, std::string_view bytes) override {
    return fault_("write") ? broken() : real_->write(file, bytes);
  }
  Result<void> move(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return fault_("move") ? broken() : real_->move(from, to);
  }
  Result<void> remove(const std::filesystem::path& file) override {
    return fault_("remove") ? broken() : real_->remove(file);
  }

 private:
  static Result<void> broken() { return std::unexpected("the disk is broken"); }

  const std::shared_ptr<FileSystem> real_;
  const std::function<bool(std::string_view)> fault_;
};

}  // namespace quillon
