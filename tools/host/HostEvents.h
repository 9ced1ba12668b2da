// What the SDK told the headless host, until it is asked for.
#pragma once

#include <boost/json/array.hpp>
#include <cstdint>
#include <mutex>
#include <vector>

#include "quillon/ConsentSDK.h"

namespace quillon::tools {

// Thread-safe.
class HostEvents {
 public:
  // Begins to listen; later calls do nothing.
  void listenTo(ConsentSDK& sdk);

  // The events since the last call, in order.
  boost::json::array take();

 private:
  void add(boost::json::object event);

  std::mutex mutex_;  // guards events_
  boost::json::array events_;
  std::vector<Listening> listening_;
};

// Which gates were opened and shut, until it is asked for. Thread-safe.
class HostGates {
 public:
  // Begins to note what a gate on that purpose calls.
  void note(ConsentSDK& sdk, std::int64_t purposeId);

  // The calls since the last call, in order.
  boost::json::array take();

 private:
  void add(std::int64_t purposeId, const char* call);

  std::mutex mutex_;  // guards calls_
  boost::json::array calls_;
  std::vector<Listening> gates_;
};

}  // namespace quillon::tools
