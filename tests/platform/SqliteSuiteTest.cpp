#include "platform/linux/SqliteSuite.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <latch>
#include <limits>
#include <thread>

#include "platform/linux/SqliteDatabase.h"
#include "platform/linux/SqliteStore.h"
#include "platform/linux/StoredValue.h"
#include "tests/platform/ChildProcess.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {

namespace {

using namespace std::chrono_literals;
using test::contains;
using test::fileBytes;
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

// As somebody with the sqlite3 shell would.
void shell(const std::filesystem::path& file, const char* sql) {
  auto database = SqliteDatabase::open(file);
  ASSERT_TRUE(database) << database.error().text;
  const auto done = database->run(sql);
  ASSERT_TRUE(done) << done.error().text;
}

class SqliteSuiteTest : public testing::Test {
 protected:
  // A new store each time, as another process would have.
  std::shared_ptr<KeyValueSuite> open(const std::filesystem::path& folder) {
    return SqliteStore(folder).open("s", [this](std::string message) { reports_.push_back(std::move(message)); });
  }
  std::shared_ptr<KeyValueSuite> open() { return open(folder_); }

  std::vector<std::filesystem::path> keptAside() const {
    std::vector<std::filesystem::path> kept;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      const auto name = entry.path().string();
      if (name.find(".damaged-") != std::string::npos && !name.ends_with("-journal")) kept.push_back(entry.path());
    }
    return kept;
  }

  test::TemporaryFolder temporary_{test::TemporaryFolder::fastParent()};
  const std::filesystem::path folder_ = temporary_.path() / "app";
  const std::filesystem::path file_ = folder_ / "s.sqlite";
  std::vector<std::string> reports_;
};

mode_t modeOf(const std::filesystem::path& path) {
  struct stat status{};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

}  // namespace

TEST_F(SqliteSuiteTest, KeepsWhatWasWrittenReadableInTheShell) {
  ASSERT_TRUE(put(*open(), "12", std::string("granted")));
  ASSERT_TRUE(put(*open(), "list", std::vector<std::int64_t>{3, 4}));
  EXPECT_EQ(listed(*open()), "12=granted list=3 4");
  auto database = SqliteDatabase::open(file_);
  ASSERT_TRUE(database);
  EXPECT_EQ(database->ask("SELECT group_concat(key || '|' || type || '|' || value, ' ') FROM entries WHERE key<>''"),
            "12|string|granted list|integers|3 4");
  EXPECT_EQ(database->ask("PRAGMA journal_mode"), "delete") << "a file in WAL mode says so";
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
    EXPECT_EQ(store.open(name, {}), nullptr) << name;
  }
  EXPECT_EQ(store.open(std::string("a\0b", 3), {}), nullptr);
  EXPECT_EQ(store.open(std::string(300, 'a'), {}), nullptr);

  ASSERT_TRUE(store.open("other", {}));
  std::filesystem::create_symlink(folder_ / "other.sqlite", file_);
  EXPECT_EQ(open(), nullptr) << "a link";
  std::filesystem::remove(file_);
  std::filesystem::create_directory(file_);
  EXPECT_EQ(open(), nullptr) << "a folder";
  EXPECT_EQ(reports_.size(), 2u) << "both say why";

  setFileBytes(temporary_.path() / "file", "");
  EXPECT_EQ(SqliteStore(temporary_.path() / "file").open("s", {}), nullptr);
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
    std::string outcome;
  };
  for (const Row& row : {
           Row{"nothing", 0, [](const auto&) {}, "opened"},
           {"folder", attacker, [](const auto&) {}, "refused: open folder FOLDER: it belongs to another user"},
           {"file", 0, [&](const auto& folder) { plant(folder / "s.sqlite"); },
            "refused: Store FOLDER/s.sqlite cannot be opened: open FOLDER/s.sqlite: it belongs to another user"},
           {"link", 0, [&](const auto& folder) { std::filesystem::create_symlink(file_, folder / "s.sqlite"); },
            "refused: Store FOLDER/s.sqlite cannot be opened: open FOLDER/s.sqlite: Invalid argument"},
           {"unfinished", 0, [&](const auto& folder) { plant(folder / "s.sqlite.new"); },
            "refused: Store FOLDER/s.sqlite cannot be opened: open FOLDER/s.sqlite: No such file or directory; "
            "remove FOLDER/s.sqlite.new: Operation not permitted"},
       }) {
    const auto folder = temporary_.path() / row.name;
    std::filesystem::create_directory(folder);
    ASSERT_EQ(::chown(folder.c_str(), row.owner, row.owner), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 01777), 0);
    row.prepare(folder);
    test::ChildProcess child([&](const auto& say) {
      if (::setuid(user) != 0) return say("not permitted");
      std::string reports;
      const bool opened = SqliteStore(folder).open("s", [&](const std::string& text) { reports += text; }) != nullptr;
      say((opened ? "opened: " : "refused: ") + reports);
    });
    std::string said = child.finish();
    for (auto at = said.find(folder); at != std::string::npos; at = said.find(folder)) {
      said.replace(at, folder.string().size(), "FOLDER");
    }
    const std::string warning = "Every user may write to FOLDER and so remove the consents in it";
    if (const auto at = said.find(warning); at != std::string::npos) {
      said.erase(at, warning.size());
    } else {
      EXPECT_EQ(row.owner, attacker) << "no warning";
    }
    EXPECT_TRUE(said.starts_with(row.outcome)) << said;
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

