// The single place where state survives the process: a typed layer over the suite "quillon-cmp-sdk".
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "core/Persistance/UserDefaults/StoredValues.h"
#include "platform/Job.h"
#include "platform/Platform.h"
#include "quillon/SDKLogger.h"

namespace quillon {

// Thread-safe and without state of its own. A suite that cannot be opened stops the process at the first use.
class UserDefaultManager {
 public:
  // Told of the decisions of a transaction that was stored, in the order of the transactions and with a lock held; what
  // calls others is handed back as a job, which is run without.
  using Decided = std::function<Job(std::vector<Decision>)>;

  // Both must outlive it; neither is used before the first operation.
  UserDefaultManager(const Platform& platform, SDKLogger& logger, Decided decided = {});
  ~UserDefaultManager();

  // One consistent content of the suite.
  std::shared_ptr<const SuiteEntries> snapshot() const { return suite().snapshot(); }

  // Changes several keys together: all of them are durable when this returns, or none and the failure is logged.
  // The edit sees the newest content and may be called again; it must not use the manager or the logger.
  bool transact(const std::function<void(StoreTransaction&)>& edit);

  std::string getString(std::string_view key, std::string_view fallback = {}) const;
  bool getBoolean(std::string_view key) const;
  std::int64_t getInt64(std::string_view key, std::int64_t fallback) const;
  std::optional<ConsentStatus> getConsent(std::string_view key) const;

  bool set(std::string_view key, PropertyValue value);
  bool remove(std::string_view key);

  // The stored identifier of the consenting subject; a new random one is stored when there is none.
  std::string getSubjectId();

  // The decisions with a number below that one, at most so many. A failure is logged and gives an empty page.
  HistoryPage history(std::int64_t before, std::size_t count) const;

  // Empties the suite: every key goes, and the history of decisions.
  bool removeAllConsents();

 private:
  // The way from the suite's reports to the logger; cut when the manager goes, since the suite may live on.
  struct ReportLink;

  KeyValueSuite& suite() const;

  const Platform& platform_;
  SDKLogger& logger_;
  const Decided decided_;
  std::mutex turn_;  // held from the beginning of a transaction until its decisions are told
  std::shared_ptr<ReportLink> reports_;
  mutable std::once_flag opened_;
  mutable std::shared_ptr<KeyValueSuite> suite_;
};

// A random identifier in canonical form: 36 characters, upper-case hexadecimal digits and hyphens.
[[nodiscard]] std::string makeUUID();

// Makes sure that the transaction's content has a subject identifier and returns it.
std::string ensureSubjectId(StoreTransaction& transaction);

}  // namespace quillon
