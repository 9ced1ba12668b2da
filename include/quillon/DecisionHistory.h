/// @file
/// The history of decisions: an audit record that an application can show, or export for a data-subject request.
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
  noAction,    ///< "CONSENT_NO_ACTION": the device decided, or a default was recorded before a re-consent
};
[[nodiscard]] std::string_view rawValue(GivenType value) noexcept;

/// The cause of a decision.
enum class DecisionCause {
  user,            ///< "user": a choice on a screen, or ConsentSDK::set()
  byDefault,       ///< "default": the compliance type's default, in the absence of a choice
  essential,       ///< "essential": users cannot opt out of the purpose
  trackingStatus,  ///< "tracking_status": the purpose is bound to the device's tracking authorization
  device,          ///< "device": the device's answer for a permission
  signal,          ///< "signal": a privacy signal is honoured
  removed,  ///< "removed": by removeConsents(), or with the end of a signal; reported to listeners, not stored in the
            ///< history
};
[[nodiscard]] std::string_view rawValue(DecisionCause value) noexcept;

/// The upload state of a decision.
enum class UploadOutcome {
  pending,     ///< "pending": not yet uploaded
  uploaded,    ///< "uploaded": accepted by the server
  superseded,  ///< "superseded": a later decision on the same subject was uploaded instead
  dropped,     ///< "dropped": no longer pending, but missing from the application's own upload request
};
[[nodiscard]] std::string_view rawValue(UploadOutcome value) noexcept;

/// One decision on one purpose or one permission. A plain value.
struct Decision {
  /// Whole seconds since 1970-01-01T00:00:00Z.
  std::int64_t time = 0;
  /// Set for a decision on a purpose; otherwise `permission` is set.
  std::optional<std::int64_t> purposeId = std::nullopt;
  std::optional<VantariKey> permission = std::nullopt;
  /// The value stored before; nullopt for the first decision.
  std::optional<ConsentStatus> from = std::nullopt;
  ConsentStatus to = ConsentStatus::notDetermined;
  DecisionCause cause = DecisionCause::user;
  GivenType givenType = GivenType::noAction;
  /// Version of the configuration in force; 0 before the first one.
  std::int64_t configurationVersion = 0;
  ComplianceType complianceType = ComplianceType::noticeOnly;
  /// Language code of the user interface, such as "de".
  std::string language = {};
  /// For an answer of the user: the hexadecimal SHA-256 digest of the notice shown, in its canonical form, or
  /// "application" when the application asked by its own means.
  std::optional<std::string> notice = std::nullopt;
  /// In the history, the HistoryEntry::hash of the entry before; for the first one "first", "removed" (an earlier
  /// history was removed), "unchained" (the entries before hold no hashes) or "lost" (they are damaged). nullopt in
  /// entries written before the history had hashes.
  std::optional<std::string> previous = std::nullopt;

  bool operator==(const Decision&) const = default;
};

/// Whether an entry's hash link to its predecessor holds.
enum class HistoryLink {
  intact,       ///< "intact": it holds, or this is the first entry
  beforeChain,  ///< "before_chain": written before the history had hashes
  broken,       ///< "broken": the predecessor was changed, removed, moved or damaged, or an entry was inserted
};
[[nodiscard]] std::string_view rawValue(HistoryLink value) noexcept;

/// A history entry.
struct HistoryEntry {
  /// Ascending in decision order, from 1; restarts after ConsentSDK::removeConsents().
  std::int64_t number = 0;
  Decision decision;
  UploadOutcome upload = UploadOutcome::pending;
  HistoryLink link = HistoryLink::intact;
  /// Hexadecimal SHA-256 digest over the canonical JSON (RFC 8785) of the decision. The next entry holds it, so the
  /// newest digest, kept elsewhere, reveals a later change of any entry.
  std::string hash = {};

  bool operator==(const HistoryEntry&) const = default;
};

/// One page of the history.
struct HistoryPage {
  std::vector<HistoryEntry> entries;  ///< newest first
  /// Number of damaged entries left out of this page.
  std::int64_t damaged = 0;
  /// Argument for the next page; nullopt on the last page.
  std::optional<std::int64_t> before = std::nullopt;
  /// On the first page: the entry written last was changed or is missing.
  bool isNewestMissing = false;
};

}  // namespace quillon
