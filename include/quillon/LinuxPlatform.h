/// @file
/// Settings of the SDK on Linux.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace quillon {

struct Platform;

/// How the SDK fits into a Linux application. Every member has a default that suits a plain program.
struct LinuxOptions {
  /// Names the folder of the application's data, so that two applications never share a store, and the application in
  /// the desktop's permission store. Default: $FLATPAK_ID, else the executable's name for the folder and the desktop's
  /// own unit name for the permissions.
  std::string applicationId = {};
  /// The folder itself. Default: $XDG_DATA_HOME (else ~/.local/share) and the application identifier.
  std::optional<std::filesystem::path> dataDirectory = std::nullopt;
  /// Hands a job to the application's main loop, to be run there later, in order. May be called from any thread.
  /// Default: a thread of the SDK's own serves as the main queue.
  std::function<void(std::function<void()> job)> postToMainQueue = {};
  /// Base address of the vendor's application server, for development; ends in "/".
  std::optional<std::string> vendorUrl = std::nullopt;
  /// Hands the consent-mode signals to the application's analytics library, by name ("ad_storage"), each "granted" or
  /// "denied". Called from a thread of the SDK's, after every change. Default: none.
  std::function<void(const std::map<std::string, std::string>& values)> consentSink = {};
  /// Folder of the text files that ship with the application, such as the page of WebViewConfig::blockedPageHTML, at
  /// most 1 MiB, and ConsentSDKOptions::bundledConfiguration, at most 32 MiB: plain files in UTF-8. Links are not
  /// followed. Default: the folder of the executable.
  std::optional<std::filesystem::path> resourceDirectory = std::nullopt;
  /// Replaces services of the platform by the application's own: another store, another source of permissions. Called
  /// once, on the thread that uses ConsentSDK::shared() first, with every service in place; must not use the SDK. A
  /// service that it sets to null stays as it was, and so do all when it throws. `Platform` and the interfaces of its
  /// members are in "quillon/platform/Platform.h", which asks for C++23. Default: none.
  std::function<void(Platform& platform)> replaceServices = {};
};

/// Sets the options of ConsentSDK::shared(). Call it before the first use of shared(); later calls change nothing and
/// answer false. Thread-safe.
///
/// @code
/// if (!quillon::configure({.applicationId = "com.example.reader"})) std::cerr << "configured too late\n";
/// quillon::ConsentSDK::shared().setup(options);
/// @endcode
[[nodiscard]] bool configure(LinuxOptions options);

}  // namespace quillon
