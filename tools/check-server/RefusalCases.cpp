#include <boost/json.hpp>

#include "tools/check-server/SampleUpload.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;
using enum Case::Gravity;

using Spoil = void (*)(json::object& upload);

Case spoiled(const char* name, Spoil spoil) {
  return {name, losesDecisions, "refused", [=](Probe& probe, const CheckedServers& servers) {
            auto upload = sampleUpload(servers, "spoiled");
            spoil(upload);
            return refused(probe.send(uploadRequest(servers, upload)));
          }};
}

Case body(const char* name, std::string (*make)(std::string whole)) {
  return {name, losesDecisions, "refused", [=](Probe& probe, const CheckedServers& servers) {
            return refused(probe.send(uploadRequest(servers, make(json::serialize(sampleUpload(servers, "body"))))));
          }};
}

Case token(const char* name, std::string (*make)(std::string right)) {
  return {name, losesDecisions, "401", [=](Probe& probe, const CheckedServers& servers) {
            auto request = uploadRequest(servers, sampleUpload(servers, "token"));
            request.headers["X-Auth-Token"] = make(servers.token);
            if (request.headers["X-Auth-Token"].empty()) request.headers.erase("X-Auth-Token");
            const auto answer = probe.send(request);
            return Seen{answer.status == 401 || answer.status == 403, answer.summary()};
          }};
}

Seen tooLarge(Probe& probe, const CheckedServers& servers) {
  auto upload = sampleUpload(servers, "too-large");
  upload["device"] = std::string(3 << 20, 'x');
  const auto answer = probe.send(uploadRequest(servers, upload));
  return {answer.status == 413 || answer.status == 400, answer.summary()};
}

Seen wrongMethod(Probe& probe, const CheckedServers& servers) {
  const auto answer = probe.send({.url = servers.uploadUrl()});
  return {answer.status == 405 || answer.status == 404, answer.summary()};
}

}  // namespace

std::vector<Case> refusalCases() {
  return {
      body("refusal: a body cut off", [](std::string whole) { return whole.substr(0, whole.size() / 2); }),
      body("refusal: an empty body", [](std::string) { return std::string(); }),
      body("refusal: a web page", [](std::string) { return std::string("<html></html>"); }),
      body("refusal: an array", [](std::string whole) { return "[" + whole + "]"; }),
      body("refusal: 100,000 brackets", [](std::string) { return std::string(100'000, '['); }),
      spoiled("refusal: no subject", [](json::object& upload) { upload.erase("uuid"); }),
      spoiled("refusal: no purposes", [](json::object& upload) { upload.erase("purpose_consents"); }),
      spoiled("refusal: a version that is a text", [](json::object& upload) { upload["version"] = "1"; }),
      spoiled("refusal: an unknown consent status",
              [](json::object& upload) { upload["purpose_consents"].at(0).as_object()["consent_status"] = "maybe"; }),
      spoiled("refusal: a decision without a time",
              [](json::object& upload) { upload["purpose_consents"].at(0).as_object().erase("timestamp"); }),
      token("refusal: no token", [](std::string) { return std::string(); }),
      token("refusal: a wrong token", [](std::string) { return std::string("quillon-check-wrong-token"); }),
      token("refusal: the token and more", [](std::string right) { return right + "x"; }),
      token("refusal: the token but its end", [](std::string right) { return right.substr(0, right.size() - 1); }),
      {"refusal: a body of 3 MiB", untidy, "413 or 400, heard by the client", &tooLarge},
      {"refusal: GET in place of POST", untidy, "405 or 404", &wrongMethod},
  };
}

}  // namespace quillon::tools
