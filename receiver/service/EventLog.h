#pragma once

#include <boost/json/object.hpp>
#include <mutex>
#include <string_view>

namespace quillon::receiver {

// Writes one JSON object per line to standard output: time, event and figures. Values must not identify a person:
// numbers, fixed words, names of tenants and applications only. Thread-safe.
class EventLog {
 public:
  void write(std::string_view event, boost::json::object figures = {});

 private:
  std::mutex mutex_;
};

}  // namespace quillon::receiver
