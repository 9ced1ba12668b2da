#include "tests/sim/TestWriter.h"

#include <algorithm>
#include <array>

#include "tests/sim/Documents.h"
#include "tests/sim/Servers.h"

namespace quillon::sim {
namespace {

// Interprets a step's numbers as World does.
std::string purposeOf(const Step& step) {
  return std::to_string(purposes[step.what % purposes.size()]);
}

std::string signalText(const SignalUse& use) {
  std::string text = std::string("PrivacySignal{.isGiven = ") + (use.isGiven ? "true" : "false");
  if (use.purposes) {
    text += ", .purposes = std::vector<std::int64_t>{";
    for (const int purpose : *use.purposes) {
      text += (purpose == use.purposes->front() ? "" : ", ") + std::to_string(purpose);
    }
    text += "}";
  }
  return text + "}";
}

std::string launchText(const Step& step, const Plan& plan) {
  std::string text = "options = device.options();";
  if (step.how / 128 % 3 == 1) text += std::string(" options.locationCode = \"") + lawfulPlace + "\";";
  if (step.what % 3 != 0)
    text += std::string(" options.languageCode = \"") + (step.what % 3 == 1 ? "en" : "de") + "\";";
  if (step.how / 16 % 8 == 1) text += " options.testingMode = true;";
  if (const auto use = signalsOf(plan, step.how)) text += " options.privacySignal = " + signalText(*use) + ";";
  text += " options.consentsCheckInterval = " + std::to_string(plan.checkInterval) + ";";
  return text + "\n  sdk->setup(options);";
}

std::string answerText(RequestFault fault) {
  switch (fault) {
    case RequestFault::serverError:
      return "Response{.status = 500}";
    case RequestFault::notFound:
      return "Response{.status = 404}";
    case RequestFault::garbage:
      return R"(Response{.body = "{"})";
    case RequestFault::notModified:
      return "Response{.status = 304}";
    case RequestFault::failed:
      return R"(Response{.body = R"({"status":1,"message":""})" + std::string(")\"}");
    case RequestFault::refused:
      return R"(Response{.body = R"({"status":2,"message":""})" + std::string(")\"}");
    default:
      return {};
  }
}

std::string waitText(const Step& step, std::int64_t interval) {
  const std::array<std::string, 9> times{"500ms",
                                         "1s",
                                         "5s",
                                         "20s",
                                         "70s",
                                         std::to_string(interval) + "s",
                                         std::to_string(interval) + "s",
                                         "3601s",
                                         std::to_string(3601 + interval) + "s"};
  return "device.advance(" + times[step.what % times.size()] + ");";
}

std::string requestText(const Step& step) {
  constexpr std::array paths{"/config", "/location", "/singleupload"};
  const std::string answer = answerText(static_cast<RequestFault>(step.how % requestFaultCount));
  if (answer.empty()) return "// a request is lost, or slow";
  return "device.answer([left = 1](const Request& request) mutable -> std::optional<Response> {\n    if "
         "(request.url.find(\"" +
         std::string(paths[step.what % paths.size()]) +
         "\") == std::string::npos || left-- <= 0) return std::nullopt;\n" + "    return " + answer + ";\n  });";
}

std::string line(const Step& step, const Plan& plan, const std::vector<Document>& documents) {
  switch (step.act) {
    case Act::setUp:
      return launchText(step, plan);
    case Act::close:
      return "sdk->close();";
    case Act::restart:
      return "sdk.reset();\n  sdk = device.launch();\n  " + launchText(step, plan);
    case Act::kill:
      return "sdk.reset();  // was killed\n  sdk = device.launch();";
    case Act::decide:
      return "sdk->set({.purposeId = " + purposeOf(step) +
             "}, ConsentStatus::" + (step.how % 2 == 0 ? "granted" : "declined") + ");";
    case Act::answer:
      return std::string("sdk->acceptOrReject(") + (step.what % 2 == 0 ? "true" : "false") + ");";
    case Act::removeConsents:
      return "sdk->removeConsents();";
    case Act::askBannerDue:
      return "static_cast<void>(sdk->isBannerDue());";
    case Act::presentBanner:
      return "sdk->presentBanner();";
    case Act::presentPreferences:
      return "sdk->presentPreferenceCenter();";
    case Act::check:
      return "sdk->checkConsents();";
    case Act::upload:
      return "sdk->uploadPendingConsents();";
    case Act::pass:
      return waitText(step, plan.checkInterval);
    case Act::network:
      return std::string("device.setOnline(") + (step.what % 2 == 0 ? "true" : "false") + ");";
    case Act::permission:
      return std::string("device.setPermission(VantariKey::cameraUsageDescription, ConsentStatus::") +
             (step.what % 4 == 3 ? "granted" : "declined") + ");";
    case Act::language:
      return std::string("device.setLanguages({\"") + (step.what % 2 == 0 ? "en" : "de-AT") + "\"});";
    case Act::publish:
      if (step.how % 12 == 0)
        return step.what % 2 == 0 ? "device.setLocation(\"US\", \"CA\");" : "// the place is unknown";
      return "device.publish(R\"json(" + documents[step.what % (documents.size() - 1)].json() + ")json\");";
    case Act::signal:
      return std::string("device.setPrivacySignal(") + (step.what % 2 == 0 ? "true" : "false") + ");";
    case Act::failRequest:
      return requestText(step);
    case Act::failStore:
    case Act::failFile:
      return "device.setDiskFull(true);  // for one change; then false again";
    default:
      return std::string("// ") + nameOf(step.act) + ", what=" + std::to_string(step.what) +
             " how=" + std::to_string(step.how);
  }
}

// A failure may quote the log.
std::string onOneLine(std::string text) {
  std::ranges::replace(text, '\n', ' ');
  if (text.ends_with('\\')) text += '.';
  return text;
}

}  // namespace

std::string asTest(const Plan& plan, const std::string& failure) {
  const auto documents = makeDocuments(plan.seed);
  const std::string reason = onOneLine(failure);
  std::string text =
      "#include <gtest/gtest.h>\n\n#include <chrono>\n#include <memory>\n\n#include \"quillon/Testing.h\"\n\n"
      "namespace quillon::testing {\nnamespace {\n\nusing namespace std::chrono_literals;\n\n";
  text += "TEST(SeedTest, NameOfTheClaim) {  // seed " + std::to_string(plan.seed) + ": " + reason +
          "\n  Device device;\n  device.publish(R\"json(" + documents.front().json() +
          ")json\");\n  auto sdk = device.launch();\n  ConsentSDKOptions options;\n";
  for (const Step& step : plan.steps) {
    text += "  " + line(step, plan, documents);
    if (plan.processes > 1) text += "  // in process " + std::to_string(step.process % plan.processes);
    text += "\n";
    if (step.order != 0) text += "  // jobs in the order of " + std::to_string(step.order) + "\n";
    text += "  device.settle();\n";
  }
  return text +
         "  ADD_FAILURE() << \"say here what must hold\";\n}\n\n}  // namespace\n}  // namespace quillon::testing\n";
}

}  // namespace quillon::sim
