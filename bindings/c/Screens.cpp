// The banner's content, and the SDK's own screens.
#include "bindings/c/Values.h"

using namespace quillon;
using namespace quillon::c;

extern "C" {

int32_t quillon_is_banner_due(void) {
  return guarded([] { return sdk().isBannerDue() ? 1 : 0; });
}

void quillon_explain_banner(void (*callback)(const quillon_banner_explanation* explanation, void* context),
                            void* context) {
  guarded([&] {
    if (callback == nullptr) return;
    const BannerExplanation explanation = sdk().explainBanner();
    const quillon_banner_explanation record = inC(explanation);
    callback(&record, context);
  });
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

}  // extern "C"
