// A suite in memory, for memory stores and for every store's standard defaults.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "platform/KeyValueSuite.h"
#include "platform/parts/SuiteObservers.h"

namespace quillon {

// The outcome of an update: it succeeds; fails without effect; or takes effect and fails, as when the process ends
// before the result arrives.
enum class MemoryFault { none, before, after };

// An update fails only when its edit throws, uses the empty key or appends too long a text, when a fault is injected,
// or when its process has ended.
class MemorySuite final : public KeyValueSuite {
 public:
  // A suite's content, shared by its processes.
  class Content;
  // One of the processes sharing a content.
  struct Process {
    std::function<MemoryFault()> fault;  // called at each update; thread-safe
    std::atomic<bool> hasEnded{false};
  };

  // With its own content.
  MemorySuite();
  MemorySuite(std::shared_ptr<Content> content, std::shared_ptr<Process> process);

  std::shared_ptr<const SuiteEntries> snapshot() const override;
  std::shared_ptr<void> follow(Follower follower) override;
  std::expected<void, std::string> update(const Edit& edit) override;
  std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const override;
  std::expected<SuiteReading, std::string> read(std::size_t count) const override;
  std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed) override;

 private:
  const std::shared_ptr<Content> content_;
  const std::shared_ptr<Process> process_;
  const std::shared_ptr<SuiteObservers> observers_;
};

}  // namespace quillon
