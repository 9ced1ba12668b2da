#include "tests/faults/power/PowerDevice.h"

#include <boost/json.hpp>
#include <limits>
#include <stdexcept>
#include <utility>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/PosixFileSystem.h"
#include "platform/linux/SqliteStore.h"
#include "platform/memory/FixedHostApplication.h"
#include "platform/memory/FixedLocale.h"
#include "platform/memory/MemoryConsole.h"
#include "platform/memory/NoPermissionSources.h"
#include "platform/memory/ScriptedHttpSession.h"
#include "platform/memory/SeededRandom.h"
#include "platform/memory/StaticNetworkPath.h"
#include "platform/parts/FixedAppTracking.h"
#include "tests/faults/SystemCalls.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

// Forwards all calls and records acknowledged updates.
class ChronicledSuite : public KeyValueSuite {
 public:
  ChronicledSuite(std::shared_ptr<KeyValueSuite> suite, Chronicle& chronicle)
      : suite_(std::move(suite)), chronicle_(chronicle) {}

  std::shared_ptr<const SuiteEntries> snapshot() const override { return suite_->snapshot(); }
  std::shared_ptr<void> follow(Follower follower) override { return suite_->follow(std::move(follower)); }
  std::expected<void, std::string> update(const Edit& edit) override {
    markCall("begun");
    auto done = suite_->update(edit);
    if (!done) throw std::runtime_error("an update failed: " + done.error());
    chronicle_.images.push_back(imageOf(*suite_));
    markCall("acknowledged");
    return done;
  }
  std::expected<JournalPage, std::string> journal(std::int64_t before, std::size_t count) const override {
    return suite_->journal(before, count);
  }
  std::expected<SuiteReading, std::string> read(std::size_t count) const override { return suite_->read(count); }
  std::unique_ptr<SuiteSubscription> observe(std::function<void()> changed) override {
    return suite_->observe(std::move(changed));
  }

 private:
  const std::shared_ptr<KeyValueSuite> suite_;
  Chronicle& chronicle_;
};

class ChronicledStore : public KeyValueStore {
 public:
  ChronicledStore(std::shared_ptr<KeyValueStore> store, Chronicle& chronicle)
      : store_(std::move(store)), chronicle_(chronicle) {}

  std::expected<std::shared_ptr<KeyValueSuite>, std::string> open(std::string_view name, Report report) override {
    auto opened = store_->open(name, std::move(report));
    if (!opened) return opened;
    return std::make_shared<ChronicledSuite>(std::move(*opened), chronicle_);
  }
  std::unique_ptr<StoreLock> tryLock(std::string_view name) override { return store_->tryLock(name); }
  std::shared_ptr<KeyValueSuite> standardDefaults() override { return store_->standardDefaults(); }

 private:
  const std::shared_ptr<KeyValueStore> store_;
  Chronicle& chronicle_;
};

}  // namespace

SuiteImage imageOf(const KeyValueSuite& suite) {
  auto journal = suite.journal(std::numeric_limits<std::int64_t>::max(), maximumJournalRecords);
  const auto reading = suite.read(0);
  if (!journal || !reading) throw std::runtime_error("the store cannot be read");
  if (!journal->damaged.empty()) throw std::runtime_error("a record of the journal is damaged");
  return {*reading->entries, std::move(journal->records)};
}

PowerDevice::PowerDevice(const std::filesystem::path& data, Chronicle* chronicle) {
  platform_.console = std::make_shared<MemoryConsole>();
  platform_.clock = std::make_shared<VirtualClock>(WallTime(std::chrono::seconds(startSeconds)));
  platform_.executors = executors_;
  platform_.files = std::make_shared<PosixFileSystem>(data);
  platform_.store = std::make_shared<SqliteStore>(data);
  if (chronicle != nullptr) platform_.store = std::make_shared<ChronicledStore>(platform_.store, *chronicle);
  platform_.http = std::make_shared<ScriptedHttpSession>(
      [servers = servers_](const HttpRequest& request) { return servers->exchange(request); });
  platform_.network = std::make_shared<StaticNetworkPath>();
  platform_.locale = std::make_shared<FixedLocale>(std::vector<std::string>{"en"});
  platform_.tracking = std::make_shared<FixedAppTracking>();
  platform_.permissions = std::make_shared<NoPermissionSources>();
  platform_.host = std::make_shared<FixedHostApplication>();
  platform_.random = std::make_shared<SeededRandom>();
  platform_.vendorUrl = testing::DeviceServers::address;
  publish(1);
}

PowerDevice::~PowerDevice() {
  sdk_.reset();
  run();
}

std::shared_ptr<KeyValueSuite> PowerDevice::suite() {
  return platform_.store->open(key::suiteName, {}).value();
}

void PowerDevice::publish(std::int64_t version, int purposes, bool isOptOut) {
  auto document = validConfiguration();
  document["version"] = version;
  boost::json::array list;
  for (int id = 1; id <= purposes; ++id) list.push_back(boost::json::object{{"purpose_id", id}});
  document["purposes"] = std::move(list);
  document["permissions"] = boost::json::array();
  document["is_att_enabled"] = false;
  if (isOptOut) bannerOf(document)["compliance_type"] = "opt-out";
  servers_->setConfiguration(boost::json::serialize(document));
}

ConsentSDK& PowerDevice::sdk() {
  if (!sdk_) sdk_ = std::make_unique<ConsentSDK>(platform_);
  return *sdk_;
}

void PowerDevice::start() {
  sdk().setup({.appUrl = testing::DeviceServers::address,
               .cdnUrl = testing::DeviceServers::address,
               .tenantId = "t1",
               .appId = "a1",
               .logLevel = LogLevel::info,
               .subjectId = "SUBJECT",
               .locationCode = "DE"});
  run();
}

}  // namespace quillon::test
