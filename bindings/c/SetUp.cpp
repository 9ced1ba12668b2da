// Configuration, set-up, readiness and closing.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "bindings/c/Values.h"
#include "quillon/LinuxPlatform.h"
#include "quillon/SDKLogger.h"

namespace quillon::c {
namespace {

static_assert(QUILLON_READY == static_cast<int>(SDKStatus::ready) &&
              QUILLON_UNAVAILABLE == static_cast<int>(SDKStatus::unavailable) &&
              QUILLON_FETCHING == static_cast<int>(SDKStatus::fetching));

// Copies the fields known to the caller's header; later ones are empty.
template <class Record>
Record fieldsOf(const Record& given) {
  Record known{};
  std::memcpy(&known, &given, std::min(given.size, sizeof known));
  return known;
}

LogLevel logLevel(quillon_log_level level) {
  switch (level) {
    case QUILLON_LOG_DEBUG:
      return LogLevel::debug;
    case QUILLON_LOG_INFO:
      return LogLevel::info;
    case QUILLON_LOG_WARNING:
      return LogLevel::warning;
    case QUILLON_LOG_OFF:
      return LogLevel::off;
    default:
      return LogLevel::error;
  }
}

quillon_log_level inC(LogLevel level) {
  switch (level) {
    case LogLevel::debug:
      return QUILLON_LOG_DEBUG;
    case LogLevel::info:
      return QUILLON_LOG_INFO;
    case LogLevel::warning:
      return QUILLON_LOG_WARNING;
    case LogLevel::error:
    case LogLevel::off:
      break;
  }
  return QUILLON_LOG_ERROR;
}

std::function<void(LogLevel, std::string_view, std::string_view)> logOf(const quillon_platform& platform) {
  if (platform.log == nullptr) return {};
  return [log = platform.log, context = platform.log_context](LogLevel level, std::string_view text,
                                                              std::string_view unit) {
    log(inC(level), std::string(text).c_str(), std::string(unit).c_str(), context);
  };
}

std::optional<PrivacySignal> privacySignal(const quillon_options& options) {
  if (options.privacy_signal == QUILLON_SIGNAL_IGNORED) return std::nullopt;
  PrivacySignal signal{.isGiven = options.privacy_signal == QUILLON_SIGNAL_GIVEN};
  if (options.signal_purposes != nullptr) {
    signal.purposes.emplace(options.signal_purposes, options.signal_purposes + options.signal_purpose_count);
  }
  return signal;
}

std::vector<std::string> listOf(const char* const* texts) {
  std::vector<std::string> all;
  for (; texts != nullptr && *texts != nullptr; ++texts) all.emplace_back(*texts);
  return all;
}

std::optional<DataController> controllerOf(const quillon_controller* given) {
  if (given == nullptr) return std::nullopt;
  const auto known = fieldsOf(*given);
  return DataController{.name = text(known.name),
                        .identifier = text(known.identifier),
                        .postalAddress = text(known.postal_address),
                        .email = text(known.email),
                        .phone = text(known.phone),
                        .website = text(known.website),
                        .legalBasis = text(known.legal_basis),
                        .jurisdiction = text(known.jurisdiction),
                        .personalData = listOf(known.personal_data),
                        .dataSources = listOf(known.data_sources),
                        .processing = listOf(known.processing),
                        .storageLocations = listOf(known.storage_locations),
                        .processingLocations = listOf(known.processing_locations),
                        .retention = text(known.retention),
                        .validity = text(known.validity),
                        .withdrawalAddress = text(known.withdrawal_address),
                        .rightsContact = text(known.rights_contact),
                        .authority = text(known.authority)};
}

// A structure of size 0 would be read as one without fields.
bool hasSize(std::size_t size, const char* function) {
  if (size > 0) return true;
  SDKLogger::shared().log("The record's size is 0: it should be sizeof the record", LogLevel::error, function, __FILE__,
                          __LINE__);
  return false;
}

// Jobs are passed as a pointer, and freed after they were run.
std::function<void(std::function<void()>)> mainQueue(const quillon_platform& platform) {
  if (platform.post_to_main_queue == nullptr) return {};
  return [post = platform.post_to_main_queue, context = platform.post_context](std::function<void()> job) {
    auto owned = std::make_unique<std::function<void()>>(std::move(job));
    post(
        [](void* address) {
          guarded([&] { (*std::unique_ptr<std::function<void()>>(static_cast<std::function<void()>*>(address)))(); });
        },
        owned.release(), context);
  };
}

std::function<void(const std::map<std::string, std::string>&)> consentSink(const quillon_platform& platform) {
  if (platform.consent_sink == nullptr) return {};
  return [sink = platform.consent_sink, context = platform.sink_context](const auto& values) {
    const auto signals = signalsOf(values);
    sink(signals.data(), signals.size(), context);
  };
}

}  // namespace
}  // namespace quillon::c

