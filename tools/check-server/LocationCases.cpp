#include "core/Json/Codec.h"
#include "core/Network/Responses.h"
#include "tools/check-server/Case.h"

namespace quillon::tools {
namespace {

using enum Case::Gravity;

Probe::Answer location(Probe& probe, const CheckedServers& servers, const HttpHeaders& headers = {}) {
  return probe.send({.url = servers.locationUrl(), .headers = headers});
}

Seen readable(Probe& probe, const CheckedServers& servers) {
  const auto answer = location(probe, servers);
  if (answer.status == 404) return {true, "404"};
  const auto decoded = decode<CurrentLocationResponse>(answer.body);
  return {answer.status == 200 && decoded,
          answer.summary() + (decoded ? ", a location" : ", " + decoded.error().substr(0, 80))};
}

Seen withoutTag(Probe& probe, const CheckedServers& servers) {
  const std::string tag = location(probe, servers).header("ETag");
  return {tag.empty(), tag.empty() ? "none" : tag};
}

Seen ignoresTag(Probe& probe, const CheckedServers& servers) {
  const auto configuration = probe.send({.url = servers.configurationUrl("config.json")});
  const auto answer = location(probe, servers, {{"If-None-Match", configuration.header("ETag")}});
  return {answer.status == 200 || answer.status == 404, answer.summary()};
}

}  // namespace

std::vector<Case> locationCases() {
  return {
      {"location", untidy, "200 and a location, or 404", &readable},
      {"location: entity tag", untidy, "none: a device has one slot for all answers", &withoutTag},
      {"location: If-None-Match", untidy, "as without it: the tag is the configuration's", &ignoresTag},
  };
}

}  // namespace quillon::tools
