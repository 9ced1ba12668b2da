// The store in SQLite: its file, and sharing it among processes and connections.
#include "platform/linux/SqliteSuite.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <regex>
#include <thread>

#include "platform/linux/LinuxClock.h"
#include "platform/linux/WorkPool.h"
#include "tests/platform/ChildProcess.h"
#include "tests/platform/Signal.h"
#include "tests/platform/SqliteSuiteFixture.h"

namespace quillon {

TEST_F(SqliteSuiteTest, KeepsWhatWasWrittenReadableInTheShell) {
  ASSERT_TRUE(put(*open(), "12", std::string("granted")));
  ASSERT_TRUE(put(*open(), "list", std::vector<std::int64_t>{3, 4}));
  EXPECT_EQ(listed(*open()), "12=granted list=3 4");
  EXPECT_EQ(shell("SELECT group_concat(key || '|' || type || '|' || value, ' ') FROM entries WHERE key<>''"),
            "12|string|granted list|integers|3 4");
  EXPECT_EQ(shell("PRAGMA journal_mode"), "delete") << "a file in WAL mode says so";
  EXPECT_TRUE(reports_.empty());
}

TEST_F(SqliteSuiteTest, FilesAreForThisUserAloneWhateverTheUmask) {
  for (const mode_t mask : {0000, 0777}) {
    const auto folder = temporary_.path() / std::to_string(mask);
    const auto before = ::umask(mask);
    const auto suite = open(folder);
    const auto written = suite && put(*suite, "key", true);
    ::umask(before);
    ASSERT_TRUE(written);
    EXPECT_EQ(modeOf(folder), 0700u);
    EXPECT_EQ(modeOf(folder / "s.sqlite"), 0600u);
    EXPECT_EQ(modeOf(folder / "s.sqlite-journal"), 0600u);
    ASSERT_EQ(::chmod((folder / "s.sqlite").c_str(), 0644), 0);
    ASSERT_TRUE(open(folder));
    EXPECT_EQ(modeOf(folder / "s.sqlite"), 0600u);
  }
}

TEST_F(SqliteSuiteTest, RefusesWhatIsNoFileOfItsOwn) {
  SqliteStore store(folder_);
  for (const std::string name : {"", ".", "..", "../s", "a/b", "/s", ".hidden"}) {
    EXPECT_FALSE(store.open(name, {})) << name;
  }
  EXPECT_FALSE(store.open(std::string("a\0b", 3), {}));
  EXPECT_FALSE(store.open(std::string(300, 'a'), {}));

  ASSERT_TRUE(store.open("other", {}));
  std::filesystem::create_symlink(folder_ / "other.sqlite", file_);
  EXPECT_EQ(open(), nullptr) << "a link";
  std::filesystem::remove(file_);
  std::filesystem::create_directory(file_);
  EXPECT_EQ(open(), nullptr) << "a folder";
  EXPECT_EQ(reports_.size(), 2u) << "both say why";

  setFileBytes(temporary_.path() / "file", "");
  EXPECT_TRUE(contains(SqliteStore(temporary_.path() / "file").open("s", {}).error(), "file: Not a directory"));
  std::filesystem::create_directory_symlink(folder_, temporary_.path() / "link");
  EXPECT_TRUE(SqliteStore(temporary_.path() / "link").open("other", {})) << "the way to the folder may hold links";
}

// In a world-writable folder such as /tmp, with content planted by another user.
TEST_F(SqliteSuiteTest, BelievesNothingThatBelongsToAnotherUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the administrator can act as several users";
  constexpr uid_t user = 65534, attacker = 12345;
  ASSERT_TRUE(put(*open(), "1", std::string("granted")));
  ASSERT_EQ(::chmod(temporary_.path().c_str(), 0711), 0);
  const auto plant = [&](const std::filesystem::path& file) {
    std::filesystem::copy_file(file_, file);
    EXPECT_EQ(::chmod(file.c_str(), 0666), 0);
    EXPECT_EQ(::chown(file.c_str(), attacker, attacker), 0);
  };
  struct Row {
    std::string name;
    uid_t owner;
    std::function<void(const std::filesystem::path& folder)> prepare;
    bool opens;
    std::string reported;
  };
  const std::string warning = "Every user may write to FOLDER and so remove the consents in it";
  for (const Row& row : {
           Row{"nothing", 0, [](const auto&) {}, true, warning},
           {"folder", attacker, [](const auto&) {}, false, "open folder FOLDER: it belongs to another user"},
           {"file", 0, [&](const auto& folder) { plant(folder / "s.sqlite"); }, false,
            warning + "Store FOLDER/s.sqlite cannot be opened: open FOLDER/s.sqlite: it belongs to another user"},
           {"unfinished", 0, [&](const auto& folder) { plant(folder / "s.sqlite.new"); }, false,
            "open FOLDER/s.sqlite: No such file or directory; remove FOLDER/s.sqlite.new: Operation not"},
       }) {
    SCOPED_TRACE(row.name);
    const auto folder = temporary_.path() / row.name;
    std::filesystem::create_directory(folder);
    ASSERT_EQ(::chown(folder.c_str(), row.owner, row.owner), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 01777), 0);
    row.prepare(folder);
    test::ChildProcess child([&](const auto& say) {
      if (::setuid(user) != 0) return say("not permitted");
      std::string reports;
      const auto opened = SqliteStore(folder).open("s", [&](auto, const std::string& text) { reports += text; });
      say(opened ? "opened: " + reports : "refused: " + reports + opened.error());
    });
    const std::string said = std::regex_replace(child.finish(), std::regex(folder.string()), "FOLDER");
    EXPECT_TRUE(said.starts_with(row.opens ? "opened: " : "refused: ") && contains(said, row.reported)) << said;
  }
}

