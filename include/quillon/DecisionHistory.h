/// @file
/// What was decided, when and how: the record that an application can show, and hand out on a data-subject request.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quillon/BannerConfig.h"
#include "quillon/ConsentStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

/// How consents were given.
enum class GivenType {
  explicitly,  ///< "CONSENT_EXPLICIT": the user chose
  implicitly,  ///< "CONSENT_IMPLICIT": a default was recorded
  noAction,    ///< "CONSENT_NO_ACTION": neither; the device decided, or a default was recorded before a re-consent
};
[[nodiscard]] std::string_view rawValue(GivenType value) noexcept;

/// Who or what decided.
enum class DecisionCause {
  user,            ///< "user": a choice on a screen, or ConsentSDK::set()
  byDefault,       ///< "default": what the compliance type says in the absence of a choice
  essential,       ///< "essential": the user may not opt out of that purpose
  trackingStatus,  ///< "tracking_status": the purpose is bound to the device's tracking authorization
  device,          ///< "device": a permission as the device has it
  signal,          ///< "signal": a privacy signal is honoured
  removed,  ///< "removed": by removeConsents(), or with the end of a signal; told to listeners, never kept in the
            ///< history
};
[[nodiscard]] std::string_view rawValue(DecisionCause value) noexcept;

/// What became of a decision on its way to the application server.
enum class UploadOutcome {
  pending,     ///< "pending": still to be sent
  uploaded,    ///< "uploaded": the server took it
  superseded,  ///< "superseded": a later decision on the same subject was sent in its place
  dropped,     ///< "dropped": no longer pending, though an upload of the application's own did not list the subject
};
[[nodiscard]] std::string_view rawValue(UploadOutcome value) noexcept;

/// One decision on one purpose or one permission. A plain value.
struct Decision {
  /// Whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t time = 0;
  /// Either this is set or `permission`.
  std::optional<std::int64_t> purposeId = std::nullopt;
  std::optional<VantariKey> permission = std::nullopt;
  /// What was stored before; nothing when this is the first decision.
  std::optional<ConsentStatus> from = std::nullopt;
  ConsentStatus to = ConsentStatus::notDetermined;
  DecisionCause cause = DecisionCause::user;
  GivenType givenType = GivenType::noAction;
  /// Of the configuration in force; 0 when there was none yet.
  std::int64_t configurationVersion = 0;
  ComplianceType complianceType = ComplianceType::noticeOnly;
  /// Code of the language in which the user was addressed, such as "de".
  std::string language = {};

  bool operator==(const Decision&) const = default;
};

/// A decision as it is kept.
struct HistoryEntry {
  /// Ascending in the order of the decisions, from 1; begins anew after ConsentSDK::removeConsents().
  std::int64_t number = 0;
  Decision decision;
  UploadOutcome upload = UploadOutcome::pending;

  bool operator==(const HistoryEntry&) const = default;
};

/// A part of the history.
struct HistoryPage {
  std::vector<HistoryEntry> entries;  ///< newest first
  /// How many kept entries of this part are damaged and therefore left out.
  std::int64_t damaged = 0;
  /// For the page that follows; nothing when this is the last one.
  std::optional<std::int64_t> before = std::nullopt;
};

}  // namespace quillon
