// One suite shared by several processes and connections.
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "platform/linux/LinuxClock.h"
#include "platform/linux/SqliteSuite.h"
#include "platform/linux/WorkPool.h"
#include "tests/platform/ChildProcess.h"
#include "tests/platform/Signal.h"
#include "tests/platform/SqliteSuiteFixture.h"

namespace quillon {

TEST_F(SqliteSuiteTest, AFailedEditHoldsNobodyUp) {
  const auto suite = open();
  EXPECT_FALSE(suite->update([](const SuiteEntries&) -> SuiteChanges { throw std::runtime_error("no"); }));
  EXPECT_EQ(shell("BEGIN EXCLUSIVE; ROLLBACK"), "");
}

TEST_F(SqliteSuiteTest, ATurnPassesOnWhenItsProcessDiesAndIsGrantedWhereItCannotBeKept) {
  SqliteStore store(folder_);
  ASSERT_TRUE(store.open("s", [this](auto, std::string message) { reports_.push_back(std::move(message)); }));
  {
    test::ChildProcess child([&](const auto& say) {
      SqliteStore theirs(folder_);
      const auto turn = theirs.tryTurn("t");
      say(turn ? "taken" : "refused");
      ::pause();
    });
    ASSERT_EQ(child.hear(), "taken");
    EXPECT_FALSE(store.tryTurn("t"));
  }
  EXPECT_TRUE(store.tryTurn("t"));
  EXPECT_EQ(modeOf(folder_ / "t.turn"), 0600u);
  EXPECT_TRUE(reports_.empty());
  std::filesystem::create_symlink(folder_ / "elsewhere", folder_ / "u.turn");
  const auto one = store.tryTurn("u");
  const auto two = store.tryTurn("u");
  EXPECT_TRUE(one && two);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "elsewhere"));
  EXPECT_EQ(reports_.size(), 1u);
  EXPECT_TRUE(reported("Turns among processes cannot be kept: open " + (folder_ / "u.turn").string()));
}

TEST_F(SqliteSuiteTest, HearsOfCommitsThroughReplacedFilesAndSaysWhenItCannot) {
  const auto pool = std::make_shared<WorkPool>("work", 2);
  SqliteStore store(folder_, pool);
  const auto suite =
      store.open("s", [this](auto, std::string message) { reports_.push_back(std::move(message)); }).value();
  ASSERT_TRUE(put(*suite, "mine", true));
  test::Signal heard;
  auto subscription = suite->observe([&] { heard.set(); });
  const auto elsewhere = temporary_.path() / "elsewhere";
  ASSERT_TRUE(put(*open(elsewhere), "theirs", true));
  std::filesystem::rename(elsewhere / "s.sqlite", file_);
  ASSERT_TRUE(heard.wait(1s));
  EXPECT_EQ(listed(*suite), "theirs=true");
  test::Signal again;
  subscription = suite->observe([&] { again.set(); });
  {
    test::ChildProcess child([&](const auto& say) { say(put(*open(), "more", true) ? "stored" : "failed"); });
    EXPECT_EQ(child.finish(), "stored");
  }
  ASSERT_TRUE(again.wait(1s));
  EXPECT_EQ(listed(*suite), "more=true theirs=true");
  EXPECT_TRUE(reports_.empty());

  // A sanitizer looks through a pipe at what it sees for the first time, so timers are used while there are
  // descriptors.
  LinuxClock clock(pool);
  test::Signal fired;
  const auto timer = clock.after(0ms, [&] { fired.set(); });
  ASSERT_TRUE(fired.wait(1s));

  // Without descriptors the file is looked at all the same.
  SqliteStore other(folder_, pool);
  const auto blind =
      other.open("s", [this](auto, std::string message) { reports_.push_back(std::move(message)); }).value();
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  test::Signal last;
  const auto blindly = blind->observe([&] { last.set(); });
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_TRUE(reported("is looked for ten times a second, as the system cannot watch it: watch " + file_.string() +
                       ": Too many open files"));
  ASSERT_TRUE(put(*suite, "most", true));
  EXPECT_TRUE(last.wait(1s));
}

TEST_F(SqliteSuiteTest, SeesAnothersCommitWithin100Milliseconds) {
  const auto reader = open();
  const auto writer = open();
  for (std::int64_t round = 1; round <= 5; ++round) {
    ASSERT_TRUE(put(*writer, "round", round));
    const auto committed = std::chrono::steady_clock::now();
    for (bool seen = false; !seen;) {
      const auto asked = std::chrono::steady_clock::now();
      const auto entries = reader->snapshot();
      const auto found = entries->find("round");
      seen = found != entries->end() && found->second == PropertyValue(round);
      ASSERT_TRUE(seen || asked < committed + 100ms);
    }
  }
}

