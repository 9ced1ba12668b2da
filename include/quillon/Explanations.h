/// @file
/// Why the banner is due, and why a consent is what it is: for support, logs and developers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/ConsentStatus.h"
#include "quillon/DecisionHistory.h"

namespace quillon {

/// What the answer to ConsentSDK::isBannerDue() follows from.
enum class BannerReason {
  neverShown,       ///< "never_shown": due
  unanswered,       ///< "unanswered": due; it was shown and the application ended before an answer
  reconsent,        ///< "reconsent": due; a newer configuration asks for the consents again
  intervalOver,     ///< "interval_over": due; the answer has expired
  onScreen,         ///< "on_screen": not due
  answered,         ///< "answered": not due before a date
  signal,           ///< "signal": not due; a privacy signal is honoured and settles all that there is to ask
  noConfiguration,  ///< "no_configuration": not due; there is nothing that could be asked
};
[[nodiscard]] std::string_view rawValue(BannerReason value) noexcept;

struct BannerExplanation {
  bool isDue = false;
  BannerReason reason = BannerReason::neverShown;
  /// When the answer expires or has expired, whole seconds since 1970-01-01T00:00:00Z; for answered and intervalOver.
  std::optional<std::int64_t> expires = std::nullopt;
  /// The version that asks; for reconsent.
  std::optional<std::int64_t> version = std::nullopt;
  /// One English sentence, with dates of UTC.
  std::string text = {};

  bool operator==(const BannerExplanation&) const = default;
};

struct ConsentExplanation {
  /// What ConsentSDK::get() answers.
  ConsentStatus status = ConsentStatus::notDetermined;
  /// Nothing when a status is stored that the history does not tell of.
  std::optional<DecisionCause> cause = std::nullopt;
  /// When it was decided, whole seconds since 1970-01-01T00:00:00Z; nothing when no decision is known: then the default
  /// of the compliance type holds, or the history does not tell.
  std::optional<std::int64_t> time = std::nullopt;
  /// One English sentence, with dates of UTC.
  std::string text = {};

  bool operator==(const ConsentExplanation&) const = default;
};

}  // namespace quillon
