// An upload as stored.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::receiver {

enum class Kind { purpose, permission };
enum class Status { granted, declined, notDetermined, withdrawn };

[[nodiscard]] std::string_view textOf(Kind kind) noexcept;
[[nodiscard]] std::string_view textOf(Status status) noexcept;
[[nodiscard]] std::optional<Status> statusOf(std::string_view text) noexcept;

struct Decision {
  Kind kind = Kind::purpose;
  std::string item;            // a purpose's number or a permission's name
  std::int64_t decidedAt = 0;  // seconds since 1970-01-01T00:00:00Z, by the device's clock
  Status status = Status::notDetermined;
  bool isEssential = false;
  std::string cause = {};  // "signal" when a privacy signal decided; else empty

  bool operator==(const Decision&) const = default;
};

// One request from a device.
struct Upload {
  std::string tenant = {};  // of the token
  std::string application = {};
  std::string subject = {};
  std::string device = {};
  bool isImplicit = false;
  bool isTest = false;
  std::int64_t version = 0;     // of the answered configuration
  std::string compliance = {};  // the banner's compliance type, such as "opt-in"
  std::string advertisingId = {};
  std::string sdkVersion = {};   // empty when unknown
  std::string place = {};        // location set by the proxy, or empty
  std::string historyHead = {};  // digest of the newest entry of the device's history, or empty
  std::int64_t receivedAt = 0;   // seconds since 1970-01-01T00:00:00Z
  std::vector<Decision> decisions = {};

  bool operator==(const Upload&) const = default;
};

}  // namespace quillon::receiver