TEST_F(SqliteSuiteTest, NeverGrowsIntoAFileThatItWouldRefuse) {
  const auto suite = open();
  const std::string value(1'000'000, 'x');
  std::expected<void, std::string> done;
  int written = 0;
  while (written < 80 && (done = put(*suite, std::to_string(written), value))) ++written;
  ASSERT_FALSE(done);
  EXPECT_GT(written, 50);
  EXPECT_LE(std::filesystem::file_size(file_), maximumSuiteFileBytes);
  EXPECT_EQ(open()->snapshot()->size(), static_cast<std::size_t>(written));
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
  auto foreign = SqliteDatabase::open(file_);
  ASSERT_TRUE(foreign);
  EXPECT_TRUE(foreign->run("BEGIN EXCLUSIVE; ROLLBACK"));
}

TEST_F(SqliteSuiteTest, AFileThatGoesWhileItIsEditedTakesNoAcknowledgedUpdateAlong) {
  const auto suite = open();
  ASSERT_TRUE(put(*suite, "old", true));
  int calls = 0;
  const auto done = suite->update([&](const SuiteEntries&) {
    ++calls;
    std::filesystem::remove(file_);
    return SuiteChanges{{"new", true}};
  });
  ASSERT_TRUE(done) << done.error();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(listed(*open()), "new=true old=true");
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
  for (const bool fileGoesMeanwhile : {false, true}) {
    SCOPED_TRACE(fileGoesMeanwhile);
    std::filesystem::remove_all(folder_);
    const auto suite = open();
    ASSERT_TRUE(put(*suite, "old", true));
    auto reader = SqliteDatabase::open(file_);
    auto other = SqliteDatabase::open(file_);
    ASSERT_TRUE(reader && other && reader->run("BEGIN; SELECT * FROM entries"));
    std::jthread writer([&] {
      const auto done = put(*suite, "new", true);
      EXPECT_TRUE(done) << done.error();
    });
    // Until the writer waits for the reader, which keeps new readers out.
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (other->ask("SELECT 1 FROM entries")) ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    EXPECT_EQ(listed(*suite), "old=true");
    if (fileGoesMeanwhile) std::filesystem::remove(file_);
    ASSERT_TRUE(reader->run("ROLLBACK"));
    writer.join();
    EXPECT_EQ(listed(*open()), "new=true old=true");
  }
}

