// Every SDK operation, called at random by many threads while the device, the network and further instances change.
#include <gtest/gtest.h>

#include <atomic>
#include <boost/json.hpp>
#include <chrono>
#include <cstdlib>
#include <random>
#include <regex>
#include <span>
#include <thread>
#include <tuple>
#include <utility>

#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "platform/memory/RecordingPresenter.h"
#include "quillon/LinuxPlatform.h"
#include "quillon/SDKLogger.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::string_view token = "secret-token";
constexpr int threadCount = 32;
constexpr int unlistedPurpose = 4;  // those from 1 to 3 are in the configuration

// A few seconds find common faults; QUILLON_STRESS_SECONDS runs longer.
std::chrono::seconds duration() {
#ifdef __SANITIZE_THREAD__
  constexpr auto usual = 4s;
#else
  constexpr auto usual = 1s;
#endif
  const char* wanted = std::getenv("QUILLON_STRESS_SECONDS");
  return wanted == nullptr ? usual : std::chrono::seconds(std::atoi(wanted));
}

// Checks only that the token is never logged; a minute of log blocks would take too much memory.
class WatchfulConsole : public Console {
 public:
  void write(std::string_view block) override {
    if (block.find(token) != std::string_view::npos) ADD_FAILURE() << "logged the token: " << block;
  }
  void fatal(std::string_view message, std::string_view /*file*/) override {
    ADD_FAILURE() << message;
    std::abort();
  }
};

// One of the threads: its arguments and pending results.
class Caller {
 public:
  Caller(World& world, unsigned seed) : world_(world), random_(seed) {}
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  World& world() { return world_; }
  std::uint32_t below(std::uint32_t bound) { return random_() % bound; }
  bool chance() { return below(2) == 0; }

  std::int64_t purpose() { return 1 + below(unlistedPurpose); }
  VantariKey permission() {
    return chance() ? VantariKey(VantariKey::cameraUsageDescription) : VantariKey("com.example.other");
  }
  ConsentStatus status() { return chance() ? ConsentStatus::granted : ConsentStatus::declined; }
  std::optional<MainConfiguration> configuration() {
    return chance() ? std::nullopt : std::optional<MainConfiguration>(MainConfiguration{});
  }
  ConsentSDKOptions options() {
    ConsentSDKOptions options = world_.options();
    options.testingMode = below(4) == 0;
    options.mode = chance() ? Mode::live : Mode::draft;
    options.logLevel = chance() ? LogLevel::debug : LogLevel::error;
    if (chance()) options.languageCode = chance() ? "de" : "en";
    if (chance()) options.locationCode.reset();
    if (chance()) options.subjectId.reset();
    return options;
  }

  // Replaces the previous listener.
  void hold(Listening listening) { listening_ = std::move(listening); }

  // A callback for any operation; waited for until it is called or dropped.
  auto callback() {
    auto called = std::make_shared<Called>();
    waited_ = called->promise.get_future();
    return [called](const auto&...) {
      EXPECT_FALSE(called->once.test_and_set()) << "called twice";
      called->promise.set_value();
    };
  }
  template <class Result>
  void wait(std::future<Result> result) {
    ASSERT_EQ(result.wait_for(60s), std::future_status::ready) << "hangs";
    EXPECT_NO_THROW(std::ignore = (result.get(), 0));
  }
  // False if it was dropped.
  bool waitForCallback() {
    if (!waited_.valid()) return true;
    EXPECT_EQ(waited_.wait_for(60s), std::future_status::ready) << "neither called nor dropped";
    try {
      std::exchange(waited_, {}).get();
      return true;
    } catch (const std::future_error&) {
      return false;
    }
  }

 private:
  struct Called {
    std::promise<void> promise;
    std::atomic_flag once;
  };

  World& world_;
  std::mt19937 random_;
  std::future<void> waited_;
  Listening listening_;
};

struct Operation {
  std::string_view name;  // as declared
  void (*call)(ConsentSDK& sdk, Caller& caller);
  void (*other)(ConsentSDK& sdk, Caller& caller) = nullptr;  // of its two forms, with a callback or a future
};

