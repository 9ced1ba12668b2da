#include "platform/memory/MemoryStore.h"

#include <utility>

#include "platform/parts/MemoryContent.h"

namespace quillon {

// Thread-safe.
struct MemoryStore::Contents {
  using Holder = std::shared_ptr<const MemorySuite::Process>;

  std::mutex mutex;
  std::map<std::string, std::shared_ptr<MemorySuite::Content>, std::less<>> suites;
  std::map<std::string, std::pair<Holder, const Turn*>, std::less<>> turns;
};

class MemoryStore::Turn : public StoreLock {
 public:
  Turn(std::shared_ptr<Contents> contents, std::string name) : contents_(std::move(contents)), name_(std::move(name)) {}
  ~Turn() override {
    std::lock_guard lock(contents_->mutex);
    const auto held = contents_->turns.find(name_);
    if (held != contents_->turns.end() && held->second.second == this) contents_->turns.erase(held);
  }

 private:
  const std::shared_ptr<Contents> contents_;
  const std::string name_;
};

MemoryStore::MemoryStore(Fault fault) : MemoryStore(std::make_shared<Contents>(), std::move(fault)) {}

MemoryStore::MemoryStore(std::shared_ptr<Contents> contents, Fault fault)
    : contents_(std::move(contents)), process_(std::make_shared<MemorySuite::Process>()) {
  process_->fault = std::move(fault);
}

MemoryStore::~MemoryStore() {
  end();
}

std::shared_ptr<MemoryStore> MemoryStore::another(Fault fault) const {
  return std::shared_ptr<MemoryStore>(new MemoryStore(contents_, std::move(fault)));
}

void MemoryStore::end() {
  process_->hasEnded = true;
  std::lock_guard lock(contents_->mutex);
  std::erase_if(contents_->turns, [this](const auto& turn) { return turn.second.first == process_; });
}

std::expected<std::shared_ptr<KeyValueSuite>, std::string> MemoryStore::open(std::string_view name, Report) {
  std::lock_guard lock(mutex_);
  auto& suite = suites_[std::string(name)];
  if (!suite) {
    std::lock_guard shared(contents_->mutex);
    auto& content = contents_->suites[std::string(name)];
    if (!content) content = std::make_shared<MemorySuite::Content>();
    suite = std::make_shared<MemorySuite>(content, process_);
  }
  return suite;
}

std::unique_ptr<StoreLock> MemoryStore::tryLock(std::string_view name) {
  auto turn = std::make_unique<Turn>(contents_, std::string(name));
  std::unique_lock lock(contents_->mutex);
  const bool taken =
      !process_->hasEnded && contents_->turns.try_emplace(std::string(name), process_, turn.get()).second;
  lock.unlock();  // an unused turn locks in its destructor
  return taken ? std::move(turn) : nullptr;
}

std::shared_ptr<KeyValueSuite> MemoryStore::standardDefaults() {
  return standardDefaults_;
}

}  // namespace quillon
