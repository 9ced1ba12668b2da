#include "core/Permissions/PermissionManager.h"

#include <algorithm>

#include "core/Logger/UnitLog.h"
#include "core/Permissions/PermissionTranslation.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"

namespace quillon {
namespace {

// The answer for permissions outside the device's permission settings.
std::optional<ConsentStatus> answerAtOnce(const Platform& platform, const VantariKey& key) {
  switch (key.kind()) {
    case VantariKey::custom:
      return ConsentStatus::notDetermined;
    case VantariKey::userTrackingUsageDescription:
      return consentFromPlatformValue(key.kind(), static_cast<int>(platform.tracking->authorization()));
    case VantariKey::localNetworkUsageDescription:
    case VantariKey::fileProviderDomainUsageDescription:
    case VantariKey::systemExtensionUsageDescription:
      return consentFromInformation(platform.host->information(key.rawValue()));
    default:
      return std::nullopt;
  }
}

// Stores the status, marks it pending and appends it to the history.
void store(StoreTransaction& transaction, const VantariKey& permission, ConsentStatus status, DecisionCause cause,
           const DecisionContext& context) {
  const std::string& name = permission.rawValue();
  transaction.append({.time = context.time,
                      .permission = permission,
                      .from = transaction.consent(name),
                      .to = status,
                      .cause = cause,
                      .givenType = context.givenType,
                      .language = context.language},
                     context.application);
  transaction.addPendingPermission(name);
  transaction.set(name, std::string(rawValue(status)));
}

std::string listText(const std::vector<std::string>& keys) {
  std::string text = "[";
  for (const auto& entry : keys) {
    if (text.size() > 1) text += ", ";
    text += "\"" + escapedForLog(entry) + "\"";
  }
  return text + "]";
}

}  // namespace

const std::vector<AppPermission>& PermissionManager::permissions() const {
  static const std::vector<AppPermission> none;
  return configuration_ && configuration_->permissions ? *configuration_->permissions : none;
}

bool PermissionManager::lists(const VantariKey& permission) const {
  return std::ranges::any_of(permissions(),
                             [&](const AppPermission& listed) { return listed.permissionId == permission; });
}

ConsentStatus PermissionManager::getConsentByPermission(const VantariKey& vantiriKey) const {
  if (const auto answer = answerAtOnce(platform_, vantiriKey)) return *answer;
  const auto value = platform_.permissions->platformValue(vantiriKey);
  if (value) return consentFromPlatformValue(vantiriKey.kind(), *value);
  UnitLog(logger_, unit::permissionManager)(
      LogLevel::error, "Something went wrong while fetching the permission status: " + escapedForLog(value.error()),
      "getConsentByPermission(vantiriKey:)");
  return ConsentStatus::notDetermined;
}

std::optional<ConsentStatus> PermissionManager::knownConsent(const VantariKey& permission) const {
  if (const auto answer = answerAtOnce(platform_, permission)) return answer;
  const auto value = platform_.permissions->knownValue(permission);
  return value ? std::optional(consentFromPlatformValue(permission.kind(), *value)) : std::nullopt;
}

std::vector<std::pair<VantariKey, ConsentStatus>> PermissionManager::liveStatuses() const {
  std::vector<std::pair<VantariKey, ConsentStatus>> statuses;
  for (const AppPermission& permission : permissions()) {
    // Otherwise a configuration could overwrite identity, token or decisions.
    if (permission.permissionId && !key::isReserved(permission.permissionId->rawValue())) {
      statuses.emplace_back(*permission.permissionId, getConsentByPermission(*permission.permissionId));
    }
  }
  return statuses;
}

bool PermissionManager::storeStatuses(const DecisionContext& context) {
  const auto statuses = liveStatuses();
  bool changed = false;
  store_.transact([&](StoreTransaction& transaction) {
    changed = false;
    for (const auto& [permission, status] : statuses) {
      if (transaction.consent(permission.rawValue()) == status) continue;
      setConsent(transaction, permission, status, DecisionCause::device, context);
      changed = true;
    }
  });
  return changed;
}

bool PermissionManager::checkPermissions(const DecisionContext& context) {
  const UnitLog log(logger_, unit::permissionManager);
  log(LogLevel::info, "Permissions consent checks executed.", "checkPermissions()");
  const auto statuses = liveStatuses();
  std::vector<std::string> changed;
  store_.transact([&](StoreTransaction& transaction) {
    changed.clear();
    for (const auto& [permission, status] : statuses) {
      const std::string& name = permission.rawValue();
      if (transaction.consent(name) == status) continue;
      store(transaction, permission, status, DecisionCause::device, context);
      changed.push_back(name);
    }
  });
  if (!changed.empty()) log(LogLevel::info, "Changed Permissions: " + listText(changed), "checkPermissions()");
  return !changed.empty();
}

bool hasSettingsPrompt(const MainConfiguration& configuration, const VantariKey& permission) {
  if (!configuration.settingPrompt || !configuration.settingPrompt->permissions) return false;
  const auto found = configuration.settingPrompt->permissions->find(permission.rawValue());
  return found != configuration.settingPrompt->permissions->end() && found->second;
}

std::vector<AppPermission> PermissionManager::permissionsWithConsents() const {
  std::vector<AppPermission> result = permissions();
  const bool hasPrompts = configuration_ && configuration_->settingPrompt && configuration_->settingPrompt->permissions;
  for (AppPermission& permission : result) {
    if (!permission.permissionId) continue;
    permission.consentStatus = getConsentByPermission(*permission.permissionId);
    if (hasPrompts) permission.isSettingsPromptEnabled = hasSettingsPrompt(*configuration_, *permission.permissionId);
  }
  return result;
}

std::vector<PermissionConsent> PermissionManager::pendingConsents(const StoredValues& stored) const {
  const std::int64_t now = wholeSeconds(platform_.clock->now());
  std::vector<PermissionConsent> consents;
  for (const std::string& name : stored.pendingPermissions()) {
    consents.push_back({VantariKey(name), stored.consent(name).value_or(ConsentStatus::notDetermined), now});
  }
  return consents;
}

void PermissionManager::setConsent(StoreTransaction& transaction, const VantariKey& permission, ConsentStatus status,
                                   DecisionCause cause, const DecisionContext& context) {
  if (transaction.consent(permission.rawValue()) != status) {
    transaction.set(key::arePermissionsChanged, true);
    transaction.set(key::permissionsChangeTimestamp, context.time);
  }
  transaction.setGivenType(context.givenType);
  store(transaction, permission, status, cause, context);
}

}  // namespace quillon
