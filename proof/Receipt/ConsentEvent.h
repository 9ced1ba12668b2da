// What an entry of the history is in the life of a consent.
#pragma once

#include <boost/json/object.hpp>
#include <string_view>

namespace quillon::proof {

struct ConsentEvent {
  std::string_view state;  // such as "dpv:ConsentGiven"
  bool isByUser = false;   // as an answer, or by a privacy signal
};

// Only what the user answered is a consent: a default is none, whatever it allows.
[[nodiscard]] ConsentEvent eventOf(const boost::json::object& entry);

}  // namespace quillon::proof
