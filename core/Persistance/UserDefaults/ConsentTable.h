// The table from which consents are read.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/Persistance/UserDefaults/LatchedWords.h"
#include "platform/KeyValueSuite.h"
#include "quillon/ConsentStatus.h"

namespace quillon {

// The bits of a word, about one purpose or permission, and of the header, about all of them.
struct ConsentWord {
  using Word = LatchedWords::Word;

  static constexpr int statusShift = 0;  // the ConsentStatus of a decision
  static constexpr Word status = 3 << statusShift;
  static constexpr Word isDecided = 1 << 2;
  static constexpr Word isAnswered = 1 << 3;         // the decision is the user's own
  static constexpr Word isBoundByStore = 1 << 4;     // bound to app tracking, as stored
  static constexpr Word isBoundByTerms = 1 << 5;     // bound to app tracking, by the configuration in force
  static constexpr Word isAllowedByTerms = 1 << 6;   // allowed while undecided, by the configuration in force
  static constexpr Word isCoveredBySignal = 1 << 7;  // covered by the honoured signal
  static constexpr Word isListed = 1 << 8;           // permission listed by the configuration in force

  static constexpr Word declinesByDefault = 1 << 0;
  static constexpr Word hasLostEntries = 1 << 1;
  static constexpr Word isStale = 1 << 2;  // an update from the store failed
  static constexpr Word hasTerms = 1 << 3;
  static constexpr Word hasSignal = 1 << 4;
  static constexpr Word isSignalGiven = 1 << 5;
  static constexpr Word signalCoversAll = 1 << 6;
};

// A consistent snapshot of one purpose.
class PurposeState : ConsentWord {
 public:
  PurposeState(Word header, Word word) noexcept : header_(header), word_(word) {}

  std::optional<ConsentStatus> decision() const noexcept {
    return has(isDecided) ? std::optional(static_cast<ConsentStatus>((word_ & status) >> statusShift)) : std::nullopt;
  }
  // The default of the stored compliance type.
  ConsentStatus byDefault() const noexcept {
    return holds(declinesByDefault) ? ConsentStatus::declined : ConsentStatus::granted;
  }
  // Whether the configuration in force allows the purpose while undecided, and no entries were lost.
  bool isAllowedUndecided() const noexcept {
    return has(isAllowedByTerms) && holds(hasTerms) && !holds(hasLostEntries);
  }
  bool isAnswered() const noexcept { return has(ConsentWord::isAnswered); }
  // The store covers the time before there are terms; the terms cover a failed store.
  bool isBoundToTracking() const noexcept { return has(isBoundByStore) || (has(isBoundByTerms) && holds(hasTerms)); }
  bool isCoveredBySignal() const noexcept {
    return holds(hasSignal) && (holds(signalCoversAll) || has(ConsentWord::isCoveredBySignal));
  }
  // The application's own signal is on, whatever the device's is.
  bool isSignalGiven() const noexcept { return holds(ConsentWord::isSignalGiven); }

 private:
  bool has(Word bits) const noexcept { return (word_ & bits) != 0; }
  bool holds(Word bits) const noexcept { return (header_ & bits) != 0; }

  Word header_;
  Word word_;
};

struct PermissionState {
  std::optional<ConsentStatus> stored;
  std::optional<bool> isListed;  // by the configuration in force; nullopt without one
};

// Thread-safe. Combines the store's content, the configuration in force and the honoured signal, whose owners push
// their changes. Queries are lock-free, write no shared memory and, except purposes(), allocate nothing; each is
// consistent, and no thread sees an earlier state after a later one. When an update fails for lack of memory, nothing
// counts as granted until the next one. The texts of permissions stay until destruction.
class ConsentTable {
 public:
  [[nodiscard]] PurposeState purpose(std::int64_t id) const noexcept;
  // A consistent snapshot of all.
  [[nodiscard]] std::vector<PurposeState> purposes(std::span<const std::int64_t> ids) const;
  [[nodiscard]] PermissionState permission(std::string_view name) const noexcept;

  // Updates the store's content; see KeyValueSuite::Follower.
  void updateStored(const SuiteEntries& entries, const SuiteChanges* changes) noexcept;

  struct Terms {
    std::vector<std::int64_t> allowedUndecided;
    std::vector<std::int64_t> boundToTracking;
    std::vector<std::string> permissions;
  };
  // Updates the configuration in force; nullopt without one.
  void updateTerms(std::optional<Terms> terms) noexcept;

  struct Signal {
    bool isGiven = false;
    std::optional<std::vector<std::int64_t>> covered;  // nullopt: any purpose
  };
  // Updates the honoured signal; nullopt without one.
  void updateSignal(std::optional<Signal> signal) noexcept;

  // No configuration is in force from now on.
  void close() noexcept;

 private:
  using Edits = std::vector<LatchedWords::Edit>;
  using Members = std::vector<std::int64_t>;  // purposes with one bit set, sorted

  static PurposeState stateOf(const LatchedWords::Copy& copy, std::int64_t id) noexcept;
  void addDecision(LatchedWords::Change& change, std::string_view key, const SuiteEntries& entries);
  LatchedWords::Key nameKey(std::string_view name);
  // Runs an update under the lock; out of memory, sets the header to the result of `otherwise`.
  template <class Show, class Otherwise>
  void show(Show show, Otherwise otherwise) noexcept;

  LatchedWords words_;
  std::mutex mutex_;  // guards the members below, and changes to the words
  Members answered_, boundByStore_, boundByTerms_, allowed_, covered_;
  std::vector<LatchedWords::Key> listed_;
  std::unordered_set<std::string, TransparentStringHash, std::equal_to<>> names_;
  bool isClosed_ = false;
};

}  // namespace quillon
