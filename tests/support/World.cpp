#include "tests/support/World.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/FixedHostApplication.h"
#include "platform/memory/FixedLocale.h"

namespace quillon::test {
namespace {

// The authorization can change at run time.
class WorldTracking : public AppTracking {
 public:
  explicit WorldTracking(const TrackingAuthorization& authorization) : authorization_(authorization) {}
  TrackingAuthorization authorization() const override { return authorization_; }
  std::optional<std::string> advertisingIdentifier() const override { return "AD-ID"; }

 private:
  const TrackingAuthorization& authorization_;
};

}  // namespace

boost::json::object validConfiguration() {
  return boost::json::parse(R"({
    "version": 5, "x-auth-token": "secret-token", "re_consent_enabled": true,
    "purposes": [
      {"purpose_id": 1, "purpose_name": {"en": "Statistics"}},
      {"purpose_id": 2, "purpose_name": {"en": "Security"}, "disable_opt_out": true},
      {"purpose_id": 3, "purpose_name": {"en": "Advertising"}}
    ],
    "permissions": [{"permission_id": "NSCameraUsageDescription"}, {"permission_id": "NSContactsUsageDescription"}],
    "is_att_enabled": true,
    "att_or_gad_config": {"purpose_ids": [3], "show_info_on_pref_center": true, "info_text": {"en": "Tracking"}},
    "banner_config": {
      "categories": {"eu": {"compliance_type": "opt-in", "banner_reappearance_time": "12 month"}},
      "names_map": {}, "locations": {"default": "eu"}
    }
  })")
      .as_object();
}

boost::json::object configurationWith(const boost::json::object& changes) {
  auto configuration = validConfiguration();
  for (const auto& [name, value] : changes) configuration[name] = value;
  return configuration;
}

boost::json::array purposesOf(std::initializer_list<std::int64_t> ids) {
  boost::json::array list;
  for (const auto id : ids) list.push_back(boost::json::object{{"purpose_id", id}, {"disable_opt_out", id == 2}});
  return list;
}

boost::json::object& bannerOf(boost::json::object& configuration) {
  return configuration["banner_config"].as_object()["categories"].as_object()["eu"].as_object();
}

boost::json::object configurationOfTwoLaws(std::string_view place) {
  auto configuration = validConfiguration();
  auto& banners = configuration["banner_config"].as_object();
  banners["categories"].as_object()["lax"] = {{"compliance_type", "opt-out"}};
  banners["locations"].as_object()[place] = "lax";
  return configuration;
}

World::World(std::optional<std::filesystem::path> installed)
    : data(installed.value_or(folder.path() / "data")),
      clock(std::make_shared<VirtualClock>(WallTime(std::chrono::seconds(startSeconds)))),
      console(std::make_shared<MemoryConsole>()),
      network(std::make_shared<StaticNetworkPath>()),
      permissions(std::make_shared<SettablePermissionSources>()) {
  server.serve(validConfiguration());
  permissions->set(VantariKey::cameraUsageDescription, 3);
  permissions->set(VantariKey::contactsUsageDescription, 2);
}

ConsentSDKOptions World::options() const {
  return {.appUrl = server.url(),
          .cdnUrl = server.url(),
          .tenantId = "t1",
          .appId = "a1",
          .logLevel = LogLevel::info,
          .subjectId = "SUBJECT",
          .locationCode = "DE"};
}

void World::restart() {
  held_.reset();
  sdk.reset();
  platform = process();
  sdk = std::make_unique<ConsentSDK>(platform);
}

Platform World::process() {
  Platform services = linuxPlatform({.applicationId = "test", .dataDirectory = data, .vendorUrl = server.url()});
  services.console = console;
  services.clock = clock;
  services.network = network;
  services.permissions = permissions;
  services.locale = std::make_shared<FixedLocale>(std::vector<std::string>{"en-GB"});
  services.tracking = std::make_shared<WorldTracking>(tracking);
  services.host = std::make_shared<FixedHostApplication>(
      FixedHostApplication::Description{.componentVersions = {{"org.quillon.consent.core", "1.2.3"}}});
  if (amend) amend(services);
  return services;
}

void World::start(ConsentSDKOptions chosen) {
  if (!sdk) restart();
  sdk->setup(std::move(chosen));
  sdk->settled().wait();
}

void World::startLater(ConsentSDKOptions chosen) {
  if (sdk) advance(std::chrono::hours(2));
  start(std::move(chosen));
}

std::shared_ptr<const SuiteEntries> World::snapshot() {
  if (!sdk) restart();
  return platform.store->open(key::suiteName, {}).value()->snapshot();
}

StoredValues World::stored() {
  held_ = snapshot();
  return StoredValues(*held_);
}

void World::store(std::string_view key, PropertyValue value) {
  if (!sdk) restart();
  const auto suite = platform.store->open(key::suiteName, {}).value();
  const auto done = suite->update([&](const SuiteEntries&) { return SuiteChanges{{std::string(key), value}}; });
  if (!done) throw std::runtime_error(done.error());
}

void World::advance(std::chrono::milliseconds time) {
  clock->advance(time, [this] { sdk->settled().wait(); });
}

void World::onMain(const std::function<void()>& function) {
  std::promise<void> done;
  platform.executors->main()->post([&] {
    function();
    done.set_value();
  });
  done.get_future().wait();
}

void World::drainMainQueue() {
  onMain([] {});
}

void World::settle() {
  // The main queue may start tasks, and tasks may post to it; so it must be idle twice in a row.
  for (int quiet = 0; quiet < 2;) {
    const auto settled = sdk->settled();
    quiet = settled.wait_for(std::chrono::seconds(0)) == std::future_status::ready ? quiet + 1 : 0;
    settled.wait();
    drainMainQueue();
  }
}

std::vector<boost::json::object> World::uploads() const {
  std::vector<boost::json::object> bodies;
  for (const auto& request : server.seen(uploadPath)) bodies.push_back(boost::json::parse(request.body).as_object());
  return bodies;
}

std::string World::log() const {
  std::string text;
  for (const std::string& block : console->blocks()) text += block + "\n";
  return text;
}

}  // namespace quillon::test