TEST_F(SqliteSuiteTest, AForeignWriterDelaysNoReaderAndFailsAnUpdateAfterTwoSeconds) {
  const auto suite = open();
  ASSERT_TRUE(put(*suite, "key", std::string("old")));
  auto foreign = SqliteDatabase::open(file_);
  ASSERT_TRUE(foreign && foreign->run("BEGIN EXCLUSIVE"));

  std::atomic<bool> over = false;
  auto slowest = 0ns;
  std::jthread reader([&] {
    while (!over) {
      const auto began = std::chrono::steady_clock::now();
      EXPECT_EQ(listed(*suite), "key=old");
      slowest = std::max<std::chrono::nanoseconds>(slowest, std::chrono::steady_clock::now() - began);
    }
  });
  const auto began = std::chrono::steady_clock::now();
  const auto done = put(*suite, "key", std::string("new"));
  const auto lasted = std::chrono::steady_clock::now() - began;
  over = true;
  reader.join();
  ASSERT_FALSE(done);
  EXPECT_TRUE(contains(done.error(), "locked"));
  EXPECT_GE(lasted, 2s);
  EXPECT_LT(lasted, 4s);
  EXPECT_LT(slowest, 1s);
  ASSERT_TRUE(foreign->run("ROLLBACK"));
  EXPECT_TRUE(put(*suite, "key", std::string("new")));
  EXPECT_EQ(listed(*suite), "key=new");
}

TEST_F(SqliteSuiteTest, AForeignReaderDelaysACommitButDoesNotFailIt) {
  enum Meanwhile { nothing, fileGoes, fileIsReplaced };
  const auto elsewhere = temporary_.path() / "elsewhere";
  for (const auto meanwhile : {nothing, fileGoes, fileIsReplaced}) {
    SCOPED_TRACE(meanwhile);
    std::filesystem::remove_all(folder_);
    const auto suite = open();
    ASSERT_TRUE(put(*suite, "old", true));
    auto reader = SqliteDatabase::open(file_);
    auto other = SqliteDatabase::open(file_);
    ASSERT_TRUE(reader && other && reader->run("BEGIN; SELECT * FROM entries"));
    std::jthread writer([&] {
      const auto done = suite->update([&](const SuiteEntries& current) {
        return SuiteChanges{{"new", true}, {"size before", static_cast<std::int64_t>(current.size())}};
      });
      EXPECT_TRUE(done) << done.error();
    });
    // Until the writer waits for the reader, which blocks new readers.
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (other->ask("SELECT 1 FROM entries")) ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    EXPECT_EQ(listed(*suite), "old=true");
    if (meanwhile == fileGoes) std::filesystem::remove(file_);
    if (meanwhile == fileIsReplaced) {
      ASSERT_TRUE(open(elsewhere)->update(
          [](const SuiteEntries&) { return SuiteChanges{{"theirs", true}, {"of theirs", true}}; }));
      std::filesystem::rename(elsewhere / "s.sqlite", file_);
    }
    ASSERT_TRUE(reader->run("ROLLBACK"));
    writer.join();
    EXPECT_EQ(listed(*open()), meanwhile == fileIsReplaced ? "new=true of theirs=true size before=2 theirs=true"
                                                           : "new=true old=true size before=1")
        << "what is written is planned over what is there";
  }
}

TEST_F(SqliteSuiteTest, AStoreThatAnotherProcessHoldsIsDoneWithoutUntilItLetsGo) {
  ASSERT_TRUE(put(*open(), "1", std::string("granted")));
  auto foreign = SqliteDatabase::open(file_);
  ASSERT_TRUE(foreign && foreign->run("BEGIN EXCLUSIVE"));
  SqliteStore store(folder_, std::make_shared<WorkPool>("work", 2), 100ms);
  test::Signal free;
  const auto suite = store
                         .open("s",
                               [&](auto level, const std::string& message) {
                                 if (level == KeyValueStore::ReportLevel::information) free.set();
                                 reports_.push_back(message);
                               })
                         .value();
  EXPECT_TRUE(reported("is held by another process"));
  EXPECT_EQ(listed(*suite), "LOST_ENTRIES=true") << "so that nothing counts as granted";
  test::Signal heard;
  const auto subscription = suite->observe([&] { heard.set(); });
  const auto done = put(*suite, "1", std::string("declined"));
  ASSERT_FALSE(done);
  EXPECT_TRUE(contains(done.error(), "another process holds it"));
  EXPECT_FALSE(suite->read(1));
  EXPECT_EQ(listed(*suite), "LOST_ENTRIES=true");
  ASSERT_TRUE(foreign->run("ROLLBACK"));
  ASSERT_TRUE(free.wait(5s)) << "taken up without being asked";
  EXPECT_TRUE(heard.wait());
  EXPECT_EQ(listed(*suite), "1=granted");
  EXPECT_TRUE(put(*suite, "1", std::string("declined")));
  EXPECT_EQ(listed(*open()), "1=declined");
  EXPECT_TRUE(keptAside().empty());
}

TEST_F(SqliteSuiteTest, AHealthyFileThatTookThePlaceCountsAsItIs) {
  const auto suite = open();
  ASSERT_TRUE(put(*suite, "mine", true));
  const auto elsewhere = temporary_.path() / "elsewhere";
  ASSERT_TRUE(put(*open(elsewhere), "theirs", true));
  std::filesystem::rename(elsewhere / "s.sqlite", file_);
  const auto deadline = std::chrono::steady_clock::now() + 5s;
  while (listed(*suite) != "theirs=true") ASSERT_LT(std::chrono::steady_clock::now(), deadline);
  ASSERT_TRUE(put(*open(elsewhere), "others", true));
  std::filesystem::rename(elsewhere / "s.sqlite", file_);
  ASSERT_TRUE(suite->update([](const SuiteEntries& current) {
    EXPECT_EQ(current, (SuiteEntries{{"others", true}})) << "an edit sees the newest content";
    return SuiteChanges{{"new", true}};
  }));
  EXPECT_EQ(listed(*open()), "new=true others=true");
  EXPECT_TRUE(keptAside().empty());
}

}  // namespace quillon
