// One process's view of the shared store and files, with fault injection.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/FileSystem.h"
#include "platform/memory/MemoryStore.h"

namespace quillon::sim {

// The fault of an upcoming change.
struct StorageFault {
  unsigned changesBefore = 0;  // number of changes that still succeed
  bool endsProcess = false;    // otherwise the change fails and the process continues
  bool takesEffect = false;    // only if endsProcess
};

class Storage {
 public:
  // `endProcess` is called from within the change during which the process dies.
  Storage(const MemoryStore& shared, std::shared_ptr<FileSystem> files, std::function<void()> endProcess);
  // Work that outlives the process sees a failing store and failing files.
  ~Storage();
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  void failStore(StorageFault fault) { storeFault_ = fault; }
  void failFiles(StorageFault fault) { fileFault_ = fault; }
  void heal();
  // The process has ended: all further changes are ignored.
  void end();

  [[nodiscard]] const std::shared_ptr<MemoryStore>& store() const { return store_; }
  [[nodiscard]] std::shared_ptr<FileSystem> files() const;
  // The number of failed changes since the process began.
  [[nodiscard]] unsigned failures() const { return failures_; }

 private:
  class Files;

  MemoryFault meet(std::optional<StorageFault>& fault);

  const std::shared_ptr<Storage*> present_ = std::make_shared<Storage*>(this);
  const std::function<void()> endProcess_;
  std::shared_ptr<MemoryStore> store_;
  std::shared_ptr<Files> files_;
  std::optional<StorageFault> storeFault_;
  std::optional<StorageFault> fileFault_;
  unsigned failures_ = 0;
};

}  // namespace quillon::sim
