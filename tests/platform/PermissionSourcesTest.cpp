// The permission statuses of a device: the packaged permission store and services of the test's own on private buses.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/PermissionSources/ApplicationIdentity.h"
#include "platform/linux/PermissionSources/LinuxPermissionSources.h"
#include "platform/linux/PermissionSources/NfcSource.h"
#include "tests/platform/Environment.h"
#include "tests/platform/FalseBus.h"
#include "tests/platform/PrivateBus.h"
#include "tests/platform/Signal.h"

namespace quillon {
namespace {

using namespace std::chrono_literals;
using test::BusPeer;
using test::FalseBus;
using test::PrivateBus;
using Key = VantariKey;
using Value = PermissionSources::Value;
using Answer = std::expected<Value, std::string>;

constexpr Value noSource = std::nullopt;

const std::string application = "com.example.reader";
const std::string nowhere = "unix:path=/nonexistent/bus";

const std::vector<Key> storeKeys{Key::cameraUsageDescription, Key::microphoneUsageDescription,
                                 Key::locationAlwaysUsageDescription, Key::userNotificationsUsageDescription};
const std::vector<Key> systemKeys{Key::bluetoothAlwaysUsageDescription, Key::faceIDUsageDescription};

// What a failed test prints of an answer.
std::string text(const Answer& answer) {
  if (!answer) return "error: " + answer.error();
  return *answer ? std::to_string(**answer) : "no source";
}

std::string text(Value value) {
  return text(Answer(value));
}

class PermissionSourcesTest : public testing::Test {
 protected:
  PermissionSourcesTest() { unsetenv("FLATPAK_ID"); }

  void SetUp() override {
    if (!PrivateBus::installed()) GTEST_SKIP() << "dbus-daemon or gdbus is not installed";
  }

  static std::unique_ptr<LinuxPermissionSources> ownedSources(const std::string& session, const std::string& system) {
    return std::unique_ptr<LinuxPermissionSources>(new LinuxPermissionSources(sources(session, system)));
  }

  static LinuxPermissionSources sources(const std::string& session, const std::string& system,
                                        const std::string& id = application) {
    setenv("DBUS_SESSION_BUS_ADDRESS", session.c_str(), 1);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", system.c_str(), 1);
    return LinuxPermissionSources(id);
  }

 private:
  const test::Environment environment_{"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS", "FLATPAK_ID"};
};

// With the store as it is packaged.
class PermissionStoreTest : public PermissionSourcesTest {
 protected:
  void SetUp() override {
    PermissionSourcesTest::SetUp();
    if (::access("/usr/libexec/xdg-permission-store", X_OK) != 0)
      GTEST_SKIP() << "xdg-permission-store is not installed";
    bus_.emplace(PrivateBus::Services::desktop);
    // The store is started here, so that a busy machine may take longer for it than an answer may.
    bus_->call(store_, "/", "org.freedesktop.DBus.Peer.Ping");
  }

  void decide(const std::string& table, const std::string& id, const std::string& words,
              const std::string& app = application) {
    change("SetPermission " + table + " true " + id + " '" + app + "' \"" + words + "\"");
  }

  void change(const std::string& methodAndArguments) {
    bus_->call(store_, "/org/freedesktop/impl/portal/PermissionStore", store_ + "." + methodAndArguments);
  }