TEST_F(SqliteSuiteTest, RefusesOversizedValuesAndCommitsNothingForNoChange) {
  const auto suite = open();
  ASSERT_TRUE(put(*suite, "key", std::string(maximumEntryBytes - 3, 'x')));
  EXPECT_FALSE(put(*suite, "key", std::string(maximumEntryBytes, 'x')));
  EXPECT_FALSE(put(*suite, "key", std::vector<std::string>(300'000, "four")));
  const auto before = std::filesystem::last_write_time(file_);
  const auto bytes = fileBytes(file_);
  EXPECT_TRUE(put(*suite, "key", std::string(maximumEntryBytes - 3, 'x')));
  EXPECT_TRUE(suite->update([](const SuiteEntries&) { return SuiteChanges{{"never there", std::nullopt}}; }));
  EXPECT_EQ(std::filesystem::last_write_time(file_), before);
  EXPECT_EQ(fileBytes(file_), bytes);
}

TEST_F(SqliteSuiteTest, AFileThatMayNotGrowFailsTheUpdateAndEndsNoProcess) {
  ASSERT_TRUE(put(*open(), "key", true));
  test::ChildProcess child([&](const auto& say) {
    const auto suite = open();
    const rlimit limit{100, 100};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    say(put(*suite, "key", false) ? "stored" : "refused");
    ::raise(SIGXFSZ);  // the host's own signal is not swallowed
  });
  EXPECT_TRUE(child.finish().starts_with("refused [ended with wait status"));
  EXPECT_EQ(listed(*open()), "key=true");
}

TEST_F(SqliteSuiteTest, NeverGrowsIntoAFileThatItWouldRefuse) {
  const auto suite = open();
  const std::string value(1'000'000, 'x');
  SuiteChanges most;
  while (most.size() < 60) most[std::to_string(most.size())] = value;
  std::expected<void, std::string> done = suite->update([&](const SuiteEntries&) { return most; });
  ASSERT_TRUE(done) << done.error();
  std::size_t written = most.size();
  while (written < 80 && (done = put(*suite, std::to_string(written), value))) ++written;
  ASSERT_FALSE(done);
  EXPECT_LE(std::filesystem::file_size(file_), maximumSuiteFileBytes);
  EXPECT_EQ(open()->snapshot()->size(), written);
  EXPECT_TRUE(put(*suite, "0", std::string("short")));
}

TEST_F(SqliteSuiteTest, ErasedTextLeavesTheFile) {
  const auto suite = open();
  ASSERT_TRUE(put(*suite, "SUBJECT_ID", std::string("0F0F-unmistakable")));
  ASSERT_TRUE(contains(fileBytes(file_), "unmistakable"));
  ASSERT_TRUE(suite->update([](const SuiteEntries&) { return SuiteChanges{{"SUBJECT_ID", std::nullopt}}; }));
  EXPECT_FALSE(contains(fileBytes(file_), "unmistakable"));
}

TEST_F(SqliteSuiteTest, ATextThatIsNotOneOfItsTypeIsNoValue) {
  const std::pair<const char*, std::vector<const char*>> types[] = {
      {"", {"x"}},
      {"String", {"x"}},
      {"marker", {"1"}},
      {"boolean", {"1", "True"}},
      {"integer", {"", " 1", "1.0", "1e3", "+1", "9223372036854775808"}},
      {"date", {"today"}},
      {"integers", {"1 ", "1  2", "1,2", "1 9223372036854775808"}},
      {"strings", {"1", "2:a", "-1:a", "1:ab", "1:a1", ":a"}},
  };
  for (const auto& [type, texts] : types) {
    for (const auto* text : texts) EXPECT_FALSE(fromStored(type, text)) << type << " " << text;
  }
}

TEST_F(SqliteSuiteTest, ATurnPassesOnWhenItsProcessDiesAndIsGrantedWhereItCannotBeKept) {
  SqliteStore store(folder_);
  ASSERT_TRUE(store.open("s", report()));
  {
    test::ChildProcess child([&](const auto& say) {
      SqliteStore theirs(folder_);
      const auto turn = theirs.tryLock("t");
      say(turn ? "taken" : "refused");
      ::pause();
    });
    ASSERT_EQ(child.hear(), "taken");
    EXPECT_FALSE(store.tryLock("t"));
  }
  EXPECT_TRUE(store.tryLock("t"));
  EXPECT_EQ(modeOf(folder_ / "t.turn"), 0600u);
  EXPECT_TRUE(reports_.empty());
  std::filesystem::create_symlink(folder_ / "elsewhere", folder_ / "u.turn");
  const auto one = store.tryLock("u");
  const auto two = store.tryLock("u");
  EXPECT_TRUE(one && two);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "elsewhere"));
  EXPECT_EQ(reports_.size(), 1u);
  EXPECT_TRUE(reported("Turns among processes cannot be kept: open " + (folder_ / "u.turn").string()));
}

TEST_F(SqliteSuiteTest, HearsOfCommitsThroughReplacedFilesAndSaysWhenItCannot) {
  const auto pool = std::make_shared<WorkPool>("work", 2);
  SqliteStore store(folder_, pool);
  const auto suite = store.open("s", report()).value();
  ASSERT_TRUE(put(*suite, "mine", true));
  test::Signal heard;
  auto subscription = suite->observe([&] { heard.set(); });
  replaceByOneWith("theirs");
  ASSERT_TRUE(heard.wait());
  EXPECT_EQ(listed(*suite), "theirs=true");
  test::Signal again;
  subscription = suite->observe([&] { again.set(); });
  ASSERT_TRUE(put(*open(), "more", true));
  ASSERT_TRUE(again.wait());
  EXPECT_EQ(listed(*suite), "more=true theirs=true");
  EXPECT_TRUE(reports_.empty());

  // A sanitizer looks through a pipe at what it sees for the first time, so timers are used while there are
  // descriptors.
  LinuxClock clock(pool);
  test::Signal fired;
  const auto timer = clock.after(0ms, [&] { fired.set(); });
  ASSERT_TRUE(fired.wait());

  // Without descriptors the file is looked at all the same.
  SqliteStore other(folder_, pool);
  const auto blind = other.open("s", report()).value();
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
  EXPECT_TRUE(last.wait());
}

TEST_F(SqliteSuiteTest, SeesAnothersCommitWithin100Milliseconds) {
  const auto reader = open();
  const auto writer = open();
  // The quickest of several rounds counts, since a busy machine delays whoever looks.
  auto quickest = std::chrono::steady_clock::duration::max();
  for (int round = 1; round <= 5; ++round) {
    ASSERT_TRUE(put(*writer, std::to_string(round), true));
    const auto committed = std::chrono::steady_clock::now();
    auto asked = committed;
    while (!reader->snapshot()->contains(std::to_string(round))) {
      asked = std::chrono::steady_clock::now();
      ASSERT_LT(asked, committed + 10s);
    }
    quickest = std::min(quickest, asked - committed);
  }
  EXPECT_LT(quickest, 100ms);
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
        return SuiteChanges{{"new", true}, {"found theirs", current.contains("theirs")}};
      });
      EXPECT_TRUE(done) << done.error();
    });
    // Until the writer waits for the reader, which blocks new readers.
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (other->ask("SELECT 1 FROM entries")) ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    EXPECT_EQ(listed(*suite), "old=true");
    if (meanwhile == fileGoes) std::filesystem::remove(file_);
    if (meanwhile == fileIsReplaced) replaceByOneWith("theirs");
    ASSERT_TRUE(reader->run("ROLLBACK"));
    writer.join();
    EXPECT_EQ(listed(*open()), meanwhile == fileIsReplaced ? "found theirs=true new=true theirs=true"
                                                           : "found theirs=false new=true old=true")
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

}  // namespace quillon
