/// @file
/// The SDK's entry point.
#pragma once

#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "quillon/ConsentSDKOptions.h"
#include "quillon/ConsentSDKResult.h"
#include "quillon/ConsentStatus.h"
#include "quillon/DecisionHistory.h"
#include "quillon/Explanations.h"
#include "quillon/GoogleConsentType.h"
#include "quillon/Listeners.h"
#include "quillon/MainConfiguration.h"
#include "quillon/PostConsentsRequest.h"
#include "quillon/SDKStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

class SDKLogger;
class SignalPublisher;
class ScreenServices;
class SignalSource;
struct Platform;

/// Stores the user's consents, decides when the banner is due and uploads the decisions.
///
/// All members are thread-safe and may be called before setup(). None waits for the network; a write returns once it is
/// durable, normally within a few milliseconds. Nothing throws: a failure is logged and shows as a status, an empty
/// result or `false`. One failure stops the process: a consent store that can be neither opened nor created.
///
/// Calls from one thread take effect in order: the later of two answers holds, and so does a set() after an answer.
///
/// Each asynchronous operation has two forms. Callback: called exactly once, on the main queue, after the call has
/// returned; it owns its arguments; its exceptions are caught and logged; it is not called when the SDK is destroyed or
/// closed first. Future: becomes ready on an SDK thread and never holds an exception; it holds an empty list, text or
/// record, `false`, an error, or ConsentStatus::notDetermined when the SDK is destroyed or closed first. The main queue
/// may block on a future.
///
/// Ask isAllowed() or whileAllowed() before acting on a purpose: they fail closed. get() returns the status, which
/// without a configuration is the default `granted`.
///
/// @code
/// auto& sdk = quillon::ConsentSDK::shared();
/// sdk.setup({.appUrl = "https://app.example.com/",
///            .cdnUrl = "https://cdn.example.com/",
///            .tenantId = "demo-tenant",
///            .appId = "news-reader"});
/// sdk.isReady([&](quillon::SDKStatus status) {
///   if (status == quillon::SDKStatus::ready) sdk.presentBanner();
/// });
/// @endcode
class ConsentSDK {
 public:
  /// The instance of this process, over the platform library that is linked. Created on first use and never destroyed,
  /// so threads of the application may use it until the process ends. Closed when main() returns or exit() is called:
  /// see close().
  static ConsentSDK& shared();

  /// Stops the SDK: cancels running work and waits for it, and for callbacks on other threads, up to two seconds.
  /// Afterwards consents can still be read and stored, but nothing is loaded, checked or uploaded, no callback is
  /// called, and futures hold an empty result at once. Stored decisions that were not uploaded are uploaded by the next
  /// run of the application. Thread-safe; a second call does nothing.
  void close();

  /// A separate instance over the given services; several may coexist.
  explicit ConsentSDK(Platform platform);
  /// Cancels running work. When called on the main queue, no callback begins afterwards.
  ~ConsentSDK();
  ConsentSDK(const ConsentSDK&) = delete;
  ConsentSDK& operator=(const ConsentSDK&) = delete;

  /// @name Set-up and readiness
  /// @{

  /// Applies the options and the cache-reset rules, and starts loading the configuration in the background. A further
  /// call replaces the options and loads again.
  void setup(ConsentSDKOptions options);

  /// Whether a configuration is available.
  [[nodiscard]] SDKStatus getStatus() const;

  /// Calls @p callback at once on the calling thread with the current status, then on the main queue with every status
  /// that differs from the last one reported. A second call replaces the callback.
  void isReady(std::function<void(SDKStatus)> callback);

  /// Removes the callback of isReady(); listeners of other events stay.
  void removeListeners();

  /// The SDK's version, such as "1.2.0"; nullopt when the installation does not state one.
  [[nodiscard]] std::optional<std::string> sdkVersion() const;

  /// The logger of this instance.
  [[nodiscard]] SDKLogger& logger();
  /// @}

  /// @name Consents
  /// @{

