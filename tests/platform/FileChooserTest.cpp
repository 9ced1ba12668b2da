// Files that are saved where the user says, with a portal on a private bus in the place of the desktop's.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <future>
#include <optional>

#include "platform/linux/LinuxFileChooser.h"
#include "platform/memory/MemoryFileChooser.h"
#include "tests/platform/Environment.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/Contains.h"

namespace quillon::test {
namespace {

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

class FileChooserTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateBus::installed()) GTEST_SKIP() << "dbus-daemon or gdbus is not installed";
    bus_.emplace(PrivateBus::Services::none);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_->address().c_str(), 1);
    openPortal();
  }
  void openPortal() {
    portal_.emplace(bus_->address(), "org.freedesktop.portal.Desktop",
                    std::map<std::string, std::string>{{"SaveFile", "(objectpath '/request',)"}, {"Close", "()"}});
  }

  // The user closes the dialog of the last call.
  void respond(const std::string& arguments) {
    const auto call = portal_->nextCall("SaveFile");
    ASSERT_TRUE(call);
    EXPECT_TRUE(contains(call->arguments, "'Save \"it\"'")) << call->arguments;
    EXPECT_TRUE(contains(call->arguments, "'accept_label': <'Save'>")) << call->arguments;
    EXPECT_TRUE(contains(call->arguments, "'current_name': <'receipt.json'>")) << call->arguments;
    const auto at = call->arguments.find("quillon");
    const auto token = call->arguments.substr(at, call->arguments.find('\'', at) - at);
    std::string sender = call->sender.substr(1);
    std::ranges::replace(sender, '.', '_');
    portal_->emit("/org/freedesktop/portal/desktop/request/" + sender + "/" + token, "org.freedesktop.portal.Request",
                  "Response", arguments);
  }
  std::string uri(const std::string& name) const { return "file://" + (folder_.path() / name).string(); }

  const Environment restored_{"DBUS_SESSION_BUS_ADDRESS"};
  const TemporaryFolder folder_;
  std::optional<PrivateBus> bus_;
  std::optional<BusPeer> portal_;
};

TEST_F(FileChooserTest, WritesTheFileWhereTheUserSaysAndTellsWhatBecameOfIt) {
  LinuxFileChooser chooser;
  setFileBytes(folder_.path() / "old.json", "before");
  setFileBytes(folder_.path() / "file", "no folder");
  const struct {
    std::string response;
    SaveOutcome outcome;
  } rows[] = {
      {"(uint32 0, {'uris': <['" + uri("my%20receipt.json") + "']>})", SaveOutcome::saved},
      {"(uint32 0, {'uris': <['" + uri("old.json") + "']>})", SaveOutcome::saved},
      {"(uint32 1, @a{sv} {})", SaveOutcome::cancelled},
      {"(uint32 2, @a{sv} {})", SaveOutcome::unavailable},
      {"(uint32 0, {'uris': <['" + uri("missing/receipt.json") + "']>})", SaveOutcome::failed},
      {"(uint32 0, {'uris': <['" + uri("file/receipt.json") + "']>})", SaveOutcome::failed},
      // What is no file of this machine.
      {"(uint32 0, {'uris': <['sftp://host/receipt.json']>})", SaveOutcome::failed},
      {"(uint32 0, {'uris': <['" + uri("a") + "', '" + uri("b") + "']>})", SaveOutcome::failed},
      {"(uint32 0, {'uris': <'" + uri("a") + "'>})", SaveOutcome::failed},
      {"(uint32 0, @a{sv} {})", SaveOutcome::failed},
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
  struct stat status{};
  ASSERT_EQ(::stat((folder_.path() / "my receipt.json").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 3) << "nothing else is left";
}

TEST_F(FileChooserTest, NobodyWaitsForADialogThatCannotCome) {
  LinuxFileChooser chooser;
  for (const std::string error : {"UnknownMethod", "AccessDenied"}) {
    portal_->reply("SaveFile", "error:org.freedesktop.DBus.Error." + error);
    Answer refused;
    const auto choice = chooser.save(receiptFile, refused.taker());
    EXPECT_EQ(refused.get(), SaveOutcome::unavailable) << error;
    EXPECT_TRUE(portal_->nextCall("SaveFile"));
  }
  portal_->reply("SaveFile", "(objectpath '/request',)");
  Answer left;
  const auto choice = chooser.save(receiptFile, left.taker());
  ASSERT_TRUE(portal_->nextCall("SaveFile"));
  portal_.reset();  // while the dialog is open
  EXPECT_EQ(left.get(), SaveOutcome::unavailable);
  Answer alone;
  const auto another = chooser.save(receiptFile, alone.taker());
  EXPECT_EQ(alone.get(), SaveOutcome::unavailable) << "without a portal";
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  Answer nowhere;
  const auto last = LinuxFileChooser().save(receiptFile, nowhere.taker());
  LinuxFileChooser withoutBus;
  Answer none;
  const auto waited = withoutBus.save(receiptFile, none.taker());
  EXPECT_EQ(none.get(), SaveOutcome::unavailable) << "without a bus";
}

TEST_F(FileChooserTest, ADialogThatNobodyWaitsForIsClosed) {
  LinuxFileChooser chooser;
  auto dropped = chooser.save(receiptFile, [](SaveOutcome) { ADD_FAILURE() << "nobody waits"; });
  ASSERT_TRUE(portal_->nextCall("SaveFile"));
  dropped.reset();
  EXPECT_TRUE(portal_->nextCall("Close"));
  Answer first;
  Answer second;
  const auto replaced = chooser.save(receiptFile, first.taker());
  ASSERT_TRUE(portal_->nextCall("SaveFile"));
  const auto choice = chooser.save(receiptFile, second.taker());
  EXPECT_EQ(first.get(), SaveOutcome::cancelled);
  EXPECT_TRUE(portal_->nextCall("Close"));
  respond("(uint32 0, {'uris': <['" + uri("receipt.json") + "']>})");
  EXPECT_EQ(second.get(), SaveOutcome::saved);
}

TEST(MemoryFileChooserTest, SavesWhatTheScriptedUserSays) {
  MemoryFileChooser chooser;
  EXPECT_FALSE(chooser.answer(SaveOutcome::saved)) << "nobody was asked";
  auto dropped = chooser.save(receiptFile, [](SaveOutcome) { ADD_FAILURE() << "nobody waits"; });
  dropped.reset();
  EXPECT_FALSE(chooser.answer(SaveOutcome::saved));
  Answer first;
  Answer second;
  const auto replaced = chooser.save(receiptFile, first.taker());
  const auto choice = chooser.save(receiptFile, second.taker());
  EXPECT_EQ(first.get(), SaveOutcome::cancelled);
  EXPECT_TRUE(chooser.files().empty());
  EXPECT_TRUE(chooser.answer(SaveOutcome::saved));
  EXPECT_EQ(second.get(), SaveOutcome::saved);
  EXPECT_EQ(chooser.files().at("receipt.json"), "content");
}

}  // namespace
}  // namespace quillon::test
