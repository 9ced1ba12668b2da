// The permission sources: the packaged permission store, and simulated services on private buses.
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

const std::string application = "com.example.reader";
const std::string nowhere = "unix:path=/nonexistent/bus";

const std::vector<Key> storeKeys{Key::cameraUsageDescription, Key::microphoneUsageDescription,
                                 Key::locationAlwaysUsageDescription, Key::userNotificationsUsageDescription};
const std::vector<Key> systemKeys{Key::bluetoothAlwaysUsageDescription, Key::faceIDUsageDescription};

// An answer as text, for failed tests.
std::string text(const std::expected<Value, std::string>& answer) {
  if (!answer) return "error: " + answer.error();
  return *answer ? std::to_string(**answer) : "no source";
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

  // The value that is known once the change is told.
  static std::string valueAfter(LinuxPermissionSources& device, const Key& key, const std::function<void()>& change) {
    test::Signal told;
    const auto subscription = device.observe([&] { told.set(); });
    EXPECT_TRUE(device.platformValue(key));  // subscribed once this is answered
    change();
    return told.wait() ? text(device.knownValue(key)) : "not told";
  }

 private:
  const test::Environment environment_{"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS", "FLATPAK_ID"};
};

// With the packaged store.
class PermissionStoreTest : public PermissionSourcesTest {
 protected:
  void SetUp() override {
    PermissionSourcesTest::SetUp();
    if (::access("/usr/libexec/xdg-permission-store", X_OK) != 0)
      GTEST_SKIP() << "xdg-permission-store is not installed";
    bus_.emplace(PrivateBus::Services::desktop);
    // Starts the store first, since on a busy machine that may exceed the time limit of an answer.
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
  for (const auto& [table, id, words, key, value] : rows) {
    decide(table, id, words);
    EXPECT_EQ(text(device.platformValue(key)), std::to_string(value)) << id << " " << words;
    EXPECT_EQ(text(device.knownValue(key)), std::to_string(value)) << id << " " << words;
  }
}

TEST_F(PermissionStoreTest, WhatIsDecidedAboutOtherApplicationsNeitherCountsNorIsTold) {
  auto device = sources(bus_->address(), nowhere);
  std::atomic<int> told = 0;
  const auto subscription = device.observe([&] { ++told; });
  const auto expectUnset = [&] {
    for (const Key& key : storeKeys) {
      EXPECT_EQ(text(device.platformValue(key)), key == Key::userNotificationsUsageDescription ? "2" : "0");
    }
  };
  expectUnset();  // no table has an entry yet
  for (const char* other : {"com.example", "com.example.reader.other", "", "*"}) {
    decide("devices", "camera", "['yes']", other);
    decide("devices", "microphone", "['yes']", other);
    decide("location", "location", "['EXACT', '0']", other);
    decide("notifications", "notification", "['no']", other);
  }
  expectUnset();
  // A later change is reported, and nothing before it.
  test::Signal last;
  const auto second = device.observe([&] { last.set(); });
  decide("devices", "camera", "['yes']");
  ASSERT_TRUE(last.wait());
  EXPECT_EQ(told, 1);

  // The sandbox's name, when the application gives none.
  decide("devices", "camera", "['no']", "com.example.boxed");
  setenv("FLATPAK_ID", "com.example.boxed", 1);
  EXPECT_EQ(text(sources(bus_->address(), nowhere, "").platformValue(Key::cameraUsageDescription)), "2");
  EXPECT_EQ(text(sources(bus_->address(), nowhere).platformValue(Key::cameraUsageDescription)), "3");
}

TEST_F(PermissionStoreTest, AChangeReachesTheObserverWithTheNewValueKnown) {
  auto device = sources(bus_->address(), nowhere);
  EXPECT_FALSE(device.knownValue(Key::cameraUsageDescription));
  const struct {
    Key key;
    const char *table, *id, *words, *value;
  } changes[] = {
      {Key::cameraUsageDescription, "devices", "camera", "['yes']", "3"},
      {Key::locationAlwaysUsageDescription, "location", "location", "['CITY', '0']", "3"},
      {Key::userNotificationsUsageDescription, "notifications", "notification", "['no']", "1"},
  };
  for (const auto& [key, table, id, words, value] : changes) {
    EXPECT_EQ(valueAfter(device, key, [&] { decide(table, id, words); }), value) << id << " " << words;
  }
  EXPECT_EQ(valueAfter(device, Key::cameraUsageDescription, [&] { change("Delete devices camera"); }), "0");
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
  const auto subscription = device.observe([&] {  // also for the other sources, which return with the bus
    if (text(device.knownValue(Key::cameraUsageDescription)) == "2") told.set();
  });
  ASSERT_EQ(ask(), "3");
  decide("devices", "camera", "['no']");
  EXPECT_TRUE(told.wait());
}

// With services simulated by the test.
class FalseServicesTest : public PermissionSourcesTest {
 protected:
  const PrivateBus bus_{PrivateBus::Services::none};
};

using FalseStoreTest = FalseServicesTest;

TEST_F(FalseStoreTest, NonsenseIsAnErrorAndNeverAGrant) {
  const std::string granting = "(@a{sas} {'com.example.reader': ['yes']}, <";
  const struct {
    std::string reply, camera, notifications;
  } rows[] = {
      {granting + "0>)", "3", "2"},
      {"(@a{sas} {'com.example.reader': []}, <0>)", "0", "0"},
      {"", "error:", "error:"},  // none
      {granting + "'" + std::string(5'000'000, 'x') + "'>)", "error:", "error:"},
      {"('yes',)", "error:", "error:"},
      {"()", "error:", "error:"},
      {"(@a{sas} {'com.example.reader': ['yes']},)", "error:", "error:"},
      {"(['yes'], <0>)", "error:", "error:"},
      {"({'com.example.reader': 'yes'}, <0>)", "error:", "error:"},
      {"({'com.example.reader': <['yes']>}, <0>)", "error:", "error:"},
      {"error:org.example.Broken", "error:", "error:"},
      {"error:org.freedesktop.DBus.Error.AccessDenied", "error:", "error:"},
  };
  for (const auto& [reply, camera, notifications] : rows) {
    SCOPED_TRACE(reply.substr(0, 80));
    const BusPeer store(bus_.address(), "org.freedesktop.impl.portal.PermissionStore", {{"Lookup", reply}});
    const auto device = sources(bus_.address(), nowhere);
    EXPECT_EQ(text(device.platformValue(Key::cameraUsageDescription)).substr(0, 6), camera);
    EXPECT_EQ(text(device.platformValue(Key::userNotificationsUsageDescription)).substr(0, 6), notifications);
  }
}

TEST_F(FalseStoreTest, WithoutAStoreNothingIsDetermined) {
  for (const std::string& session : {bus_.address(), nowhere, std::string("autolaunch:")}) {
    const auto device = sources(session, nowhere);
    for (const Key& key : storeKeys) EXPECT_EQ(text(device.platformValue(key)), "0") << key.rawValue();
  }
}

TEST_F(PermissionSourcesTest, ABusThatIsSilentOrSpeaksNonsenseHoldsNobodyUpForLong) {
  const auto now = std::chrono::steady_clock::now;
  const std::string authenticated = "REJECTED EXTERNAL\r\nOK 0123456789abcdef0123456789abcdef\r\nERROR\r\n";
  for (const std::string& greeting : {std::string(), authenticated, authenticated + std::string(100'000, '\xff')}) {
    SCOPED_TRACE(testing::PrintToString(greeting.substr(0, 80)));
    const FalseBus bus(greeting);
    auto device = ownedSources(bus.address(), bus.address());
    const auto begin = now();
    const auto subscription = device->observe([] {});
    for (const Key& key : storeKeys) EXPECT_FALSE(device->knownValue(key));
    EXPECT_LT(now() - begin, 1s) << "observing or knowing waited";
    {
      std::vector<std::jthread> askers;
      for (const auto* keys : {&storeKeys, &systemKeys}) {
        for (const Key& key : *keys) {
          askers.emplace_back([&] { EXPECT_FALSE(device->platformValue(key)) << key.rawValue(); });
        }
      }
    }
    EXPECT_LT(now() - begin, 4s);
    for (const Key& key : storeKeys) EXPECT_FALSE(device->knownValue(key));
    const auto leaving = now();
    device.reset();
    EXPECT_LT(now() - leaving, 1s) << "leaving waits for a silent bus";
  }
}

using SystemBusTest = FalseServicesTest;

std::string adapters(const std::string& objects) {
  return "(@a{oa{sa{sv}}} {" + objects + "},)";
}
std::string adapter(const std::string& number, const std::string& powered) {
  return "'/org/bluez/hci" + number + "': {'org.bluez.Adapter1': {'Powered': <" + powered + ">}}";
}

TEST_F(SystemBusTest, AnAdapterThatIsSwitchedOnMayBeUsed) {
  const std::pair<std::string, const char*> rows[] = {
      {adapters(adapter("0", "true")), "3"},
      {adapters(adapter("0", "false") + "," + adapter("1", "true")), "3"},
      {adapters(adapter("0", "false")), "0"},
      {adapters(adapter("0", "'yes'")), "0"},
      {adapters("'/org/bluez/hci0': {'org.bluez.Adapter1': @a{sv} {}}"), "0"},
      {adapters("'/org/bluez/x': {'org.bluez.Device1': {'Powered': <true>}}"), "no source"},
      {adapters(""), "no source"},
      {"error:org.freedesktop.DBus.Error.AccessDenied", "2"},
      {"(true,)", "error:"},
      {"error:org.bluez.Error.Failed", "error:"},
  };
  EXPECT_EQ(text(sources(nowhere, nowhere).platformValue(Key::bluetoothAlwaysUsageDescription)), "no source");
  const auto device = sources(nowhere, bus_.address());
  EXPECT_EQ(text(device.platformValue(Key::bluetoothAlwaysUsageDescription)), "no source") << "without BlueZ";
  BusPeer bluez(bus_.address(), "org.bluez", {});
  for (const auto& [objects, answer] : rows) {
    bluez.reply("GetManagedObjects", objects);
    for (const auto key : {Key::bluetoothAlwaysUsageDescription, Key::bluetoothPeripheralUsageDescription}) {
      EXPECT_TRUE(text(device.platformValue(key)).starts_with(answer)) << objects;
    }
  }
}

TEST_F(SystemBusTest, AnAdapterThatComesGoesOrIsSwitchedIsHeardOf) {
  const auto on = adapters(adapter("0", "true")), off = adapters(adapter("0", "false")), none = adapters("");
  auto device = sources(nowhere, bus_.address());
  std::optional<BusPeer> bluez;
  const auto changedBy = [&](const std::function<void()>& change) {
    return valueAfter(device, Key::bluetoothAlwaysUsageDescription, change);
  };
  using Replies = std::map<std::string, std::string>;
  EXPECT_EQ(changedBy([&] { bluez.emplace(bus_.address(), "org.bluez", Replies{{"GetManagedObjects", off}}); }), "0");
  const struct {
    std::string objects, path, interface, signal, arguments;
    const char* value;
  } changes[] = {
      {on, "/org/bluez/hci0", "Properties", "PropertiesChanged", "('org.bluez.Adapter1', {'Powered': <true>}, @as [])",
       "3"},
      {none, "/", "ObjectManager", "InterfacesRemoved",
       "(@o '/org/bluez/hci0', ['org.freedesktop.DBus.Introspectable', 'org.bluez.Adapter1'])", "no source"},
      {on, "/", "ObjectManager", "InterfacesAdded",
       "(@o '/org/bluez/hci0', @a{sa{sv}} {'org.bluez.Adapter1': {'Powered': <true>}})", "3"},
  };
  for (const auto& [objects, path, interface, signal, arguments, value] : changes) {
    const auto change = [&] {
      bluez->reply("GetManagedObjects", objects);
      bluez->emit("/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded", "(1,)");  // malformed
      bluez->emit(path, "org.freedesktop.DBus." + interface, signal, arguments);
    };
    EXPECT_EQ(changedBy(change), value) << signal;
  }
  EXPECT_EQ(changedBy([&] { bluez.reset(); }), "no source");
}

TEST_F(SystemBusTest, ASensorWithAFingerMayBeUsed) {
  const std::string sensor = "(@o '/net/reactivated/Fprint/Device/0',)", failed = "error:net.reactivated.Fprint.Error.";
  const struct {
    std::string device, fingers;
    const char* answer;
  } rows[] = {
      {sensor, "(['right-index-finger'],)", "1"},
      {sensor, "(@as [],)", "0"},
      {sensor, failed + "NoEnrolledPrints", "0"},
      {sensor, failed + "PermissionDenied", "2"},
      {"error:org.freedesktop.DBus.Error.AccessDenied", "", "2"},
      {sensor, "('right-index-finger',)", "error:"},
      {failed + "NoSuchDevice", "(['right-index-finger'],)", "no source"},
      {failed + "Internal", "(['right-index-finger'],)", "error:"},
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

TEST_F(PermissionSourcesTest, SomeKeysNeedNoBusAndOthersHaveNoSource) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(nfcAdapterValue(folder.path() / "nfc"), 0);
  std::filesystem::create_directory(folder.path() / "nfc");
  EXPECT_EQ(nfcAdapterValue(folder.path() / "nfc"), 0);
  std::filesystem::create_directory(folder.path() / "nfc" / "nfc0");
  EXPECT_EQ(nfcAdapterValue(folder.path() / "nfc"), 1);
  const auto device = sources(nowhere, nowhere);
  for (const Key& key : {Key(Key::photoLibraryUsageDescription), Key(Key::contactsUsageDescription),
                         Key(Key::homeKitUsageDescription), Key("com.example.custom")}) {
    EXPECT_EQ(text(device.platformValue(key)), "no source") << key.rawValue();
    EXPECT_EQ(text(device.knownValue(key)), "no source") << key.rawValue();
  }
}

TEST(ApplicationIdentityTest, TheUnitInWhichTheDesktopStartedAnApplicationNamesIt) {
  const std::string slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
  const std::pair<std::string, std::string> rows[] = {
      {slice + "app-gnome-org.gnome.Maps-4711.scope\n", "org.gnome.Maps"},
      {slice + "app-org.gnome.Maps-4711.scope\n", "org.gnome.Maps"},
      {slice + "app-flatpak-com.example.reader-99.scope/tab-1\n", "com.example.reader"},
      {slice + "app-com.example.reader@0a1b.service\n", "com.example.reader"},
      {slice + "app-dex-com.example.reader@autostart.service\n", "com.example.reader"},
      {slice + "app-com.example.my\\x2dreader.service\n", "com.example.my-reader"},
      {slice + "app-com.example.odd\\xzz-1.scope\n", "com.example.odd\\xzz"},
      {"12:cpuset:/app-a-wrong-1.scope\n1:name=systemd:/app.slice/app-a-right-1.scope\n", "right"},
      {slice + "app-gnome-outer-1.scope/app-gnome-inner-2.scope", "inner"},
      {slice + "app-4711.scope\n", ""},
      {slice + "session.slice/org.gnome.Shell@wayland.service\n", ""},
      {"0::/app.slice/app-.scope\n0::/app-\\x2-1.mount\n", ""},
      {"0::/\n", ""},
      {"app-gnome-x-1.scope", ""},
      {"", ""},
  };
  for (const auto& [text, name] : rows) EXPECT_EQ(applicationOfControlGroups(text), name) << text;
}

}  // namespace
}  // namespace quillon