  /// Whether the application may act on a purpose now. True in two cases. With a stored decision: the decision is
  /// `granted`. Without one: a configuration in force in this process lists the purpose, the purpose is essential or
  /// the compliance type needs no question, and no store entries were lost to damage. A purpose bound to app tracking
  /// also needs the device's authorization, and an honoured privacy signal denies purposes that the user has not
  /// answered. False in every other case, such as before the first configuration, or after close() without a decision.
  /// Any thread; never waits and allocates nothing; cheap enough to call every frame.
  ///
  /// @code
  /// if (!quillon::ConsentSDK::shared().isAllowed(2)) stopCounting();
  /// @endcode
  [[nodiscard]] bool isAllowed(std::int64_t purposeId) const;

  /// Whether the device is known to grant a permission now. Never waits for the device and ignores stored values. Any
  /// thread.
  [[nodiscard]] bool isAllowed(const VantariKey& vantariKey) const;

  /// Whether a decision on the purpose is stored: an answer or a recorded default.
  [[nodiscard]] bool isDecided(std::int64_t purposeId) const;

  /// Follows isAllowed(): alternately calls @p start when the purpose becomes allowed (at first if it already is) and
  /// @p stop when it no longer is, until the handle is dropped or the SDK closed. Calls come on the main queue, which
  /// evaluates isAllowed() at that moment. Every cause counts: decisions, defaults, the tracking status, a new
  /// configuration, removeConsents(), damage, and other processes of the application within a second.
  ///
  /// @code
  /// auto counting = sdk.whileAllowed(2, startCounting, stopCounting);
  /// @endcode
  Listening whileAllowed(std::int64_t purposeId, std::function<void()> start, std::function<void()> stop);

  /// The decision on a purpose, else the default of the compliance type; `granted` while no compliance type is known.
  /// Not a permission to act: for that, ask isAllowed(). Cheap enough to call every frame.
  [[nodiscard]] ConsentStatus get(std::int64_t purposeId) const;

  /// The state of a permission. For a permission the configuration lists: the device's last known answer. For others,
  /// or while the device has not answered: the value stored last. Never waits for the device.
  [[nodiscard]] ConsentStatus get(const VantariKey& vantariKey) const;

  /// Stores the user's choice for a purpose. The upload follows about a second later, with other choices made
  /// meanwhile. False when the choice could not be stored (no identifier, disk full); the earlier decision then stands.
  bool set(const Purpose& purpose, ConsentStatus consent);

  /// Stores the state of a permission as the user's choice. False when it could not be stored.
  bool set(const AppPermission& permission, ConsentStatus consent);

  /// The configured purposes in display order, with their current consents.
  void getPurposeConsents(std::function<void(std::vector<Purpose>)> callback);
  [[nodiscard]] std::future<std::vector<Purpose>> getPurposeConsents();

  /// The configured permissions in display order, with the device's current answers.
  void getPermissionConsents(std::function<void(std::vector<AppPermission>)> callback);
  [[nodiscard]] std::future<std::vector<AppPermission>> getPermissionConsents();

  /// The device's current answer for a permission; `notDetermined` for one that the configuration does not list.
  void checkConsentBy(VantariKey permissionId, std::function<void(ConsentStatus)> callback);
  [[nodiscard]] std::future<ConsentStatus> checkConsentBy(VantariKey permissionId);

  /// The consent-mode signals for the current consents; empty when the configuration maps none.
  void getGCMConsents(std::function<void(std::map<GoogleConsentType, ConsentStatus>)> callback);
  [[nodiscard]] std::future<std::map<GoogleConsentType, ConsentStatus>> getGCMConsents();

