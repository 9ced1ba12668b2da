// The servers of a device: configuration, location and uploads.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/HttpSession.h"
#include "quillon/Testing.h"

namespace quillon::testing {

// Thread-safe.
class DeviceServers {
 public:
  using Script = std::function<std::optional<Response>(const Request&)>;

  static constexpr const char* address = "https://device.test/";

  void setConfiguration(std::string document);
  void setLocation(std::string answer);
  void setReachable(bool isReachable);
  void setScript(Script script);
  std::vector<Request> requests() const;
  std::vector<std::string> uploads() const;

  std::expected<HttpResponse, TransportError> exchange(const HttpRequest& request);

 private:
  Response ownAnswer(const Request& request) const;

  mutable std::mutex mutex_;  // guards the members below
  std::optional<std::string> configuration_;
  std::optional<std::string> location_;
  bool isReachable_ = true;
  Script script_;
  std::vector<Request> requests_;
};

}  // namespace quillon::testing