  const std::string store_ = "org.freedesktop.impl.portal.PermissionStore";
  std::optional<PrivateBus> bus_;
};

TEST_F(PermissionStoreTest, TheStoresWordsBecomeTheNumbersOfEachKey) {
  const struct {
    const char *table, *id, *words;
    Key key;
    int value;
  } rows[] = {
      {"devices", "camera", "['yes']", Key::cameraUsageDescription, 3},
      {"devices", "camera", "['no']", Key::cameraBroadcastUsageDescription, 2},
      {"devices", "camera", "['ask']", Key::cameraUsageDescription, 0},
      {"devices", "camera", "['YES']", Key::cameraUsageDescription, 0},
      {"devices", "camera", "@as []", Key::cameraUsageDescription, 0},
      {"devices", "microphone", "['yes']", Key::microphoneUsageDescription, 3},
      {"devices", "microphone", "['no', 'yes']", Key::microphoneBroadcastUsageDescription, 2},
      {"location", "location", "['NONE', '1700000000']", Key::locationWhenInUseUsageDescription, 2},
      {"location", "location", "['COUNTRY', '0']", Key::locationAlwaysUsageDescription, 3},
      {"location", "location", "['CITY', '0']", Key::locationAlwaysUsageDescription, 3},
      {"location", "location", "['NEIGHBORHOOD', '0']", Key::locationAlwaysUsageDescription, 3},
      {"location", "location", "['STREET', '0']", Key::locationAlwaysUsageDescription, 3},
      {"location", "location", "['EXACT', '0']", Key::locationAlwaysAndWhenInUseUsageDescription, 3},
      {"location", "location", "['yes']", Key::locationAlwaysUsageDescription, 0},
      {"notifications", "notification", "['yes']", Key::userNotificationsUsageDescription, 2},
      {"notifications", "notification", "['no']", Key::userNotificationsUsageDescription, 1},
      {"notifications", "notification", "['perhaps']", Key::userNotificationsUsageDescription, 0},
  };
  const auto device = sources(bus_->address(), nowhere);
  for (const auto& row : rows) {
    decide(row.table, row.id, row.words);
    EXPECT_EQ(text(device.platformValue(row.key)), std::to_string(row.value)) << row.id << " " << row.words;
    EXPECT_EQ(text(device.knownValue(row.key)), std::to_string(row.value)) << row.id << " " << row.words;
  }
}

TEST_F(PermissionStoreTest, WhatIsDecidedAboutOtherApplicationsDoesNotCount) {
  const auto expectUnset = [&](const LinuxPermissionSources& device) {
    for (const Key& key : storeKeys) {
      const int unset = key == Key::userNotificationsUsageDescription ? 2 : 0;
      EXPECT_EQ(text(device.platformValue(key)), std::to_string(unset)) << key.rawValue();
    }
  };
  expectUnset(sources(bus_->address(), nowhere));  // no table has an entry yet
  for (const char* other : {"com.example", "com.example.reader.other", "", "*"}) {
    decide("devices", "camera", "['yes']", other);
    decide("devices", "microphone", "['yes']", other);
    decide("location", "location", "['EXACT', '0']", other);
    decide("notifications", "notification", "['no']", other);
  }
  expectUnset(sources(bus_->address(), nowhere));
}

TEST_F(PermissionStoreTest, AsksUnderTheNameOfTheSandboxWhenTheApplicationGivesNone) {
  decide("devices", "camera", "['no']", "com.example.boxed");
  decide("devices", "camera", "['yes']");
  setenv("FLATPAK_ID", "com.example.boxed", 1);
  EXPECT_EQ(text(sources(bus_->address(), nowhere, "").platformValue(Key::cameraUsageDescription)), "2");
  EXPECT_EQ(text(sources(bus_->address(), nowhere).platformValue(Key::cameraUsageDescription)), "3");
}

TEST_F(PermissionStoreTest, AChangeReachesTheObserverWithTheNewValueKnown) {
  auto device = sources(bus_->address(), nowhere);
  EXPECT_FALSE(device.knownValue(Key::cameraUsageDescription));
  const auto changedBy = [&](const Key& key, const std::function<void()>& change) {
    test::Signal told;
    const auto subscription = device.observe([&] { told.set(); });
    EXPECT_TRUE(device.platformValue(key));  // the subscription stands when this is answered
    change();
    return told.wait() ? text(device.knownValue(key)) : "not told";
  };
  EXPECT_EQ(changedBy(Key::cameraUsageDescription, [&] { decide("devices", "camera", "['yes']"); }), "3");
  EXPECT_EQ(changedBy(Key::cameraUsageDescription, [&] { decide("devices", "camera", "['no']"); }), "2");
  EXPECT_EQ(changedBy(Key::microphoneUsageDescription, [&] { decide("devices", "microphone", "['no']"); }), "2");
  EXPECT_EQ(changedBy(Key::locationAlwaysUsageDescription, [&] { decide("location", "location", "['CITY', '0']"); }),
            "3");
  EXPECT_EQ(
      changedBy(Key::userNotificationsUsageDescription, [&] { decide("notifications", "notification", "['no']"); }),
      "1");
  EXPECT_EQ(changedBy(Key::cameraUsageDescription, [&] { change("Delete devices camera"); }), "0");
}

TEST_F(PermissionStoreTest, ObserversHearNothingOfOtherApplications) {
  decide("devices", "camera", "['no']");
  auto device = sources(bus_->address(), nowhere);
  std::atomic<int> told = 0;
  const auto subscription = device.observe([&] { ++told; });
  EXPECT_EQ(text(device.platformValue(Key::cameraUsageDescription)), "2");
  decide("devices", "camera", "['yes']", "com.example.other");
  // A later change is heard of, and nothing was before it.
  test::Signal last;
  const auto other = device.observe([&] { last.set(); });
  decide("devices", "camera", "['yes']");
  ASSERT_TRUE(last.wait());
  EXPECT_EQ(told, 1);
}

TEST_F(PermissionStoreTest, AnObserverMayLeaveAndEvenDropTheSourcesFromItsOwnHandler) {
  decide("devices", "camera", "['no']");
  std::mutex mutex;
  auto device = ownedSources(bus_->address(), nowhere);
  std::unique_ptr<PermissionSubscription> subscription;
  test::Signal gone;
  std::unique_lock lock(mutex);
  subscription = device->observe([&] {
    {
      const std::lock_guard inner(mutex);
      subscription.reset();
      device.reset();
    }
    gone.set();
  });
  EXPECT_EQ(text(device->platformValue(Key::cameraUsageDescription)), "2");
  lock.unlock();
  decide("devices", "camera", "['yes']");
  EXPECT_TRUE(gone.wait());
}

TEST_F(PermissionStoreTest, AnswersManyThreadsWhileObserversComeAndGo) {
  decide("devices", "camera", "['yes']");
  auto device = sources(bus_->address(), nowhere);
  std::atomic<int> wrong = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        for (int round = 0; round < 50; ++round) {
          auto target = std::make_unique<std::atomic<int>>();
          const auto subscription = device.observe([&target = *target] { ++target; });
          if (text(device.platformValue(Key::cameraUsageDescription)) != "3") ++wrong;
          if (text(device.knownValue(Key::cameraUsageDescription)) != "3") ++wrong;
        }
      });
    }
    for (int round = 0; round < 10; ++round) {
      decide("location", "location", round % 2 == 0 ? "['EXACT', '0']" : "['NONE', '0']");
    }
  }
  EXPECT_EQ(wrong, 0);
}