using namespace quillon;
using namespace quillon::c;

extern "C" {

int32_t quillon_configure(const quillon_platform* platform) {
  return guarded([&] {
    if (platform == nullptr || !hasSize(platform->size, "quillon_configure")) return 0;
    const quillon_platform given = fieldsOf(*platform);
    LinuxOptions options{.applicationId = text(given.application_id)};
    if (given.data_directory != nullptr) options.dataDirectory = given.data_directory;
    options.vendorUrl = optionalText(given.vendor_url);
    options.postToMainQueue = mainQueue(given);
    options.consentSink = consentSink(given);
    if (given.resource_directory != nullptr) options.resourceDirectory = given.resource_directory;
    options.log = logOf(given);
    return configure(std::move(options)) ? 1 : 0;
  });
}

int32_t quillon_setup(const quillon_options* options) {
  return guarded([&] {
    if (options == nullptr || !hasSize(options->size, "quillon_setup")) return 0;
    const quillon_options given = fieldsOf(*options);
    for (const char* required : {given.app_url, given.cdn_url, given.tenant_id, given.app_id}) {
      if (required == nullptr) return 0;
    }
    ConsentSDKOptions taken{
        .appUrl = given.app_url,
        .cdnUrl = given.cdn_url,
        .tenantId = given.tenant_id,
        .appId = given.app_id,
        .testingMode = given.testing_mode != 0,
        .logLevel = logLevel(given.log_level),
        .subjectId = optionalText(given.subject_id),
        .locationCode = optionalText(given.location_code),
        .bundledConfiguration = optionalText(given.bundled_configuration),
        .privacySignal = privacySignal(given),
        .controller = controllerOf(given.controller),
    };
    if (given.ready_within > 0) taken.readyWithin = std::chrono::milliseconds(given.ready_within);
    if (given.check_interval != 0) taken.consentsCheckInterval = given.check_interval;
    if (given.language_code != nullptr) taken.languageCode = given.language_code;
    if (given.allowed_domains != nullptr || given.blocked_page != nullptr) {
      taken.webviewConfig.emplace();
      taken.webviewConfig->blockedPageHTML = optionalText(given.blocked_page);
    }
    if (given.allowed_domains != nullptr) {
      for (std::size_t i = 0; i < given.allowed_domain_count; ++i) {
        taken.webviewConfig->allowedDomains.push_back(text(given.allowed_domains[i]));
      }
    }
    sdk().setup(std::move(taken));
    return 1;
  });
}

quillon_status quillon_get_status(void) {
  return static_cast<quillon_status>(sdk().getStatus());
}

void quillon_is_ready(void (*callback)(quillon_status status, void* context), void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    sdk().isReady([=](SDKStatus status) { callback(static_cast<quillon_status>(status), context); });
  });
}

void quillon_remove_listeners(void) {
  guarded([] { sdk().removeListeners(); });
}

void quillon_close(void) {
  guarded([] { sdk().close(); });
}

int32_t quillon_settle(int64_t milliseconds) {
  return guarded([&] {
    constexpr std::int64_t longest = std::int64_t{1000} * 60 * 60 * 24;
    const std::chrono::milliseconds limit(std::clamp(milliseconds, std::int64_t{0}, longest));
    return sdk().settled().wait_for(limit) == std::future_status::ready ? 1 : 0;
  });
}

char* quillon_sdk_version(void) {
  return guarded([] {
    const auto version = sdk().sdkVersion();
    return version ? strdup(version->c_str()) : nullptr;
  });
}

void quillon_free(char* text) {
  std::free(text);
}

}  // extern "C"
