// The persistent state: a typed layer over the suite "quillon-cmp-sdk".
#pragma once

#include <atomic>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "core/Persistance/UserDefaults/ConsentTable.h"
#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/Job.h"
#include "platform/Platform.h"
#include "quillon/SDKLogger.h"

namespace quillon {

// Thread-safe and stateless. Stops the process on first use if the suite cannot be opened.
class UserDefaultManager {
 public:
  // Called for every stored transaction, in order and under a lock, with its decisions. It returns a job that calls
  // listeners, run without the lock.
  using Stored = std::function<Job(std::vector<Decision>)>;

  // Both must outlive it; neither is used before the first operation.
  UserDefaultManager(const Platform& platform, SDKLogger& logger, Stored stored = {});
  ~UserDefaultManager();

  // The table of stored consents, configuration in force and honoured signal. Opens the suite.
  const ConsentTable& consents() const {
    if (!isOpen_.load(std::memory_order_acquire)) suite();
    return *consents_;
  }
  // For the owners of the configuration and of the signal. Does not open the suite.
  ConsentTable& consentTable() { return *consents_; }

  // A consistent snapshot of the suite.
  std::shared_ptr<const SuiteEntries> snapshot() const { return suite().snapshot(); }

  // Changes keys atomically: all are durable on return, or none are and the failure is logged. The edit sees the newest
  // content. It is called again, with a new transaction, if the content had to be recovered from damage; it must not
  // use the manager or the logger.
  using Edit = std::function<void(StoreTransaction&)>;
  bool transact(const Edit& edit);

  // As transact(), for the outcomes of uploads: the edit also receives the unmarked history records, newest first. It
  // makes no decisions.
  using OutcomeEdit = std::function<void(StoreTransaction&, const std::vector<JournalRecord>& unmarked)>;
  bool markOutcomes(const OutcomeEdit& edit);

  // A consistent read of the newest content across processes, and of the newest `count` unmarked records. May wait for
  // the disk. nullopt on failure, which is logged.
  std::optional<SuiteReading> read(std::size_t count) const;

  std::string getString(std::string_view key, std::string_view fallback = {}) const;
  bool getBoolean(std::string_view key) const;
  std::int64_t getInt64(std::string_view key, std::int64_t fallback) const;

  bool set(std::string_view key, PropertyValue value);
  bool remove(std::string_view key);

  // The stored subject identifier; creates and stores a random one if there is none. Empty if storing it fails.
  std::string getSubjectId();

  // At most `count` decisions numbered below `before`. An empty page on failure, which is logged.
  HistoryPage history(std::int64_t before, std::size_t count) const;
  // As history(), each entry verified. May wait for the disk.
  HistoryPage verifiedHistory(std::int64_t before, std::size_t count) const;

  // Removes every key and the history. The edit's changes are stored in the same update, so that no reader sees the
  // suite empty.
  bool removeAllConsents(const Edit& edit = {});

  // Calls `changed` within a second after another process of the application has stored something; see KeyValueSuite.
  [[nodiscard]] std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed);

 private:
  // Links the suite's reports to the logger; severed on destruction, since the suite may outlive the manager.
  struct ReportLink;

  KeyValueSuite& suite() const;
  // Runs an update of the suite and announces its decisions.
  using Update = std::function<std::expected<void, std::string>(KeyValueSuite&, std::vector<Decision>&)>;
  std::expected<void, std::string> change(const Update& update);
  bool reportOutcome(const std::expected<void, std::string>& outcome);
  HistoryPage noHistory(std::string_view error) const;

  const Platform& platform_;
  SDKLogger& logger_;
  const Stored stored_;
  std::mutex turn_;  // held from the start of a transaction until its decisions are announced
  std::shared_ptr<ReportLink> reports_;
  mutable std::once_flag opened_;
  mutable std::atomic<bool> isOpen_{false};
  mutable std::shared_ptr<KeyValueSuite> suite_;
  const std::shared_ptr<ConsentTable> consents_ = std::make_shared<ConsentTable>();
  mutable std::shared_ptr<void> following_;  // keeps the table updated with the suite's content
};

// Returns the subject identifier, creating a random UUID in upper case if there is none.
std::string ensureSubjectId(StoreTransaction& transaction, RandomSource& random);

}  // namespace quillon
