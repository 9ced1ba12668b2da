/// @file
/// The in-app web view of the screens for Qt Quick.
#pragma once

namespace quillon {

/// Opens the links of the consent screens within the application, in Qt WebEngine. Without this call, or without the
/// library that has it, links open nowhere and a warning is logged.
///
/// Call it on the main thread, before the application object is made. False when that comes too late: the engine cannot
/// be used then, unless the application itself has prepared it (`QtWebEngineQuick::initialize()`).
///
/// The engine starts with the first link that is opened, not before. Pages open when their host is one of the
/// configuration's links, of the application's servers or of WebViewConfig::allowedDomains, and only those can be
/// reached from there. Nothing that a page stores outlives the sheet.
///
/// Two switches are added to QTWEBENGINE_CHROMIUM_FLAGS, which hold for all of Qt WebEngine in the process: web
/// transports are off, and WebRTC uses no UDP. Both would reach the network past the filter.
///
/// @code
/// quillon::initializeQtWebEngine();
/// QGuiApplication application(argc, argv);
/// if (!quillon::configureQtQuick({.applicationId = "com.example.reader"})) std::cerr << "configured too late\n";
/// @endcode
bool initializeQtWebEngine();

}  // namespace quillon