TEST_F(PermissionStoreTest, ABusThatWasRestartedIsAskedAndListenedToAgain) {
  decide("devices", "camera", "['yes']");
  auto device = sources(bus_->address(), nowhere);
  const auto ask = [&] { return text(device.platformValue(Key::cameraUsageDescription)); };
  EXPECT_EQ(ask(), "3");
  bus_->stop();
  EXPECT_NE(ask(), "3");
  bus_->start();
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  while (ask() != "3" && std::chrono::steady_clock::now() < deadline) {
  }
  test::Signal told;
  const auto subscription = device.observe([&] {  // also of the other sources, which come back with the bus
    if (text(device.knownValue(Key::cameraUsageDescription)) == "2") told.set();
  });
  ASSERT_EQ(ask(), "3");
  decide("devices", "camera", "['no']");
  EXPECT_TRUE(told.wait());
}

// A store that the test speaks for.
class FalseStoreTest : public PermissionSourcesTest {
 protected:
  const PrivateBus bus_{PrivateBus::Services::none};

  // Of the camera and the notifications.
  std::pair<std::string, std::string> answers(const std::string& reply) {
    const BusPeer store(bus_.address(), "org.freedesktop.impl.portal.PermissionStore", {{"Lookup", reply}});
    const auto device = sources(bus_.address(), nowhere);
    return {text(device.platformValue(Key::cameraUsageDescription)).substr(0, 6),
            text(device.platformValue(Key::userNotificationsUsageDescription)).substr(0, 6)};
  }
};

TEST_F(FalseStoreTest, NonsenseIsAnErrorAndNeverAGrant) {
  using Answers = std::pair<std::string, std::string>;
  EXPECT_EQ(answers("(@a{sas} {'com.example.reader': ['yes']}, <0>)"), Answers("3", "2")) << "the peer does not work";
  EXPECT_EQ(answers("(@a{sas} {'com.example.reader': []}, <0>)"), Answers("0", "0"));
  const std::string large = "(@a{sas} {'com.example.reader': ['yes']}, <'" + std::string(5'000'000, 'x') + "'>)";
  for (const char* reply :
       {"('yes',)", "()", "(@a{sas} {'com.example.reader': ['yes']},)", "(['yes'], <0>)",
        "({'com.example.reader': 'yes'}, <0>)", "({'com.example.reader': <['yes']>}, <0>)", "error:org.example.Broken",
        "error:org.freedesktop.DBus.Error.AccessDenied", large.c_str()}) {
    EXPECT_EQ(answers(reply), Answers("error:", "error:")) << std::string(reply).substr(0, 100);
  }
}

