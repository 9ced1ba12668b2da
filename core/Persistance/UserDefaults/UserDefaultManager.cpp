#include "core/Persistance/UserDefaults/UserDefaultManager.h"

#include <algorithm>
#include <limits>

#include "core/History/DecisionChain.h"
#include "core/Logger/UnitLog.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/Ascii.h"
#include "core/Text/LogText.h"
#include "core/Text/Uuid.h"

namespace quillon {
namespace {

// The removal of every stored consent.
std::vector<Decision> removalsOf(const SuiteEntries& current, std::int64_t now) {
  std::vector<Decision> removals;
  for (auto& [subject, status] : StoredValues(current).consents()) {
    removals.push_back({.time = now,
                        .purposeId = subject.purposeId,
                        .permission = subject.permission,
                        .from = status,
                        .cause = DecisionCause::removed});
  }
  return removals;
}

}  // namespace

struct UserDefaultManager::ReportLink {
  std::mutex mutex;
  SDKLogger* logger;  // null once the manager is gone
};

UserDefaultManager::UserDefaultManager(const Platform& platform, SDKLogger& logger, Stored stored)
    : platform_(platform), logger_(logger), stored_(std::move(stored)), reports_(new ReportLink{{}, &logger}) {}

UserDefaultManager::~UserDefaultManager() {
  const std::scoped_lock lock(reports_->mutex);
  reports_->logger = nullptr;
}

KeyValueSuite& UserDefaultManager::suite() const {
  std::call_once(opened_, [this] {
    // Logged in the background: damage is reported while the suite is locked, and the logger reads the suite.
    auto report = [background = platform_.executors->background(), link = reports_](KeyValueStore::ReportLevel level,
                                                                                    std::string message) {
      background->post([link, level, message = std::move(message)] {
        const auto severity = level == KeyValueStore::ReportLevel::error ? LogLevel::error : LogLevel::info;
        const std::scoped_lock lock(link->mutex);
        if (link->logger)
          link->logger->log(escapedForLog(message), severity, "suite", unit::userDefaultManager, __LINE__);
      });
    };
    auto opened = platform_.store->open(key::suiteName, std::move(report));
    if (!opened) {
      // The logger needs the store, so the error goes directly to the console.
      platform_.console->write(platform_.clock->localText(platform_.clock->now()) + " [ERROR] " +
                               escapedForLog(opened.error()));
      platform_.console->fatal("Could not create or access UserDefaults suite: " + std::string(key::suiteName),
                               unit::userDefaultManager);
    }
    suite_ = std::move(*opened);
    following_ = suite_->follow([table = consents_](const SuiteEntries& entries, const SuiteChanges* changes) {
      table->updateStored(entries, changes);
    });
    isOpen_.store(true, std::memory_order_release);
  });
  return *suite_;
}

std::expected<void, std::string> UserDefaultManager::change(const Update& update) {
  std::vector<Decision> decisions;
  Job tell;
  auto& suite = this->suite();
  std::unique_lock turn(turn_);
  const auto outcome = update(suite, decisions);
  if (outcome && stored_) tell = stored_(std::move(decisions));
  turn.unlock();
  if (tell) tell();
  return outcome;
}

bool UserDefaultManager::reportOutcome(const std::expected<void, std::string>& outcome) {
  if (!outcome) {
    logger_.log("Failed to store: " + escapedForLog(outcome.error()), LogLevel::error, "transact",
                unit::userDefaultManager, __LINE__);
  }
  return outcome.has_value();
}

bool UserDefaultManager::transact(const Edit& edit) {
  return reportOutcome(change([&](KeyValueSuite& suite, std::vector<Decision>& decisions) {
    return suite.update([&](const SuiteEntries& current) {
      StoreTransaction transaction(current);
      edit(transaction);
      decisions = transaction.decisions();
      return transaction.take();
    });
  }));
}

bool UserDefaultManager::markOutcomes(const OutcomeEdit& edit) {
  return reportOutcome(change([&](KeyValueSuite& suite, std::vector<Decision>&) {
    return suite.update([&](const SuiteEntries& current) {
      SuiteUpdate update;
      update.markRecords = [&](const std::vector<JournalRecord>& unmarked) {
        StoreTransaction transaction(current);
        edit(transaction, unmarked);
        SuiteUpdate marked = transaction.take();
        return SuiteUpdate::Marking{std::move(marked.marks), std::move(marked.changes)};
      };
      return update;
    });
  }));
}

std::optional<SuiteReading> UserDefaultManager::read(std::size_t count) const {
  auto reading = suite().read(count);
  if (reading) return std::move(*reading);
  logger_.log("Failed to read: " + escapedForLog(reading.error()), LogLevel::error, "read", unit::userDefaultManager,
              __LINE__);
  return std::nullopt;
}

std::unique_ptr<SuiteSubscription> UserDefaultManager::observe(std::function<void()> changed) {
  return suite().observe(std::move(changed));
}

std::string UserDefaultManager::getString(std::string_view key, std::string_view fallback) const {
  return StoredValues(*snapshot()).string(key, fallback);
}

bool UserDefaultManager::getBoolean(std::string_view key) const {
  return StoredValues(*snapshot()).boolean(key);
}

std::int64_t UserDefaultManager::getInt64(std::string_view key, std::int64_t fallback) const {
  return StoredValues(*snapshot()).integer(key, fallback);
}

bool UserDefaultManager::set(std::string_view key, PropertyValue value) {
  return transact([&](StoreTransaction& transaction) { transaction.set(key, value); });
}

bool UserDefaultManager::remove(std::string_view key) {
  return transact([&](StoreTransaction& transaction) { transaction.remove(key); });
}

std::string UserDefaultManager::getSubjectId() {
  if (auto stored = getString(key::subjectId); !stored.empty()) return stored;
  std::string subject;
  // Failures are not logged: the logger itself needs the subject.
  const auto outcome = suite().update([&](const SuiteEntries& current) {
    StoreTransaction transaction(current);
    subject = ensureSubjectId(transaction, *platform_.random);
    return transaction.take();
  });
  return outcome ? subject : std::string();
}

HistoryPage UserDefaultManager::history(std::int64_t before, std::size_t count) const {
  const auto page = suite().journal(before, count);
  return page ? historyOf(*page, count) : noHistory(page.error());
}

HistoryPage UserDefaultManager::noHistory(std::string_view error) const {
  logger_.log("Failed to read the history: " + escapedForLog(error), LogLevel::error, "history",
              unit::userDefaultManager, __LINE__);
  return {};
}

HistoryPage UserDefaultManager::verifiedHistory(std::int64_t before, std::size_t count) const {
  constexpr std::int64_t end = std::numeric_limits<std::int64_t>::max();
  constexpr int mostAttempts = 3;
  HistoryPage history;
  // The head is read before the entries; a decision stored in between makes them differ.
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    const auto reading = suite().read(0);
    if (!reading) return noHistory(reading.error());
    const auto newest = suite().journal(end, 1);
    auto page = newest ? suite().journal(before, std::min(count, maximumJournalRecords) + 1) : newest;
    if (!page) return noHistory(page.error());
    ChainState state{StoredValues(*reading->entries).string(key::historyHead, {}), {}, false};
    if (!newest->records.empty()) state.newestNumber = newest->records.front().number;
    if (!newest->damaged.empty()) state.newestNumber = newest->damaged.front();
    state.isFirstPage = !state.newestNumber || *state.newestNumber < before;
    history = quillon::verifiedHistory(std::move(*page), count, state);
    if (!history.isNewestMissing) break;
  }
  return history;
}

