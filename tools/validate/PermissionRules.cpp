#include <algorithm>
#include <charconv>
#include <set>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "tools/document/Symbols.h"
#include "tools/validate/Rules.h"
#include "tools/validate/Spelling.h"

namespace quillon::tools {
namespace {

bool isPurposeKey(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && std::string_view(PurposeKey(number)) == text;
}

}  // namespace

void permissionKeysAreUsable(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.permissions) return;
  for (std::size_t i = 0; i < configuration.permissions->size(); ++i) {
    const auto path = DocumentPath().at("permissions").at(i).at("permission_id");
    const auto& permission = (*configuration.permissions)[i].permissionId;
    const std::string name(permission ? permission->rawValue() : "");
    if (name.empty()) {
      report(path, "is missing; nothing can be found out about this permission");
    } else if (std::ranges::find(key::all, name) != key::all.end()) {
      report(path, inQuotes(name) + " is a name under which the SDK keeps a value of its own");
    } else if (isPurposeKey(name)) {
      report(path, inQuotes(name) + " is the name under which the decision on a purpose is kept");
    }
  }
}

void permissionsAreKnown(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.permissions) return;
  const auto known = knownPermissions();
  for (std::size_t i = 0; i < configuration.permissions->size(); ++i) {
    const auto& permission = (*configuration.permissions)[i].permissionId;
    if (!permission || permission->rawValue().empty() || permission->kind() != VantariKey::custom) continue;
    report(DocumentPath().at("permissions").at(i).at("permission_id"),
           inQuotes(permission->rawValue()) + " is none of the device's permissions" +
               (report.isFull() ? "" : didYouMean(permission->rawValue(), known)));
  }
}

void promptsNamePermissions(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.settingPrompt || !configuration.settingPrompt->permissions) return;
  std::set<std::string_view> listed;
  if (configuration.permissions) {
    for (const auto& permission : *configuration.permissions) {
      if (permission.permissionId) listed.insert(permission.permissionId->rawValue());
    }
  }
  for (const auto& [key, enabled] : *configuration.settingPrompt->permissions) {
    if (listed.contains(key)) continue;
    report(DocumentPath().at("settings_prompt").at("permissions").at(key), "no listed permission has this key");
  }
}

}  // namespace quillon::tools
