// What the SDK told the headless host, until it is asked for.
#pragma once

#include <boost/json/array.hpp>
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

}  // namespace quillon::tools
