#include "core/Integrations/GoogleConsentModeHelper.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/Ascii.h"

namespace quillon {
namespace {

// Whether a key such as "US#CA, US#NY" lists the code.
bool lists(std::string_view regions, std::string_view code) {
  for (;;) {
    const auto comma = regions.find(',');
    if (trimmed(regions.substr(0, comma)) == code) return true;
    if (comma == std::string_view::npos) return false;
    regions.remove_prefix(comma + 1);
  }
}

}  // namespace

const DefaultMapping* consentModeMapping(const GcmConfig& configuration, const std::optional<std::string>& location) {
  if (location && !location->empty() && configuration.regionOverrides) {
    std::vector<std::string_view> codes{*location};
    if (const auto state = location->rfind('#'); state != std::string::npos) {
      codes.push_back(std::string_view(*location).substr(state + 1));
    }
    for (const std::string_view code : codes) {
      const auto found = std::ranges::find_if(*configuration.regionOverrides,
                                              [&](const auto& entry) { return lists(entry.first, code); });
      if (found != configuration.regionOverrides->end()) return &found->second;
    }
  }
  return configuration.defaultMapping ? &*configuration.defaultMapping : nullptr;
}

ConsentMap consentMap(const DefaultMapping& mapping, const StoredValues& stored, const OptOuts& optOuts) {
  // A configuration without a banner has no compliance type, so undecided purposes are not granted.
  const bool isTypeKnown = stored.string(key::currentComplianceType).has_value();
  const ConsentStatus undecided = isTypeKnown ? stored.complianceDefault() : ConsentStatus::notDetermined;
  const auto isGranted = [&](const std::optional<std::vector<std::int64_t>>& purposes) {
    return purposes && !purposes->empty() && std::ranges::all_of(*purposes, [&](std::int64_t id) {
             return !optOuts.include(id, stored) &&
                    stored.consent(PurposeKey(id)).value_or(undecided) == ConsentStatus::granted;
           });
  };
  return {{GoogleConsentType::analyticsStorage, isGranted(mapping.analyticsStorage)},
          {GoogleConsentType::adStorage, isGranted(mapping.adStorage)},
          {GoogleConsentType::adUserData, isGranted(mapping.adUserData)},
          {GoogleConsentType::adPersonalization, isGranted(mapping.adPersonalization)}};
}

void GoogleConsentModeHelper::updateFirebaseConsent(std::shared_ptr<const MainConfiguration> mainConfiguration,
                                                    std::optional<std::string> location) {
  {
    const std::scoped_lock lock(mutex_);
    const bool isGone = !mainConfiguration;
    if (!isGone) last_ = Request{std::move(mainConfiguration), std::move(location)};
    if (!last_) return;
    newest_ = last_;
    newest_->isGone = isGone;
    if (std::exchange(isSending_, true)) return;
  }
  for (;;) {
    Request request;
    {
      const std::scoped_lock lock(mutex_);
      if (!newest_) {
        isSending_ = false;
        return;
      }
      request = *std::exchange(newest_, std::nullopt);
    }
    try {
      send(request);
    } catch (...) {
      const std::scoped_lock lock(mutex_);
      isSending_ = false;
      throw;
    }
  }
}

void GoogleConsentModeHelper::send(const Request& request) {
  const MainConfiguration& configuration = *request.configuration;
  if (!configuration.isGcmEnabled.value_or(false) || !configuration.gcmConfig) return;
  const DefaultMapping* mapping = consentModeMapping(*configuration.gcmConfig, request.location);
  if (!mapping) {
    UnitLog(logger_, unit::consentModeHelper)(
        LogLevel::debug, "No GCM mapping found for location: " + escapedForLog(request.location.value_or("nil")),
        "updateFirebaseConsent(mainConfiguration:location:)");
    return;
  }
  auto signals = consentMap(*mapping, StoredValues(*store_.snapshot()), optOuts_());
  if (request.isGone) {
    for (auto& [type, granted] : signals) granted = granted && lastSent_.contains(type) && lastSent_.at(type);
    if (signals == lastSent_) return;
  }
  setFirebaseConsent(signals);
  lastSent_ = std::move(signals);
}

void GoogleConsentModeHelper::setFirebaseConsent(const ConsentMap& consentMap) {
  constexpr std::string_view function = "setFirebaseConsent(consentMap:)";
  const UnitLog log(logger_, unit::consentModeHelper);
  const auto& sink = platform_.consentSink;
  if (stop_.stop_requested()) return;
  if (!sink) return log(LogLevel::debug, "Firebase Analytics not found in project", function);

  std::map<std::string, std::string> signals;
  std::string text = "[";
  for (const auto& [type, granted] : consentMap) {
    const std::string value = granted ? "granted" : "denied";
    if (text.size() > 1) text += ", ";
    text.append("\"").append(rawValue(type)).append("\": \"").append(value).append("\"");
    signals.emplace(rawValue(type), value);
  }
  try {
    if (!sink->takesConsent()) return log(LogLevel::debug, "Firebase Analytics setConsent method not found", function);
    sink->setConsent(signals);
  } catch (const std::exception& exception) {
    return log(LogLevel::error, "The host's analytics library threw: " + escapedForLog(exception.what()), function);
  } catch (...) {
    return log(LogLevel::error, "The host's analytics library threw", function);
  }
  log(LogLevel::debug, "Firebase consent updated successfully: " + text + "]", function);
}

}  // namespace quillon
