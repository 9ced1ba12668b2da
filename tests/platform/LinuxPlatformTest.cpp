// The assembly of the Linux services: the data folder's owner, and the standard streams.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/FixedLocale.h"
#include "tests/platform/Environment.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {
namespace {

using namespace std::string_literals;
using test::contains;

class LinuxPlatformTest : public testing::Test {
 protected:
  LinuxPlatformTest() {
    for (const char* name : {"HOME", "FLATPAK_ID"}) unsetenv(name);
    setenv("XDG_DATA_HOME", data_.path().c_str(), 1);
  }

  static std::filesystem::path folder(const LinuxOptions& options = {}) {
    return linuxPlatform(options).files->applicationSupportDirectory().value_or("none");
  }

  const test::TemporaryFolder data_;
  const test::Environment environment_{"XDG_DATA_HOME", "HOME", "FLATPAK_ID"};
};

TEST_F(LinuxPlatformTest, GivesEveryApplicationAFolderOfItsOwnInsideTheUsersData) {
  EXPECT_EQ(folder(), data_.path() / "platform_tests");
  setenv("FLATPAK_ID", "com.example.reader", 1);
  EXPECT_EQ(folder(), data_.path() / "com.example.reader");
  EXPECT_EQ(folder({.applicationId = "org.example.mail"}), data_.path() / "org.example.mail");
  EXPECT_EQ(folder({.dataDirectory = data_.path() / "elsewhere"}), data_.path() / "elsewhere");
  for (const std::string& id : {"."s, ".."s, "../../etc"s, "/etc"s, "a/b"s, "a\nb"s, std::string(5000, 'x')}) {
    EXPECT_EQ(folder({.applicationId = id}).parent_path(), data_.path()) << id << " leads out of the user's data";
  }
  setenv("HOME", "/home/ada", 1);
  for (const char* value : {"", "relative/path"}) {
    setenv("XDG_DATA_HOME", value, 1);
    EXPECT_EQ(folder({.applicationId = "reader"}), "/home/ada/.local/share/reader");
  }
  setenv("HOME", "relative", 1);
  EXPECT_TRUE(folder().is_absolute()) << "followed the working directory";
}

TEST_F(LinuxPlatformTest, ADataFolderBehindALinkServesStoreAndFilesAlike) {
  const auto elsewhere = data_.path() / "another disk";
  std::filesystem::create_directory(elsewhere);
  std::filesystem::create_directory_symlink(elsewhere, data_.path() / "platform_tests");
  const Platform platform = linuxPlatform({});
  EXPECT_EQ(platform.files->applicationSupportDirectory(), elsewhere);
  EXPECT_TRUE(platform.files->createDirectories(elsewhere) && platform.files->write(elsewhere / "file", "x"));
  EXPECT_TRUE(platform.store->open("suite", {}));
  EXPECT_TRUE(std::filesystem::exists(elsewhere / "suite.sqlite"));
}

TEST_F(LinuxPlatformTest, AnApplicationReplacesServicesButTakesNoneAway) {
  const auto languages = [](std::function<void(Platform&)> replaceServices) {
    return linuxPlatform({.replaceServices = std::move(replaceServices)}).locale->preferredLanguages();
  };
  const std::vector<std::string> theirs{"fi"};
  const auto replace = [&](Platform& platform) { platform.locale = std::make_shared<FixedLocale>(theirs); };
  EXPECT_EQ(languages(replace), theirs);
  EXPECT_EQ(languages([](Platform& platform) { platform.locale = nullptr; }), languages({}));
  EXPECT_EQ(languages([&](Platform& platform) {
              replace(platform);
              throw 1;
            }),
            languages({}));
}

TEST_F(LinuxPlatformTest, DescribesTheSystemAndTheLibrary) {
  const auto host = linuxPlatform({}).host;
  EXPECT_TRUE(host->componentVersion("org.quillon.consent.core"));
  EXPECT_FALSE(host->componentVersion("org.example.other"));
  EXPECT_EQ(host->localized("Unexpected Error", "comment"), "Unexpected Error");
  EXPECT_TRUE(contains(host->deviceDescription(), "Linux "));
}

TEST_F(LinuxPlatformTest, WritesBlocksToStandardOutputAndAFatalErrorToStandardError) {
  const auto console = linuxPlatform({}).console;
  testing::internal::CaptureStdout();
  console->write("first\nblock");
  console->write("");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "first\nblock\n\n");
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(console->fatal("no way on", "folder/File"), "^folder/File: Fatal error: no way on\n");
}

}  // namespace
}  // namespace quillon
