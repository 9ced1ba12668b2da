// The assembly of the Linux services: the data folder's owner, the standard streams, text resources, and languages.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>
#include <string>
#include <vector>

#include "platform/linux/EnvironmentLocale.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/memory/FixedLocale.h"
#include "tests/platform/Environment.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::setFileBytes;

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

TEST_F(LinuxPlatformTest, ReadsNoTextResourceOutsideItsFolderAndNothingHuge) {
  const auto folder = data_.path() / "resources";
  std::filesystem::create_directories(folder / "inner");
  std::filesystem::create_directory(folder / "folder.html");
  for (const auto* name : {"secret.html", "resources/inner/page.html", "resources/.html", "resources/large.html"}) {
    setFileBytes(data_.path() / name, "text");
  }
  std::filesystem::resize_file(folder / "large.html", (32 << 20) + 1);
  setFileBytes(folder / "full.html", std::string(1 << 20, 'x'));
  std::filesystem::create_symlink(data_.path() / "secret.html", folder / "link.html");
  const auto host = linuxPlatform({.resourceDirectory = folder}).host;
  for (const auto name :
       {"../secret"sv, "inner/page"sv, ""sv, ".."sv, "link"sv, "folder"sv, "large"sv, "full.html\0"sv}) {
    EXPECT_EQ(host->resource(name, "html"), std::nullopt) << name;
  }
  EXPECT_EQ(host->resource("full", "/../full.html"), std::nullopt);
  EXPECT_EQ(host->resource("full", "html"), std::string(1 << 20, 'x'));
  EXPECT_TRUE(host->componentVersion("org.quillon.consent.core").has_value());
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

using Languages = std::vector<std::string>;

Languages languages(std::map<std::string, std::string> environment) {
  return EnvironmentLocale([&](const char* name) -> std::optional<std::string> {
           const auto found = environment.find(name);
           return found == environment.end() ? std::nullopt : std::optional(found->second);
         })
      .preferredLanguages();
}

TEST(EnvironmentLocaleTest, TurnsLocaleNamesIntoTagsAndSpeaksEnglishWhenNothingUsableIsSet) {
  EXPECT_EQ(languages({}), Languages{"en"});
  const std::pair<std::string, const char*> cases[] = {
      {"de_DE.UTF-8", "de-DE"}, {"de_DE@euro", "de-DE"}, {"ZH_HANT_tw.UTF-8@x", "zh-Hant-TW"},
      {"en-GB", "en-GB"},       {"es_419", "es-419"},    {"fil", "fil"},
      {"C.UTF-8", "en"},        {"POSIX", "en"},         {"de_DE@" + std::string(100, 'x'), "en"}};
  for (const auto& [name, tag] : cases) EXPECT_EQ(languages({{"LANG", name}}), Languages{tag}) << name;
  for (const char* odd : {"", ":", "../../etc/passwd", "de/DE", "d", "1e_DE", "de__DE", "de DE", "\xc3\xa4_DE", "de\n",
                          "abcdefghi", ".UTF-8"}) {
    EXPECT_EQ(languages({{"LANGUAGE", odd}, {"LANG", odd}}), Languages{"en"}) << odd;
  }
}

TEST(EnvironmentLocaleTest, TakesTheVariablesInOrderWithoutDuplicatesAndNoMoreThan32) {
  EXPECT_EQ(languages({{"LANG", "it_IT.UTF-8"},
                       {"LC_MESSAGES", "fr_FR"},
                       {"LC_ALL", "de_DE.UTF-8"},
                       {"LANGUAGE", "de_AT:de::fr_FR"}}),
            (Languages{"de-AT", "de", "fr-FR", "de-DE", "it-IT"}));
  std::string list;
  for (char letter = 'a'; letter <= 'z'; ++letter) list += std::string{'a', letter, ':', 'b', letter, ':'};
  EXPECT_EQ(languages({{"LANGUAGE", list}, {"LANG", "de_DE"}}).size(), 32u);
}

}  // namespace
}  // namespace quillon
