// What other processes of the application decide.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "core/ConsentSDK/Foundation.h"

namespace quillon {

// Thread-safe. Knows which consents the listeners of this process have heard of, and tells them of the others.
class OtherProcesses {
 public:
  // What it calls; all must outlive it.
  struct Services : Foundation {
    std::function<void()> changed;  // in the background, after the listeners were told
  };
  explicit OtherProcesses(Services services) : s_(std::move(services)) {}

  // Begins to observe the store; a second call does nothing.
  void begin();
  void close();

  // This process has decided.
  void note(const std::vector<Decision>& decisions);

 private:
  void compare();
  void compareIfDifferent();
  // How a consent came about that is new to this process.
  Decision decisionOn(const DecisionSubject& subject, std::optional<ConsentStatus> from,
                      std::optional<ConsentStatus> to, const HistoryPage& history) const;

  const Services s_;
  std::mutex mutex_;  // guards the members below; never held while anything else is called
  bool isObserving_ = false;
  // Nothing where the listeners were told that a consent was removed.
  std::map<DecisionSubject, std::optional<ConsentStatus>> told_;
  std::unique_ptr<SuiteSubscription> subscription_;
};

}  // namespace quillon
