#include <boost/json.hpp>

#include "tools/check-server/SampleUpload.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;
using enum Case::Gravity;

constexpr std::size_t kMaxSmallAnswer = 64 << 10;
constexpr std::chrono::seconds kSlow{5};

Seen acceptedOf(const std::vector<Probe::Answer>& answers) {
  std::size_t count = 0;
  std::string other;
  for (const auto& answer : answers) {
    const Seen seen = accepted(answer);
    if (seen.isRight) {
      ++count;
    } else {
      other = ", else " + seen.what;
    }
  }
  return {count == answers.size(), std::to_string(count) + " of " + std::to_string(answers.size()) + other};
}

// Two concurrent uploads of one subject, as after a device's timeout: both are valid decisions.
Seen crossing(Probe& probe, const CheckedServers& servers) {
  auto older = sampleUpload(servers, "crossing");
  auto newer = older;
  older["purpose_consents"] = json::array{samplePurpose(1, "granted", secondsNow() - 60)};
  newer["purpose_consents"] = json::array{samplePurpose(1, "declined", secondsNow())};
  auto slow = uploadRequest(servers, older);
  slow.parts = 2;
  slow.pause = std::chrono::milliseconds(300);
  return acceptedOf(probe.sendTogether({slow, uploadRequest(servers, newer)}));
}

Seen together(Probe& probe, const CheckedServers& servers) {
  std::vector<Probe::Request> requests;
  for (int i = 0; i < 10; ++i) {
    auto upload = sampleUpload(servers, "together");
    upload["purpose_consents"] = json::array{samplePurpose(i % 3, "granted", secondsNow() - i)};
    requests.push_back(uploadRequest(servers, upload));
  }
  return acceptedOf(probe.sendTogether(requests));
}

Seen slow(Probe& probe, const CheckedServers& servers) {
  auto request = uploadRequest(servers, sampleUpload(servers, "slow"));
  request.parts = 4;
  request.pause = std::chrono::milliseconds(750);
  return accepted(probe.send(request));
}

Seen brokenOff(Probe& probe, const CheckedServers& servers) {
  auto request = uploadRequest(servers, sampleUpload(servers, "broken-off"));
  request.breaksOff = true;
  (void)probe.send(request);
  return accepted(probe.send(uploadRequest(servers, sampleUpload(servers, "after-broken-off"))));
}

Seen oneConnection(Probe& probe, const CheckedServers& servers) {
  const auto request = uploadRequest(servers, sampleUpload(servers, "one-connection"));
  return acceptedOf(probe.sendInTurn({request, request, request}));
}

Seen expects(Probe& probe, const CheckedServers& servers) {
  auto request = uploadRequest(servers, sampleUpload(servers, "expect"));
  request.expectsContinue = true;
  return accepted(probe.send(request));
}

Seen quick(Probe& probe, const CheckedServers&) {
  const auto slowest = probe.slowest();
  return {slowest < kSlow, "the slowest after " + std::to_string(slowest.count()) + " ms"};
}

Seen bounded(Probe& probe, const CheckedServers&) {
  const auto largest = probe.largestSmallAnswer();
  return {largest <= kMaxSmallAnswer, "at most " + std::to_string(largest) + " bytes"};
}

}  // namespace

std::vector<Case> clientCases() {
  return {
      {"client: crossing uploads of one subject", losesDecisions, "both accepted", &crossing},
      {"client: ten uploads of one subject at once", losesDecisions, "all accepted", &together},
      {"client: slow, three seconds for the body", losesDecisions, "accepted", &slow},
      {"client: breaks off in the body", losesDecisions, "the next one is accepted", &brokenOff},
      {"client: three uploads over one connection", losesDecisions, "all accepted", &oneConnection},
      {"client: Expect: 100-continue", untidy, "accepted", &expects},
      {"answers: time", untidy, "each within 5 s", &quick},
      {"answers: size", untidy, "at most 64 KiB, configurations aside", &bounded},
  };
}

}  // namespace quillon::tools
