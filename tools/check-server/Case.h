#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/check-server/Probe.h"

namespace quillon::tools {

// The servers under test.
struct CheckedServers {
  std::string appUrl;  // as in ConsentSDKOptions
  std::string cdnUrl;
  std::string tenant;
  std::string application;
  std::string token;
  std::string subject;  // prefix of every subject: marks it as a test, unique per run

  [[nodiscard]] std::string configurationUrl(const std::string& file, const std::string& channel = "live") const {
    return cdnUrl + "consent/mobile_banner/" + tenant + "/" + application + "/" + channel + "/" + file;
  }
  [[nodiscard]] std::string locationUrl() const { return appUrl + "core/v1/utils/geo/location"; }
  [[nodiscard]] std::string uploadUrl() const { return appUrl + "vantari/v1/consent/mobile/singleupload"; }
};

struct Seen {
  bool isRight = false;
  std::string what;
};

struct Case {
  enum class Gravity {
    losesDecisions,  // a decision could be lost, invented, or never accepted
    untidy,
  };
  const char* name;
  Gravity gravity;
  const char* expected;
  std::function<Seen(Probe&, const CheckedServers&)> run;
};

std::vector<Case> configurationCases();
std::vector<Case> locationCases();
// Valid uploads in several forms, which the server must accept.
std::vector<Case> uploadCases();
// Requests that the server must not accept as uploads.
std::vector<Case> refusalCases();
// Clients that are slow, abort, or send concurrently.
std::vector<Case> clientCases();

}  // namespace quillon::tools
