#include "platform/linux/PosixFileSystem.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "tests/platform/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {

namespace {

class PosixFiles : public testing::Test {
 protected:
  test::TemporaryFolder temporary_;
  const std::filesystem::path folder_ = temporary_.path();
  const std::filesystem::path file_ = folder_ / "file.json";
  PosixFileSystem files_{folder_};
};

}  // namespace

TEST_F(PosixFiles, AreForThisUserAloneWhateverTheUmask) {
  for (const mode_t mask : {0000, 0777}) {
    const auto folder = folder_ / std::to_string(mask) / "inner";
    const auto before = ::umask(mask);
    const auto made = files_.createDirectories(folder);
    const auto written = files_.write(folder / "file", "x");
    ::umask(before);
    ASSERT_TRUE(made && written);
    EXPECT_EQ(test::modeOf(folder), 0700u);
    EXPECT_EQ(test::modeOf(folder.parent_path()), 0700u);
    EXPECT_EQ(test::modeOf(folder / "file"), 0600u);
  }
}

TEST_F(PosixFiles, FollowsNoLinkAtTheLastStep) {
  const auto outside = folder_ / "outside";
  test::setFileBytes(outside, "secret");
  std::filesystem::create_symlink(outside, file_);
  EXPECT_FALSE(files_.read(file_, 100));
  EXPECT_EQ(files_.stamp(file_), std::nullopt);
  std::filesystem::create_symlink(outside, folder_ / "file.json.new");
  ASSERT_TRUE(files_.write(file_, "own"));
  EXPECT_EQ(test::fileBytes(outside), "secret");
  EXPECT_EQ(files_.read(file_, 100), "own");
  std::filesystem::create_directory_symlink(folder_, folder_ / "link");
  EXPECT_FALSE(files_.createDirectories(folder_ / "link"));
}

TEST_F(PosixFiles, APipeHoldsNobodyUp) {
  ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
  EXPECT_FALSE(files_.read(file_, 100));
  EXPECT_EQ(files_.stamp(file_), std::nullopt);
}

TEST_F(PosixFiles, AFailedWriteKeepsTheOldBytesAndLeavesNothingBehind) {
  ASSERT_TRUE(files_.write(file_, "old"));
  test::ChildProcess child([&](const auto& say) {
    const rlimit limit{4096, 4096};
    ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const auto written = files_.write(file_, std::string(10'000, 'x'));
    say(written ? "written" : written.error());
  });
  EXPECT_EQ(child.finish(), "write " + file_.string() + ".new: File too large");
  EXPECT_EQ(files_.read(file_, 100), "old");
  using Files = std::filesystem::directory_iterator;
  EXPECT_EQ(std::distance(Files(folder_), Files()), 1) << "something was left behind";
}

TEST_F(PosixFiles, WritersInThreadsAndProcessesNeverMix) {
  const auto write = [&](char letter) {
    for (int i = 0; i < 30; ++i) {
      if (!files_.write(file_, std::string(100'000, letter))) return false;
    }
    return true;
  };
  ASSERT_TRUE(write('0'));
  test::ChildProcess child([&](const auto& say) {
    if (!write('a')) say("a write failed");
  });
  {
    std::jthread one([&] { EXPECT_TRUE(write('b')); });
    std::jthread two([&] { EXPECT_TRUE(write('c')); });
    for (int i = 0; i < 200; ++i) {
      const auto bytes = files_.read(file_, 1'000'000);
      ASSERT_TRUE(bytes);
      EXPECT_EQ(*bytes, std::string(100'000, bytes->front()));
    }
  }
  EXPECT_EQ(child.finish(), "");
}

}  // namespace quillon
