// What the desktop says about how things look, from a portal on a private bus.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <optional>

#include "platform/linux/LinuxDesktopSettings.h"
#include "tests/platform/Environment.h"
#include "tests/platform/PrivateBus.h"

namespace quillon::test {
namespace {

const std::string portalName = "org.freedesktop.portal.Desktop";
const std::string noPreference =
    "({'org.freedesktop.appearance': {'color-scheme': <uint32 0>, 'contrast': <uint32 0>}},)";

class DesktopSettingsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::installed()) GTEST_SKIP() << "dbus-daemon or gdbus is not installed";
    bus_.emplace(PrivateBus::Services::none);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_->address().c_str(), 1);
  }

  const Environment restored_{"DBUS_SESSION_BUS_ADDRESS"};
  std::optional<PrivateBus> bus_;
};

TEST_F(DesktopSettingsTest, FollowsThePortalAndTakesOnlyWhatHasItsForm) {
  BusPeer portal(bus_->address(), portalName, {{"ReadAll", noPreference}});
  LinuxDesktopSettings settings;
  EXPECT_EQ(settings.appearance(), DesktopAppearance()) << "nobody has asked";
  std::mutex mutex;
  std::condition_variable changed;
  const auto subscription = settings.observe([&] {
    const std::lock_guard lock(mutex);  // so that nobody begins to wait in between
    changed.notify_all();
  });
  const struct {
    const char* settings;
    DesktopAppearance appearance;
  } rows[] = {
      {"({'org.freedesktop.appearance': {'color-scheme': <uint32 1>}},)", {.prefersDark = true}},
      {"({'org.freedesktop.appearance': {'color-scheme': <uint32 2>, 'contrast': <uint32 1>, "
       "'reduced-motion': <uint32 1>}},)",
       {.isContrastHigh = true, .isMotionReduced = true}},
      {"({'org.gnome.desktop.interface': {'enable-animations': <false>, 'text-scaling-factor': <1.5>}, "
       "'org.gnome.desktop.a11y.interface': {'high-contrast': <true>}},)",
       {.isContrastHigh = true, .isMotionReduced = true, .textScale = 1.5}},
      {"({'org.freedesktop.appearance': {'accent-color': <(0.25, 0.5, 1.0)>}},)", {.accent = Color{0.25, 0.5, 1}}},
      {"({'org.freedesktop.appearance': {'accent-color': <(0.25, 0.5, 1.1)>}},)", {}},
      {"({'org.freedesktop.appearance': {'accent-color': <(0.25, -1.0, 1.0)>, 'color-scheme': <uint32 1>}},)",
       {.prefersDark = true}},
      {"({'org.freedesktop.appearance': {'accent-color': <0.5>}},)", {}},
      // Of other types, out of all bounds, or unknown: as if it were not there.
      {"({'org.freedesktop.appearance': {'color-scheme': <'1'>, 'contrast': <true>}, "
       "'org.gnome.desktop.interface': {'text-scaling-factor': <-1.0>, 'enable-animations': <uint32 0>}},)",
       {}},
      {"({'org.freedesktop.appearance': {'color-scheme': <uint32 1>}},)", {.prefersDark = true}},
  };
  for (const auto& [said, appearance] : rows) {
    portal.reply("ReadAll", said);
    portal.emit("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged",
                "('org.freedesktop.appearance', 'color-scheme', <uint32 1>)");
    std::unique_lock lock(mutex);
    const auto isFollowed = [&, &expected = appearance] { return settings.appearance() == expected; };
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), isFollowed)) << said;
  }
}

TEST_F(DesktopSettingsTest, WithoutAPortalOrABusNothingIsPreferred) {
  for (const bool hasBus : {true, false}) {
    if (!hasBus) setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    LinuxDesktopSettings settings;
    const auto subscription = settings.observe([] { ADD_FAILURE() << "nothing has changed"; });
    EXPECT_EQ(settings.appearance(), DesktopAppearance());
  }
}

}  // namespace
}  // namespace quillon::test
