#include "tests/sim/StoreView.h"

#include "tests/sim/Documents.h"

namespace quillon::sim {
namespace {

template <class Value, class Into>
void read(const SuiteEntries& entries, std::string_view key, Into& into) {
  const auto found = entries.find(key);
  if (found == entries.end()) return;
  if (const auto* value = std::get_if<Value>(&found->second)) into = *value;
}

std::set<int> purposesIn(const SuiteEntries& entries, std::string_view key) {
  std::vector<std::int64_t> list;
  read<std::vector<std::int64_t>>(entries, key, list);
  return {list.begin(), list.end()};
}

}  // namespace

std::string described(const StoreView& store) {
  std::string text = store.given + " under \"" + store.law + "\":";
  for (const auto& [purpose, status] : store.decisions) text += " " + std::to_string(purpose) + "=" + status;
  for (const int purpose : store.signalled) text += " signal:" + std::to_string(purpose);
  return text;
}

StoreView viewOf(const SuiteEntries& entries) {
  StoreView view;
  for (const int purpose : purposes) {
    std::string status;
    read<std::string>(entries, std::to_string(purpose), status);
    if (!status.empty()) view.decisions.emplace(purpose, std::move(status));
  }
  view.answered = purposesIn(entries, "ANSWERED_PURPOSES_LIST");
  view.signalled = purposesIn(entries, "SIGNAL_PURPOSES_LIST");
  read<std::string>(entries, "CONSENT_GIVEN_TYPE", view.given);
  read<std::string>(entries, "CURRENT_COMPLIANCE_TYPE", view.law);
  read<std::string>(entries, "BANNER_INTERVAL", view.interval);
  read<std::int64_t>(entries, "SDK_VERSION", view.version);
  read<bool>(entries, "IS_BANNER_PRESENT", view.isBannerPresent);
  read<std::int64_t>(entries, "BANNER_SHOWN_DATE", view.shown);
  read<std::vector<std::int64_t>>(entries, "PENDING_PURPOSES_LIST", view.pending);
  std::vector<std::string> permissions;
  read<std::vector<std::string>>(entries, "PENDING_PERMISSIONS_LIST", permissions);
  view.isAnyPermissionPending = !permissions.empty();
  read<bool>(entries, "UPLOAD_CONSENT_REQUEST_PENDING", view.hasUploadFailed);
  view.isRefused = entries.contains("UPLOAD_REFUSED_UP_TO");
  read<std::string>(entries, "SUBJECT_ID", view.subject);
  return view;
}

}  // namespace quillon::sim
