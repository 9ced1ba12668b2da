#include "platform/memory/MemoryStore.h"

#include <exception>

namespace quillon {

std::shared_ptr<const SuiteEntries> MemorySuite::snapshot() const {
  std::lock_guard lock(snapshotMutex_);
  return snapshot_;
}

std::expected<void, std::string> MemorySuite::update(const Edit& edit) {
  try {
    std::lock_guard turn(writersMutex_);
    auto entries = *snapshot();
    for (auto& [key, value] : edit(entries)) {
      if (key.empty()) return std::unexpected("a key is empty");
      if (value) {
        entries.insert_or_assign(key, value.value());
      } else {
        entries.erase(key);
      }
    }
    auto next = std::make_shared<const SuiteEntries>(std::move(entries));
    std::lock_guard lock(snapshotMutex_);
    snapshot_.swap(next);
    return {};
  } catch (const std::exception& error) {
    return std::unexpected(error.what());
  } catch (...) {
    return std::unexpected("unknown exception");
  }
}

std::shared_ptr<KeyValueSuite> MemoryStore::open(std::string_view name, Report) {
  std::lock_guard lock(mutex_);
  auto& suite = suites_[std::string(name)];
  if (!suite) suite = std::make_shared<MemorySuite>();
  return suite;
}

std::shared_ptr<KeyValueSuite> MemoryStore::standardDefaults() {
  return standardDefaults_;
}

}  // namespace quillon