template <class Call>
constexpr Operation inBothForms(std::string_view name, Call /*call*/) {
  return {name, [](auto& sdk, auto& caller) { Call{}(sdk, caller, caller.callback()); },
          [](auto& sdk, auto& caller) { caller.wait(Call{}(sdk, caller)); }};
}

void callAnything(ConsentSDK& sdk, Caller& caller);

// An instance of its own, in use.
std::unique_ptr<ConsentSDK> another(Caller& caller) {
  auto sdk = std::make_unique<ConsentSDK>(caller.world().process());
  sdk->setup(caller.options());
  for (int i = 0; i < 3; ++i) callAnything(*sdk, caller);
  return sdk;
}

// One entry per name in the public header. The first are about instances of their own.
constexpr std::uint32_t withoutInstances = 4;
constexpr Operation operations[] = {
    {"shared", [](auto&, auto&) { std::ignore = ConsentSDK::shared().getStatus(); }},
    {"ConsentSDK", [](auto&, auto& caller) { caller.wait(another(caller)->settled()); }},
    {"~ConsentSDK", [](auto&, auto& caller) { another(caller)->acceptOrReject(caller.chance(), caller.callback()); }},
    {"close",
     [](auto&, auto& caller) {
       const auto sdk = another(caller);
       sdk->close();
       EXPECT_TRUE(sdk->set({.purposeId = unlistedPurpose}, ConsentStatus::granted)) << "a closed instance stores on";
       for (int i = 0; i < 3; ++i) callAnything(*sdk, caller);
     }},
    {"setup", [](auto& sdk, auto& caller) { sdk.setup(caller.options()); }},
    {"getStatus", [](auto& sdk, auto&) { std::ignore = sdk.getStatus(); }},
    {"isReady", [](auto& sdk, auto&) { sdk.isReady([](SDKStatus) {}); }},
    {"removeListeners", [](auto& sdk, auto&) { sdk.removeListeners(); }},
    {"sdkVersion", [](auto& sdk, auto&) { EXPECT_EQ(sdk.sdkVersion(), "1.2.3"); }},
    {"logger",
     [](auto& sdk, auto& caller) {
       sdk.logger().setLogLevel(caller.chance() ? LogLevel::debug : LogLevel::error);
       sdk.logger().log("said by the host", LogLevel::warning, "logger", "test", 1);
     }},
    {"get", [](auto& sdk, auto& caller) { std::ignore = sdk.get(caller.purpose()); },
     [](auto& sdk, auto& caller) { std::ignore = sdk.get(caller.permission()); }},
    {"set", [](auto& sdk, auto& caller) { EXPECT_TRUE(sdk.set({.purposeId = caller.purpose()}, caller.status())); },
     [](auto& sdk, auto& caller) { EXPECT_TRUE(sdk.set({.permissionId = caller.permission()}, caller.status())); }},
    inBothForms("getPurposeConsents", [](auto& sdk, auto&, auto... done) { return sdk.getPurposeConsents(done...); }),
    inBothForms("getPermissionConsents",
                [](auto& sdk, auto&, auto... done) { return sdk.getPermissionConsents(done...); }),
    inBothForms("checkConsentBy",
                [](auto& sdk, auto& caller, auto... done) { return sdk.checkConsentBy(caller.permission(), done...); }),
    inBothForms("getGCMConsents", [](auto& sdk, auto&, auto... done) { return sdk.getGCMConsents(done...); }),
    {"removeConsents", [](auto& sdk, auto&) { sdk.removeConsents(); }},
    inBothForms("getBannerConfig", [](auto& sdk, auto& caller,
                                      auto... done) { return sdk.getBannerConfig(caller.configuration(), done...); }),
    {"isBannerDue", [](auto& sdk, auto&) { std::ignore = sdk.isBannerDue(); }},
    inBothForms("acceptOrReject",
                [](auto& sdk, auto& caller, auto... done) { return sdk.acceptOrReject(caller.chance(), done...); }),
    inBothForms("getSettingsPrompt", [](auto& sdk, auto&, auto... done) { return sdk.getSettingsPrompt(done...); }),
    inBothForms("getGCMConfig", [](auto& sdk, auto&, auto... done) { return sdk.getGCMConfig(done...); }),
    inBothForms("consentScript", [](auto& sdk, auto&, auto... done) { return sdk.consentScript(done...); }),
    inBothForms("getHistory",
                [](auto& sdk, auto& caller, auto... done) {
                  return sdk.getHistory(20, std::optional<std::int64_t>(1 + caller.below(500)), done...);
                }),
    inBothForms("explain",
                [](auto& sdk, auto& caller, auto... done) { return sdk.explain(caller.purpose(), done...); }),
    {"listenToConsents", [](auto& sdk, auto& caller) { caller.hold(sdk.listenToConsents([](const Decision&) {})); }},
    {"listenToScreens", [](auto& sdk, auto& caller) { caller.hold(sdk.listenToScreens([](const ScreenEvent&) {})); }},
    {"listenToUploads", [](auto& sdk, auto& caller) { caller.hold(sdk.listenToUploads([](const UploadEvent&) {})); }},
    {"explainBanner", [](auto& sdk, auto&) { std::ignore = sdk.explainBanner(); }},
    {"presentBanner", [](auto& sdk, auto&) { sdk.presentBanner(); }},
    {"presentPreferenceCenter", [](auto& sdk, auto&) { sdk.presentPreferenceCenter(); }},
    {"presentSettingPrompt", [](auto& sdk, auto& caller) { sdk.presentSettingPrompt(caller.permission()); }},
    {"openLink", [](auto& sdk, auto&) { sdk.openLink("https://a.example/"); }},
    {"registerFonts", [](auto& sdk, auto&) { sdk.registerFonts(CustomFont{}, {}, {}, {}); }},
    {"registerColors", [](auto& sdk, auto&) { sdk.registerColors({}); }},
    inBothForms("receipt",
                [](auto& sdk, auto& caller, auto... done) { return sdk.receipt({caller.purpose()}, done...); }),
    inBothForms("uploadConsents",
                [](auto& sdk, auto& caller, auto... done) {
                  return sdk.uploadConsents(caller.world().server.url(), {}, done...);
                }),
    inBothForms("uploadPendingConsents",
                [](auto& sdk, auto&, auto... done) { return sdk.uploadPendingConsents(done...); }),
    inBothForms("checkConsents", [](auto& sdk, auto&, auto... done) { return sdk.checkConsents(done...); }),
    // Becomes ready only after all calls have ended.
    {"settled", [](auto& sdk, auto&) { std::ignore = sdk.settled(); }},
    {"screens", [](auto& sdk, auto&) { std::ignore = sdk.screens(); }},
    {"signalSource", [](auto& sdk, auto&) { std::ignore = sdk.signalSource(); }},
    {"isAllowed", [](auto& sdk, auto&) { std::ignore = sdk.isAllowed(1); },
     [](auto& sdk, auto& caller) { std::ignore = sdk.isAllowed(caller.permission()); }},
    {"isDecided", [](auto& sdk, auto&) { std::ignore = sdk.isDecided(1); }},
    {"whileAllowed", [](auto& sdk, auto&) { std::ignore = sdk.whileAllowed(1, [] {}, [] {}); }},
    {"listenToBannerDue", [](auto& sdk, auto&) { std::ignore = sdk.listenToBannerDue([](const auto&) {}); }},
};

