// Maps a history entry to an event in a consent's life cycle.
#pragma once

#include <boost/json/object.hpp>
#include <string_view>

namespace quillon::proof {

struct ConsentEvent {
  std::string_view state;  // such as "dpv:ConsentGiven"
  bool isByUser = false;   // by an answer or a privacy signal, not by default
};

// Only an answer of the user is a consent; a default never is, whatever it allows.
[[nodiscard]] ConsentEvent eventOf(const boost::json::object& entry);

}  // namespace quillon::proof
