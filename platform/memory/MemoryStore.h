// A store that forgets: for hosts without a file system, simulations and tests.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include "platform/KeyValueSuite.h"
#include "platform/parts/SuiteObservers.h"

namespace quillon {

// What becomes of an update: it succeeds, fails and changes nothing, or takes effect and fails all the same, as when
// its process ends before it hears of it.
enum class MemoryFault { none, before, after };

// Lives in memory. An update fails only when its edit throws, names the empty key or appends a text that is too long,
// when a fault is asked for, or when the process that it stands for has ended.
class MemorySuite final : public KeyValueSuite {
 public:
  // What a suite holds, whoever looks at it.
  class Content;
  // One process among those that share a content.
  struct Process {
    std::function<MemoryFault()> fault;  // asked at each update; thread-safe
    std::atomic<bool> hasEnded{false};
  };

  // With a content of its own.
  MemorySuite();
  MemorySuite(std::shared_ptr<Content> content, std::shared_ptr<Process> process);

  std::shared_ptr<const SuiteEntries> snapshot() const override;
  std::expected<void, std::string> update(const Edit& edit) override;
  std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const override;
  std::expected<SuiteReading, std::string> read() const override;
  std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed) override;

 private:
  const std::shared_ptr<Content> content_;
  const std::shared_ptr<Process> process_;
  const std::shared_ptr<SuiteObservers> observers_;
};

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
