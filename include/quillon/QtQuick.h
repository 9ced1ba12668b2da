/// @file
/// The screens of the SDK in a Qt Quick application.
#pragma once

#include <optional>

#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"

class QQmlEngine;

namespace quillon {

/// How the screens adapt to the user's desktop.
struct QtQuickOptions {
  /// Dark surroundings. Default: as the application's palette is when a screen is shown.
  std::optional<bool> isDark = std::nullopt;
  /// Size of text, as a factor; 0.5 to 3 are honoured. Default: the screen's logical density over 96 dots per inch.
  std::optional<double> textScale = std::nullopt;
  /// Shows and hides screens without motion. Qt does not tell what the user asked the desktop for.
  bool isMotionReduced = false;
};

/// What a Qt Quick application calls in place of configure(): the Qt main loop becomes the main queue of
/// ConsentSDK::shared(), and its screens appear over the application's top-most window, or in a window of their own
/// when it has none of Qt Quick. `postToMainQueue` of the options is not used.
///
/// Call it on the main thread, after the application object was made and before the first use of shared(). False when
/// that comes too late: nothing changes then. Whatever the SDK still wants to do on the main queue once the application
/// object is gone is dropped.
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

/// Lets the pages of @p engine place the screens in layouts of their own: after `import Quillon.Consent` there are
/// `ConsentBanner`, `PreferenceCenter` and `SettingsPrompt`, the last with the property `permission`. They show
/// @p sdk, one for each engine, whose main queue must be the Qt main loop.
///
/// An element shows that it is loading until the SDK has a configuration, and a failure with a way to try again. It
/// sends `done()` where a screen of the SDK's own would go away: answered, saved or closed. What becomes of it then is
/// up to the page; the decision itself is recorded by the SDK. Its implicit height is that of all it shows; given less,
/// it scrolls.
///
/// Pages ask `Consent.isAllowed(2)` and `Consent.isPermissionAllowed("NSCameraUsageDescription")` before they act, as
/// ConsentSDK::isAllowed() answers, or follow a purpose with `ConsentGate { purposeId: 2; onAllowed: ...; onDenied: ... }`,
/// which is ConsentSDK::whileAllowed().
///
/// Call it on the main thread, once for an engine and before its first page is loaded. The SDK outlives the engine.
///
/// @code
/// QQmlApplicationEngine pages;
/// quillon::addConsentElements(pages);
/// pages.load(QUrl("qrc:/Main.qml"));
/// @endcode
void addConsentElements(QQmlEngine& engine, ConsentSDK& sdk = ConsentSDK::shared(), QtQuickOptions screens = {});

}  // namespace quillon
