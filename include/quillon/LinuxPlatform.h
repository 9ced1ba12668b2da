/// @file
/// Configuration of the SDK on Linux.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/LogLevel.h"

namespace quillon {

struct Platform;

/// Integration into a Linux application. The defaults suit a plain program.
struct LinuxOptions {
  /// Names the application's data folder, so that two applications never share a store, and the application in the
  /// desktop's permission store. Default: $FLATPAK_ID; else the executable's name for the folder, and the systemd
  /// unit's name for the permissions.
  std::string applicationId = {};
  /// The data folder. Default: $XDG_DATA_HOME (else ~/.local/share) plus the application identifier.
  std::optional<std::filesystem::path> dataDirectory = std::nullopt;
  /// Posts a job to the application's main loop, which runs jobs later, in order. Called from any thread. Default: an
  /// SDK thread serves as the main queue.
  std::function<void(std::function<void()> job)> postToMainQueue = {};
  /// Base URL, ending in "/", of the location look-up server; not used when ConsentSDKOptions::locationCode is set.
  /// Default: the vendor's.
  std::optional<std::string> vendorUrl = std::nullopt;
  /// Passes the consent-mode signals to the application's analytics library, by name ("ad_storage"), each "granted" or
  /// "denied". Called from an SDK thread after every change. Default: none.
  std::function<void(const std::map<std::string, std::string>& values)> consentSink = {};
  /// Folder of the application's text resources, as UTF-8 files: the page of WebViewConfig::blockedPageHTML (at most 1
  /// MiB) and ConsentSDKOptions::bundledConfiguration (at most 32 MiB). Symbolic links are not followed. Default: the
  /// executable's folder.
  std::optional<std::filesystem::path> resourceDirectory = std::nullopt;
  /// Receives the log instead of standard output: a message without time or context lines, and the SDK unit that wrote
  /// it, such as "UserDefaultManager"; both are valid until it returns. Called on any thread, concurrently; must not
  /// block or use the SDK's logger. Default: blocks of text on standard output.
  std::function<void(LogLevel level, std::string_view text, std::string_view unit)> log = {};
  /// Replaces platform services, such as the store or the permission sources, with the application's own. Called once,
  /// on the thread that first uses ConsentSDK::shared(), with every service set; must not use the SDK. A service set to
  /// null is not replaced; if the function throws, none is. `Platform` and the interfaces of its members are in
  /// "quillon/platform/Platform.h", which requires C++23. Default: none.
  std::function<void(Platform& platform)> replaceServices = {};
};

/// Sets the options of ConsentSDK::shared(). Call it before the first use of shared(); later calls change nothing and
/// return false. Thread-safe.
///
/// @code
/// if (!quillon::configure({.applicationId = "com.example.reader"})) std::cerr << "configured too late\n";
/// quillon::ConsentSDK::shared().setup(options);
/// @endcode
[[nodiscard]] bool configure(LinuxOptions options);

}  // namespace quillon
