// A plain C++ application that asks for consent: it sets the SDK up, waits until it is ready, shows a banner when due
// (here a line of text) and stores the answer. Exit status 0 when everything went as expected.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"

namespace {

using Arguments = std::map<std::string, std::string>;

Arguments parse(int argc, char** argv) {
  Arguments arguments{{"--tenant", "demo-tenant"}, {"--app", "news-reader"}, {"--expect", "first"}};
  for (int i = 1; i + 1 < argc; i += 2) arguments[argv[i]] = argv[i + 1];
  return arguments;
}

std::string inLanguage(const std::optional<quillon::LocalizedText>& text, const std::string& language) {
  if (!text) return {};
  const auto entry = text->find(language);
  return entry != text->end() ? entry->second : text->empty() ? std::string() : text->begin()->second;
}

// Waits for ready or unavailable, printing intermediate statuses.
quillon::SDKStatus waitUntilLoaded(quillon::ConsentSDK& sdk, bool& fetched) {
  // The state is shared with the callback, which may run once more after this function has returned.
  auto loaded = std::make_shared<std::promise<quillon::SDKStatus>>();
  auto fetching = std::make_shared<std::atomic<bool>>(false);
  auto future = loaded->get_future();
  sdk.isReady([loaded, fetching, first = true](quillon::SDKStatus status) mutable {
    if (status == quillon::SDKStatus::fetching) {
      std::cout << "fetching" << std::endl;
      *fetching = true;
    } else if (status == quillon::SDKStatus::ready || !first) {
      loaded->set_value(status);
    }
    first = false;
  });
  if (future.wait_for(std::chrono::seconds(30)) == std::future_status::timeout) return sdk.getStatus();
  sdk.removeListeners();
  fetched = *fetching;
  return future.get();
}

int fail(const std::string& reason) {
  std::cerr << "plain host: " << reason << std::endl;
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments = parse(argc, argv);
  const bool isFirstRun = arguments["--expect"] == "first";
  const std::string language = arguments["--language"];

  quillon::LinuxOptions platform{.applicationId = "news-reader"};
  if (arguments.contains("--data-dir")) platform.dataDirectory = arguments["--data-dir"];
  if (arguments.contains("--vendor-url")) platform.vendorUrl = arguments["--vendor-url"];
  if (!quillon::configure(std::move(platform))) return 1;

  auto& sdk = quillon::ConsentSDK::shared();
  quillon::ConsentSDKOptions options{
      .appUrl = arguments["--app-url"],
      .cdnUrl = arguments["--cdn-url"],
      .tenantId = arguments["--tenant"],
      .appId = arguments["--app"],
      .logLevel = quillon::LogLevel::error,
  };
  if (!language.empty()) options.languageCode = language;
  sdk.setup(std::move(options));

  bool fetched = false;
  if (waitUntilLoaded(sdk, fetched) != quillon::SDKStatus::ready) return fail("no configuration could be had");
  std::cout << (fetched ? "ready" : "ready (from cache)") << std::endl;
  if (fetched != isFirstRun) return fail(fetched ? "expected the cached configuration" : "expected a download");

  const bool due = sdk.isBannerDue();
  std::cout << "banner due: " << (due ? "yes" : "no") << std::endl;
  if (due != isFirstRun) return fail("the banner's turn is not what was expected");
  if (due) {
    const auto banner = sdk.getBannerConfig().get();
    if (!banner) return fail("there is no banner to show");
    std::cout << "  | " << inLanguage(banner->bannerHeading, language) << "\n  | ["
              << inLanguage(banner->accept, language) << "] [" << inLanguage(banner->reject, language) << "]"
              << std::endl;
    if (!sdk.acceptOrReject(true).get()) return fail("the answer could not be stored");
    std::cout << "accepted" << std::endl;
    if (!sdk.uploadPendingConsents().get()) return fail("the answer could not be uploaded");
    std::cout << "uploaded" << std::endl;
  }

  for (const quillon::Purpose& purpose : sdk.getPurposeConsents().get()) {
    const auto status = purpose.consentStatus.value_or(quillon::ConsentStatus::notDetermined);
    std::cout << "  " << inLanguage(purpose.purposeName, language) << ": " << rawValue(status) << std::endl;
    // A purpose bound to app tracking follows the device's setting instead.
    if (status != quillon::ConsentStatus::granted && !purpose.isATTMapped.value_or(false)) {
      return fail("an accepted purpose is not granted");
    }
  }
  return EXIT_SUCCESS;
}
