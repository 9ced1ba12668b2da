// A store that forgets: for hosts without a file system, simulations and tests.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "platform/KeyValueSuite.h"
#include "platform/parts/MemorySuite.h"

namespace quillon {

// Opens every name; the contents live as long as one of the stores over them or of their suites. Never reports, makes
// no thread: those who observe are called on the thread of the update that they are told of, once it is over, in the
// order in which the suites were opened.
class MemoryStore final : public KeyValueStore {
 public:
  using Fault = std::function<MemoryFault()>;

  explicit MemoryStore(Fault fault = {});
  // As if its process had died, as end().
  ~MemoryStore() override;
  MemoryStore(const MemoryStore&) = delete;
  MemoryStore& operator=(const MemoryStore&) = delete;

  // A store over the same content, as another process has it.
  [[nodiscard]] std::shared_ptr<MemoryStore> another(Fault fault = {}) const;

  // Kills the process that this store stands for: its turns are free, its updates fail and its observers hear nothing.
  void end();

  std::expected<std::shared_ptr<KeyValueSuite>, std::string> open(std::string_view name, Report report) override;
  std::unique_ptr<StoreTurn> tryTurn(std::string_view name) override;
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
