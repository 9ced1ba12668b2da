// Collects the SDK's events until they are requested.
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
  // Starts listening; later calls do nothing.
  void listenTo(ConsentSDK& sdk);

  // The events since the last call, in order.
  boost::json::array take();

 private:
  void add(boost::json::object event);

  std::mutex mutex_;  // guards events_
  boost::json::array events_;
  std::vector<Listening> listening_;
};

// Collects the calls of gates until they are requested. Thread-safe.
class HostGates {
 public:
  // Adds a gate on that purpose.
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