bool UserDefaultManager::removeAllConsents(const Edit& edit) {
  const std::int64_t now = wholeSeconds(platform_.clock->now());
  const auto outcome = change([&](KeyValueSuite& suite, std::vector<Decision>& decisions) {
    return suite.update([&](const SuiteEntries& current) {
      const SuiteEntries empty;
      StoreTransaction transaction(empty);
      if (edit) edit(transaction);
      SuiteUpdate update = transaction.take();
      for (const auto& [key, value] : current) update.changes.try_emplace(key, std::nullopt);
      update.clearsJournal = true;
      update.appendAfter = [](const JournalPage& newest) {
        const bool wasAny = !newest.records.empty() || !newest.damaged.empty();
        return SuiteUpdate::Appending{wasAny ? std::vector{std::string(removalRecord)} : std::vector<std::string>(),
                                      {}};
      };
      decisions = removalsOf(current, now);
      return update;
    });
  });
  if (outcome) {
    logger_.log("Successfully removed all consents", LogLevel::info, "removeAllConsents()", unit::userDefaultManager,
                __LINE__);
    // At threshold debug that log line has created a new subject.
    if (logger_.logLevel() == LogLevel::debug) remove(key::subjectId);
  } else {
    logger_.log("Failed to remove all consents: " + escapedForLog(outcome.error()), LogLevel::error,
                "removeAllConsents()", unit::userDefaultManager, __LINE__);
  }
  return outcome.has_value();
}

std::string ensureSubjectId(StoreTransaction& transaction, RandomSource& random) {
  std::string subject = transaction.string(key::subjectId, {});
  if (subject.empty()) {
    subject = randomUuid(random, upperHexDigits);
    transaction.set(key::subjectId, subject);
  }
  return subject;
}

}  // namespace quillon
