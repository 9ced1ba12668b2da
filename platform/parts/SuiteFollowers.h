// The followers of a suite's content.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/KeyValueSuite.h"

namespace quillon {

// Not thread-safe: used under the lock that guards the content. Handles may outlive it.
class SuiteFollowers {
 public:
  [[nodiscard]] std::shared_ptr<void> add(KeyValueSuite::Follower follower, const SuiteEntries& entries) {
    const auto added = std::make_shared<KeyValueSuite::Follower>(std::move(follower));
    std::erase_if(followers_, [](const auto& earlier) { return earlier.expired(); });
    followers_.push_back(added);
    (*added)(entries, nullptr);
    return added;
  }

  void tell(const SuiteEntries& entries, const SuiteChanges* changes) const {
    for (const auto& each : followers_) {
      if (const auto follower = each.lock()) (*follower)(entries, changes);
    }
  }

 private:
  std::vector<std::weak_ptr<KeyValueSuite::Follower>> followers_;
};

}  // namespace quillon
