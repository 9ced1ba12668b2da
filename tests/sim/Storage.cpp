#include "tests/sim/Storage.h"

#include <utility>

namespace quillon::sim {

// May outlive Storage, if the SDK does; after close() it fails, as the files of an ended process.
class Storage::Files : public FileSystem {
 public:
  Files(std::shared_ptr<FileSystem> shared, Storage& storage) : shared_(std::move(shared)), storage_(&storage) {}

  void close() { storage_ = nullptr; }

  std::optional<std::filesystem::path> applicationSupportDirectory() const override {
    return shared_->applicationSupportDirectory();
  }
  std::optional<FileStamp> stamp(const std::filesystem::path& file) const override { return shared_->stamp(file); }
  Result<std::string> read(const std::filesystem::path& file, std::size_t maximumBytes) const override {
    return shared_->read(file, maximumBytes);
  }
  Result<void> createDirectories(const std::filesystem::path& folder) override {
    return change([&] { return shared_->createDirectories(folder); });
  }
  Result<void> write(const std::filesystem::path& file, std::string_view bytes) override {
    return change([&] { return shared_->write(file, bytes); });
  }
  Result<void> move(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return change([&] { return shared_->move(from, to); });
  }
  Result<void> remove(const std::filesystem::path& file) override {
    return change([&] { return shared_->remove(file); });
  }

 private:
  template <class Change>
  Result<void> change(Change make) {
    const MemoryFault fault = storage_ ? storage_->meet(storage_->fileFault_) : MemoryFault::before;
    if (fault != MemoryFault::before) {
      auto made = make();
      if (fault == MemoryFault::none) return made;
    }
    return std::unexpected("the disk is broken");
  }

  const std::shared_ptr<FileSystem> shared_;
  Storage* storage_;
};

Storage::Storage(const MemoryStore& shared, std::shared_ptr<FileSystem> files, std::function<void()> endProcess)
    : endProcess_(std::move(endProcess)),
      store_(shared.another(
          [present = present_] { return *present ? (*present)->meet((*present)->storeFault_) : MemoryFault::before; })),
      files_(std::make_shared<Files>(std::move(files), *this)) {}

Storage::~Storage() {
  *present_ = nullptr;
  files_->close();
}

void Storage::heal() {
  storeFault_.reset();
  fileFault_.reset();
}

void Storage::end() {
  store_->end();
  files_->close();
}

std::shared_ptr<FileSystem> Storage::files() const {
  return files_;
}

MemoryFault Storage::meet(std::optional<StorageFault>& fault) {
  if (!fault) return MemoryFault::none;
  if (fault->changesBefore > 0) {
    --fault->changesBefore;
    return MemoryFault::none;
  }
  const StorageFault met = *std::exchange(fault, std::nullopt);
  ++failures_;
  if (met.endsProcess) endProcess_();
  return met.endsProcess && met.takesEffect ? MemoryFault::after : MemoryFault::before;
}

}  // namespace quillon::sim
