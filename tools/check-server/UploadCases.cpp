#include <boost/json.hpp>

#include "tools/check-server/SampleUpload.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;
using enum Case::Gravity;

// An upload with one member changed.
Case variant(const char* name, const char* member, json::value value, Case::Gravity gravity = losesDecisions) {
  return {name, gravity, "accepted", [=](Probe& probe, const CheckedServers& servers) {
            auto upload = sampleUpload(servers, member);
            upload[member] = value;
            return accepted(probe.send(uploadRequest(servers, upload)));
          }};
}

Seen ordinary(Probe& probe, const CheckedServers& servers) {
  return accepted(probe.send(uploadRequest(servers, sampleUpload(servers, "ordinary"))));
}

Seen noTagOfUploads(Probe& probe, const CheckedServers& servers) {
  const std::string tag = probe.send(uploadRequest(servers, sampleUpload(servers, "tag"))).header("ETag");
  return {tag.empty(), tag.empty() ? "none" : tag};
}

Seen conditionIgnoredByUploads(Probe& probe, const CheckedServers& servers) {
  auto request = uploadRequest(servers, sampleUpload(servers, "if-none-match"));
  request.headers["If-None-Match"] = probe.send({.url = servers.configurationUrl("config.json")}).header("ETag");
  return accepted(probe.send(request));
}

Seen anyTag(Probe& probe, const CheckedServers& servers) {
  auto request = uploadRequest(servers, sampleUpload(servers, "if-none-match-any"));
  request.headers["If-None-Match"] = "*";
  return accepted(probe.send(request));
}

// Passes if all are accepted; otherwise reports the first that is not.
Seen allAccepted(const std::vector<Probe::Answer>& answers) {
  for (std::size_t i = 0; i < answers.size(); ++i) {
    if (const Seen seen = accepted(answers[i]); !seen.isRight) {
      return {false, "number " + std::to_string(i + 1) + ": " + seen.what};
    }
  }
  return {true, "accepted each time"};
}

Seen repeat(Probe& probe, const CheckedServers& servers) {
  const auto request = uploadRequest(servers, sampleUpload(servers, "repeat"));
  return allAccepted({probe.send(request), probe.send(request), probe.send(request)});
}

Seen late(Probe& probe, const CheckedServers& servers) {
  auto newer = sampleUpload(servers, "late");
  auto older = newer;
  older["purpose_consents"] = json::array{samplePurpose(1, "declined", secondsNow() - 86'400)};
  return allAccepted({probe.send(uploadRequest(servers, newer)), probe.send(uploadRequest(servers, older))});
}

Seen sameSecond(Probe& probe, const CheckedServers& servers) {
  const auto now = secondsNow();
  auto first = sampleUpload(servers, "same-second");
  auto second = first;
  first["purpose_consents"] = json::array{samplePurpose(1, "granted", now)};
  second["purpose_consents"] = json::array{samplePurpose(1, "declined", now)};
  return allAccepted({probe.send(uploadRequest(servers, first)), probe.send(uploadRequest(servers, second))});
}

Seen wrongClock(Probe& probe, const CheckedServers& servers) {
  std::vector<Probe::Answer> answers;
  for (const std::int64_t time : {std::int64_t{0}, secondsNow() + 10 * 365 * 86'400}) {
    auto upload = sampleUpload(servers, "clock");
    upload["purpose_consents"] = json::array{samplePurpose(1, "granted", time)};
    answers.push_back(probe.send(uploadRequest(servers, upload)));
  }
  return allAccepted(answers);
}

Seen everyStatus(Probe& probe, const CheckedServers& servers) {
  auto upload = sampleUpload(servers, "statuses");
  const auto now = secondsNow();
  upload["purpose_consents"] = json::array{samplePurpose(1, "granted", now), samplePurpose(2, "declined", now),
                                           samplePurpose(3, "not_determined", now), samplePurpose(4, "withdrawn", now)};
  return accepted(probe.send(uploadRequest(servers, upload)));
}

Seen withoutVersion(Probe& probe, const CheckedServers& servers) {
  auto upload = sampleUpload(servers, "without-version");
  upload.erase("sdk_version");
  return accepted(probe.send(uploadRequest(servers, upload)));
}

Seen large(Probe& probe, const CheckedServers& servers) {
  auto upload = sampleUpload(servers, "large");
  json::array purposes;
  for (std::int64_t id = 1; id <= 1500; ++id) purposes.push_back(samplePurpose(id, "granted", secondsNow()));
  upload["purpose_consents"] = std::move(purposes);
  return accepted(probe.send(uploadRequest(servers, upload)));
}

}  // namespace

std::vector<Case> uploadCases() {
  return {
      {"upload", losesDecisions, "accepted", &ordinary},
      {"upload: entity tag", untidy, "none: a device has one slot for all answers", &noTagOfUploads},
      {"upload: If-None-Match of the configuration", losesDecisions, "accepted: the tag means nothing here",
       &conditionIgnoredByUploads},
      {"upload: If-None-Match: *", losesDecisions, "accepted", &anyTag},
      {"upload: repeated", losesDecisions, "accepted three times", &repeat},
      {"upload: late, behind a newer one", losesDecisions, "both accepted", &late},
      {"upload: another answer in the same second", losesDecisions, "both accepted", &sameSecond},
      {"upload: a clock that is wrong", losesDecisions, "accepted, from 1970 and from the future", &wrongClock},
      {"upload: every consent status", losesDecisions, "accepted", &everyStatus},
      variant("upload: permissions alone", "purpose_consents", json::array()),
      variant("upload: purposes alone", "permissions", json::array()),
      variant("upload: implicit", "implicit_consent", true),
      variant("upload: not in test mode", "is_test_mode", false),
      variant("upload: text of every kind", "device", "\xE2\x82\xAC \xF0\x9F\x93\xB1 \"quoted\" \\ \t end"),
      {"upload: without sdk_version", losesDecisions, "accepted", &withoutVersion},
      variant("upload: a member of tomorrow's SDK", "future", json::object{{"nested", json::array{1, 2}}}, untidy),
      {"upload: 1500 purposes", losesDecisions, "accepted", &large},
  };
}

}  // namespace quillon::tools
