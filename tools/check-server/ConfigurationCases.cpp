#include <algorithm>

#include "core/Json/Codec.h"
#include "quillon/MainConfiguration.h"
#include "tools/check-server/Case.h"

namespace quillon::tools {
namespace {

using enum Case::Gravity;

constexpr std::size_t kMaxTagBytes = 4096;

Probe::Answer configuration(Probe& probe, const CheckedServers& servers, const std::string& tag = {},
                            const std::string& file = "config.json") {
  HttpHeaders headers{{"Content-Type", "application/json"}, {"Accept", "*/*"}};
  if (!tag.empty()) headers["If-None-Match"] = tag;
  return probe.send({.url = servers.configurationUrl(file), .headers = headers});
}

std::string tagOf(const Probe::Answer& answer) {
  return answer.header("ETag");
}

Seen status(const Probe::Answer& answer, std::initializer_list<int> right) {
  return {std::ranges::find(right, answer.status) != right.end(), answer.summary()};
}

Seen document(Probe& probe, const CheckedServers& servers) {
  const auto answer = configuration(probe, servers);
  if (answer.status != 200) return {false, answer.summary()};
  const auto decoded = decode<MainConfiguration>(answer.body);
  return {decoded.has_value(), decoded ? "200, a configuration" : "200, " + decoded.error()};
}

Seen contentType(Probe& probe, const CheckedServers& servers) {
  const std::string type = configuration(probe, servers).header("Content-Type");
  return {type.starts_with("application/json"), type};
}

Seen entityTag(Probe& probe, const CheckedServers& servers) {
  const std::string tag = tagOf(configuration(probe, servers));
  const bool isQuoted = tag.ends_with('"') && (tag.starts_with('"') || tag.starts_with("W/\""));
  return {isQuoted && tag.size() <= kMaxTagBytes, tag.empty() ? "none" : tag.substr(0, 60)};
}

// Several requests, which a load balancer may spread over machines.
Seen sameTag(Probe& probe, const CheckedServers& servers) {
  const std::string first = tagOf(configuration(probe, servers));
  for (int i = 0; i < 5; ++i) {
    const std::string next = tagOf(configuration(probe, servers));
    if (next != first) return {false, first + ", then " + next};
  }
  return {true, "the same six times"};
}

Seen notModified(Probe& probe, const CheckedServers& servers) {
  const auto answer = configuration(probe, servers, tagOf(configuration(probe, servers)));
  return {answer.status == 304 && answer.body.empty(),
          answer.summary() + ", " + std::to_string(answer.body.size()) + " bytes"};
}

Seen notModifiedElsewhere(Probe& probe, const CheckedServers& servers) {
  const std::string tag = tagOf(configuration(probe, servers));
  for (int i = 0; i < 5; ++i) {
    const auto answer = configuration(probe, servers, tag);
    if (answer.status != 304) return {false, answer.summary() + " in turn " + std::to_string(i + 1)};
  }
  return {true, "304 five times"};
}

Seen foreignTag(Probe& probe, const CheckedServers& servers) {
  const auto answer = configuration(probe, servers, "\"of-another-answer\"");
  return {answer.status == 200 && !answer.body.empty(), answer.summary()};
}

Seen sameDocument(Probe& probe, const CheckedServers& servers) {
  const auto first = configuration(probe, servers);
  const auto second = configuration(probe, servers);
  return {first.body == second.body, first.body == second.body ? "the same bytes" : "other bytes"};
}

Seen missingLanguage(Probe& probe, const CheckedServers& servers) {
  return status(configuration(probe, servers, {}, "config_xx.json"), {404});
}

// A device stores the default file's tag and sends it when it requests its language again.
Seen missingLanguageWithTag(Probe& probe, const CheckedServers& servers) {
  const std::string tag = tagOf(configuration(probe, servers));
  return status(configuration(probe, servers, tag, "config_xx.json"), {404});
}

Seen knownLanguage(Probe& probe, const CheckedServers& servers) {
  return status(configuration(probe, servers, {}, "config_en.json"), {200, 404});
}

Seen draft(Probe& probe, const CheckedServers& servers) {
  return status(probe.send({.url = servers.configurationUrl("config.json", "draft")}), {200, 404});
}

Seen unknownApplication(Probe& probe, const CheckedServers& servers) {
  auto other = servers;
  other.application = "quillon-check-no-such-application";
  return status(configuration(probe, other), {404});
}

}  // namespace

std::vector<Case> configurationCases() {
  return {
      {"configuration", losesDecisions, "200 and a document that the SDK reads", &document},
      {"configuration: type", untidy, "application/json", &contentType},
      {"configuration: entity tag", untidy, "quoted, at most 4096 bytes", &entityTag},
      {"configuration: same tag", untidy, "one tag on all machines", &sameTag},
      {"configuration: same document", untidy, "the same bytes twice", &sameDocument},
      {"configuration: not modified", untidy, "304 without a body", &notModified},
      {"configuration: not modified anywhere", untidy, "304 from every machine", &notModifiedElsewhere},
      {"configuration: tag of something else", losesDecisions, "200 with the whole document", &foreignTag},
      {"configuration: language that is not there", losesDecisions, "404, so that the default file follows",
       &missingLanguage},
      {"configuration: the same with a tag", losesDecisions, "404", &missingLanguageWithTag},
      {"configuration: language", untidy, "200 or 404", &knownLanguage},
      {"configuration: draft", untidy, "200 or 404", &draft},
      {"configuration: unknown application", untidy, "404", &unknownApplication},
  };
}

}  // namespace quillon::tools
