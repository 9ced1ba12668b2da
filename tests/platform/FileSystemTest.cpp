// The contract of every file system, what only a disk can break, and the key of receipts.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <thread>
#include <vector>

#include "platform/linux/FileKeyStore.h"
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
struct FileSystemContract : testing::Test, World {
  const std::filesystem::path file = World::folder / "file.json";
  const std::filesystem::path other = World::folder / "other.json";
};

}  // namespace

using FileWorlds = testing::Types<FilesOnDisk, FilesInMemory>;
TYPED_TEST_SUITE(FileSystemContract, FileWorlds);

TYPED_TEST(FileSystemContract, NamesTheFolderThatAFileNeeds) {
  EXPECT_EQ(this->files.applicationSupportDirectory(), this->folder);
  EXPECT_EQ(this->nowhere.applicationSupportDirectory(), std::nullopt);
  const auto written = this->files.write(this->file, "bytes");
  ASSERT_FALSE(written);
  EXPECT_TRUE(contains(written.error(), "No such file or directory"));
  ASSERT_TRUE(this->files.createDirectories(this->folder));
  EXPECT_TRUE(this->files.createDirectories(this->folder / ""));
  EXPECT_TRUE(this->files.write(this->file, "bytes"));
  EXPECT_FALSE(this->files.createDirectories(this->file)) << "a file stands there";
  EXPECT_FALSE(this->files.createDirectories(this->file / "below"));
  EXPECT_FALSE(this->files.write(this->folder, "bytes")) << "a folder stands there";
}

TYPED_TEST(FileSystemContract, GivesTheBytesBackUpToTheLimit) {
  ASSERT_TRUE(this->files.createDirectories(this->folder));
  for (const auto& bytes : {std::string(), std::string("a\0b\n", 4), std::string(300'000, 'x')}) {
    ASSERT_TRUE(this->files.write(this->file, bytes));
    EXPECT_EQ(this->files.read(this->file, bytes.size()), bytes);
    EXPECT_EQ(this->files.read(this->file, SIZE_MAX), bytes);
    if (!bytes.empty()) {
      EXPECT_FALSE(this->files.read(this->file, bytes.size() - 1));
    }
  }
  EXPECT_FALSE(this->files.read(this->other, 10));
  EXPECT_FALSE(this->files.read(this->folder, 10));
}

TYPED_TEST(FileSystemContract, TheStampTellsARewrittenFileOfTheSameSize) {
  ASSERT_TRUE(this->files.createDirectories(this->folder));
  EXPECT_EQ(this->files.stamp(this->file), std::nullopt);
  EXPECT_EQ(this->files.stamp(this->folder), std::nullopt);
  ASSERT_TRUE(this->files.write(this->file, "one"));
  const auto first = this->files.stamp(this->file);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->size, 3u);
  EXPECT_EQ(this->files.stamp(this->file), first);
  ASSERT_TRUE(this->files.write(this->file, "two"));
  EXPECT_NE(this->files.stamp(this->file), first);
}

TYPED_TEST(FileSystemContract, MovesOnlyToAFreeNameAndRemovesOnlyWhatIsThere) {
  ASSERT_TRUE(this->files.createDirectories(this->folder));
  EXPECT_FALSE(this->files.move(this->file, this->other)) << "nothing to move";
  EXPECT_FALSE(this->files.remove(this->file));
  EXPECT_FALSE(this->files.remove(this->folder));
  ASSERT_TRUE(this->files.write(this->file, "one"));
  EXPECT_FALSE(this->files.move(this->file, this->folder / "missing" / "x"));
  ASSERT_TRUE(this->files.move(this->file, this->other));
  EXPECT_EQ(this->files.stamp(this->file), std::nullopt);
  ASSERT_TRUE(this->files.write(this->file, "two"));
  EXPECT_FALSE(this->files.move(this->file, this->other));
  EXPECT_EQ(this->files.read(this->other, 10), "one");
  EXPECT_EQ(this->files.read(this->file, 10), "two");
  EXPECT_TRUE(this->files.remove(this->file));
  EXPECT_EQ(this->files.stamp(this->file), std::nullopt);
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

TEST_F(PosixFiles, AFailedWriteEndsNoProcessKeepsTheOldBytesAndLeavesNothingBehind) {
  ASSERT_TRUE(files_.write(file_, "old"));
  test::ChildProcess child([&](const auto& say) {
    const rlimit limit{4096, 4096};
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

struct FileKey : testing::Test {
  test::TemporaryFolder temporary;
  std::filesystem::path folder = temporary.path() / "share" / "app";
  std::filesystem::path file = folder / "receipt.key";
  FileKeyStore keys{std::make_shared<PosixFileSystem>(folder)};
  FileKeyStore again{std::make_shared<PosixFileSystem>(folder)};
};

TEST_F(FileKey, IsOneUntilItIsForgotten) {
  const auto secret = keys.secret();
  ASSERT_TRUE(secret) << secret.error();
  EXPECT_NE(*secret, KeyStore::Secret());
  EXPECT_EQ(again.secret(), secret);
  ASSERT_TRUE(keys.forget());
  const auto next = again.secret();
  ASSERT_TRUE(next);
  EXPECT_NE(next, secret);
  EXPECT_EQ(keys.secret(), next);
}

TEST_F(FileKey, IsForItsUserOnlyAndNeverReplacedWhenItCannotBeRead) {
  ASSERT_TRUE(keys.secret());
  EXPECT_EQ(test::modeOf(file), 0600u);
  for (const std::string content : {"", "longer than the thirty-two bytes of a key", "short"}) {
    test::setFileBytes(file, content);
    EXPECT_FALSE(keys.secret()) << content;
    EXPECT_EQ(test::fileBytes(file), content);
  }
  EXPECT_TRUE(contains(keys.secret().error(), "delete it to have a new one made"));
  EXPECT_FALSE(FileKeyStore(std::make_shared<PosixFileSystem>(std::filesystem::path())).secret());
}

// Processes begin together; all get the same, and nothing else stays behind.
TEST_F(FileKey, IsOneForThoseWhoMakeItAtOnce) {
  for (int round = 0; round < 10; ++round) {
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    std::vector<std::unique_ptr<test::ChildProcess>> children;
    for (int i = 0; i < 4; ++i) {
      children.push_back(std::make_unique<test::ChildProcess>([&](const auto& say) {
        ::close(gate[1]);
        char byte = 0;
        (void)!::read(gate[0], &byte, 1);  // ends when nobody has the other end any more
        const auto secret = keys.secret();
        say(secret ? std::string(secret->begin(), secret->end()) : secret.error());
      }));
    }
    ::close(gate[1]);
    const auto secret = keys.secret();
    ::close(gate[0]);
    ASSERT_TRUE(secret) << secret.error();
    for (auto& child : children) EXPECT_EQ(child->finish(), std::string(secret->begin(), secret->end()));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
    ASSERT_TRUE(keys.forget());
  }
}

}  // namespace quillon
