// What the desktop says about how things look, saves where the user says, and knows of privacy, with a portal on a
// private bus in the place of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <future>

#include "platform/linux/LinuxDesktopSettings.h"
#include "platform/linux/LinuxFileChooser.h"
#include "platform/linux/LinuxPrivacySignals.h"
#include "tests/platform/Environment.h"
#include "tests/platform/PrivateBus.h"
#include "tests/platform/Signal.h"
#include "tests/support/Contains.h"

namespace quillon::test {
namespace {

constexpr const char* portalPath = "/org/freedesktop/portal/desktop";

class PortalTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::installed()) GTEST_SKIP() << "dbus-daemon or gdbus is not installed";
    bus_.emplace(PrivateBus::Services::none);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_->address().c_str(), 1);
  }
  void openPortal(const std::map<std::string, std::string>& replies) {
    portal_.emplace(bus_->address(), "org.freedesktop.portal.Desktop", replies);
  }
  static void loseTheBus() { setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1); }

  const Environment restored_{"DBUS_SESSION_BUS_ADDRESS"};
  std::optional<PrivateBus> bus_;
  std::optional<BusPeer> portal_;
};

using DesktopSettingsTest = PortalTest;

TEST_F(DesktopSettingsTest, FollowsThePortalAndTakesOnlyWhatHasItsForm) {
  openPortal({{"ReadAll", "({'org.freedesktop.appearance': {'color-scheme': <uint32 0>, 'contrast': <uint32 0>}},)"}});
  LinuxDesktopSettings settings;
  EXPECT_EQ(settings.appearance(), DesktopAppearance()) << "nobody has asked";
  std::mutex mutex;
  std::condition_variable changed;
  const auto subscription = settings.observe([&] {
    const std::lock_guard lock(mutex);  // so that nobody begins to wait in between
    changed.notify_all();
  });
  const std::string common = "'org.freedesktop.appearance'", gnome = "'org.gnome.desktop.interface'";
  const std::pair<std::string, DesktopAppearance> rows[] = {
      {common + ": {'color-scheme': <uint32 1>}", {.prefersDark = true}},
      {common + ": {'color-scheme': <uint32 2>, 'contrast': <uint32 1>, 'reduced-motion': <uint32 1>}",
       {.isContrastHigh = true, .isMotionReduced = true}},
      {gnome + ": {'enable-animations': <false>, 'text-scaling-factor': <1.5>}, "
               "'org.gnome.desktop.a11y.interface': {'high-contrast': <true>}",
       {.isContrastHigh = true, .isMotionReduced = true, .textScale = 1.5}},
      {common + ": {'accent-color': <(0.25, 0.5, 1.0)>}", {.accent = Color{0.25, 0.5, 1}}},
      {common + ": {'accent-color': <(0.25, 0.5, 1.1)>}", {}},
      // Of other types, out of all bounds, or unknown: as if it were not there.
      {common + ": {'color-scheme': <'1'>, 'contrast': <true>}, " + gnome +
           ": {'text-scaling-factor': <-1.0>, 'enable-animations': <uint32 0>}",
       {}},
      {common + ": {'color-scheme': <uint32 1>}", {.prefersDark = true}},
  };
  for (const auto& [said, appearance] : rows) {
    portal_->reply("ReadAll", "({" + said + "},)");
    portal_->emit(portalPath, "org.freedesktop.portal.Settings", "SettingChanged",
                  "('org.freedesktop.appearance', 'color-scheme', <uint32 1>)");
    std::unique_lock lock(mutex);
    const auto isFollowed = [&, &expected = appearance] { return settings.appearance() == expected; };
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), isFollowed)) << said;
  }
}

TEST_F(DesktopSettingsTest, WithoutAPortalOrABusNothingIsPreferred) {
  for (const bool hasBus : {true, false}) {
    if (!hasBus) loseTheBus();
    LinuxDesktopSettings settings;
    const auto subscription = settings.observe([] { ADD_FAILURE() << "nothing has changed"; });
    EXPECT_EQ(settings.appearance(), DesktopAppearance());
  }
}

const FileToSave receiptFile{.title = "Save \"it\"", .accept = "Save", .name = "receipt.json", .content = "content"};

// One answer, waited for.
class Answer {
 public:
  std::function<void(SaveOutcome)> taker() {
    return [promise = promise_](SaveOutcome outcome) { promise->set_value(outcome); };
  }
  std::optional<SaveOutcome> get() {
    if (future_.wait_for(std::chrono::seconds(10)) != std::future_status::ready) return std::nullopt;
    return future_.get();
  }

 private:
  const std::shared_ptr<std::promise<SaveOutcome>> promise_ = std::make_shared<std::promise<SaveOutcome>>();
  std::future<SaveOutcome> future_ = promise_->get_future();
};

class FileChooserTest : public PortalTest {
 protected:
  void SetUp() override {
    PortalTest::SetUp();
    if (bus_) openPortal({{"SaveFile", "(objectpath '/request',)"}, {"Close", "()"}});
  }

