// A store in memory: for hosts without a file system, simulations and tests.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "platform/KeyValueSuite.h"
#include "platform/parts/MemorySuite.h"

namespace quillon {

// Opens every name; content lives as long as a store over it or one of their suites. Never reports and starts no
// thread: observers are called on the thread of the update, after it, in the order in which the suites were opened.
class MemoryStore final : public KeyValueStore {
 public:
  using Fault = std::function<MemoryFault()>;

  explicit MemoryStore(Fault fault = {});
  // As end(): simulates the death of the process.
  ~MemoryStore() override;
  MemoryStore(const MemoryStore&) = delete;
  MemoryStore& operator=(const MemoryStore&) = delete;

  // A store with the same content, as seen by another process.
  [[nodiscard]] std::shared_ptr<MemoryStore> another(Fault fault = {}) const;

  // Simulates the death of this store's process: its turns are released, its updates fail and its observers are not
  // called.
  void end();

  std::expected<std::shared_ptr<KeyValueSuite>, std::string> open(std::string_view name, Report report) override;
  std::unique_ptr<StoreLock> tryLock(std::string_view name) override;
  std::shared_ptr<KeyValueSuite> standardDefaults() override;

 private:
  struct Contents;
  class Turn;

  MemoryStore(std::shared_ptr<Contents> contents, Fault fault);

  const std::shared_ptr<Contents> contents_;
  const std::shared_ptr<MemorySuite::Process> process_;
  const std::shared_ptr<KeyValueSuite> standardDefaults_ = std::make_shared<MemorySuite>();
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<KeyValueSuite>, std::less<>> suites_;
};

}  // namespace quillon
