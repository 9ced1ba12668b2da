#include "platform/linux/SqliteSuite.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <latch>
#include <regex>
#include <thread>

#include "platform/linux/SqliteDatabase.h"
#include "platform/linux/SqliteStore.h"
#include "platform/linux/StoredValue.h"
#include "tests/platform/ChildProcess.h"
#include "tests/platform/Signal.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {

namespace {

using namespace std::chrono_literals;
using test::contains;
using test::fileBytes;
using test::modeOf;
using test::setFileBytes;

std::expected<void, std::string> put(KeyValueSuite& suite, const std::string& key, PropertyValue value) {
  return suite.update([&](const SuiteEntries&) { return SuiteChanges{{key, value}}; });
}

// "key=text key=text", sorted, for texts that read well in a failure.
std::string listed(const KeyValueSuite& suite) {
  const auto entries = suite.snapshot();
  const std::map<std::string, PropertyValue> sorted(entries->begin(), entries->end());
  std::string list;
  for (const auto& [key, value] : sorted) list += (list.empty() ? "" : " ") + key + "=" + toStored(value).text;
  return list;
}

class SqliteSuiteTest : public testing::Test {
 protected:
  // A new store each time, as another process would have.
  std::shared_ptr<KeyValueSuite> open(const std::filesystem::path& folder) {
    auto opened =
        SqliteStore(folder).open("s", [this](auto, std::string message) { reports_.push_back(std::move(message)); });
    if (opened) return *opened;
    reports_.push_back(opened.error());
    return nullptr;
  }
  std::shared_ptr<KeyValueSuite> open() { return open(folder_); }

  // As somebody with the sqlite3 shell would.
  std::string shell(const char* sql) const {
    auto database = SqliteDatabase::open(file_);
    if (!database) return database.error().text;
    const auto answer = database->ask(sql);
    return answer ? *answer : answer.error().text;
  }

  // Without a new file in its place.
  void overwrite(const std::string& bytes) const {
    std::fstream(file_, std::ios::binary | std::ios::in | std::ios::out) << bytes;
  }

  std::vector<std::filesystem::path> keptAside() const {
    std::vector<std::filesystem::path> kept;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      const auto name = entry.path().string();
      if (name.find(".damaged-") != std::string::npos && !name.ends_with("-journal")) kept.push_back(entry.path());
    }
    return kept;
  }

  // Whether one of the reports has that part.
  testing::AssertionResult reported(std::string_view part) const {
    std::string all;
    for (const auto& report : reports_) all += report + "\n";
    return contains(all, part);
  }

  test::TemporaryFolder temporary_{test::TemporaryFolder::fastParent()};
  const std::filesystem::path folder_ = temporary_.path() / "app";
  const std::filesystem::path file_ = folder_ / "s.sqlite";
  std::vector<std::string> reports_;
};

}  // namespace

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

// In a folder that others may write to, as /tmp is, and with what they may have put there before.
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

  // Without a descriptor left, whoever looks tells the others.
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
  EXPECT_TRUE(reported("is noticed only when it is read: watch " + file_.string() + ": Too many open files"));
  ASSERT_TRUE(put(*suite, "most", true));
  const auto deadline = std::chrono::steady_clock::now() + 5s;
  while (!blind->snapshot()->contains("most")) ASSERT_LT(std::chrono::steady_clock::now(), deadline);
  EXPECT_TRUE(last.wait(1s));
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

