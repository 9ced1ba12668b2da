// The contract of every file system, and what only a disk can break.
#include "platform/FileSystem.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <thread>

#include "platform/linux/PosixFileSystem.h"
#include "platform/memory/MemoryFileSystem.h"
#include "tests/platform/ChildProcess.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {

namespace {

using test::contains;

struct FilesOnDisk {
  test::TemporaryFolder temporary;
  std::filesystem::path folder = temporary.path() / "share" / "app";
  PosixFileSystem files{folder};
  PosixFileSystem nowhere{{}};
};

struct FilesInMemory {
  std::filesystem::path folder = "/share/app";
  MemoryFileSystem files{folder};
  MemoryFileSystem nowhere{std::nullopt};
};

template <class World>
class FileSystemContract : public testing::Test {
 protected:
  World world_;
  FileSystem& files_ = world_.files;
  const std::filesystem::path file_ = world_.folder / "file.json";
  const std::filesystem::path other_ = world_.folder / "other.json";
};

}  // namespace

using FileWorlds = testing::Types<FilesOnDisk, FilesInMemory>;
TYPED_TEST_SUITE(FileSystemContract, FileWorlds);

TYPED_TEST(FileSystemContract, NamesTheFolderThatAFileNeeds) {
  EXPECT_EQ(this->files_.applicationSupportDirectory(), this->world_.folder);
  EXPECT_EQ(this->world_.nowhere.applicationSupportDirectory(), std::nullopt);
  const auto written = this->files_.write(this->file_, "bytes");
  ASSERT_FALSE(written);
  EXPECT_TRUE(contains(written.error(), "No such file or directory"));
  ASSERT_TRUE(this->files_.createDirectories(this->world_.folder));
  EXPECT_TRUE(this->files_.createDirectories(this->world_.folder / ""));
  EXPECT_TRUE(this->files_.write(this->file_, "bytes"));
  EXPECT_FALSE(this->files_.createDirectories(this->file_)) << "a file stands there";
  EXPECT_FALSE(this->files_.createDirectories(this->file_ / "below"));
  EXPECT_FALSE(this->files_.write(this->world_.folder, "bytes")) << "a folder stands there";
}

TYPED_TEST(FileSystemContract, GivesTheBytesBackUpToTheLimit) {
  ASSERT_TRUE(this->files_.createDirectories(this->world_.folder));
  for (const auto& bytes : {std::string(), std::string("a\0b\n", 4), std::string(300'000, 'x')}) {
    ASSERT_TRUE(this->files_.write(this->file_, bytes));
    EXPECT_EQ(this->files_.read(this->file_, bytes.size()), bytes);
    EXPECT_EQ(this->files_.read(this->file_, SIZE_MAX), bytes);
    if (!bytes.empty()) {
      EXPECT_FALSE(this->files_.read(this->file_, bytes.size() - 1));
    }
  }
  EXPECT_FALSE(this->files_.read(this->other_, 10));
  EXPECT_FALSE(this->files_.read(this->world_.folder, 10));
}

TYPED_TEST(FileSystemContract, TheStampTellsARewrittenFileOfTheSameSize) {
  ASSERT_TRUE(this->files_.createDirectories(this->world_.folder));
  EXPECT_EQ(this->files_.stamp(this->file_), std::nullopt);
  EXPECT_EQ(this->files_.stamp(this->world_.folder), std::nullopt);
  ASSERT_TRUE(this->files_.write(this->file_, "one"));
  const auto first = this->files_.stamp(this->file_);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->size, 3u);
  EXPECT_EQ(this->files_.stamp(this->file_), first);
  ASSERT_TRUE(this->files_.write(this->file_, "two"));
  EXPECT_NE(this->files_.stamp(this->file_), first);
}

TYPED_TEST(FileSystemContract, MovesOnlyToAFreeNameAndRemovesOnlyWhatIsThere) {
  ASSERT_TRUE(this->files_.createDirectories(this->world_.folder));
  EXPECT_FALSE(this->files_.move(this->file_, this->other_)) << "nothing to move";
  EXPECT_FALSE(this->files_.remove(this->file_));
  EXPECT_FALSE(this->files_.remove(this->world_.folder));
  ASSERT_TRUE(this->files_.write(this->file_, "one"));
  EXPECT_FALSE(this->files_.move(this->file_, this->world_.folder / "missing" / "x"));
  ASSERT_TRUE(this->files_.move(this->file_, this->other_));
  EXPECT_EQ(this->files_.stamp(this->file_), std::nullopt);
  ASSERT_TRUE(this->files_.write(this->file_, "two"));
  EXPECT_FALSE(this->files_.move(this->file_, this->other_));
  EXPECT_EQ(this->files_.read(this->other_, 10), "one");
  EXPECT_EQ(this->files_.read(this->file_, 10), "two");
  EXPECT_TRUE(this->files_.remove(this->file_));
  EXPECT_EQ(this->files_.stamp(this->file_), std::nullopt);
}

// The disk's file system.
class PosixFiles : public testing::Test {
 protected:
  test::TemporaryFolder temporary_{test::TemporaryFolder::fastParent()};
  const std::filesystem::path folder_ = temporary_.path();
  const std::filesystem::path file_ = folder_ / "file.json";
  PosixFileSystem files_{folder_};
};

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
