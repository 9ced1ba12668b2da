// What every file system promises, over every one there is.
#include "platform/FileSystem.h"

#include <gtest/gtest.h>

#include "platform/linux/PosixFileSystem.h"
#include "platform/memory/MemoryFileSystem.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {

namespace {

using test::contains;

struct OnDisk {
  test::TemporaryFolder temporary;
  std::filesystem::path folder = temporary.path() / "share" / "app";
  PosixFileSystem files{folder};
  PosixFileSystem nowhere{{}};
};

struct InMemory {
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

using Worlds = testing::Types<OnDisk, InMemory>;
TYPED_TEST_SUITE(FileSystemContract, Worlds);

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

}  // namespace quillon
