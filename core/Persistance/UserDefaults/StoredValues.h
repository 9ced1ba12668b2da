// Typed access to a suite's content, and transactions on it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/History/DecisionHistory.h"
#include "platform/KeyValueSuite.h"
#include "quillon/BannerConfig.h"
#include "quillon/ConsentStatus.h"
#include "quillon/VantariKey.h"

namespace quillon {

// The store key of a purpose: its identifier in decimal, without allocation.
class PurposeKey {
 public:
  explicit PurposeKey(std::int64_t purposeId) noexcept;
  operator std::string_view() const noexcept { return {text_, length_}; }

 private:
  char text_[20];
  std::size_t length_;
};

// Reads a snapshot of a suite, which must outlive it. A value of another type counts as absent.
class StoredValues {
 public:
  explicit StoredValues(const SuiteEntries& entries) noexcept : entries_(entries) {}

  std::optional<std::string> string(std::string_view key) const;
  std::string string(std::string_view key, std::string_view fallback) const;
  bool boolean(std::string_view key) const;
  std::int64_t integer(std::string_view key, std::int64_t fallback) const;
  std::optional<PropertyDate> date(std::string_view key) const;

  std::optional<ConsentStatus> consent(std::string_view key) const;
  // All stored consents, of purposes and permissions.
  std::map<DecisionSubject, ConsentStatus> consents() const;
  ConsentStatus consentOrDefault(std::string_view purpose) const {
    const auto decision = consent(purpose);  // the default costs as much again and is rarely needed
    return decision ? *decision : complianceDefault();
  }
  // The status of an undecided purpose: declined under opt-in, else granted. Also declined after lost entries, one of
  // which may have been a refusal.
  ConsentStatus complianceDefault() const;
  ComplianceType complianceType() const;
  // How the current consents were given; noAction when none were, or a re-consent is requested.
  GivenType consentGivenType() const;
  // Whether the configuration applied last binds the purpose to app tracking. Allocates nothing.
  bool isBoundToTracking(std::int64_t purposeId) const;
  // Whether a purpose's stored consent is the user's own answer. Allocates nothing.
  bool isAnswered(std::int64_t purposeId) const;
  // Whether a purpose's stored consent stems from a privacy signal; all such purposes.
  bool isDecidedBySignal(std::int64_t purposeId) const;
  std::vector<std::int64_t> decidedBySignal() const;
  // Whether no application other than this one has made decisions.
  bool isDecidedOnlyBy(std::string_view applicationId) const;

  // Whether an upload has failed, or a decision is pending.
  bool isAnythingPending() const;
  std::vector<std::int64_t> pendingPurposes() const;
  std::vector<std::string> pendingPermissions() const;

 protected:
  StoredValues(const SuiteEntries& entries, const SuiteChanges& changes) noexcept
      : entries_(entries), changes_(&changes) {}

  template <class T>
  const T* find(std::string_view key) const;

 private:
  std::vector<std::int64_t> numbers(std::string_view key) const;

  const SuiteEntries& entries_;
  const SuiteChanges* changes_ = nullptr;
};

template <class T>
const T* StoredValues::find(std::string_view key) const {
  if (changes_) {
    if (const auto changed = changes_->find(key); changed != changes_->end()) {
      return changed->second ? std::get_if<T>(&*changed->second) : nullptr;
    }
  }
  const auto entry = entries_.find(key);
  return entry == entries_.end() ? nullptr : std::get_if<T>(&entry->second);
}

// Changes to a suite, applied atomically. Reads see earlier changes.
class StoreTransaction : public StoredValues {
 public:
  explicit StoreTransaction(const SuiteEntries& current) noexcept : StoredValues(current, changes_) {}
  StoreTransaction(const StoreTransaction&) = delete;
  StoreTransaction& operator=(const StoreTransaction&) = delete;

  void set(std::string_view key, PropertyValue value);
  void remove(std::string_view key);
  void addPendingPurpose(std::int64_t purposeId);
  void addPendingPermission(const std::string& permission);

  // Stores a purpose's consent and its cause.
  void decide(std::int64_t purposeId, ConsentStatus status, DecisionCause cause);
  // The stored consent becomes the user's own answer, which no privacy signal overrides.
  void confirm(std::int64_t purposeId);
  // Removes a privacy signal's decision: the purpose is undecided again.
  void endSignal(std::int64_t purposeId, std::int64_t time);

  // Sets how the current consents were given. A default does not override an answer, and a device's decision leaves it
  // unchanged.
  void setGivenType(GivenType type);
  // Requests the user's answer again.
  void requestReconsent();

  // Adds a decision to the history, with the stored configuration version and compliance type.
  void append(Decision decision, std::string_view applicationId);
  const std::vector<Decision>& decisions() const { return decisions_; }
  // Marks a history record.
  void mark(std::int64_t number, std::string_view outcome) { marks_.insert_or_assign(number, outcome); }

  // Moves out the update; the transaction keeps only its decisions.
  SuiteUpdate take();

 private:
  // Sets whether the sorted list contains a number.
  void include(std::string_view key, std::int64_t number, bool isIn);

  SuiteChanges changes_;
  std::vector<Decision> decisions_;
  std::map<std::int64_t, std::string> marks_;
  // The pending list as a set, once something was added, so that adding thousands of purposes takes linear time.
  std::optional<std::unordered_set<std::int64_t>> pendingPurposes_;
};

}  // namespace quillon
