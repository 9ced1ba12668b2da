// Recovery of a suite with a damaged file.
#include <functional>
#include <latch>
#include <thread>

#include "platform/linux/SqliteSuite.h"
#include "tests/platform/SqliteSuiteFixture.h"

namespace quillon {

// Both when a later process opens the file, and in the next update of a process that has it open.
TEST_F(SqliteSuiteTest, ADamagedFileIsKeptAsideAndANewOneBegun) {
  struct Damage {
    std::string name;
    std::function<void()> done;
    // The content that a later process reads.
    std::string found = "LOST_ENTRIES=true";
    // The content still known to the process that wrote it; empty where only opening detects the damage.
    std::string known = "a=acknowledged";
  };
  const auto byHand = [&](const char* sql, std::string found = "LOST_ENTRIES=true",
                          std::string known = "a=acknowledged") {
    return Damage{sql, [this, sql] { EXPECT_EQ(shell(sql), ""); }, std::move(found), std::move(known)};
  };
  // A damaged row may have had any key.
  const auto rowByHand = [&](const char* sql) { return byHand(sql, "LOST_ENTRIES=true b=true", "LOST_ENTRIES=true"); };
  const Damage damages[] = {
      {"removed", [&] { std::filesystem::remove(file_); }, ""},
      {"emptied", [&] { std::filesystem::resize_file(file_, 0); }},
      {"cut in a page", [&] { std::filesystem::resize_file(file_, 5000); }},
      {"too large", [&] { std::filesystem::resize_file(file_, maximumSuiteFileBytes + 1); }, "LOST_ENTRIES=true", ""},
      {"overwritten", [&] { overwrite(std::string(8192, '#')); }},
      {"rows out of order",
       [&] {
         auto all = fileBytes(file_);
         // The second page lists its row offsets from its ninth byte on, two bytes each: the marker, a, b.
         std::swap_ranges(&all[4106], &all[4108], &all[4108]);
         overwrite(all);
       },
       "LOST_ENTRIES=true b=true", ""},
      byHand("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<100001)"
             "INSERT INTO entries SELECT 'k'||i,'integer',i,0 FROM n"),
      byHand("DROP TABLE entries"),
      byHand("CREATE TRIGGER t AFTER INSERT ON entries BEGIN DELETE FROM entries WHERE key='key'; END",
             "LOST_ENTRIES=true", ""),
      byHand("DELETE FROM entries WHERE key=''"),
      rowByHand("UPDATE entries SET value='granted' WHERE key='a'"),
      rowByHand("UPDATE entries SET key='13' WHERE key='a'"),
      rowByHand("UPDATE entries SET checksum=NULL WHERE key='a'"),
      rowByHand("UPDATE entries SET value=x'6465' WHERE key='a'"),
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
    // An intact file with a damaged row stays until the next write.
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
    // A cache too small for the transaction makes SQLite write to the file, and before that to the journal, before the
    // commit.
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

// As left by a newer version or a database browser.
TEST_F(SqliteSuiteTest, AFileWithMoreInItThanWeKnowIsReadAndWrittenOn) {
  struct More {
    const char* sql;
    std::size_t replaced = 0;  // it accepts no more, and its content moves into a new file
  };
  for (const auto& [sql, replaced] : {
           More{"CREATE INDEX i ON entries(type, value)"},
           {"ALTER TABLE journal ADD COLUMN note TEXT DEFAULT 'x'"},
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
    EXPECT_EQ(suite->read(10)->unmarked.size(), 1u);
    EXPECT_EQ(keptAside().size(), replaced);
    EXPECT_EQ(reports_.size(), replaced);
  }
}

TEST_F(SqliteSuiteTest, AStartThatFindsOnlyADamagedStoreSetAsideKnowsOfALoss) {
  ASSERT_TRUE(put(*open(), "1", std::string("declined")));
  std::filesystem::rename(file_, file_.string() + ".damaged-20240501T000000-1");
  EXPECT_EQ(listed(*open()), "LOST_ENTRIES=true");
  EXPECT_TRUE(reported("had disappeared"));
  setFileBytes(folder_ / "t.sqlite.new", "begun, and cut off");
  EXPECT_EQ(listed(*SqliteStore(folder_).open("t", {}).value()), "") << "of a first start nothing can be lost";
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

// Damage to the journal.
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
  EXPECT_EQ(journal(), "12:h 11:g 10:f 2: 1:a ") << "the number of a lost record is never used again";
}

TEST_F(SuiteJournalTest, OutlivesADamagedEntryAndCostsNoEntryWhenItIsDamagedItself) {
  ASSERT_TRUE(record({"a", "b"}));
  EXPECT_EQ(shell("INSERT INTO entries VALUES('13', 'string', 'granted', 0)"), "");
  ASSERT_TRUE(record({"c"}));
  EXPECT_EQ(journal(), "3:c 2:b 1:a ") << "taken over into the new file";
  EXPECT_TRUE(reported("a new one was begun"));

  // Overwrites the journal's page type.
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
