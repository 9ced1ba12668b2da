#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <string>

#include "tools/check-server/Case.h"

namespace quillon::tools {

// A device's upload for a unique subject, with one purpose and one permission.
[[nodiscard]] boost::json::object sampleUpload(const CheckedServers& servers, const std::string& subject);
[[nodiscard]] boost::json::object samplePurpose(std::int64_t id, const char* status, std::int64_t timestamp);
[[nodiscard]] std::int64_t secondsNow();

// A device's request with this body.
[[nodiscard]] Probe::Request uploadRequest(const CheckedServers& servers, std::string body);
[[nodiscard]] Probe::Request uploadRequest(const CheckedServers& servers, const boost::json::object& upload);

// Whether a device takes the response as accepted: 2xx, readable, status 0.
[[nodiscard]] bool isAccepted(const Probe::Answer& answer);
// Passes if accepted; otherwise reports the response.
[[nodiscard]] Seen accepted(const Probe::Answer& answer);
// Passes if refused: HTTP status of at least 400, or a status in the body that keeps the decision pending.
[[nodiscard]] Seen refused(const Probe::Answer& answer);

}  // namespace quillon::tools