TEST_F(SqliteSuiteTest, AFailedEditHoldsNobodyUp) {
  const auto suite = open();
  EXPECT_FALSE(suite->update([](const SuiteEntries&) -> SuiteChanges { throw std::runtime_error("no"); }));
  EXPECT_EQ(shell("BEGIN EXCLUSIVE; ROLLBACK"), "");
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
    // Until the writer waits for the reader, which keeps new readers out.
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

// By whoever finds the damage later, and by the next update of a process that has the file open.
TEST_F(SqliteSuiteTest, ADamagedFileIsKeptAsideAndANewOneBegun) {
  struct Damage {
    std::string name;
    std::function<void()> done;
    // What a later process reads.
    std::string found = "LOST_ENTRIES=true";
    // What the process that wrote it still knows; empty where only who opens it notices.
    std::string known = "a=acknowledged";
  };
  const auto byHand = [&](const char* sql, std::string found, std::string known) {
    return Damage{sql, [this, sql] { EXPECT_EQ(shell(sql), ""); }, std::move(found), std::move(known)};
  };
  const auto fileByHand = [&](const char* sql) { return byHand(sql, "LOST_ENTRIES=true", "a=acknowledged"); };
  // A row that is not what was written may have been any key's.
  const auto rowByHand = [&](const char* sql) { return byHand(sql, "LOST_ENTRIES=true b=true", "LOST_ENTRIES=true"); };
  const auto bytes = [&](const char* name, std::string found, const std::function<void(std::string&)>& change) {
    const auto done = [this, change] {
      auto all = fileBytes(file_);
      change(all);
      overwrite(all);
    };
    return Damage{name, done, std::move(found), ""};
  };
  const Damage damages[] = {
      {"removed", [&] { std::filesystem::remove(file_); }, ""},
      {"emptied", [&] { std::filesystem::resize_file(file_, 0); }},
      {"cut in the header", [&] { std::filesystem::resize_file(file_, 50); }},
      {"cut after a page", [&] { std::filesystem::resize_file(file_, 4096); }},
      {"cut in a page", [&] { std::filesystem::resize_file(file_, 5000); }},
      {"too large", [&] { std::filesystem::resize_file(file_, maximumSuiteFileBytes + 1); }, "LOST_ENTRIES=true", ""},
      {"overwritten", [&] { overwrite(std::string(8192, '#')); }},
      {"zeros", [&] { overwrite(std::string(8192, '\0')); }},
      {"replaced by a text",
       [&] {
         setFileBytes(folder_ / "text", "not a database, whatever its name says");
         std::filesystem::rename(folder_ / "text", file_);
       }},
      bytes("a write version of the future", "LOST_ENTRIES=true", [](std::string& all) { all[18] = 9; }),
      // The second page lists where its rows lie, from its ninth byte on, two bytes each: the marker, a, b.
      bytes("rows out of order", "LOST_ENTRIES=true b=true",
            [](std::string& all) { std::swap_ranges(&all[4106], &all[4108], &all[4108]); }),
      fileByHand("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<100001)"
                 "INSERT INTO entries SELECT 'k'||i,'integer',i,0 FROM n"),
      fileByHand("DROP TABLE entries"),
      fileByHand("ALTER TABLE entries RENAME COLUMN value TO worth"),
      byHand("CREATE TRIGGER t AFTER INSERT ON entries BEGIN DELETE FROM entries WHERE key='key'; END",
             "LOST_ENTRIES=true", ""),
      fileByHand("DELETE FROM entries WHERE key=''"),
      rowByHand("UPDATE entries SET value='granted' WHERE key='a'"),
      rowByHand("UPDATE entries SET key='13' WHERE key='a'"),
      rowByHand("UPDATE entries SET checksum=NULL WHERE key='a'"),
      rowByHand("UPDATE entries SET value=x'6465' WHERE key='a'"),
      rowByHand("UPDATE entries SET value=NULL WHERE key='a'"),
      rowByHand("UPDATE entries SET checksum=checksum+4294967296 WHERE key='a'"),
      byHand("UPDATE entries SET type='string' WHERE key='b'", "LOST_ENTRIES=true a=acknowledged",
             "LOST_ENTRIES=true a=acknowledged"),
      byHand("INSERT INTO entries VALUES('hand','string','x',0)", "LOST_ENTRIES=true a=acknowledged b=true",
             "LOST_ENTRIES=true a=acknowledged"),
  };
  for (const auto& [name, damage, found, known] : damages) {
    SCOPED_TRACE(name);
    const auto write = [&] {
      std::filesystem::remove_all(folder_);
      const auto suite = open();
      EXPECT_TRUE(put(*suite, "a", std::string("acknowledged")) && put(*suite, "b", true));
      reports_.clear();
      return suite;
    };
    const std::size_t kept = name == "removed" ? 0 : 1;
    write();
    damage();
    const auto size = kept > 0 ? std::filesystem::file_size(file_) : 0;
    const auto later = open();
    ASSERT_TRUE(later);
    EXPECT_EQ(listed(*later), found);
    // A sound file with a damaged row stays until something is written.
    EXPECT_EQ(keptAside().size(), found == "LOST_ENTRIES=true" ? kept : 0);
    EXPECT_EQ(reports_.size(), kept);
    EXPECT_TRUE(put(*later, "key", std::string("new")));
    EXPECT_EQ(listed(*open()), found + (found.empty() ? "key=new" : " key=new"));
    ASSERT_EQ(keptAside().size(), kept);
    if (kept > 0) {
      EXPECT_EQ(std::filesystem::file_size(keptAside().front()), size);
      EXPECT_TRUE(contains(reports_.back(), keptAside().front().string()));
    }

    if (known.empty()) continue;
    const auto suite = write();
    damage();
    const auto done = suite->update([&](const SuiteEntries&) { return SuiteChanges{{"b", false}, {"c", true}}; });
    ASSERT_TRUE(done) << done.error();
    EXPECT_EQ(listed(*suite), known + " b=false c=true");
    EXPECT_EQ(listed(*open()), known + " b=false c=true");
    EXPECT_EQ(keptAside().size(), kept);
    EXPECT_FALSE(reports_.empty());
  }
}

TEST_F(SqliteSuiteTest, AJournalLeftBehindIsNotPlayedBackIntoANewFile) {
  ASSERT_TRUE(open()->update([](const SuiteEntries&) {
    SuiteChanges changes;
    for (int i = 0; i < 500; ++i) changes[std::to_string(i)] = std::string("granted");
    return changes;
  }));
  {
    // A cache too small for the transaction makes SQLite write to the file before the end, the journal first.
    auto database = SqliteDatabase::open(file_);
    ASSERT_TRUE(database && database->run("PRAGMA cache_size=1; BEGIN; UPDATE entries SET value=value||'!'"));
    const auto journal = fileBytes(folder_ / "s.sqlite-journal");
    ASSERT_TRUE(database->run("ROLLBACK"));
    setFileBytes(folder_ / "s.sqlite-journal", journal);
  }
  std::filesystem::remove(file_);
  const auto suite = open();
  ASSERT_TRUE(suite);
  EXPECT_EQ(listed(*suite), "");
  ASSERT_TRUE(put(*suite, "key", std::string("new")));
  EXPECT_EQ(listed(*open()), "key=new");
}

// As a newer version or a database browser leaves it.
TEST_F(SqliteSuiteTest, AFileWithMoreInItThanWeKnowIsReadAndWrittenOn) {
  struct More {
    const char* sql;
    std::size_t replaced = 0;  // it takes nothing more, and what it holds moves into a new file
  };
  for (const auto& [sql, replaced] : {
           More{"CREATE INDEX i ON journal(mark)"},
           {"CREATE INDEX i ON entries(type, value)"},
           {"CREATE TABLE other(x)"},
           {"CREATE VIEW v AS SELECT * FROM entries"},
           {"ALTER TABLE journal ADD COLUMN note TEXT DEFAULT 'x'"},
           {"ALTER TABLE entries ADD COLUMN since TEXT"},
           {"CREATE TABLE other(x); CREATE TRIGGER t AFTER INSERT ON other BEGIN DELETE FROM entries; END"},
           {"ANALYZE"},
           {"CREATE UNIQUE INDEX i ON entries(type) WHERE type='string'", 1},
       }) {
    SCOPED_TRACE(sql);
    std::filesystem::remove_all(folder_);
    reports_.clear();
    ASSERT_TRUE(put(*open(), "a", std::string("granted")));
    ASSERT_EQ(shell(sql), "");
    const auto suite = open();
    EXPECT_EQ(listed(*suite), "a=granted");
    const auto done = suite->update([](const SuiteEntries&) {
      SuiteUpdate update(SuiteChanges{{"b", std::string("declined")}});
      update.appended = {"text"};
      return update;
    });
    EXPECT_TRUE(done) << done.error();
    EXPECT_EQ(listed(*open()), "a=granted b=declined");
    EXPECT_EQ(suite->read()->unsettled.size(), 1u);
    EXPECT_EQ(keptAside().size(), replaced);
    EXPECT_EQ(reports_.size(), replaced);
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
  EXPECT_FALSE(suite->read());
  EXPECT_EQ(listed(*suite), "LOST_ENTRIES=true");
  ASSERT_TRUE(foreign->run("ROLLBACK"));
  ASSERT_TRUE(free.wait(5s)) << "taken up without being asked";
  EXPECT_TRUE(heard.wait());
  EXPECT_EQ(listed(*suite), "1=granted");
  EXPECT_TRUE(put(*suite, "1", std::string("declined")));
  EXPECT_EQ(listed(*open()), "1=declined");
  EXPECT_TRUE(keptAside().empty());
}

TEST_F(SqliteSuiteTest, AStartThatFindsOnlyADamagedStoreSetAsideKnowsOfALoss) {
  ASSERT_TRUE(put(*open(), "1", std::string("declined")));
  std::filesystem::rename(file_, file_.string() + ".damaged-20240501T000000-1");
  EXPECT_EQ(listed(*open()), "LOST_ENTRIES=true");
  EXPECT_TRUE(reported("had disappeared"));
  setFileBytes(folder_ / "t.sqlite.new", "begun, and cut off");
  EXPECT_EQ(listed(*SqliteStore(folder_).open("t", {}).value()), "") << "of a first start nothing can be lost";
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

TEST_F(SqliteSuiteTest, TwoUsersOfADamagedFileEndUpInOneNewFile) {
  for (int round = 0; round < 30; ++round) {
    std::filesystem::remove_all(folder_);
    const auto one = open();
    const auto two = open();
    ASSERT_TRUE(put(*one, "both", true));
    overwrite(std::string(8192, '#'));
    std::latch start(2);
    const auto write = [&](KeyValueSuite& suite, const char* key) {
      start.arrive_and_wait();
      const auto done = put(suite, key, true);
      EXPECT_TRUE(done) << done.error();
    };
    {
      std::jthread first([&] { write(*one, "one"); });
      std::jthread second([&] { write(*two, "two"); });
    }
    const auto end = listed(*open());
    EXPECT_TRUE(contains(end, "one=true"));
    EXPECT_TRUE(contains(end, "two=true"));
    EXPECT_EQ(keptAside().size(), 1u);
  }
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

// What the journal in a database file survives.
class SuiteJournalTest : public SqliteSuiteTest {
 protected:
  bool record(const std::vector<std::string>& texts) {
    return open()
        ->update([&](const SuiteEntries&) {
          SuiteUpdate update(SuiteChanges{{"last", texts.back()}});
          update.appended = texts;
          return update;
        })
        .has_value();
  }
  // "number:text", newest first; damaged ones as "number!".
  std::string journal() {
    const auto page = open()->journal(1'000'000, 1'000);
    if (!page) return page.error();
    std::string list;
    for (const auto& record : page->records) list += std::to_string(record.number) + ":" + record.text + " ";
    for (const auto number : page->damaged) list += std::to_string(number) + "! ";
    return list;
  }
};

TEST_F(SuiteJournalTest, AFileFromBeforeTheJournalGainsOne) {
  ASSERT_TRUE(open()->update([](const SuiteEntries&) { return SuiteChanges{{"12", std::string("granted")}}; }));
  EXPECT_EQ(shell("DROP TABLE journal"), "");
  EXPECT_EQ(journal(), "");
  EXPECT_EQ(shell("SELECT count(*) FROM sqlite_schema"), "1") << "looking makes no table";
  ASSERT_TRUE(record({"a"}));
  EXPECT_EQ(journal(), "1:a ");
  EXPECT_EQ(open()->snapshot()->size(), 2u);
  EXPECT_TRUE(reports_.empty());
}

TEST_F(SuiteJournalTest, DamagedRecordsAreReportedAndNeverInvented) {
  ASSERT_TRUE(record({"a", "b", "c", "d", "e"}));
  for (const char* damage :
       {"UPDATE journal SET text='z' WHERE number=2", "UPDATE journal SET mark='sent' WHERE number=3",
        "UPDATE journal SET number=9 WHERE number=4", "UPDATE journal SET text=x'61' WHERE number=5"}) {
    EXPECT_EQ(shell(damage), "");
  }
  EXPECT_EQ(journal(), "1:a 9! 5! 3! 2! ");
  for (const char* number : {"2", "3", "5", "9"}) {
    EXPECT_TRUE(reported(std::string("record ") + number + " of the journal is damaged"));
  }
  ASSERT_TRUE(record({"f"})) << "the decision counts all the same";
  EXPECT_EQ(journal(), "10:f 1:a 9! 5! 3! 2! ");
  EXPECT_EQ(shell("UPDATE journal SET number=9223372036854775807 WHERE number=9"), "");
  ASSERT_TRUE(record({"g"})) << "numbers never run out";
  EXPECT_EQ(shell("UPDATE journal SET number=4611686018427387904 WHERE number=5"), "");
  EXPECT_EQ(shell("UPDATE journal SET number=4611686018427387903 WHERE number=3"), "");
  ASSERT_TRUE(record({"h"})) << "a journal that takes no more is begun anew with what is sound in it";
  EXPECT_EQ(journal(), "12:h 11:g 10:f 1:a ");
}

TEST_F(SuiteJournalTest, OutlivesADamagedEntryAndCostsNoEntryWhenItIsDamagedItself) {
  ASSERT_TRUE(record({"a", "b"}));
  EXPECT_EQ(shell("INSERT INTO entries VALUES('13', 'string', 'granted', 0)"), "");
  ASSERT_TRUE(record({"c"}));
  EXPECT_EQ(journal(), "3:c 2:b 1:a ") << "taken over into the new file";
  EXPECT_TRUE(reported("a new one was begun"));

  // The page of the journal becomes one of no kind.
  const auto page = std::stoul(shell("SELECT rootpage FROM sqlite_schema WHERE name='journal'"));
  auto bytes = test::fileBytes(file_);
  bytes.at((page - 1) * 4096) = '\xff';
  test::setFileBytes(file_, bytes);
  reports_.clear();
  EXPECT_EQ(std::get<std::string>(open()->snapshot()->at("last")), "c");
  EXPECT_TRUE(reported("the journal"));
  ASSERT_TRUE(record({"d"}));
  EXPECT_EQ(journal(), "1:d ");
  EXPECT_EQ(std::get<std::string>(open()->snapshot()->at("last")), "d");
}

}  // namespace quillon
