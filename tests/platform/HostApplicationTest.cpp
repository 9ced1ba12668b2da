// The application's text resources.
#include <gtest/gtest.h>

#include "platform/linux/LinuxPlatform.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {
namespace {

using test::setFileBytes;

TEST(HostApplication, ReadsNothingOutsideItsFolderAndNothingHuge) {
  const test::TemporaryFolder outer;
  const auto folder = outer.path() / "resources";
  std::filesystem::create_directories(folder / "inner");
  for (const auto* name : {"secret.html", "resources/inner/page.html", "resources/.html"}) {
    setFileBytes(outer.path() / name, "text");
  }
  setFileBytes(folder / "large.html", "x");
  std::filesystem::resize_file(folder / "large.html", (32 << 20) + 1);
  setFileBytes(folder / "full.html", std::string(1 << 20, 'x'));
  std::filesystem::create_symlink(outer.path() / "secret.html", folder / "link.html");
  std::filesystem::create_directory(folder / "folder.html");
  const auto host = linuxPlatform({.resourceDirectory = folder}).host;
  using namespace std::string_view_literals;
  for (const auto name : {"../secret"sv, "inner/page"sv, "inner/../full"sv, ""sv, ".."sv, "link"sv, "folder"sv,
                          "large"sv, "full.html\0"sv}) {
    EXPECT_EQ(host->resource(name, "html"), std::nullopt) << name;
  }
  EXPECT_EQ(host->resource("full", "/../full.html"), std::nullopt);
  EXPECT_EQ(host->resource("full", "txt"), std::nullopt);
  EXPECT_EQ(host->resource("full", "html"), std::string(1 << 20, 'x'));
}

}  // namespace
}  // namespace quillon