  /// A JavaScript that passes the current consents to a page in the application's own web view. It sets
  /// `window.quillonConsents` to the purposes (id, name, status) and permissions (permission, status). Where the
  /// configuration drives consent mode, it calls `gtag('consent', 'default' | 'update', …)` with the four signals: as
  /// before any decision, and as of now. Run it before the page's own scripts, and again after a change. Safe inside a
  /// script element, whatever the configured texts contain. With a SignalPublisher it also provides `__tcfapi` and
  /// `__gpp`. Empty when the SDK is destroyed first.
  ///
  /// @code
  /// sdk.consentScript([view](std::string script) { view->addScriptAtDocumentStart(std::move(script)); });
  /// @endcode
  void consentScript(std::function<void(std::string)> callback);
  [[nodiscard]] std::future<std::string> consentScript();

  /// The history of decisions, newest first: @p count of them (1 to 10,000), older than entry number @p before if
  /// given. The last 10,000 are kept (at times 200 fewer): every choice, recorded default and change by the device,
  /// each written in the same transaction as its consent. A set() that failed leaves no entry. Damaged entries are left
  /// out and counted. Empty when the store cannot be read.
  ///
  /// @code
  /// auto page = sdk.getHistory(50).get();
  /// while (page.before) page = sdk.getHistory(50, page.before).get();
  /// @endcode
  void getHistory(std::size_t count, std::optional<std::int64_t> before, std::function<void(HistoryPage)> callback);
  [[nodiscard]] std::future<HistoryPage> getHistory(std::size_t count = 100,
                                                    std::optional<std::int64_t> before = std::nullopt);

  /// A signed receipt of the decisions on @p purposes, or on all purposes when it is empty: a JSON document in the
  /// Data Privacy Vocabulary's form of an ISO/IEC TS 27560:2023 consent receipt. It contains the device's public key,
  /// with which anybody can verify it. Fails when nothing was decided on one of the purposes, the library
  /// quillon::proof is not linked, or the key can be neither read nor created. Lists what ConsentSDKOptions::controller
  /// does not state as missing.
  ///
  /// @code
  /// const auto receipt = sdk.receipt().get();
  /// if (const auto* document = receipt.value()) std::ofstream("receipt.json") << *document;
  /// @endcode
  void receipt(std::vector<std::int64_t> purposes, std::function<void(ConsentSDKResult<std::string>)> callback);
  [[nodiscard]] std::future<ConsentSDKResult<std::string>> receipt(std::vector<std::int64_t> purposes = {});

  /// Why get() returns what it does for a purpose: who decided, and when.
  void explain(std::int64_t purposeId, std::function<void(ConsentExplanation)> callback);
  [[nodiscard]] std::future<ConsentExplanation> explain(std::int64_t purposeId);

  /// Deletes every stored value: decisions and their history, identity, token. The cached configuration stays and is
  /// re-applied at once, so undecided purposes have its default. Listeners are called for every removed consent, with
  /// cause `removed`.
  void removeConsents();
  /// @}

  /// @name Listeners
  /// Any number of listeners of each kind; each is called until its handle is dropped. See Listening for threads and
  /// order.
  ///
  /// @code
  /// auto listening = sdk.listenToConsents([&](const quillon::Decision& change) {
  ///   if (change.purposeId == statistics && change.to != quillon::ConsentStatus::granted) stopCounting();
  /// });
  /// @endcode
  /// @{

  /// Called with every decision that changed a stored value: the purpose or permission, the status before (nullopt if
  /// none) and after, how it was given and when. Decisions of the application's other processes are reported from
  /// setup() on, within a second; of several in a row on one subject, only the last.
  Listening listenToConsents(std::function<void(const Decision& change)> listener);

  /// Called when a screen of the SDK is shown or closed.
  Listening listenToScreens(std::function<void(const ScreenEvent& event)> listener);

  /// Called with the outcome of every upload attempt.
  Listening listenToUploads(std::function<void(const UploadEvent& event)> listener);

  /// Called when the banner becomes due while the application runs: a load or check finds its interval over, or a
  /// configuration asks again. The application then calls presentBanner() at a suitable moment.
  Listening listenToBannerDue(std::function<void(const BannerExplanation& banner)> listener);
  /// @}

  /// @name Banner
  /// @{

