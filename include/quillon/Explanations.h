/// @file
/// Explanations for support, logs and developers: why the banner is due, and why a consent has its status.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "quillon/ConsentStatus.h"
#include "quillon/DecisionHistory.h"

namespace quillon {

/// The reason behind ConsentSDK::isBannerDue().
enum class BannerReason {
  neverShown,       ///< "never_shown": due
  unanswered,       ///< "unanswered": due; shown, but the application ended before an answer
  reconsent,        ///< "reconsent": due; a newer configuration asks for consent again
  intervalOver,     ///< "interval_over": due; the answer has expired
  onScreen,         ///< "on_screen": not due
  answered,         ///< "answered": not due before a date
  signal,           ///< "signal": not due; an honoured privacy signal answers everything it would ask
  noConfiguration,  ///< "no_configuration": not due; no configuration is in force
};
[[nodiscard]] std::string_view rawValue(BannerReason value) noexcept;

struct BannerExplanation {
  bool isDue = false;
  BannerReason reason = BannerReason::neverShown;
  /// Expiry of the answer, whole seconds since 1970-01-01T00:00:00Z; for answered and intervalOver.
  std::optional<std::int64_t> expires = std::nullopt;
  /// The configuration version that asks again; for reconsent.
  std::optional<std::int64_t> version = std::nullopt;
  /// One English sentence, with dates of UTC.
  std::string text = {};

  bool operator==(const BannerExplanation&) const = default;
};

struct ConsentExplanation {
  /// The result of ConsentSDK::get().
  ConsentStatus status = ConsentStatus::notDetermined;
  /// nullopt when the history has no entry for the stored status.
  std::optional<DecisionCause> cause = std::nullopt;
  /// Time of the decision, whole seconds since 1970-01-01T00:00:00Z; nullopt when the status is the default of the
  /// compliance type, or the history has no entry for it.
  std::optional<std::int64_t> time = std::nullopt;
  /// One English sentence, with dates of UTC.
  std::string text = {};

  bool operator==(const ConsentExplanation&) const = default;
};

}  // namespace quillon
