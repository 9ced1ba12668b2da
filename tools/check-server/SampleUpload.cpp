#include "tools/check-server/SampleUpload.h"

#include <boost/json.hpp>
#include <chrono>

#include "core/Json/Codec.h"
#include "core/Network/Responses.h"

namespace quillon::tools {

namespace json = boost::json;

std::int64_t secondsNow() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

json::object samplePurpose(std::int64_t id, const char* status, std::int64_t timestamp) {
  return {{"purpose_id", id}, {"consent_status", status}, {"timestamp", timestamp}, {"is_essential", false}};
}

json::object sampleUpload(const CheckedServers& servers, const std::string& subject) {
  const std::int64_t now = secondsNow();
  return {{"uuid", servers.subject + "-" + subject},
          {"app_uuid", servers.application},
          {"device", "quillon-consent check-server"},
          {"implicit_consent", false},
          {"version", 1},
          {"purpose_consents", json::array{samplePurpose(1, "granted", now)}},
          {"permissions",
           json::array{json::object{
               {"permission", "NSCameraUsageDescription"}, {"consent_status", "declined"}, {"timestamp", now}}}},
          {"is_test_mode", true},
          {"ad_id", ""},
          {"platform", "ios"},
          {"banner_info", "opt-in"},
          {"sdk_version", "0.0.0"}};
}

Probe::Request uploadRequest(const CheckedServers& servers, std::string body) {
  return {.method = "POST",
          .url = servers.uploadUrl(),
          .headers = {{"Content-Type", "application/json"}, {"Accept", "*/*"}, {"X-Auth-Token", servers.token}},
          .body = std::move(body)};
}

Probe::Request uploadRequest(const CheckedServers& servers, const json::object& upload) {
  return uploadRequest(servers, json::serialize(upload));
}

bool isAccepted(const Probe::Answer& answer) {
  if (answer.status < 200 || answer.status > 299) return false;
  const auto response = decode<GenericResponse>(answer.body);
  return response && response->status == 0;
}

Seen accepted(const Probe::Answer& answer) {
  if (isAccepted(answer)) return {true, answer.summary() + ", status 0"};
  if (answer.status < 200 || answer.status > 299) return {false, answer.summary()};
  const auto response = decode<GenericResponse>(answer.body);
  return {false, answer.summary() + (response ? ", status " + std::to_string(response->status)
                                              : ", a body that a device cannot read: " + response.error())};
}

Seen refused(const Probe::Answer& answer) {
  const Seen seen = accepted(answer);
  return {!seen.isRight && answer.status >= 200, seen.what};
}

}  // namespace quillon::tools