void callAnything(ConsentSDK& sdk, Caller& caller) {
  const auto& operation = operations[withoutInstances + caller.below(std::size(operations) - withoutInstances)];
  (operation.other && caller.chance() ? operation.other : operation.call)(sdk, caller);
}

TEST(PublicOperations, AreAllInTheTable) {
  std::string text = fileBytes(std::string(QUILLON_PUBLIC_HEADERS) + "/ConsentSDK.h");
  text = std::regex_replace(text, std::regex("//[^\n]*|[^;]*= delete;"), "");
  text = text.substr(text.find("public:"), text.find("private:") - text.find("public:"));
  std::multiset<std::string> listed, declared;
  for (const Operation& operation : operations) {
    for (int form = operation.other ? 2 : 1; form > 0; --form) listed.emplace(operation.name);
  }
  const std::regex declaration(R"((~?\w+)\([^;]*;)");
  for (std::sregex_iterator each(text.begin(), text.end(), declaration), end; each != end; ++each) {
    declared.insert((*each)[1]);
  }
  EXPECT_EQ(listed, declared);
}

TEST(PublicOperations, AnOpenInstanceCallsEveryCallbackBeforeItsSetUpToo) {
  World world;
  world.restart();
  Caller caller(world, 1);
  for (const bool isSetUp : {false, true}) {
    if (isSetUp) world.start();
    for (const Operation& operation : std::span(operations).subspan(withoutInstances)) {
      if (operation.name == "setup" && !isSetUp) continue;
      for (const auto form : {operation.call, operation.other}) {
        if (form) form(*world.sdk, caller);
        EXPECT_TRUE(caller.waitForCallback()) << operation.name;
      }
    }
  }
}

