#include "tools/workbench/Traffic.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <string>

#include "core/Json/Codec.h"
#include "core/Text/LocalizedTexts.h"
#include "core/Text/LogText.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;

constexpr std::size_t mostExchanges = 500;
constexpr std::size_t mostConsents = 200;  // per upload
constexpr std::size_t longestTarget = 500;

// The purpose names of an application, from its live documents and drafts.
std::map<std::int64_t, std::string> purposeNames(const DraftFolder& folder, std::string_view application) {
  std::map<std::int64_t, std::string> names;
  for (const auto& entry : folder.list()) {
    if (entry.name.application != application) continue;
    for (const auto channel : {Channel::live, Channel::draft}) {
      const auto stored = folder.read(entry.name, channel);
      if (!stored || !*stored) continue;
      const auto configuration = decode<MainConfiguration>((*stored)->text);
      if (!configuration || !configuration->purposes) continue;
      for (const Purpose& purpose : *configuration->purposes) {
        if (purpose.purposeId && purpose.purposeName) {
          names.try_emplace(*purpose.purposeId, textIn("en", *purpose.purposeName));
        }
      }
    }
  }
  return names;
}

json::object decoded(const PostConsentsRequest& upload, const DraftFolder& folder) {
  const auto names = purposeNames(folder, upload.appUUID);
  json::array purposes;
  for (const auto& consent : upload.purposeConsents) {
    if (purposes.size() == mostConsents) break;
    const auto name = names.find(consent.purposeID);
    json::object purpose{{"id", consent.purposeID},
                         {"status", rawValue(consent.consentStatus)},
                         {"isEssential", consent.isEssential},
                         {"time", consent.timestamp}};
    if (name != names.end()) purpose["name"] = name->second;
    if (consent.cause) purpose["cause"] = rawValue(*consent.cause);
    purposes.push_back(std::move(purpose));
  }
  json::array permissions;
  for (const auto& consent : upload.permissions) {
    if (permissions.size() == mostConsents) break;
    permissions.push_back({{"name", consent.permission.rawValue()}, {"status", rawValue(consent.consentStatus)}});
  }
  return {{"application", upload.appUUID},
          {"subject", upload.uuid},
          {"isImplicit", upload.implicitConsent},
          {"version", upload.version},
          {"banner", upload.bannerInfo},
          {"isTest", upload.testingMode},
          {"consents", upload.purposeConsents.size() + upload.permissions.size()},
          {"purposes", std::move(purposes)},
          {"permissions", std::move(permissions)}};
}

// The server's reason for a refusal, taken from the status, since the body may be compressed. Empty if it did not
// refuse, or failed as configured.
std::string whyRefused(const httplib::Response& response, const std::string& uploadError) {
  if (response.status == 400) return escapedForLog(uploadError);
  if (response.status == 401) return "the access token is missing, or none of this application's";
  return response.status == 404 ? "there is no such file" : "";
}

}  // namespace

void Traffic::add(const httplib::Request& request, const httplib::Response& response) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  json::object exchange{{"time", std::chrono::duration_cast<std::chrono::milliseconds>(now).count()},
                        {"method", escapedForLog(request.method)},
                        {"target", escapedForLog(request.target.substr(0, longestTarget))},
                        {"status", response.status}};
  std::string uploadError;
  if (request.method == "POST") {
    const auto upload = decode<PostConsentsRequest>(request.body);
    if (upload) exchange["upload"] = decoded(*upload, folder_);
    if (!upload) uploadError = upload.error();
  }
  if (auto why = whyRefused(response, uploadError); !why.empty()) exchange["message"] = std::move(why);
  const std::lock_guard lock(mutex_);
  exchange["number"] = ++count_;
  exchanges_.push_back(std::move(exchange));
  if (exchanges_.size() > mostExchanges) exchanges_.pop_front();
}

json::array Traffic::after(std::int64_t number) const {
  const std::lock_guard lock(mutex_);
  json::array found;
  for (const auto& exchange : exchanges_) {
    if (exchange.at("number").get_int64() > number) found.push_back(exchange);
  }
  return found;
}

}  // namespace quillon::tools
