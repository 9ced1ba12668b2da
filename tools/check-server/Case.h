#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/check-server/Probe.h"

namespace quillon::tools {

// The servers under test, and how to reach them.
struct CheckedServers {
  std::string appUrl;  // as ConsentSDKOptions have them
  std::string cdnUrl;
  std::string tenant;
  std::string application;
  std::string token;
  std::string subject;  // the beginning of the name of every subject: says what it is, and differs from run to run

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
    losesDecisions,  // a decision could be lost, made up, or kept from the server for ever
    untidy,
  };
  const char* name;
  Gravity gravity;
  const char* expected;
  std::function<Seen(Probe&, const CheckedServers&)> run;
};

std::vector<Case> configurationCases();
std::vector<Case> locationCases();
// Uploads that have to be accepted, one way or the other.
std::vector<Case> uploadCases();
// What must not be taken for an upload.
std::vector<Case> refusalCases();
// Clients that are slow, break off, or come together.
std::vector<Case> clientCases();

}  // namespace quillon::tools
