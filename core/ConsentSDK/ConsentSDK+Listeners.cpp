// The operations that add listeners.
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/Json/RawValues.h"

namespace quillon {

QUILLON_RAW_VALUES(ScreenKind, {ScreenKind::banner, "banner"}, {ScreenKind::preferenceCenter, "preferenceCenter"},
                   {ScreenKind::settingsPrompt, "settingsPrompt"}, {ScreenKind::webView, "webView"});

Listening ConsentSDK::listenToConsents(std::function<void(const Decision&)> listener) {
  return core_->events.consents.add(std::move(listener));
}

Listening ConsentSDK::listenToScreens(std::function<void(const ScreenEvent&)> listener) {
  return core_->events.screens.add(std::move(listener));
}

Listening ConsentSDK::listenToUploads(std::function<void(const UploadEvent&)> listener) {
  return core_->events.uploads.add(std::move(listener));
}

Listening ConsentSDK::listenToBannerDue(std::function<void(const BannerExplanation&)> listener) {
  return core_->events.bannerDue.add(std::move(listener));
}

Listening ConsentSDK::whileAllowed(std::int64_t purposeId, std::function<void()> start, std::function<void()> stop) {
  return core_->events.gates.add(purposeId, std::move(start), std::move(stop));
}

}  // namespace quillon
