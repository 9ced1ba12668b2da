// A suite that forgets: what a store in memory is made of, and what every store has for the standard defaults.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

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

}  // namespace quillon