TEST_F(SqliteSuiteTest, ADamagedFileIsKeptAsideAndANewOneBegun) {
  struct Case {
    const char* name;
    std::function<void()> damage;
  };
  const Case cases[] = {
      {"text", [&] { setFileBytes(file_, "not a database, whatever its name says"); }},
      {"empty", [&] { setFileBytes(file_, ""); }},
      {"zeros", [&] { setFileBytes(file_, std::string(8192, '\0')); }},
      {"too large", [&] { std::filesystem::resize_file(file_, maximumSuiteFileBytes + 1); }},
      {"too many rows",
       [&] {
         shell(file_,
               "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<100001)"
               "INSERT INTO entries SELECT 'k'||i,'integer',i,0 FROM n");
       }},
      {"no table", [&] { shell(file_, "DROP TABLE entries"); }},
      {"another table", [&] { shell(file_, "ALTER TABLE entries RENAME COLUMN value TO worth"); }},
      {"a trigger",
       [&] {
         shell(file_, "CREATE TRIGGER t AFTER INSERT ON entries BEGIN DELETE FROM entries WHERE key='key'; END");
       }},
      {"no marker", [&] { shell(file_, "DELETE FROM entries WHERE key=''"); }},
      {"a write version of the future",
       [&] {
         auto bytes = fileBytes(file_);
         bytes[18] = 9;
         setFileBytes(file_, bytes);
       }},
  };
  for (const auto& [name, damage] : cases) {
    SCOPED_TRACE(name);
    std::filesystem::remove_all(folder_);
    ASSERT_TRUE(put(*open(), "key", std::string("old")));
    damage();
    const auto size = std::filesystem::file_size(file_);
    reports_.clear();
    const auto suite = open();
    ASSERT_TRUE(suite);
    EXPECT_EQ(listed(*suite), "LOST_ENTRIES=true");
    ASSERT_EQ(keptAside().size(), 1u);
    EXPECT_EQ(std::filesystem::file_size(keptAside().front()), size);
    ASSERT_EQ(reports_.size(), 1u);
    EXPECT_TRUE(contains(reports_.front(), keptAside().front().string()));
    EXPECT_TRUE(put(*suite, "key", std::string("new")));
    EXPECT_EQ(listed(*open()), "LOST_ENTRIES=true key=new");
    EXPECT_EQ(reports_.size(), 1u);
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

TEST_F(SqliteSuiteTest, EntriesOutOfOrderLoseNoLaterUpdate) {
  {
    const auto suite = open();
    for (const auto* key : {"a", "b", "c"}) ASSERT_TRUE(put(*suite, key, std::string("old")));
  }
  // The second page lists where its rows lie, from its ninth byte on, two bytes each: the marker, a, b, c.
  auto bytes = fileBytes(file_);
  std::swap_ranges(&bytes[4096 + 10], &bytes[4096 + 12], &bytes[4096 + 14]);
  setFileBytes(file_, bytes);
  ASSERT_TRUE(put(*open(), "a", std::string("new")));
  EXPECT_EQ(open()->snapshot()->at("a"), PropertyValue(std::string("new")));
  EXPECT_EQ(keptAside().size(), 1u);
}

TEST_F(SqliteSuiteTest, AnUpdateMendsWhatHappenedToTheFileMeanwhile) {
  const auto overwrite = [&](const std::string& bytes) {
    const int fd = ::open(file_.c_str(), O_WRONLY);
    ASSERT_EQ(::pwrite(fd, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    ::close(fd);
  };
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"removed", [&] { std::filesystem::remove(file_); }},
      {"emptied", [&] { std::filesystem::resize_file(file_, 0); }},
      {"cut in the header", [&] { std::filesystem::resize_file(file_, 50); }},
      {"cut after a page", [&] { std::filesystem::resize_file(file_, 4096); }},
      {"cut in a page", [&] { std::filesystem::resize_file(file_, 5000); }},
      {"overwritten", [&] { overwrite(std::string(8192, '#')); }},
      {"replaced by rubbish",
       [&] {
         setFileBytes(folder_ / "rubbish", std::string(8192, '#'));
         std::filesystem::rename(folder_ / "rubbish", file_);
       }},
      {"changed by hand", [&] { shell(file_, "INSERT INTO entries VALUES('hand','string','x',0)"); }},
      {"marker removed by hand", [&] { shell(file_, "DELETE FROM entries WHERE key=''"); }},
  };
  for (const auto& [name, damage] : cases) {
    SCOPED_TRACE(name);
    std::filesystem::remove_all(folder_);
    const auto suite = open();
    ASSERT_TRUE(put(*suite, "a", std::string("acknowledged")));
    ASSERT_TRUE(put(*suite, "b", true));
    reports_.clear();
    damage();
    // A row that is damaged may have been any key's.
    const std::string lost = std::string(name) == "changed by hand" ? "LOST_ENTRIES=true " : "";
    int calls = 0;
    const auto done = suite->update([&](const SuiteEntries& current) {
      ++calls;
      EXPECT_EQ(current.size(), lost.empty() ? 2u : 3u);
      return SuiteChanges{{"b", false}, {"c", true}};
    });
    ASSERT_TRUE(done) << done.error();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(listed(*suite), lost + "a=acknowledged b=false c=true");
    EXPECT_EQ(listed(*open()), lost + "a=acknowledged b=false c=true");
    EXPECT_EQ(keptAside().size(), std::string(name) == "removed" ? 0u : 1u);
    EXPECT_FALSE(reports_.empty());
  }
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
  for (int round = 0; round < 100; ++round) {
    std::filesystem::remove_all(folder_);
    const auto one = open();
    const auto two = open();
    ASSERT_TRUE(put(*one, "both", true));
    const std::string damaged(8192, '#');
    const int fd = ::open(file_.c_str(), O_WRONLY);
    ASSERT_EQ(::pwrite(fd, damaged.data(), damaged.size(), 0), 8192);
    ::close(fd);
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

TEST_F(SqliteSuiteTest, ARowThatIsNotWhatWasWrittenIsAbsentAndReportedOnce) {
  const char* changes[] = {
      "UPDATE entries SET value='granted' WHERE key='12'",
      "UPDATE entries SET type='strings' WHERE key='12'",
      "UPDATE entries SET key='13' WHERE key='12'",
      "UPDATE entries SET checksum=NULL WHERE key='12'",
      "UPDATE entries SET value=x'6465' WHERE key='12'",
      "UPDATE entries SET value=NULL WHERE key='12'",
      "UPDATE entries SET checksum=checksum+4294967296 WHERE key='12'",
  };
  for (const auto* change : changes) {
    SCOPED_TRACE(change);
    std::filesystem::remove_all(folder_);
    {
      const auto suite = open();
      ASSERT_TRUE(put(*suite, "12", std::string("declined")));
      ASSERT_TRUE(put(*suite, "20", std::string("granted")));
    }
    shell(file_, change);
    reports_.clear();
    SqliteStore store(folder_);
    const auto suite = store.open("s", [&](std::string message) { reports_.push_back(std::move(message)); });
    EXPECT_EQ(listed(*suite), "20=granted LOST_ENTRIES=true");
    EXPECT_EQ(reports_.size(), 1u);
    EXPECT_TRUE(keptAside().empty()) << "a reader changes nothing";
    ASSERT_TRUE(put(*suite, "12", std::string("declined")));
    EXPECT_EQ(listed(*open()), "12=declined 20=granted LOST_ENTRIES=true");
    EXPECT_EQ(keptAside().size(), 1u);
    EXPECT_EQ(reports_.size(), 2u) << "once for the row, once for the file";
  }
}

TEST_F(SqliteSuiteTest, ATextThatIsNotOneOfItsTypeIsNoValue) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "x"},
      {"String", "x"},
      {"boolean", "1"},
      {"boolean", "True"},
      {"integer", ""},
      {"integer", " 1"},
      {"integer", "1.0"},
      {"integer", "1e3"},
      {"integer", "+1"},
      {"date", "today"},
      {"integers", "1 "},
      {"integers", "1  2"},
      {"integers", "1,2"},
      {"strings", "1"},
      {"strings", "2:a"},
      {"strings", "-1:a"},
      {"strings", "1:ab"},
      {"strings", "1:a1"},
      {"strings", ":a"},
      {"marker", "1"},
      {"integer", "9223372036854775808"},
      {"integers", "1 9223372036854775808"},
  };
  for (const auto& [type, text] : rows) EXPECT_FALSE(fromStored(type, text)) << type << " " << text;
}

}  // namespace quillon
