// The C functions: converts values and contains exceptions, without logic of its own.
#include "quillon/consent.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/Text/LocalizedTexts.h"
#include "platform/ScreenServices.h"
#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"
#include "quillon/SDKLogger.h"

namespace quillon {
namespace {

static_assert(QUILLON_READY == static_cast<int>(SDKStatus::ready) &&
              QUILLON_UNAVAILABLE == static_cast<int>(SDKStatus::unavailable) &&
              QUILLON_FETCHING == static_cast<int>(SDKStatus::fetching));

// Runs the call; returns the empty result when it throws, which only happens out of memory.
template <class Call>
auto guarded(Call&& call) noexcept -> decltype(call()) {
  using Result = decltype(call());
  try {
    return call();
  } catch (...) {
    if constexpr (!std::is_void_v<Result>) return Result();
  }
}

// Copies the fields known to the caller's header; later ones are empty.
template <class Record>
Record fieldsOf(const Record& given) {
  Record known{};
  std::memcpy(&known, &given, std::min(given.size, sizeof known));
  return known;
}

std::string text(const char* given) {
  return given == nullptr ? std::string() : std::string(given);
}
std::optional<std::string> optionalText(const char* given) {
  return given == nullptr ? std::nullopt : std::optional<std::string>(given);
}

quillon_consent inC(ConsentStatus status) {
  switch (status) {
    case ConsentStatus::granted:
      return QUILLON_GRANTED;
    case ConsentStatus::declined:
      return QUILLON_DECLINED;
    case ConsentStatus::withDrawn:
      return QUILLON_WITHDRAWN;
    case ConsentStatus::notDetermined:
      break;
  }
  return QUILLON_NOT_DETERMINED;
}

std::optional<ConsentStatus> fromC(quillon_consent consent) {
  switch (consent) {
    case QUILLON_GRANTED:
      return ConsentStatus::granted;
    case QUILLON_DECLINED:
      return ConsentStatus::declined;
    case QUILLON_NOT_DETERMINED:
      return ConsentStatus::notDetermined;
    case QUILLON_WITHDRAWN:
      return ConsentStatus::withDrawn;
    default:
      return std::nullopt;
  }
}

quillon_compliance inC(const std::optional<ComplianceType>& type) {
  if (!type) return QUILLON_COMPLIANCE_NONE;
  return *type == ComplianceType::noticeOnly ? QUILLON_NOTICE_ONLY
         : *type == ComplianceType::optIn    ? QUILLON_OPT_IN
                                             : QUILLON_OPT_OUT;
}

LogLevel logLevel(quillon_log_level level) {
  switch (level) {
    case QUILLON_LOG_DEBUG:
      return LogLevel::debug;
    case QUILLON_LOG_INFO:
      return LogLevel::info;
    case QUILLON_LOG_WARNING:
      return LogLevel::warning;
    default:
      return LogLevel::error;
  }
}

ConsentSDK& sdk() {
  return ConsentSDK::shared();
}

std::string inUsersLanguage(const std::optional<LocalizedText>& texts) {
  return texts ? textIn(sdk().screens()->language(), *texts) : std::string();
}

// Passes extensible structures by pointer: growing them would change an array's stride.
template <class Record>
std::vector<const Record*> addresses(const std::vector<Record>& records) {
  std::vector<const Record*> all;
  all.reserve(records.size());
  for (const Record& record : records) all.push_back(&record);
  return all;
}

// A structure without a size would read as one without fields.
bool hasSize(std::size_t size, const char* function) {
  if (size > 0) return true;
  SDKLogger::shared().log("The record's size is 0: it should be sizeof the record", LogLevel::error, function, __FILE__,
                          __LINE__);
  return false;
}

std::vector<quillon_signal> signalsOf(const std::map<std::string, std::string>& values) {
  std::vector<quillon_signal> signals;
  signals.reserve(values.size());
  for (const auto& [name, value] : values) signals.push_back({name.c_str(), value.c_str()});
  return signals;
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

// Passes a boolean to the callback, if there is one.
std::function<void(bool)> answering(void (*callback)(int32_t, void*), void* context) {
  return [=](bool yes) {
    if (callback != nullptr) callback(yes ? 1 : 0, context);
  };
}

}  // namespace
}  // namespace quillon

using namespace quillon;

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
    };
    if (given.check_interval != 0) taken.consentsCheckInterval = given.check_interval;
    if (given.language_code != nullptr) taken.languageCode = given.language_code;
    if (given.allowed_domains != nullptr) {
      taken.webviewConfig.emplace();
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

int32_t quillon_is_purpose_allowed(int64_t purpose_id) {
  return guarded([&] { return sdk().isAllowed(purpose_id) ? 1 : 0; });
}

int32_t quillon_is_permission_allowed(const char* key) {
  return guarded([&] { return key != nullptr && sdk().isAllowed(VantariKey(std::string(key))) ? 1 : 0; });
}

quillon_consent quillon_get_purpose(int64_t purpose_id) {
  quillon_consent answer = QUILLON_NOT_DETERMINED;
  guarded([&] { answer = inC(sdk().get(purpose_id)); });
  return answer;
}

quillon_consent quillon_get_permission(const char* key) {
  quillon_consent answer = QUILLON_NOT_DETERMINED;
  guarded([&] {
    if (key != nullptr) answer = inC(sdk().get(VantariKey(std::string(key))));
  });
  return answer;
}

int32_t quillon_set_purpose(int64_t purpose_id, quillon_consent consent) {
  return guarded([&] {
    const auto status = fromC(consent);
    return status && sdk().set(Purpose{.purposeId = purpose_id}, *status) ? 1 : 0;
  });
}

int32_t quillon_set_permission(const char* key, quillon_consent consent) {
  return guarded([&] {
    const auto status = fromC(consent);
    if (key == nullptr || !status) return 0;
    return sdk().set(AppPermission{.permissionId = VantariKey(std::string(key))}, *status) ? 1 : 0;
  });
}

void quillon_get_purposes(void (*callback)(const quillon_purpose* const* purposes, size_t count, void* context),
                          void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    sdk().getPurposeConsents([=](const std::vector<Purpose>& purposes) {
      std::vector<std::pair<std::string, std::string>> texts;
      texts.reserve(purposes.size());
      for (const Purpose& purpose : purposes) {
        texts.emplace_back(inUsersLanguage(purpose.purposeName), inUsersLanguage(purpose.purposeDescription));
      }
      std::vector<quillon_purpose> records;
      for (std::size_t i = 0; i < purposes.size(); ++i) {
        const Purpose& purpose = purposes[i];
        if (!purpose.purposeId) continue;  // cannot be queried or set
        records.push_back({.id = *purpose.purposeId,
                           .name = texts[i].first.c_str(),
                           .description = texts[i].second.c_str(),
                           .consent = inC(purpose.consentStatus.value_or(ConsentStatus::notDetermined)),
                           .is_essential = purpose.disableOptOut.value_or(false) ? 1 : 0,
                           .follows_device = purpose.isATTMapped.value_or(false) ? 1 : 0});
      }
      callback(addresses(records).data(), records.size(), context);
    });
  });
}

