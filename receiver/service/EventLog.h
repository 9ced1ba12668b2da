#pragma once

#include <boost/json/object.hpp>
#include <mutex>
#include <string_view>

namespace quillon::receiver {

// One JSON object a line on standard output: the time, the event and its figures. What is given must name no person:
// numbers, our own words, names of tenants and applications. Thread-safe.
class EventLog {
 public:
  void write(std::string_view event, boost::json::object figures = {});

 private:
  std::mutex mutex_;
};

}  // namespace quillon::receiver