  // The user closes the dialog of the last call.
  void respond(const std::string& arguments) {
    const auto call = portal_->nextCall("SaveFile");
    ASSERT_TRUE(call);
    for (const auto* part : {"'Save \"it\"'", "'accept_label': <'Save'>", "'current_name': <'receipt.json'>"}) {
      EXPECT_TRUE(contains(call->arguments, part));
    }
    const auto at = call->arguments.find("quillon");
    const auto token = call->arguments.substr(at, call->arguments.find('\'', at) - at);
    std::string sender = call->sender.substr(1);
    std::ranges::replace(sender, '.', '_');
    portal_->emit(portalPath + ("/request/" + sender + "/" + token), "org.freedesktop.portal.Request", "Response",
                  arguments);
  }
  // The answer of a user who chooses these files.
  std::string chosen(const std::string& uris) const { return "(uint32 0, {'uris': <" + uris + ">})"; }
  std::string uri(const std::string& name) const { return "'file://" + (folder_.path() / name).string() + "'"; }

  const TemporaryFolder folder_;
};

TEST_F(FileChooserTest, WritesTheFileWhereTheUserSaysAndTellsWhatBecameOfIt) {
  LinuxFileChooser chooser;
  setFileBytes(folder_.path() / "old.json", "before");
  const std::pair<std::string, SaveOutcome> rows[] = {
      {chosen("[" + uri("my%20receipt.json") + "]"), SaveOutcome::saved},
      {chosen("[" + uri("old.json") + "]"), SaveOutcome::saved},
      {"(uint32 1, @a{sv} {})", SaveOutcome::cancelled},
      {"(uint32 2, @a{sv} {})", SaveOutcome::unavailable},
      {chosen("[" + uri("missing/receipt.json") + "]"), SaveOutcome::failed},
      // What is no file of this machine.
      {chosen("['sftp://host/receipt.json']"), SaveOutcome::failed},
      {chosen("[" + uri("a") + ", " + uri("b") + "]"), SaveOutcome::failed},
      {chosen(uri("a")), SaveOutcome::failed},
      {"('0',)", SaveOutcome::unavailable},
  };
  for (const auto& [response, outcome] : rows) {
    Answer answer;
    const auto choice = chooser.save(receiptFile, answer.taker());
    respond(response);
    EXPECT_EQ(answer.get(), outcome) << response;
  }
  EXPECT_EQ(fileBytes(folder_.path() / "my receipt.json"), "content");
  EXPECT_EQ(fileBytes(folder_.path() / "old.json"), "content");
  EXPECT_EQ(modeOf(folder_.path() / "my receipt.json"), 0600u);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 2) << "nothing else is left";
}

TEST_F(FileChooserTest, NobodyWaitsForADialogThatCannotCome) {
  std::optional<LinuxFileChooser> chooser(std::in_place);
  const auto outcome = [&](const std::function<void()>& meanwhile = [] {}) {
    Answer answer;
    const auto choice = chooser->save(receiptFile, answer.taker());
    meanwhile();
    return answer.get();
  };
  for (const std::string error : {"UnknownMethod", "AccessDenied"}) {
    portal_->reply("SaveFile", "error:org.freedesktop.DBus.Error." + error);
    EXPECT_EQ(outcome(), SaveOutcome::unavailable) << error;
    EXPECT_TRUE(portal_->nextCall("SaveFile"));
  }
  portal_->reply("SaveFile", "(objectpath '/request',)");
  const auto leave = [&] {
    EXPECT_TRUE(portal_->nextCall("SaveFile"));
    portal_.reset();
  };
  EXPECT_EQ(outcome(leave), SaveOutcome::unavailable) << "the portal goes while the dialog is open";
  EXPECT_EQ(outcome(), SaveOutcome::unavailable) << "without a portal";
  loseTheBus();
  Answer nowhere;
  const auto last = LinuxFileChooser().save(receiptFile, nowhere.taker());
  chooser.emplace();
  EXPECT_EQ(outcome(), SaveOutcome::unavailable) << "without a bus";
}

TEST_F(FileChooserTest, ADialogThatNobodyWaitsForIsClosed) {
  LinuxFileChooser chooser;
  auto dropped = chooser.save(receiptFile, [](SaveOutcome) { ADD_FAILURE() << "nobody waits"; });
  ASSERT_TRUE(portal_->nextCall("SaveFile"));
  dropped.reset();
  EXPECT_TRUE(portal_->nextCall("Close"));
  Answer first, second;
  const auto replaced = chooser.save(receiptFile, first.taker());
  ASSERT_TRUE(portal_->nextCall("SaveFile"));
  const auto choice = chooser.save(receiptFile, second.taker());
  EXPECT_EQ(first.get(), SaveOutcome::cancelled);
  EXPECT_TRUE(portal_->nextCall("Close"));
  respond(chosen("[" + uri("receipt.json") + "]"));
  EXPECT_EQ(second.get(), SaveOutcome::saved);
}

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
  remove_all(folder);  // this process's own
  std::_Exit(0);
}

TEST(PrivacySignalsTest, TheDesktopAsksWithWhatSomebodyHasSetAndNotWithItsDefaults) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TemporaryFolder folder;
  EXPECT_EXIT(watchTheDesktop(folder.path()), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quillon::test