void quillon_get_permissions(void (*callback)(const quillon_permission* const* permissions, size_t count,
                                              void* context),
                             void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    sdk().getPermissionConsents([=](const std::vector<AppPermission>& permissions) {
      std::vector<std::pair<std::string, std::string>> texts;
      texts.reserve(permissions.size());
      for (const AppPermission& permission : permissions) {
        const std::string name = inUsersLanguage(permission.nameMap);
        texts.emplace_back(name.empty() ? permission.name.value_or("") : name, inUsersLanguage(permission.description));
      }
      std::vector<quillon_permission> records;
      for (std::size_t i = 0; i < permissions.size(); ++i) {
        if (!permissions[i].permissionId) continue;
        records.push_back({.key = permissions[i].permissionId->rawValue().c_str(),
                           .name = texts[i].first.c_str(),
                           .description = texts[i].second.c_str(),
                           .consent = inC(permissions[i].consentStatus.value_or(ConsentStatus::notDetermined))});
      }
      callback(addresses(records).data(), records.size(), context);
    });
  });
}

void quillon_get_consent_mode(void (*callback)(const quillon_signal* signals, size_t count, void* context),
                              void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    sdk().getGCMConsents([=](const std::map<GoogleConsentType, ConsentStatus>& consents) {
      std::map<std::string, std::string> values;
      for (const auto& [type, consent] : consents) {
        values.emplace(rawValue(type), consent == ConsentStatus::granted ? "granted" : "denied");
      }
      const auto signals = signalsOf(values);
      callback(signals.data(), signals.size(), context);
    });
  });
}

void quillon_remove_consents(void) {
  guarded([] { sdk().removeConsents(); });
}

int32_t quillon_is_banner_due(void) {
  return guarded([] { return sdk().isBannerDue() ? 1 : 0; });
}

void quillon_get_banner(void (*callback)(const quillon_banner* banner, void* context), void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    sdk().getBannerConfig(std::nullopt, [=](const std::optional<BannerConfig>& banner) {
      if (!banner) return callback(nullptr, context);
      const std::string heading = inUsersLanguage(banner->bannerHeading), body = inUsersLanguage(banner->bannerText),
                        accept = inUsersLanguage(banner->accept), reject = inUsersLanguage(banner->reject),
                        notice = inUsersLanguage(banner->privacyNoticeText),
                        link = banner->privacyNoticeLink.value_or("");
      const quillon_banner record{.heading = heading.c_str(),
                                  .text = body.c_str(),
                                  .accept = accept.c_str(),
                                  .reject = reject.c_str(),
                                  .privacy_notice_text = notice.c_str(),
                                  .privacy_notice_link = link.c_str(),
                                  .compliance = inC(banner->complianceType)};
      callback(&record, context);
    });
  });
}

void quillon_accept_or_reject(int32_t accept, void (*callback)(int32_t stored, void* context), void* context) {
  guarded([&] { sdk().acceptOrReject(accept != 0, answering(callback, context)); });
}

void quillon_present_banner(void) {
  guarded([] { sdk().presentBanner(); });
}

void quillon_present_preference_center(void) {
  guarded([] { sdk().presentPreferenceCenter(); });
}

void quillon_present_setting_prompt(const char* permission_key) {
  guarded([&] {
    if (permission_key != nullptr) sdk().presentSettingPrompt(VantariKey(std::string(permission_key)));
  });
}

void quillon_open_link(const char* link) {
  guarded([&] {
    if (link != nullptr) sdk().openLink(link);
  });
}

void quillon_upload_pending_consents(void (*callback)(int32_t uploaded, void* context), void* context) {
  guarded([&] { sdk().uploadPendingConsents(answering(callback, context)); });
}

void quillon_check_consents(void (*callback)(void* context), void* context) {
  guarded([&] {
    sdk().checkConsents([=] {
      if (callback != nullptr) callback(context);
    });
  });
}

}  // extern "C"
