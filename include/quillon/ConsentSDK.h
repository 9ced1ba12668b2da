/// @file
/// The one object through which an application drives the SDK.
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

/// Keeps the user's consents, decides when the banner is due and uploads what was decided.
///
/// Every operation may be called from any thread, also before setup(), and returns without waiting for the network; a
/// write returns when it is durable, normally within a few milliseconds. Nothing throws: failures are logged and show
/// as a status, an empty result or `false`. The one exception: a consent store that can be neither opened nor created
/// stops the process.
///
/// The calls of one thread take effect in their order: of two answers in a row the later one holds, and so does a set()
/// after an answer.
///
/// Asynchronous operations come twice. With a callback: it is called exactly once, on the main queue, after the call
/// has returned, with arguments that it may keep; not at all when the SDK is destroyed or closed first. An exception it
/// throws is contained. As a future: it becomes ready on a thread of the SDK's and never holds an exception; when the
/// SDK is destroyed or closed first it holds an empty list, text or record, `false`, or ConsentStatus::notDetermined.
/// Waiting for it on the main queue is allowed.
///
/// Whether to act on a purpose is a question for isAllowed() or whileAllowed(), which fail closed; get() tells the
/// status, and without a configuration that is the default `granted`.
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
  /// The instance of this process, over the services of the platform library that is linked; created on first use and
  /// never destroyed, so threads of the application may use it for as long as the process lasts. When the application
  /// returns from main() or calls exit(), it is closed: see close().
  static ConsentSDK& shared();

  /// Ends what is under way and waits for that, also for a callback that runs on another thread, for two seconds at
  /// most. The instance stays usable: consents are read and stored as before. But nothing is loaded, checked or
  /// uploaded any more, no callback is called, and futures hold an empty result at once. A decision that was
  /// acknowledged is stored, and uploaded by the next run of the application if it has not been. Thread-safe; a second
  /// call does nothing.
  void close();

  /// An instance of its own over the given services; several may live side by side.
  explicit ConsentSDK(Platform platform);
  /// Aborts what is under way. No callback begins afterwards when called on the main queue.
  ~ConsentSDK();
  ConsentSDK(const ConsentSDK&) = delete;
  ConsentSDK& operator=(const ConsentSDK&) = delete;

  /// @name Set-up and readiness
  /// @{

  /// Takes the options, applies the cache-reset rules and starts loading the configuration in the background. May be
  /// called again; each call replaces the options and loads anew.
  void setup(ConsentSDKOptions options);

  /// Whether a configuration is at hand.
  [[nodiscard]] SDKStatus getStatus() const;

  /// Calls @p callback at once with the present status, on the calling thread, and then on the main queue with every
  /// later status that differs from the one reported last. A second call replaces the first one's callback.
  void isReady(std::function<void(SDKStatus)> callback);

  /// Ends the reports of isReady().
  void removeListeners();

  /// The SDK's own version, such as "1.2.0"; nothing when the installation does not tell.
  [[nodiscard]] std::optional<std::string> sdkVersion() const;

  /// The diagnostic channel of this instance.
  [[nodiscard]] SDKLogger& logger();
  /// @}

  /// @name Consents
  /// @{

  /// Whether the application may act on a purpose now. True only when a decision is stored that says `granted`; or,
  /// without a decision, when a configuration is in force in this process that lists the purpose and either marks it
  /// essential or is of a compliance type that needs no question, unless entries of the store were lost to damage. A
  /// purpose that is bound to app tracking also needs the device's authorization. False in every other state: before
  /// the first configuration, after close() without a decision, when in doubt. Any thread; allocates nothing; cheap
  /// enough for every frame.
  ///
  /// @code
  /// if (!quillon::ConsentSDK::shared().isAllowed(2)) stopCounting();
  /// @endcode
  [[nodiscard]] bool isAllowed(std::int64_t purposeId) const;

  /// Whether the device is known to grant a permission now. Never waits for the device, and never goes by what was
  /// stored. Any thread.
  [[nodiscard]] bool isAllowed(const VantariKey& vantariKey) const;

  /// Whether anything is stored about a purpose: an answer, or a default that was recorded.
  [[nodiscard]] bool isDecided(std::int64_t purposeId) const;

  /// Runs something exactly while a purpose is allowed: calls @p start once as soon as isAllowed() is true, also when
  /// it is so already, @p stop once when it is no longer, and so on in turn; nothing once the handle is dropped or the
  /// SDK closed. On the main queue, judged at the moment of the call. It sees every cause: decisions, defaults, the
  /// tracking status, a new configuration, removeConsents(), damage, and other processes of the application within a
  /// second.
  ///
  /// @code
  /// auto counting = sdk.whileAllowed(2, startCounting, stopCounting);
  /// @endcode
  Listening whileAllowed(std::int64_t purposeId, std::function<void()> start, std::function<void()> stop);

  /// The decision on a purpose, else the default of the compliance type: `granted` while no compliance type is known.
  /// Says what is, not what may be done: that is isAllowed(). Cheap enough for every frame.
  [[nodiscard]] ConsentStatus get(std::int64_t purposeId) const;

  /// The state of a permission: of a permission that the configuration lists, what the device is known to say; of
  /// another one, or when the device has not answered yet, what was stored last. Never waits for the device.
  [[nodiscard]] ConsentStatus get(const VantariKey& vantariKey) const;

  /// Records the user's choice for a purpose and uploads it about a second later, together with others made meanwhile.
  /// False when it could not be stored (no identifier, disk full); the earlier decision then stands.
  bool set(const Purpose& purpose, ConsentStatus consent);

  /// Records the state of a permission as the user's choice. False when it could not be stored.
  bool set(const AppPermission& permission, ConsentStatus consent);

  /// The configured purposes in display order, each with its present consent.
  void getPurposeConsents(std::function<void(std::vector<Purpose>)> callback);
  [[nodiscard]] std::future<std::vector<Purpose>> getPurposeConsents();

  /// The configured permissions in display order, each with what the device says now.
  void getPermissionConsents(std::function<void(std::vector<AppPermission>)> callback);
  [[nodiscard]] std::future<std::vector<AppPermission>> getPermissionConsents();

  /// What the device says about a permission now; "not determined" for one that the configuration does not list.
  void checkConsentBy(VantariKey permissionId, std::function<void(ConsentStatus)> callback);
  [[nodiscard]] std::future<ConsentStatus> checkConsentBy(VantariKey permissionId);

  /// The consent-mode signals that follow from the present consents; empty when the configuration maps none.
  void getGCMConsents(std::function<void(std::map<GoogleConsentType, ConsentStatus>)> callback);
  [[nodiscard]] std::future<std::map<GoogleConsentType, ConsentStatus>> getGCMConsents();

  /// A script that hands the present consents to a page in the application's own web view: `window.quillonConsents`
  /// holds the purposes (id, name, status) and permissions (permission, status), and where the configuration drives
  /// consent mode, `gtag('consent', 'default' | 'update', …)` is called with the four signals, before any decision and
  /// now. Run it before the page's own scripts, and again after a change. It is safe inside a script element, whatever
  /// the configured texts hold. With a SignalPublisher it also offers the trade's interfaces, `__tcfapi` and `__gpp`. Empty when the SDK is destroyed first.
  ///
  /// @code
  /// sdk.consentScript([view](std::string script) { view->addScriptAtDocumentStart(std::move(script)); });
  /// @endcode
  void consentScript(std::function<void(std::string)> callback);
  [[nodiscard]] std::future<std::string> consentScript();

  /// The decisions that were made, newest first: @p count of them (1 to 10,000), older than the entry numbered
  /// @p before when that is given. Kept are the last 10,000 (at times 200 fewer): every choice, recorded default and
  /// change of the device's, each written in the same transaction as its consent. Nothing is kept of set() calls that
  /// failed. A damaged entry is left out and counted. Empty when the store cannot be read.
  ///
  /// @code
  /// auto page = sdk.getHistory(50).get();
  /// while (page.before) page = sdk.getHistory(50, page.before).get();
  /// @endcode
  void getHistory(std::size_t count, std::optional<std::int64_t> before, std::function<void(HistoryPage)> callback);
  [[nodiscard]] std::future<HistoryPage> getHistory(std::size_t count = 100,
                                                    std::optional<std::int64_t> before = std::nullopt);

  /// Why get() answers for a purpose what it does: who decided, and when.
  void explain(std::int64_t purposeId, std::function<void(ConsentExplanation)> callback);
  [[nodiscard]] std::future<ConsentExplanation> explain(std::int64_t purposeId);

  /// Deletes every stored value: decisions and their history, identity, token. The cached configuration stays, and what
  /// is in force applies again at once, so that undecided purposes have its default. Listeners hear of every consent
  /// that went, with the cause `removed`.
  void removeConsents();
  /// @}

  /// @name Listeners
  /// Several of each kind may listen at once, each until its handle is dropped; Listening says on which thread and how
  /// often they are called.
  ///
  /// @code
  /// auto listening = sdk.listenToConsents([&](const quillon::Decision& change) {
  ///   if (change.purposeId == statistics && change.to != quillon::ConsentStatus::granted) stopCounting();
  /// });
  /// @endcode
  /// @{

  /// Calls with every decision that changed what is stored: the purpose or permission, the status before (nothing when
  /// there was none) and after, how it was given and when. Decisions of other processes of the application are told
  /// within a second; of several in a row on one subject only the last.
  Listening listenToConsents(std::function<void(const Decision& change)> listener);

  /// Calls when a screen of the SDK is shown, and when it is gone.
  Listening listenToScreens(std::function<void(const ScreenEvent& event)> listener);

  /// Calls with the outcome of every upload that was tried.
  Listening listenToUploads(std::function<void(const UploadEvent& event)> listener);

  /// Calls when the banner has become due while the application runs: after a load or a check that finds its interval
  /// over, or a configuration that asks again. Then it is for the application to call presentBanner(), at a moment that
  /// suits.
  Listening listenToBannerDue(std::function<void(const BannerExplanation& banner)> listener);
  /// @}

  /// @name Banner
  /// @{

  /// The banner for the user's location, from the given configuration or else the cached one; nothing when there is
  /// none. Remembers the banner's reappearance interval.
  void getBannerConfig(std::optional<MainConfiguration> configuration,
                       std::function<void(std::optional<BannerConfig>)> callback);
  [[nodiscard]] std::future<std::optional<BannerConfig>> getBannerConfig(
      std::optional<MainConfiguration> configuration = std::nullopt);

  /// Whether the banner must be shown now; never while no configuration is in force. A positive answer counts as
  /// showing it: ask only when about to show it. Once a banner of the application's own was answered, it may become due
  /// again.
  [[nodiscard]] bool isBannerDue();

  /// What isBannerDue() would answer now, and why. Changes nothing, so it may be asked at any time.
  [[nodiscard]] BannerExplanation explainBanner() const;

  /// Records the user's answer to the banner for every purpose at once and uploads it. True when it was stored; a
  /// failed upload stays pending and is retried.
  void acceptOrReject(bool accept, std::function<void(bool stored)> callback);
  std::future<bool> acceptOrReject(bool accept);
  /// @}

  /// @name Configuration
  /// @{

  /// The settings-prompt texts of the cached configuration; nothing when there are none.
  void getSettingsPrompt(std::function<void(std::optional<SettingsPrompt>)> callback);
  [[nodiscard]] std::future<std::optional<SettingsPrompt>> getSettingsPrompt();

  /// The consent-mode mapping of the cached configuration; nothing when there is none.
  void getGCMConfig(std::function<void(std::optional<GcmConfig>)> callback);
  [[nodiscard]] std::future<std::optional<GcmConfig>> getGCMConfig();
  /// @}

  /// @name Screens
  /// Each is shown on the main queue, over the application's top-most window. Without a linked user interface a warning
  /// is logged and nothing else happens: in particular a banner that is due stays due.
  /// @{

  /// Shows the banner when it is due.
  void presentBanner();
  void presentPreferenceCenter();
  /// Shows the prompt that leads to the system settings, when the configuration offers it for that permission and the
  /// user has not closed it before.
  void presentSettingPrompt(VantariKey permissionId);
  /// Opens a link in the in-app web view, which shows pages of allowed hosts only.
  void openLink(std::string link);
  /// Fonts of the screens by role; an absent one leaves its role as it is. Sizes follow the device's text scale.
  void registerFonts(std::optional<CustomFont> heading, std::optional<CustomFont> body,
                     std::optional<CustomFont> subHeading, std::optional<CustomFont> headingLight);
  /// Colours of the screens by role; absent ones leave theirs as they are.
  void registerColors(CustomColors colors);
  /// @}

  /// @name Upload and check
  /// @{

  /// Sends @p request to the application server at base address @p url. The outcome is kept as the pending state;
  /// `done` says that the attempt is over, not that it succeeded.
  void uploadConsents(std::string url, PostConsentsRequest request, std::function<void()> done);
  std::future<void> uploadConsents(std::string url, PostConsentsRequest request);

  /// Uploads now what is still pending, if anything. True when nothing is pending afterwards.
  void uploadPendingConsents(std::function<void(bool uploaded)> callback);
  std::future<bool> uploadPendingConsents();

  /// Runs one consent check now, as the repeating timer does.
  void checkConsents(std::function<void()> done);
  std::future<void> checkConsents();

  /// Becomes ready as soon as nothing is under way: no loading, check, answer or upload. Work that waits for its time
  /// (the repeating check, the upload a second after set()) does not count. For hosts that want to leave in order.
  [[nodiscard]] std::future<void> settled();
  /// @}

  /// What user interfaces are built on; no business of applications that use ours.
  [[nodiscard]] std::shared_ptr<ScreenServices> screens() const;
  /// The same for SignalPublisher.
  [[nodiscard]] std::shared_ptr<SignalSource> signalSource() const;

 private:
  class Core;
  std::shared_ptr<Core> core_;
};

}  // namespace quillon
