/// @file
/// What a host tells the SDK at set-up.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "quillon/LogLevel.h"

namespace quillon {

/// The configuration channel.
enum class Mode {
  draft,  ///< "draft": unpublished, for testing
  live,   ///< "live": what users get
};

/// The text of @p mode in paths and in the store.
[[nodiscard]] std::string_view rawValue(Mode value) noexcept;

/// How the in-app web view filters and what it shows for a refused page.
struct WebViewConfig {
  /// Host names or addresses whose pages (and those of their sub-domains) may be shown.
  std::vector<std::string> allowedDomains = {};
  /// Name of an HTML resource of the host application shown for refused pages, with or without ".html".
  std::optional<std::string> blockedPageHTML = std::nullopt;

  bool operator==(const WebViewConfig&) const = default;
};

/// Has the signals honoured by which users have asked for privacy before: those of the device, and the application's own.
/// While one of them is on it counts as an opt-out of the purposes named here, other than essential ones and those that
/// the device's tracking authorization governs. It never beats an answer that the user gave, is never stored as one, and
/// ends with the signal.
struct PrivacySignal {
  /// The application's own: it knows that its user wants privacy. Set up again when that changes.
  bool isGiven = false;
  /// By their purpose_id. Without a list the configuration names them ("privacy_signal_purposes").
  std::optional<std::vector<std::int64_t>> purposes = std::nullopt;

  bool operator==(const PrivacySignal&) const = default;
};

/// Period of the recurring consent check: at least 60 seconds and at most a year; what is less or more becomes that.
class ConsentsCheckInterval {
 public:
  constexpr ConsentsCheckInterval(std::int64_t seconds) noexcept
      : seconds_(seconds < shortest  ? shortest
                 : seconds > longest ? longest
                                     : seconds) {}
  /// Any duration, its fraction of a second cut off.
  template <class Rep, class Period>
  constexpr ConsentsCheckInterval(std::chrono::duration<Rep, Period> period) noexcept
      : ConsentsCheckInterval(wholeSeconds(period)) {}

  /// The period in seconds, from 60 to 31,536,000.
  [[nodiscard]] constexpr std::int64_t count() const noexcept { return seconds_; }
  bool operator==(const ConsentsCheckInterval&) const = default;

 private:
  static constexpr std::int64_t shortest = 60;
  static constexpr std::int64_t longest = std::int64_t{365} * 24 * 60 * 60;

  // Compares as floating-point numbers first: whole ones of another unit may not fit.
  template <class Rep, class Period>
  static constexpr std::int64_t wholeSeconds(std::chrono::duration<Rep, Period> period) noexcept {
    const auto seconds = std::chrono::duration<long double>(period).count();
    if (!(seconds > static_cast<long double>(shortest))) return shortest;
    if (seconds > static_cast<long double>(longest)) return longest;
    return static_cast<std::int64_t>(seconds);
  }

  std::int64_t seconds_;
};

/// A language code such as "de"; upper-case ASCII letters become lower-case.
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

/// The options of ConsentSDK::setup(). A plain value; fill it with designated initializers in the order given. Set-up
/// checks it and logs one line at ERROR for every mistake.
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
  /// Base address of the application server that takes consent uploads, such as "https://app.example.com/".
  std::string appUrl;
  /// Base address under which configuration files are published, such as "https://cdn.example.com/".
  std::string cdnUrl;
  /// Tenant identifier, part of the configuration path.
  std::string tenantId;
  /// Application identifier, part of the configuration path and of uploads.
  std::string appId;
  /// Selects the draft channel and forces a fresh configuration at every set-up.
  bool testingMode = false;
  /// Threshold of the logger.
  LogLevel logLevel = LogLevel::error;
  /// Period of the recurring consent check; half an hour unless given.
  ConsentsCheckInterval consentsCheckInterval = 1800;
  /// Identity of the data subject; without one the SDK makes a random one and keeps it.
  std::optional<std::string> subjectId = std::nullopt;
  /// Language of the configuration, such as "de" (which "de-DE" means, too); without one the device's first preferred
  /// language.
  std::optional<LanguageCode> languageCode = std::nullopt;
  /// Region code such as "US#CA" (which "US-CA" means, too); without one the vendor's server is asked for the location.
  std::optional<std::string> locationCode = std::nullopt;
  /// The in-app web view; without one only the configured links' own hosts are allowed.
  std::optional<WebViewConfig> webviewConfig = std::nullopt;
  /// Name of a configuration document that ships with the application, with or without ".json": a resource of the
  /// application, checked as strictly as a download and at most 32 MiB large. "NAME_LANGUAGE.json" is preferred to
  /// "NAME.json", so "consent" finds "consent_de.json" for users who read German. It serves until the first download
  /// succeeds, and never again once a newer version was in force; a broken one is logged and ignored.
  std::optional<std::string> bundledConfiguration = std::nullopt;
  /// The channel; without one testingMode decides: draft when it is true, else live.
  std::optional<Mode> mode = std::nullopt;
  /// How long the application waits for the first load. When it takes longer, the SDK goes on with what there is (a
  /// cached or bundled configuration, or `unavailable`) and reports that; the result of the download is reported when
  /// it is there. Without one the first report comes when the download is over.
  std::optional<std::chrono::milliseconds> readyWithin = std::nullopt;
  /// Without one no privacy signal is asked for. All processes of an application should agree in this.
  std::optional<PrivacySignal> privacySignal = std::nullopt;

  bool operator==(const ConsentSDKOptions&) const = default;
};

}  // namespace quillon