  /// The banner for the user's location, from the given configuration, else the cached one; nullopt when there is none.
  /// Stores the banner's reappearance interval.
  void getBannerConfig(std::optional<MainConfiguration> configuration,
                       std::function<void(std::optional<BannerConfig>)> callback);
  [[nodiscard]] std::future<std::optional<BannerConfig>> getBannerConfig(
      std::optional<MainConfiguration> configuration = std::nullopt);

  /// Whether the banner must be shown now; always false without a configuration in force. A true result counts as
  /// showing the banner, so ask only when about to show it. A banner drawn by the application may become due again once
  /// it was answered.
  [[nodiscard]] bool isBannerDue();

  /// What isBannerDue() would return now, and why. Changes nothing; may be called at any time.
  [[nodiscard]] BannerExplanation explainBanner() const;

  /// Stores the user's answer to the banner for all purposes and uploads it. True when it was stored; a failed upload
  /// stays pending and is retried.
  void acceptOrReject(bool accept, std::function<void(bool stored)> callback);
  std::future<bool> acceptOrReject(bool accept);
  /// @}

  /// @name Configuration
  /// @{

  /// The settings-prompt texts of the cached configuration; nullopt when there are none.
  void getSettingsPrompt(std::function<void(std::optional<SettingsPrompt>)> callback);
  [[nodiscard]] std::future<std::optional<SettingsPrompt>> getSettingsPrompt();

  /// The consent-mode mapping of the cached configuration; nullopt when there is none.
  void getGCMConfig(std::function<void(std::optional<GcmConfig>)> callback);
  [[nodiscard]] std::future<std::optional<GcmConfig>> getGCMConfig();
  /// @}

  /// @name Screens
  /// Screens are shown on the main queue, over the application's top-most window. Without a linked user interface an
  /// error is logged and nothing else happens; a due banner stays due.
  /// @{

  /// Shows the banner when it is due.
  void presentBanner();
  /// Shows the preference centre.
  void presentPreferenceCenter();
  /// Shows the prompt that leads to the system settings, if the configuration offers it for the permission and the user
  /// has not closed it before.
  void presentSettingPrompt(VantariKey permissionId);
  /// Opens a link in the in-app web view, which shows only pages of allowed hosts.
  void openLink(std::string link);
  /// Sets the screens' fonts by role; nullopt leaves a role unchanged. Sizes follow the device's text scale.
  void registerFonts(std::optional<CustomFont> heading, std::optional<CustomFont> body,
                     std::optional<CustomFont> subHeading, std::optional<CustomFont> headingLight);
  /// Sets the screens' colours by role; empty ones leave their role unchanged.
  void registerColors(CustomColors colors);
  /// @}

  /// @name Upload and check
  /// @{

  /// Sends @p request to the application server at base URL @p url, which also receives the access token. The outcome
  /// is stored as the pending state; @p done is called when the attempt is over, whether it succeeded or not.
  void uploadConsents(std::string url, PostConsentsRequest request, std::function<void()> done);
  std::future<void> uploadConsents(std::string url, PostConsentsRequest request);

  /// Uploads pending decisions now. True when the server accepted them or none was pending.
  void uploadPendingConsents(std::function<void(bool uploaded)> callback);
  std::future<bool> uploadPendingConsents();

  /// Runs one consent check now, as the recurring timer does.
  void checkConsents(std::function<void()> done);
  std::future<void> checkConsents();

  /// Becomes ready when no load, check, answer or upload is running. Scheduled work (the recurring check, the upload a
  /// second after set()) does not count. For an orderly exit.
  [[nodiscard]] std::future<void> settled();
  /// @}

  /// The interface for user interfaces; not needed by applications that use the SDK's own. Never null.
  [[nodiscard]] std::shared_ptr<ScreenServices> screens() const;
  /// The interface for SignalPublisher. Never null.
  [[nodiscard]] std::shared_ptr<SignalSource> signalSource() const;

 private:
  class Core;
  std::shared_ptr<Core> core_;
};

}  // namespace quillon
