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
[[nodiscard]] std::string_view rawValue(Mode mode) noexcept;

/// How the in-app web view filters and what it shows for a refused page.
struct WebViewConfig {
  /// Host names or addresses whose pages (and those of their sub-domains) may be shown.
  std::vector<std::string> allowedDomains = {};
  /// Name of an HTML resource of the host application shown for refused pages, with or without ".html".
  std::optional<std::string> blockedPageHTML = std::nullopt;

  bool operator==(const WebViewConfig&) const = default;
};

/// Period of the recurring consent check. A value of 60 seconds or less becomes 60 seconds.
class ConsentsCheckInterval {
 public:
  constexpr ConsentsCheckInterval(std::int64_t seconds) noexcept : seconds_(seconds <= 60 ? 60 : seconds) {}
  constexpr ConsentsCheckInterval(std::chrono::seconds period) noexcept : ConsentsCheckInterval(period.count()) {}

  /// The period in seconds, at least 60.
  [[nodiscard]] constexpr std::int64_t count() const noexcept { return seconds_; }
  bool operator==(const ConsentsCheckInterval&) const = default;

 private:
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

/// The options of ConsentSDK::setup(). A plain value; fill it with designated initializers in the order given.
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
  /// Base address of the application server that takes consent uploads. Must end in "/".
  std::string appUrl;
  /// Base address under which configuration files are published. Must end in "/".
  std::string cdnUrl;
  /// Tenant identifier, part of the configuration path.
  std::string tenantId;
  /// Application identifier, part of the configuration path and of uploads.
  std::string appId;
  /// Selects the draft channel and forces a fresh configuration at every set-up.
  bool testingMode = false;
  /// Threshold of the logger.
  LogLevel logLevel = LogLevel::error;
  /// Period of the recurring consent check in seconds; never less than 60.
  ConsentsCheckInterval consentsCheckInterval = 1800;
  /// Identity of the data subject; without one the SDK makes a random one and keeps it.
  std::optional<std::string> subjectId = std::nullopt;
  /// Language of the configuration; without one the device's first preferred language.
  std::optional<LanguageCode> languageCode = std::nullopt;
  /// Region code such as "US#CA"; without one the application server is asked for the location.
  std::optional<std::string> locationCode = std::nullopt;
  /// The in-app web view; without one only the configured links' own hosts are allowed.
  std::optional<WebViewConfig> webviewConfig = std::nullopt;
  /// Name of a configuration document that ships with the application, with or without ".json": a resource of the
  /// application, checked as strictly as a download and at most 32 MiB large. "NAME_LANGUAGE.json" is preferred to
  /// "NAME.json", so "consent" finds "consent_de.json" for users who read German. It serves until the first download
  /// succeeds, and never again once a newer version was in force; a broken one is logged and ignored.
  std::optional<std::string> bundledConfiguration = std::nullopt;
  /// The channel. Follows from testingMode; change it only to override that rule.
  Mode mode = testingMode ? Mode::draft : Mode::live;

  bool operator==(const ConsentSDKOptions&) const = default;
};

}  // namespace quillon