void changeSurroundings(Caller& caller) {
  World& world = caller.world();
  switch (caller.below(3)) {
    case 0:
      world.network->set(caller.chance() ? NetworkStatus::satisfied : NetworkStatus::unsatisfied);
      break;
    case 1:
      world.permissions->set(VantariKey::cameraUsageDescription, static_cast<int>(caller.below(4)));
      break;
    default:
      world.clock->advance(std::chrono::seconds(1 + caller.below(120)));
  }
}

// Created first, since the shared instance is used until the process ends.
const TemporaryFolder& sharedFolder() {
  static const TemporaryFolder folder;
  return folder;
}

TEST(PublicOperations, MayBeCalledFromManyThreadsAtOnce) {
  (void)configure({.applicationId = "test", .dataDirectory = sharedFolder().path() / "shared"});
  // In memory: a minute of commits would otherwise mostly wait for the disk.
  const TemporaryFolder memory(TemporaryFolder::fastParent());
  World world(memory.path() / "data");
  world.amend = [presenter = std::make_shared<RecordingPresenter>()](Platform& platform) {
    platform.console = std::make_shared<WatchfulConsole>();
    platform.screens = presenter;
  };
  std::atomic<int> requests = 0;
  const auto third = [&requests](ConsentServer::Handler rest) {
    return [&requests, rest = std::move(rest)](const auto& request, auto& response) {
      if (requests++ % 3 == 0) return json("got " + request.get_header_value("X-Auth-Token"), 503)(request, response);
      rest(request, response);
    };
  };
  world.server.onConfiguration(third(json(boost::json::serialize(validConfiguration()))));
  world.server.onUpload(third(json(saved)));
  world.start();

  {
    const auto end = Clock::now() + duration();
    std::vector<std::jthread> threads;
    for (unsigned seed = 0; seed < threadCount; ++seed) {
      threads.emplace_back([&, seed] {
        Caller caller(world, seed);
        for (; Clock::now() < end && !::testing::Test::HasFailure();) {
          if (caller.below(8) == 0) changeSurroundings(caller);
          const auto& [name, call, other] = operations[caller.below(std::size(operations))];
          SCOPED_TRACE(std::string(name));
          (other && caller.chance() ? other : call)(*world.sdk, caller);
          std::ignore = caller.waitForCallback();
        }
      });
    }
  }

  // Afterwards it works normally.
  world.settle();
  world.server.serve(validConfiguration());
  world.server.onUpload(json(saved));
  world.start();
  EXPECT_EQ(world.sdk->getStatus(), SDKStatus::ready);
  EXPECT_TRUE(world.sdk->acceptOrReject(true).get());
  EXPECT_EQ(world.sdk->get(1), ConsentStatus::granted);
  world.settle();  // a check that was begun above may still decide what follows the device
  EXPECT_TRUE(world.sdk->uploadPendingConsents().get());
  const StoredValues stored = world.stored();
  auto pending = stored.pendingPurposes();
  std::erase(pending, unlistedPurpose);  // it waits for a configuration that lists it
  EXPECT_TRUE(pending.empty());
  EXPECT_TRUE(stored.pendingPermissions().empty());
  EXPECT_EQ(stored.consentGivenType(), GivenType::explicitly);
}

}  // namespace
}  // namespace quillon::test
