#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "quillon/ConsentSDK.h"

namespace quillon::fleet {

// One device with one application that stays open, and a user of it who answers the banner once and changes his mind
// now and then. Store and files are the device's own; what it shares with the others is in the platform it is made of.
class FleetDevice {
 public:
  // What happens at which second of the simulation.
  struct Event {
    std::chrono::seconds at;
    std::function<void()> run;
  };

  // The same number behaves the same in every run.
  FleetDevice(std::uint32_t number, const Platform& shared, ConsentSDKOptions options);

  // The life of the device in the given time: a start within the first `startsWithin`, an answer to the banner within
  // the five minutes after it, and that many changes of one purpose at any time.
  std::vector<Event> plan(std::chrono::seconds startsWithin, std::chrono::seconds duration, int changes);

  const std::string& subject() const { return *options_.subjectId; }

  // What the device says at present about each purpose that the user has decided on.
  std::map<std::int64_t, ConsentStatus> statuses() const;
  // How often the user has decided on a purpose.
  std::int64_t decisionCount() const { return decisionCount_; }
  // Purposes whose status is not what the user chose last.
  std::int64_t contradictions() const;

 private:
  void answer();
  void changeMind();

  std::mt19937 random_;
  ConsentSDKOptions options_;
  ConsentSDK sdk_;
  std::map<std::int64_t, ConsentStatus> chosen_;  // after the answer, by set()
  std::vector<std::int64_t> purposes_;            // all that the answer was about
  std::vector<std::int64_t> free_;                // those that app tracking does not govern
  std::int64_t decisionCount_ = 0;
};

}  // namespace quillon::fleet
