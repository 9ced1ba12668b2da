// The public operations, one line each.
#include <algorithm>
#include <limits>

#include "core/ConsentSDK/Asynchronous.h"
#include "core/ConsentSDK/ConsentSDKCore.h"
#include "core/ConsentSDK/WithoutThrowing.h"

namespace quillon {

using Signals = std::map<GoogleConsentType, ConsentStatus>;

namespace {

// Runs a decision's follow-up, and returns whether the decision was stored.
std::move_only_function<Task<bool>()> following(DecisionRecorder::FollowUp followUp) {
  return [followUp = std::move(followUp)]() mutable -> Task<bool> {
    if (!followUp) co_return false;
    co_await followUp();
    co_return true;
  };
}

template <class Core>
std::move_only_function<Task<std::optional<BannerConfig>>()> banner(const std::shared_ptr<Core>& core,
                                                                    std::optional<MainConfiguration> given) {
  return [core, given = std::move(given)]() mutable {
    return core->loader.bannerFor(given ? std::make_shared<const MainConfiguration>(std::move(*given))
                                        : core->loader.current());
  };
}

template <class Core>
std::move_only_function<HistoryPage()> pageOfHistory(const std::shared_ptr<Core>& core, std::size_t count,
                                                     std::optional<std::int64_t> before) {
  return [core, count = std::clamp<std::size_t>(count, 1, maximumJournalRecords),
          before = before.value_or(std::numeric_limits<std::int64_t>::max())] {
    return core->store.verifiedHistory(before, count);
  };
}

}  // namespace

ConsentStatus ConsentSDK::get(std::int64_t purposeId) const {
  const PurposeState purpose = core_->store.consents().purpose(purposeId);
  return purpose.decision().value_or(purpose.byDefault());
}

ConsentStatus ConsentSDK::get(const VantariKey& vantariKey) const {
  return withoutThrowing([&] { return core_->questions.permissionStatus(vantariKey); }, ConsentStatus::notDetermined);
}

bool ConsentSDK::isAllowed(std::int64_t purposeId) const {
  return withoutThrowing([&] { return core_->isAllowed(purposeId); }, false);
}

bool ConsentSDK::isAllowed(const VantariKey& vantariKey) const {
  return withoutThrowing([&] { return core_->questions.isPermissionAllowed(vantariKey); }, false);
}

bool ConsentSDK::isDecided(std::int64_t purposeId) const {
  return core_->store.consents().purpose(purposeId).decision().has_value();
}

bool ConsentSDK::set(const Purpose& purpose, ConsentStatus consent) {
  return withoutThrowing([&] { return core_->recorder.set(purpose, consent); }, false);
}

bool ConsentSDK::set(const AppPermission& permission, ConsentStatus consent) {
  return withoutThrowing([&] { return core_->recorder.set(permission, consent); }, false);
}

void ConsentSDK::removeConsents() {
  withoutThrowing([&] {
    if (core_->loader.removeConsents()) core_->notices.clear();
  });
}

bool ConsentSDK::isBannerDue() {
  return withoutThrowing([&] { return core_->screens.isBannerDue(); }, false);
}

BannerExplanation ConsentSDK::explainBanner() const {
  return withoutThrowing([&] { return core_->screens.explainBanner(); }, BannerExplanation());
}

void ConsentSDK::getPurposeConsents(std::function<void(std::vector<Purpose>)> callback) {
  answer<std::vector<Purpose>>(core_->work, std::move(callback), [core = core_] { return core->questions.purposes(); });
}

std::future<std::vector<Purpose>> ConsentSDK::getPurposeConsents() {
  return promise<std::vector<Purpose>>(core_->work, [core = core_] { return core->questions.purposes(); });
}

void ConsentSDK::getPermissionConsents(std::function<void(std::vector<AppPermission>)> callback) {
  answer<std::vector<AppPermission>>(core_->work, std::move(callback),
                                     [core = core_] { return core->questions.permissions(); });
}

std::future<std::vector<AppPermission>> ConsentSDK::getPermissionConsents() {
  return promise<std::vector<AppPermission>>(core_->work, [core = core_] { return core->questions.permissions(); });
}

void ConsentSDK::checkConsentBy(VantariKey permissionId, std::function<void(ConsentStatus)> callback) {
  answer<ConsentStatus>(core_->work, std::move(callback), [core = core_, permissionId = std::move(permissionId)] {
    return core->questions.livePermission(permissionId);
  });
}

std::future<ConsentStatus> ConsentSDK::checkConsentBy(VantariKey permissionId) {
  return promise<ConsentStatus>(
      core_->work,
      [core = core_, permissionId = std::move(permissionId)] { return core->questions.livePermission(permissionId); },
      ConsentStatus::notDetermined);
}

void ConsentSDK::getGCMConsents(std::function<void(Signals)> callback) {
  answer<Signals>(core_->work, std::move(callback), [core = core_] { return core->questions.consentModeSignals(); });
}

std::future<Signals> ConsentSDK::getGCMConsents() {
  return promise<Signals>(core_->work, [core = core_] { return core->questions.consentModeSignals(); });
}

void ConsentSDK::consentScript(std::function<void(std::string)> callback) {
  answer<std::string>(core_->work, std::move(callback), [core = core_] { return core->questions.consentScript(); });
}

std::future<std::string> ConsentSDK::consentScript() {
  return promise<std::string>(core_->work, [core = core_] { return core->questions.consentScript(); });
}

void ConsentSDK::explain(std::int64_t purposeId, std::function<void(ConsentExplanation)> callback) {
  answer<ConsentExplanation>(core_->work, std::move(callback),
                             [core = core_, purposeId] { return core->questions.explain(purposeId); });
}

std::future<ConsentExplanation> ConsentSDK::explain(std::int64_t purposeId) {
  return promise<ConsentExplanation>(core_->work,
                                     [core = core_, purposeId] { return core->questions.explain(purposeId); });
}

void ConsentSDK::getBannerConfig(std::optional<MainConfiguration> configuration,
                                 std::function<void(std::optional<BannerConfig>)> callback) {
  answer<std::optional<BannerConfig>>(core_->work, std::move(callback), banner(core_, std::move(configuration)));
}

std::future<std::optional<BannerConfig>> ConsentSDK::getBannerConfig(std::optional<MainConfiguration> configuration) {
  return promise<std::optional<BannerConfig>>(core_->work, banner(core_, std::move(configuration)));
}

void ConsentSDK::getSettingsPrompt(std::function<void(std::optional<SettingsPrompt>)> callback) {
  answer<std::optional<SettingsPrompt>>(core_->work, std::move(callback), [core = core_] {
    return core->questions.part(&MainConfiguration::settingPrompt);
  });
}

std::future<std::optional<SettingsPrompt>> ConsentSDK::getSettingsPrompt() {
  return promise<std::optional<SettingsPrompt>>(
      core_->work, [core = core_] { return core->questions.part(&MainConfiguration::settingPrompt); });
}

void ConsentSDK::getGCMConfig(std::function<void(std::optional<GcmConfig>)> callback) {
  answer<std::optional<GcmConfig>>(core_->work, std::move(callback),
                                   [core = core_] { return core->questions.part(&MainConfiguration::gcmConfig); });
}

std::future<std::optional<GcmConfig>> ConsentSDK::getGCMConfig() {
  return promise<std::optional<GcmConfig>>(
      core_->work, [core = core_] { return core->questions.part(&MainConfiguration::gcmConfig); });
}

void ConsentSDK::getHistory(std::size_t count, std::optional<std::int64_t> before,
                            std::function<void(HistoryPage)> callback) {
  answer<HistoryPage>(core_->work, std::move(callback), pageOfHistory(core_, count, before));
}

std::future<HistoryPage> ConsentSDK::getHistory(std::size_t count, std::optional<std::int64_t> before) {
  return promise<HistoryPage>(core_->work, pageOfHistory(core_, count, before));
}

void ConsentSDK::receipt(std::vector<std::int64_t> purposes,
                         std::function<void(ConsentSDKResult<std::string>)> callback) {
  answer<ConsentSDKResult<std::string>>(
      core_->work, std::move(callback),
      [core = core_, purposes = std::move(purposes)] { return core->receipts.receipt(purposes); });
}

std::future<ConsentSDKResult<std::string>> ConsentSDK::receipt(std::vector<std::int64_t> purposes) {
  return promise<ConsentSDKResult<std::string>>(
      core_->work, [core = core_, purposes = std::move(purposes)] { return core->receipts.receipt(purposes); },
      ConsentSDKResult<std::string>::failure({"the SDK was closed"}));
}

void ConsentSDK::uploadPendingConsents(std::function<void(bool)> callback) {
  answer<bool>(core_->work, std::move(callback),
               [core = core_] { return core->uploader.uploadPending(ConsentUploader::Trigger::application); });
}

std::future<bool> ConsentSDK::uploadPendingConsents() {
  return promise<bool>(core_->work,
                       [core = core_] { return core->uploader.uploadPending(ConsentUploader::Trigger::application); });
}

void ConsentSDK::acceptOrReject(bool accept, std::function<void(bool)> callback) {
  withoutThrowing([&] {
    deliver<bool>(core_->work, following(core_->recorder.answer(accept, std::string(applicationsNotice))),
                  receiver<bool>(core_->work, std::move(callback)));
  });
}

std::future<bool> ConsentSDK::acceptOrReject(bool accept) {
  return withoutThrowing(
      [&] {
        DecisionRecorder::FollowUp followUp = core_->recorder.answer(accept, std::string(applicationsNotice));
        const bool stored = static_cast<bool>(followUp);
        const auto kept = std::make_shared<Promise<bool>>(stored);
        auto future = kept->future();
        deliver<bool>(core_->work, following(std::move(followUp)), receiver<bool>(kept));
        return future;
      },
      std::future<bool>());
}

void ConsentSDK::uploadConsents(std::string url, PostConsentsRequest request, std::function<void()> done) {
  withoutThrowing([&] {
    answerLater(core_->work, std::move(done), [core = core_, url = std::move(url), request = std::move(request)] {
      return core->uploader.upload(url, request);
    });
  });
}

std::future<void> ConsentSDK::uploadConsents(std::string url, PostConsentsRequest request) {
  return withoutThrowing(
      [&] {
        return futureOf(core_->work, [core = core_, url = std::move(url), request = std::move(request)] {
          return core->uploader.upload(url, request);
        });
      },
      std::future<void>());
}

void ConsentSDK::checkConsents(std::function<void()> done) {
  withoutThrowing([&] { answerLater(core_->work, std::move(done), [core = core_] { return core->cycle.check(); }); });
}

std::future<void> ConsentSDK::checkConsents() {
  return withoutThrowing([&] { return futureOf(core_->work, [core = core_] { return core->cycle.check(); }); },
                         std::future<void>());
}

void ConsentSDK::presentBanner() {
  withoutThrowing([&] { core_->screens.presentBanner(); });
}

void ConsentSDK::presentPreferenceCenter() {
  withoutThrowing([&] { core_->screens.presentPreferenceCenter(); });
}

void ConsentSDK::presentSettingPrompt(VantariKey permissionId) {
  withoutThrowing(
      [&] { core_->screens.presentSettingPrompt(std::move(permissionId), Screens::Offer::unlessClosedBefore); });
}

void ConsentSDK::openLink(std::string link) {
  withoutThrowing([&] { core_->screens.openLink(std::move(link)); });
}

void ConsentSDK::registerFonts(std::optional<CustomFont> heading, std::optional<CustomFont> body,
                               std::optional<CustomFont> subHeading, std::optional<CustomFont> headingLight) {
  core_->theme.registerFonts({std::move(heading), std::move(body), std::move(subHeading), std::move(headingLight)});
}

void ConsentSDK::registerColors(CustomColors colors) {
  core_->theme.registerColors(colors);
}

std::future<void> ConsentSDK::settled() {
  return core_->work.settled();
}

}  // namespace quillon
