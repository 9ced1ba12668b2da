/// @file
/// The in-app web view of the Qt Quick screens.
#pragma once

namespace quillon {

/// Whether to use an engine whose pages can bypass the link filter. Those of Qt 6.5 and later can: WebTransport cannot
/// be disabled in workers, and Qt 6.8 opens connections ahead of requests, at a page's hint or without, to any host.
enum class UnfilteredConnections {
  refused,   ///< such an engine is not used: links do not open, and a warning is logged
  accepted,  ///< it is used: pages of allowed hosts can reach any server
};

/// Makes consent screens open links inside the application, in Qt WebEngine. Without this call, or without this
/// library, links do not open and a warning is logged.
///
/// Call it on the main thread, before the application object is constructed. Returns false when called too late: the
/// web view is then unusable unless the application has called `QtWebEngineQuick::initialize()` itself. Also returns
/// false, changing nothing, for an engine that is refused.
///
/// The engine starts with the first link that is opened. Allowed hosts are those of the configuration's links, of the
/// application's servers and of WebViewConfig::allowedDomains; pages of other hosts do not open and cannot be reached.
/// Page storage is discarded when the sheet closes.
///
/// Adds switches to QTWEBENGINE_CHROMIUM_FLAGS, which apply to all of Qt WebEngine in the process: they disable
/// WebTransport where the engine supports that, and UDP for WebRTC. Both would bypass the filter.
///
/// @code
/// quillon::initializeQtWebEngine();
/// QGuiApplication application(argc, argv);
/// if (!quillon::configureQtQuick({.applicationId = "com.example.reader"})) std::cerr << "configured too late\n";
/// @endcode
bool initializeQtWebEngine(UnfilteredConnections connections = UnfilteredConnections::refused);

}  // namespace quillon
