// The contract of every key store, and what only a disk has.
#include "platform/KeyStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <memory>
#include <thread>
#include <vector>

#include "platform/linux/FileKeyStore.h"
#include "platform/linux/PosixFileSystem.h"
#include "platform/memory/MemoryKeyStore.h"
#include "tests/platform/ChildProcess.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {
namespace {

using test::contains;

struct KeyOnDisk {
  test::TemporaryFolder temporary;
  std::filesystem::path folder = temporary.path() / "share" / "app";
  FileKeyStore keys{std::make_shared<PosixFileSystem>(folder)};
  FileKeyStore again{std::make_shared<PosixFileSystem>(folder)};
};

struct KeyInMemory {
  MemoryKeyStore keys;
  KeyStore& again = keys;
};

template <class World>
class KeyStoreContract : public testing::Test {
 protected:
  World world_;
};

}  // namespace

using KeyWorlds = testing::Types<KeyOnDisk, KeyInMemory>;
TYPED_TEST_SUITE(KeyStoreContract, KeyWorlds);

TYPED_TEST(KeyStoreContract, KeepsOneSecretUntilItIsForgotten) {
  const auto secret = this->world_.keys.secret();
  ASSERT_TRUE(secret) << secret.error();
  EXPECT_NE(*secret, KeyStore::Secret());
  EXPECT_EQ(this->world_.again.secret(), secret);
  ASSERT_TRUE(this->world_.keys.forget());
  const auto next = this->world_.again.secret();
  ASSERT_TRUE(next);
  EXPECT_NE(next, secret);
  EXPECT_EQ(this->world_.keys.secret(), next);
}

namespace {

struct FileKey : testing::Test, KeyOnDisk {
  std::filesystem::path file() const { return folder / "receipt.key"; }
  std::size_t filesBeside() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
  }
};

TEST_F(FileKey, IsForItsUserOnlyAndNeverReplacedWhenItCannotBeRead) {
  ASSERT_TRUE(keys.secret());
  struct stat status{};
  ASSERT_EQ(::stat(file().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  for (const std::string content : {"", "short", "longer than the thirty-two bytes of a key"}) {
    std::ofstream(file(), std::ios::trunc) << content;
    EXPECT_FALSE(keys.secret()) << content;
    EXPECT_EQ(std::filesystem::file_size(file()), content.size());
  }
  std::ofstream(file(), std::ios::trunc) << "short";
  EXPECT_TRUE(contains(keys.secret().error(), "delete it to have a new one made"));
  EXPECT_FALSE(FileKeyStore(std::make_shared<PosixFileSystem>(std::filesystem::path())).secret());
}

// The thread sanitizer ends a forked process that begins a thread.
#ifdef __SANITIZE_THREAD__
constexpr bool mayHaveThreads = false;
#else
constexpr bool mayHaveThreads = true;
#endif

// Processes begin together, each with threads of its own; all say the same, and nothing else stays behind.
TEST_F(FileKey, IsOneForProcessesThatMakeItAtOnce) {
  for (int round = 0; round < 10; ++round) {
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    std::vector<std::unique_ptr<test::ChildProcess>> children;
    for (int i = 0; i < 4; ++i) {
      children.push_back(std::make_unique<test::ChildProcess>([&](const test::ChildProcess::Say& say) {
        ::close(gate[1]);
        char byte = 0;
        (void)!::read(gate[0], &byte, 1);  // ends when the test closes the other end
        std::string texts[2];
        {
          const auto tell = [this](std::string& text) {
            const auto secret = FileKeyStore(std::make_shared<PosixFileSystem>(folder)).secret();
            text = secret ? std::string(secret->begin(), secret->end()) : secret.error();
          };
          std::jthread other;
          if (mayHaveThreads) {
            other = std::jthread(tell, std::ref(texts[0]));
          } else {
            tell(texts[0]);
          }
          tell(texts[1]);
        }
        say(texts[0] == texts[1] ? texts[0] : "two threads, two keys: " + texts[0] + texts[1]);
      }));
    }
    ::close(gate[0]);
    ::close(gate[1]);
    const auto first = children[0]->finish();
    EXPECT_EQ(first.size(), KeyStore::Secret().size()) << first;
    for (std::size_t i = 1; i < children.size(); ++i) EXPECT_EQ(children[i]->finish(), first);
    EXPECT_EQ(filesBeside(), 1u);
    ASSERT_TRUE(keys.forget());
  }
}

}  // namespace
}  // namespace quillon
