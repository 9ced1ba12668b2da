#include "core/Persistance/UserDefaults/UserDefaultManager.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/LogText.h"

namespace quillon {
namespace {

constexpr std::string_view sourceFile = "Persistance/UserDefaults/UserDefaultManager";

}  // namespace

struct UserDefaultManager::ReportLink {
  std::mutex mutex;
  SDKLogger* logger;  // null once the manager is gone
};

UserDefaultManager::UserDefaultManager(const Platform& platform, SDKLogger& logger, Decided decided)
    : platform_(platform), logger_(logger), decided_(std::move(decided)), reports_(new ReportLink{{}, &logger}) {}

UserDefaultManager::~UserDefaultManager() {
  const std::scoped_lock lock(reports_->mutex);
  reports_->logger = nullptr;
}

KeyValueSuite& UserDefaultManager::suite() const {
  std::call_once(opened_, [this] {
    // Damage is reported while the suite is at work, and logging reads the suite: the two must not meet on one stack.
    auto report = [background = platform_.executors->background(), link = reports_](KeyValueStore::ReportLevel kind,
                                                                                    std::string message) {
      const auto level = kind == KeyValueStore::ReportLevel::error ? LogLevel::error : LogLevel::info;
      background->post([link, level, message = std::move(message)] {
        const std::scoped_lock lock(link->mutex);
        if (link->logger) link->logger->log(escapedForLog(message), level, "suite", sourceFile, __LINE__);
      });
    };
    auto opened = platform_.store->open(key::suiteName, std::move(report));
    if (opened) {
      suite_ = std::move(*opened);
    } else {
      // Past the logger, which would ask the suite.
      platform_.console->write(platform_.clock->localText(platform_.clock->now()) + " [ERROR] " +
                               escapedForLog(opened.error()));
      platform_.console->fatal("Could not create or access UserDefaults suite: " + std::string(key::suiteName),
                               sourceFile);
    }
  });
  return *suite_;
}

bool UserDefaultManager::transact(const std::function<void(StoreTransaction&)>& edit) {
  std::vector<Decision> decisions;
  Job tell;
  auto& suite = this->suite();
  std::unique_lock turn(turn_);
  const auto outcome = suite.update([&](const SuiteEntries& current) {
    StoreTransaction transaction(current);
    edit(transaction);
    decisions = transaction.decisions();
    return transaction.take();
  });
  if (outcome && decided_ && !decisions.empty()) tell = decided_(std::move(decisions));
  turn.unlock();
  if (tell) tell();
  if (!outcome) {
    logger_.log("Failed to store: " + escapedForLog(outcome.error()), LogLevel::error, "transact", sourceFile,
                __LINE__);
  }
  return outcome.has_value();
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

std::optional<ConsentStatus> UserDefaultManager::getConsent(std::string_view key) const {
  return StoredValues(*snapshot()).consent(key);
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
  // A failure is not logged: the logger itself asks for the subject.
  [[maybe_unused]] const auto outcome = suite().update([&](const SuiteEntries& current) {
    StoreTransaction transaction(current);
    subject = ensureSubjectId(transaction);
    return transaction.take();
  });
  return subject;
}

HistoryPage UserDefaultManager::history(std::int64_t before, std::size_t count) const {
  const auto page = suite().journal(before, count);
  if (page) return historyOf(*page, count);
  logger_.log("Failed to read the history: " + page.error(), LogLevel::error, "history", sourceFile, __LINE__);
  return {};
}

bool UserDefaultManager::removeAllConsents() {
  const auto outcome = suite().update([](const SuiteEntries& current) {
    SuiteUpdate update;
    for (const auto& [key, value] : current) update.changes.emplace(key, std::nullopt);
    update.clearsJournal = true;
    return update;
  });
  if (outcome) {
    logger_.log("Successfully removed all consents", LogLevel::info, "removeAllConsents()", sourceFile, __LINE__);
    // At threshold debug that very line named a subject and so made a new one.
    remove(key::subjectId);
  } else {
    logger_.log("Failed to remove all consents: " + escapedForLog(outcome.error()), LogLevel::error,
                "removeAllConsents()", sourceFile, __LINE__);
  }
  return outcome.has_value();
}

std::string makeUUID() {
  std::string text = boost::uuids::to_string(boost::uuids::random_generator()());
  for (char& c : text) {
    if (c >= 'a' && c <= 'f') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

std::string ensureSubjectId(StoreTransaction& transaction) {
  std::string subject = transaction.string(key::subjectId, {});
  if (subject.empty()) {
    subject = makeUUID();
    transaction.set(key::subjectId, subject);
  }
  return subject;
}

}  // namespace quillon
