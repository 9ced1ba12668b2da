/// @file
/// The options of ConsentSDK::setup().
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "quillon/DataController.h"
#include "quillon/LogLevel.h"

namespace quillon {

/// The configuration channel.
enum class Mode {
  draft,  ///< "draft": unpublished, for testing
  live,   ///< "live": what users get
};

/// The text of @p mode in paths and in the store.
[[nodiscard]] std::string_view rawValue(Mode value) noexcept;

/// Which pages the in-app web view shows, and what it shows in place of a refused page.
struct WebViewConfig {
  /// Host names or addresses whose pages may be shown; a name includes its sub-domains.
  std::vector<std::string> allowedDomains = {};
  /// Name of the HTML resource shown for refused pages, with or without ".html".
  std::optional<std::string> blockedPageHTML = std::nullopt;

  bool operator==(const WebViewConfig&) const = default;
};

/// Honours privacy signals: those of the device, and the application's own. While one is on it counts as an opt-out of
/// the purposes named here, except essential ones and those governed by the device's tracking authorization. It never
/// overrides the user's own answer, is never stored as one, and ends with the signal.
struct PrivacySignal {
  /// The application's own signal: true means on. Call setup() again when it changes.
  bool isGiven = false;
  /// Purposes by purpose_id. Default: those named by the configuration ("privacy_signal_purposes").
  std::optional<std::vector<std::int64_t>> purposes = std::nullopt;

  bool operator==(const PrivacySignal&) const = default;
};

/// Period of the recurring consent check, clamped to 60 seconds to one year.
class ConsentsCheckInterval {
 public:
  constexpr ConsentsCheckInterval(std::int64_t seconds) noexcept
      : seconds_(seconds < shortest  ? shortest
                 : seconds > longest ? longest
                                     : seconds) {}
  /// Any duration; fractions of a second are truncated.
  template <class Rep, class Period>
  constexpr ConsentsCheckInterval(std::chrono::duration<Rep, Period> period) noexcept
      : ConsentsCheckInterval(wholeSeconds(period)) {}

  /// The period in seconds, from 60 to 31,536,000.
  [[nodiscard]] constexpr std::int64_t count() const noexcept { return seconds_; }
  bool operator==(const ConsentsCheckInterval&) const = default;

 private:
  static constexpr std::int64_t shortest = 60;
  static constexpr std::int64_t longest = std::int64_t{365} * 24 * 60 * 60;

  // Compares as floating point first: an integer of another unit might overflow.
  template <class Rep, class Period>
  static constexpr std::int64_t wholeSeconds(std::chrono::duration<Rep, Period> period) noexcept {
    const auto seconds = std::chrono::duration<long double>(period).count();
    if (!(seconds > static_cast<long double>(shortest))) return shortest;
    if (seconds > static_cast<long double>(longest)) return longest;
    return static_cast<std::int64_t>(seconds);
  }

  std::int64_t seconds_;
};

/// A language code such as "de"; ASCII upper case is converted to lower case.
class LanguageCode {
 public:
  LanguageCode(const char* code) : LanguageCode(std::string(code)) {}
  LanguageCode(std::string code) : code_(std::move(code)) {
    for (char& c : code_) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
  }

  [[nodiscard]] const std::string& text() const noexcept { return code_; }
  bool operator==(const LanguageCode&) const = default;

 private:
  std::string code_;
};

/// The options of ConsentSDK::setup(). A plain value; fill it with designated initializers in the order given. setup()
/// validates it and logs one line at ERROR per mistake.
///
/// @code
/// quillon::ConsentSDK::shared().setup({
///     .appUrl = "https://app.example.com/",
///     .cdnUrl = "https://cdn.example.com/",
///     .tenantId = "7f0c",
///     .appId = "news-reader",
///     .logLevel = quillon::LogLevel::warning,
///     .consentsCheckInterval = std::chrono::minutes(30),
/// });
/// @endcode
struct ConsentSDKOptions {
  /// Base URL of the application server, which receives consent uploads, such as "https://app.example.com/".
  std::string appUrl;
  /// Base URL of the published configuration files, such as "https://cdn.example.com/".
  std::string cdnUrl;
  /// Tenant identifier; part of the configuration path.
  std::string tenantId;
  /// Application identifier; part of the configuration path and of uploads.
  std::string appId;
  /// Selects the draft channel and reloads the configuration at every setup().
  bool testingMode = false;
  /// Log threshold.
  LogLevel logLevel = LogLevel::error;
  /// Period of the recurring consent check; default 30 minutes.
  ConsentsCheckInterval consentsCheckInterval = 1800;
  /// Identity of the data subject. Default: a random one, which is kept.
  std::optional<std::string> subjectId = std::nullopt;
  /// Language of the configuration, such as "de" ("de-DE" is read as "de"). Default: the device's first preferred
  /// language. The screens' own labels know scripts too: "zh-Hant".
  std::optional<LanguageCode> languageCode = std::nullopt;
  /// Region code such as "US#CA" ("US-CA" is read as "US#CA"). Default: the SDK asks the vendor's server.
  std::optional<std::string> locationCode = std::nullopt;
  /// The in-app web view. Default: only the hosts of configured links are allowed.
  std::optional<WebViewConfig> webviewConfig = std::nullopt;
  /// Name of a configuration document shipped with the application, with or without ".json": an application resource of
  /// at most 32 MiB, validated as strictly as a download. "NAME_LANGUAGE.json" is preferred to "NAME.json": "consent"
  /// finds "consent_de.json" for German. Used until the first download succeeds, and never after a newer version was in
  /// force. An invalid one is logged and ignored.
  std::optional<std::string> bundledConfiguration = std::nullopt;
  /// The channel. Default: draft when testingMode is true, else live.
  std::optional<Mode> mode = std::nullopt;
  /// Time the application waits for the first load. Afterwards the SDK continues with a cached or bundled
  /// configuration, or reports `unavailable`; the result of the download is reported when it arrives. Default: the
  /// first report comes when the download is over.
  std::optional<std::chrono::milliseconds> readyWithin = std::nullopt;
  /// Default: no privacy signal is queried. All processes of an application should set the same.
  std::optional<PrivacySignal> privacySignal = std::nullopt;
  /// The data controller and its processing, for ConsentSDK::receipt(). Default: receipts list these facts as missing.
  std::optional<DataController> controller = std::nullopt;

  bool operator==(const ConsentSDKOptions&) const = default;
};

}  // namespace quillon
