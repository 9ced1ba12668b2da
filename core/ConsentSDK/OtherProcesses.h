// Reports decisions of the application's other processes.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "core/ConsentSDK/Foundation.h"

namespace quillon {

// Thread-safe. Tracks the consents reported to this process's listeners, and reports the differences.
class OtherProcesses {
 public:
  // Collaborators; all must outlive it.
  struct Services : Foundation {
    std::function<void()> changed;  // called in the background, after the listeners
  };
  explicit OtherProcesses(Services services) : s_(std::move(services)) {}

  // Starts observing the store; a second call does nothing.
  void begin();
  void close();

  // Records decisions made by this process as reported.
  void addOwn(const std::vector<Decision>& decisions);

 private:
  void compare();
  void compareIfDifferent();
  // The decision behind a consent that is new to this process.
  Decision decisionOn(const DecisionSubject& subject, std::optional<ConsentStatus> from,
                      std::optional<ConsentStatus> to, const HistoryPage& history) const;

  const Services s_;
  std::mutex mutex_;  // guards the members below; never held while anything else is called
  bool isObserving_ = false;
  // nullopt: reported to listeners as removed.
  std::map<DecisionSubject, std::optional<ConsentStatus>> reported_;
  std::unique_ptr<SuiteSubscription> subscription_;
};

}  // namespace quillon
