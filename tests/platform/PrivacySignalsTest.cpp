// The device's privacy signals.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "platform/linux/LinuxPrivacySignals.h"
#include "platform/memory/SettablePrivacySignals.h"
#include "tests/platform/Environment.h"
#include "tests/platform/Signal.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

TEST(PrivacySignalsTest, TheEnvironmentAsksWithAnyValueButNothingAndZero) {
  const Environment restored({"DO_NOT_TRACK"});
  for (const auto& [value, isOn] :
       {std::pair{"1", true}, {"true", true}, {"no", true}, {"00", true}, {"0", false}, {"", false}}) {
    setenv("DO_NOT_TRACK", value, 1);
    EXPECT_EQ(LinuxPrivacySignals().isOn(), isOn) << value;
  }
  unsetenv("DO_NOT_TRACK");
  EXPECT_FALSE(LinuxPrivacySignals().isOn());
}

// The desktop's settings are a file in the test's folder, which its library supports; the library locates it once per
// process, so this test starts one.
void watchTheDesktop(const std::filesystem::path& folder) {
  const auto choose = [&](const char* line) {
    std::ofstream(folder / "new") << "[org/gnome/desktop/privacy]\n" << line << "\n";
    rename(folder / "new", folder / "glib-2.0/settings/keyfile");
  };
  setenv("GSETTINGS_BACKEND", "keyfile", 1);
  setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
  setenv("GSETTINGS_SCHEMA_DIR", folder.c_str(), 1);
  unsetenv("DO_NOT_TRACK");
  create_directories(folder / "glib-2.0/settings");
  std::ofstream(folder / "p.gschema.xml")
      << R"(<schemalist><schema id="org.gnome.desktop.privacy" path="/org/gnome/desktop/privacy/">)"
         R"(<key name="hide-identity" type="b"><default>false</default></key>)"
         R"(<key name="send-software-usage-stats" type="b"><default>false</default></key>)"
         R"(</schema></schemalist>)";
  if (std::system(("glib-compile-schemas " + folder.string()).c_str()) != 0) std::_Exit(2);
  choose("send-software-usage-stats=true");

  LinuxPrivacySignals signals;
  if (signals.isOn()) std::_Exit(3);
  for (const auto& [line, isOn] : {std::pair{"hide-identity=true", true},
                                   {"hide-identity=false", false},
                                   {"send-software-usage-stats=false", true},
                                   {"", false}}) {
    Signal changed;
    const auto subscription = signals.observe([&] { changed.set(); });
    choose(line);
    if (!changed.wait() || signals.isOn() != isOn) std::_Exit(4);
  }
  std::_Exit(0);
}

TEST(PrivacySignalsTest, TheDesktopAsksWithWhatSomebodyHasSetAndNotWithItsDefaults) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TemporaryFolder folder;
  EXPECT_EXIT(watchTheDesktop(folder.path()), ::testing::ExitedWithCode(0), "");
}

TEST(PrivacySignalsTest, TheOneInMemoryTellsOfChangesOnly) {
  SettablePrivacySignals signals;
  int told = 0;
  auto subscription = signals.observe([&] { ++told; });
  signals.set(false);
  EXPECT_EQ(told, 0);
  signals.set(true);
  EXPECT_TRUE(signals.isOn());
  EXPECT_EQ(told, 1);
  subscription.reset();
  signals.set(false);
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace quillon::test
