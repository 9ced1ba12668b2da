// The store and the files as one process has them: shared with the others, and sometimes out of order.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/FileSystem.h"
#include "platform/memory/MemoryStore.h"

namespace quillon::sim {

// What becomes of one change to come.
struct StorageFault {
  unsigned changesBefore = 0;  // that still succeed
  bool endsProcess = false;    // else the change fails and the process goes on
  bool takesEffect = false;    // only where the process ends
};

class Storage {
 public:
  // The function ends the process, within the change that it must not survive.
  Storage(const MemoryStore& shared, std::shared_ptr<FileSystem> files, std::function<void()> endProcess);
  // What is still under way in the process may outlive it, and finds store and files broken.
  ~Storage();
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  void failStore(StorageFault fault) { storeFault_ = fault; }
  void failFiles(StorageFault fault) { fileFault_ = fault; }
  void heal();
  // The process has ended: nothing changes any more.
  void end();

  [[nodiscard]] const std::shared_ptr<MemoryStore>& store() const { return store_; }
  [[nodiscard]] std::shared_ptr<FileSystem> files();
  // How many changes have failed since this process began.
  [[nodiscard]] unsigned storeFailures() const { return storeFailures_; }
  [[nodiscard]] unsigned fileFailures() const { return fileFailures_; }

 private:
  class Files;

  MemoryFault faultOfUpdate();
  MemoryFault faultOfFileChange();
  MemoryFault meet(std::optional<StorageFault>& fault, unsigned& failures);

  const std::shared_ptr<Storage*> present_ = std::make_shared<Storage*>(this);
  const std::shared_ptr<FileSystem> shared_;
  const std::function<void()> endProcess_;
  std::shared_ptr<MemoryStore> store_;
  std::shared_ptr<Files> files_;
  std::optional<StorageFault> storeFault_;
  std::optional<StorageFault> fileFault_;
  unsigned storeFailures_ = 0;
  unsigned fileFailures_ = 0;
  bool hasEnded_ = false;
};

}  // namespace quillon::sim