TEST_F(FalseStoreTest, WithoutAStoreNothingIsDetermined) {
  for (const std::string& session : {bus_.address(), nowhere, std::string("autolaunch:")}) {
    const auto device = sources(session, nowhere);
    for (const Key& key : storeKeys)
      EXPECT_EQ(text(device.platformValue(key)), "0") << session << " " << key.rawValue();
  }
}

class Stopwatch {
 public:
  auto elapsed() const { return std::chrono::steady_clock::now() - begin_; }

 private:
  const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

const std::string authenticated = "REJECTED EXTERNAL\r\nOK 0123456789abcdef0123456789abcdef\r\nERROR\r\n";

TEST_F(PermissionSourcesTest, ABusThatIsSilentOrSpeaksNonsenseCostsTwoSecondsAndNoMore) {
  const auto ask = [](LinuxPermissionSources& device, const std::string& greeting) {
    SCOPED_TRACE(testing::PrintToString(greeting.substr(0, 80)));
    const Stopwatch watch;
    const auto subscription = device.observe([] {});
    for (const Key& key : storeKeys) EXPECT_FALSE(device.knownValue(key));
    EXPECT_LT(watch.elapsed(), 1s) << "observing or knowing waited";
    for (const Key& key : storeKeys) EXPECT_FALSE(device.platformValue(key)) << key.rawValue();
    EXPECT_LT(watch.elapsed(), 4s);
    for (const Key& key : systemKeys) EXPECT_FALSE(device.platformValue(key)) << key.rawValue();
    for (const Key& key : storeKeys) EXPECT_FALSE(device.knownValue(key));
  };
  std::vector<std::jthread> threads;
  for (const std::string& greeting :
       {std::string(), authenticated, std::string(100'000, '\xff'), authenticated + std::string(100'000, '\xff'),
        authenticated + "l\2\1\1" + std::string(12, '\x7f'), std::string("REJECTED\r\n")}) {
    auto bus = std::make_unique<FalseBus>(greeting);
    auto device = ownedSources(bus->address(), bus->address());
    threads.emplace_back([ask, greeting, bus = std::move(bus), device = std::move(device)]() mutable {
      ask(*device, greeting);
      const Stopwatch watch;
      device.reset();
      EXPECT_LT(watch.elapsed(), 2s);
    });
  }
}

TEST_F(PermissionSourcesTest, LeavingDoesNotWaitForASilentBus) {
  const FalseBus bus({});
  const Stopwatch watch;
  for (int round = 0; round < 20; ++round) {
    auto device = sources(bus.address(), bus.address());
    const auto subscription = device.observe([] {});
  }
  EXPECT_LT(watch.elapsed(), 2s);
}

// Services of the system that the test speaks for.
class SystemBusTest : public PermissionSourcesTest {
 protected:
  const PrivateBus bus_{PrivateBus::Services::none};
};

TEST_F(SystemBusTest, AnAdapterThatIsSwitchedOnMayBeUsed) {
  const struct {
    const char *objects, *answer;
  } rows[] = {
      {"(@a{oa{sa{sv}}} {'/org/bluez/hci0': {'org.bluez.Adapter1': {'Powered': <true>}}},)", "3"},
      {"(@a{oa{sa{sv}}} {'/org/bluez/hci0': {'org.bluez.Adapter1': {'Powered': <false>}},"
       " '/org/bluez/hci1': {'org.bluez.Adapter1': {'Powered': <true>}}},)",
       "3"},
      {"(@a{oa{sa{sv}}} {'/org/bluez/hci0': {'org.bluez.Adapter1': {'Powered': <false>}}},)", "0"},
      {"(@a{oa{sa{sv}}} {'/org/bluez/hci0': {'org.bluez.Adapter1': {'Powered': <'yes'>}}},)", "0"},
      {"(@a{oa{sa{sv}}} {'/org/bluez/hci0': {'org.bluez.Adapter1': @a{sv} {}}},)", "0"},
      {"(@a{oa{sa{sv}}} {'/org/bluez/x': {'org.bluez.Device1': {'Powered': <true>}}},)", "no source"},
      {"(@a{oa{sa{sv}}} {},)", "no source"},
      {"error:org.freedesktop.DBus.Error.AccessDenied", "2"},
      {"(true,)", "error:"},
      {"error:org.bluez.Error.Failed", "error:"},
  };
  EXPECT_EQ(text(sources(nowhere, nowhere).platformValue(Key::bluetoothAlwaysUsageDescription)), "no source");
  const auto device = sources(nowhere, bus_.address());
  EXPECT_EQ(text(device.platformValue(Key::bluetoothAlwaysUsageDescription)), "no source") << "without BlueZ";
  BusPeer bluez(bus_.address(), "org.bluez", {});
  for (const auto& row : rows) {
    bluez.reply("GetManagedObjects", row.objects);
    for (const auto key : {Key::bluetoothAlwaysUsageDescription, Key::bluetoothPeripheralUsageDescription}) {
      EXPECT_TRUE(text(device.platformValue(key)).starts_with(row.answer)) << row.objects;
    }
  }
}

TEST_F(SystemBusTest, ABusThatForbidsTheQuestionMeansDenied) {
  const PrivateBus strict(PrivateBus::Services::none,
                          "<deny send_destination=\"org.bluez\"/>"
                          "<deny send_destination=\"net.reactivated.Fprint\"/>");
  const BusPeer bluez(strict.address(), "org.bluez", {});
  const BusPeer fprintd(strict.address(), "net.reactivated.Fprint", {});
  const auto device = sources(nowhere, strict.address());
  EXPECT_EQ(text(device.platformValue(Key::bluetoothAlwaysUsageDescription)), "2");
  EXPECT_EQ(text(device.platformValue(Key::faceIDUsageDescription)), "2");
}

TEST_F(SystemBusTest, AnAdapterThatComesGoesOrIsSwitchedIsHeardOf) {
  const std::string on = "(@a{oa{sa{sv}}} {'/org/bluez/hci0': {'org.bluez.Adapter1': {'Powered': <true>}}},)";
  const std::string off = "(@a{oa{sa{sv}}} {'/org/bluez/hci0': {'org.bluez.Adapter1': {'Powered': <false>}}},)";
  const std::string none = "(@a{oa{sa{sv}}} {},)";
  const Key key = Key::bluetoothAlwaysUsageDescription;
  auto device = sources(nowhere, bus_.address());
  const auto changedBy = [&](const std::function<void()>& change) {
    test::Signal told;
    const auto subscription = device.observe([&] { told.set(); });
    EXPECT_TRUE(device.platformValue(key));
    change();
    return told.wait() ? text(device.knownValue(key)) : "not told";
  };

  std::optional<BusPeer> bluez;
  EXPECT_EQ(changedBy([&] {
              bluez.emplace(bus_.address(), "org.bluez",
                            std::map<std::string, std::string>{{"GetManagedObjects", off}});
            }),
            "0");
  EXPECT_EQ(changedBy([&] {
              bluez->reply("GetManagedObjects", on);
              bluez->emit("/org/bluez/hci0", "org.freedesktop.DBus.Properties", "PropertiesChanged",
                          "('org.bluez.Adapter1', {'Powered': <true>}, @as [])");
            }),
            "3");
  EXPECT_EQ(changedBy([&] {
              bluez->reply("GetManagedObjects", none);
              bluez->emit("/", "org.freedesktop.DBus.ObjectManager", "InterfacesRemoved",
                          "(@o '/org/bluez/hci0', ['org.freedesktop.DBus.Introspectable', 'org.bluez.Adapter1'])");
            }),
            "no source");
  EXPECT_EQ(changedBy([&] {
              bluez->reply("GetManagedObjects", on);
              bluez->emit("/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded", "(1,)");
              bluez->emit("/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded",
                          "(@o '/org/bluez/hci0', @a{sa{sv}} {'org.bluez.Adapter1': {'Powered': <true>}})");
            }),
            "3");
  EXPECT_EQ(changedBy([&] { bluez.reset(); }), "no source");
}

TEST_F(SystemBusTest, ASensorWithAFingerMayBeUsed) {
  const struct {
    const char *device, *fingers, *answer;
  } rows[] = {
      {"(@o '/net/reactivated/Fprint/Device/0',)", "(['right-index-finger'],)", "1"},
      {"(@o '/net/reactivated/Fprint/Device/0',)", "(@as [],)", "0"},
      {"(@o '/net/reactivated/Fprint/Device/0',)", "error:net.reactivated.Fprint.Error.NoEnrolledPrints", "0"},
      {"(@o '/net/reactivated/Fprint/Device/0',)", "error:net.reactivated.Fprint.Error.PermissionDenied", "2"},
      {"(@o '/net/reactivated/Fprint/Device/0',)", "('right-index-finger',)", "error:"},
      {"error:net.reactivated.Fprint.Error.NoSuchDevice", "(['right-index-finger'],)", "no source"},
      {"error:net.reactivated.Fprint.Error.Internal", "(['right-index-finger'],)", "error:"},
      {"(1,)", "(['right-index-finger'],)", "error:"},
  };
  const auto device = sources(nowhere, bus_.address());
  EXPECT_EQ(text(device.platformValue(Key::faceIDUsageDescription)), "no source") << "without fprintd";
  BusPeer fprintd(bus_.address(), "net.reactivated.Fprint", {});
  for (const auto& row : rows) {
    fprintd.reply("GetDefaultDevice", row.device);
    fprintd.reply("ListEnrolledFingers", row.fingers);
    EXPECT_TRUE(text(device.platformValue(Key::faceIDUsageDescription)).starts_with(row.answer))
        << row.device << " " << row.fingers;
  }
}

TEST_F(PermissionSourcesTest, ReadersOfTagsAreCountedByTheKernel) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(nfcAdapterValue(folder.path() / "nfc"), 0);
  std::filesystem::create_directory(folder.path() / "nfc");
  EXPECT_EQ(nfcAdapterValue(folder.path() / "nfc"), 0);
  std::filesystem::create_directory(folder.path() / "nfc" / "nfc0");
  EXPECT_EQ(nfcAdapterValue(folder.path() / "nfc"), 1);
}

