// Consents, their history and explanations.
#include <map>
#include <utility>

#include "bindings/c/Values.h"

namespace quillon::c {
namespace {

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

}  // namespace
}  // namespace quillon::c

using namespace quillon;
using namespace quillon::c;

extern "C" {

int32_t quillon_is_purpose_allowed(int64_t purpose_id) {
  return guarded([&] { return sdk().isAllowed(purpose_id) ? 1 : 0; });
}

int32_t quillon_is_permission_allowed(const char* key) {
  return guarded([&] { return key != nullptr && sdk().isAllowed(VantariKey(std::string(key))) ? 1 : 0; });
}

int32_t quillon_is_decided(int64_t purpose_id) {
  return guarded([&] { return sdk().isDecided(purpose_id) ? 1 : 0; });
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

void quillon_check_permission(const char* key, void (*callback)(quillon_consent consent, void* context),
                              void* context) {
  guarded([&] {
    if (callback == nullptr || key == nullptr) return;
    sdk().checkConsentBy(VantariKey(std::string(key)), [=](ConsentStatus status) { callback(inC(status), context); });
  });
}

void quillon_get_consent_script(void (*callback)(const char* script, void* context), void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    sdk().consentScript([=](const std::string& script) { callback(script.c_str(), context); });
  });
}

void quillon_get_history(size_t count, int64_t before,
                         void (*callback)(const quillon_decision* const* entries, size_t count, int64_t before,
                                          int64_t damaged, void* context),
                         void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    const auto from = before > 0 ? std::optional(before) : std::nullopt;
    sdk().getHistory(count, from, [=](const HistoryPage& page) {
      std::vector<quillon_decision> records;
      records.reserve(page.entries.size());
      for (const HistoryEntry& entry : page.entries) {
        records.push_back(inC(entry.decision));
        records.back().number = entry.number;
        records.back().upload = word(entry.upload);
        records.back().link = word(entry.link);
        records.back().hash = entry.hash.c_str();
      }
      callback(addresses(records).data(), records.size(), page.before.value_or(0), page.damaged, context);
    });
  });
}

void quillon_get_receipt(const int64_t* purposes, size_t count,
                         void (*callback)(const char* receipt, const char* error, void* context), void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    std::vector<std::int64_t> wanted;
    if (purposes != nullptr) wanted.assign(purposes, purposes + count);
    sdk().receipt(std::move(wanted), [=](const ConsentSDKResult<std::string>& receipt) {
      const auto* const document = receipt.value();
      const auto* const error = receipt.error();
      callback(document != nullptr ? document->c_str() : nullptr, error != nullptr ? error->error.c_str() : nullptr,
               context);
    });
  });
}

void quillon_explain(int64_t purpose_id, void (*callback)(const quillon_explanation* explanation, void* context),
                     void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    sdk().explain(purpose_id, [=](const ConsentExplanation& explanation) {
      const quillon_explanation record{.consent = inC(explanation.status),
                                       .cause = explanation.cause ? word(*explanation.cause) : nullptr,
                                       .time = explanation.time.value_or(0),
                                       .text = explanation.text.c_str()};
      callback(&record, context);
    });
  });
}

void quillon_remove_consents(void) {
  guarded([] { sdk().removeConsents(); });
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
