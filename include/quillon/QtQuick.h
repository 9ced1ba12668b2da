/// @file
/// The screens of the SDK in a Qt Quick application.
#pragma once

#include <optional>

#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"

class QQmlEngine;

namespace quillon {

/// Adaptation of the screens to the application and the user's desktop.
struct QtQuickOptions {
  /// Dark mode. Default: dark when the application's palette or the desktop's colour scheme is.
  std::optional<bool> isDark = std::nullopt;
  /// Text scale, clamped to 0.5 to 3. Default: the screen's logical density divided by 96 dots per inch; when that is
  /// 1, the desktop's text scaling factor.
  std::optional<double> textScale = std::nullopt;
  /// Disables animations even if the desktop enables them.
  bool isMotionReduced = false;
  /// Offers "Receipt" in the preference centre, which shows the content of ConsentSDK::receipt() and saves the receipt
  /// through the desktop's file dialog. Needs the library quillon::proof.
  bool offersReceipt = false;
};

/// Replaces configure() in a Qt Quick application. The Qt main loop becomes the main queue of ConsentSDK::shared(), and
/// screens appear over the application's top-most Qt Quick window, or in a window of their own if there is none.
/// `postToMainQueue` of the options is ignored.
///
/// Call it on the main thread, after constructing the application object and before the first use of shared(). Returns
/// false, changing nothing, when called too late. Jobs for the main queue are dropped once the application object is
/// destroyed.
///
/// @code
/// QGuiApplication application(argc, argv);
/// if (!quillon::configureQtQuick({.applicationId = "com.example.reader"})) std::cerr << "configured too late\n";
/// quillon::ConsentSDK::shared().setup(options);
/// quillon::ConsentSDK::shared().isReady([](quillon::SDKStatus status) {
///   if (status == quillon::SDKStatus::ready) quillon::ConsentSDK::shared().presentBanner();
/// });
/// @endcode
[[nodiscard]] bool configureQtQuick(LinuxOptions options = {}, QtQuickOptions screens = {});

/// Makes the screens available to pages of @p engine: `import Quillon.Consent` provides `ConsentBanner`,
/// `PreferenceCenter` and `SettingsPrompt`, the last with the property `permission`. All use @p sdk, one per engine,
/// whose main queue must be the Qt main loop.
///
/// An element shows a loading state until the SDK has a configuration, and an error with a retry on failure. It stores
/// the decision itself and emits `done(reason)` when the user has "accepted", "rejected", "saved" or "closed"; the page
/// then hides or removes it. Its implicit height fits its content; with less, it scrolls.
///
/// Before acting, pages read `allowed` of a `PurposeConsent { purposeId: 2 }` or `PermissionConsent { permission:
/// "NSCameraUsageDescription" }`, call `Consent.isAllowed(2)`, which is ConsentSDK::isAllowed(), or use `ConsentGate {
/// purposeId: 2; onAllowed: ...; onDenied: ... }`, which is ConsentSDK::whileAllowed(). The singleton `Consent` also
/// has `ready`, `status`, `bannerDue`, `language`, `presentBanner()`, `presentPreferenceCenter()` and `openLink()`.
///
/// Call it on the main thread, once per engine and before its first page is loaded. The SDK must outlive the engine.
///
/// @code
/// QQmlApplicationEngine pages;
/// quillon::addConsentElements(pages);
/// pages.load(QUrl("qrc:/Main.qml"));
/// @endcode
void addConsentElements(QQmlEngine& engine, ConsentSDK& sdk = ConsentSDK::shared(), QtQuickOptions screens = {});

}  // namespace quillon