TEST_F(PermissionSourcesTest, KeysThatLinuxHasNoSettingForHaveNoSource) {
  const auto device = sources(nowhere, nowhere);
  for (const Key& key :
       {Key(Key::photoLibraryUsageDescription), Key(Key::contactsUsageDescription), Key(Key::calendarsUsageDescription),
        Key(Key::motionUsageDescription), Key(Key::healthShareUsageDescription),
        Key(Key::speechRecognitionUsageDescription), Key(Key::homeKitUsageDescription), Key("com.example.custom")}) {
    EXPECT_EQ(text(device.platformValue(key)), text(noSource)) << key.rawValue();
    EXPECT_EQ(text(device.knownValue(key)), text(noSource)) << key.rawValue();
  }
}

TEST(ApplicationIdentityTest, TheUnitInWhichTheDesktopStartedAnApplicationNamesIt) {
  const std::string slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
  const struct {
    std::string text, application;
  } rows[] = {
      {slice + "app-gnome-org.gnome.Maps-4711.scope\n", "org.gnome.Maps"},
      {slice + "app-org.gnome.Maps-4711.scope\n", "org.gnome.Maps"},
      {slice + "app-flatpak-com.example.reader-99.scope/tab-1\n", "com.example.reader"},
      {slice + "app-com.example.reader@0a1b.service\n", "com.example.reader"},
      {slice + "app-dex-com.example.reader@autostart.service\n", "com.example.reader"},
      {slice + "app-com.example.my\\x2dreader.service\n", "com.example.my-reader"},
      {slice + "app-com.example.odd\\xzz-1.scope\n", "com.example.odd\\xzz"},
      {"12:cpuset:/app-a-wrong-1.scope\n1:name=systemd:/app.slice/app-com.example.reader-1.scope\n",
       "com.example.reader"},
      {slice + "app-gnome-outer-1.scope/app-gnome-inner-2.scope", "inner"},
      {slice + "app-4711.scope\n", ""},
      {slice + "session.slice/org.gnome.Shell@wayland.service\n", ""},
      {"0::/app.slice/app-.scope\n0::/app-\\x2-1.mount\n", ""},
      {"0::/\n", ""},
      {"app-gnome-x-1.scope", ""},
      {"", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(applicationOfControlGroups(row.text), row.application) << row.text;
}

}  // namespace
}  // namespace quillon
