// What hosts listen to.
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Json/RawValues.h"

namespace quillon {
namespace {

constexpr RawValue<ScreenKind> kScreenKinds[] = {
    {ScreenKind::banner, "banner"},
    {ScreenKind::preferenceCenter, "preferenceCenter"},
    {ScreenKind::settingsPrompt, "settingsPrompt"},
    {ScreenKind::webView, "webView"},
};

}  // namespace

std::string_view rawValue(ScreenKind kind) noexcept {
  return textOf<ScreenKind>(kScreenKinds, kind);
}
template <>
std::optional<ScreenKind> fromRawValue(std::string_view text) noexcept {
  return caseOf<ScreenKind>(kScreenKinds, text);
}

Job ConsentSDK::Core::announce(std::vector<Decision> decisions) {
  std::vector<Job> deliveries;
  for (Decision& decision : decisions) {
    if (decision.from != decision.to) deliveries.push_back(consentListeners.queue(std::move(decision)));
  }
  return [deliveries = std::move(deliveries)]() mutable {
    for (Job& deliver : deliveries) deliver();
  };
}

std::shared_ptr<void> ConsentSDK::Core::shown(ScreenKind screen) {
  screenListeners.tell({screen, true, now()});
  const auto dismissed = [weak = weak_from_this(), screen](void*) {
    if (const auto core = weak.lock()) core->screenListeners.tell({screen, false, core->now()});
  };
  return std::shared_ptr<void>(this, dismissed);
}

Listening ConsentSDK::listenToConsents(std::function<void(const Decision&)> listener) {
  return core_->consentListeners.add(std::move(listener));
}

Listening ConsentSDK::listenToScreens(std::function<void(const ScreenEvent&)> listener) {
  return core_->screenListeners.add(std::move(listener));
}

Listening ConsentSDK::listenToUploads(std::function<void(const UploadEvent&)> listener) {
  return core_->uploadListeners.add(std::move(listener));
}

}  // namespace quillon
