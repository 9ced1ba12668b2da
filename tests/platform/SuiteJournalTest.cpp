// What the journal in a database file survives.
#include <gtest/gtest.h>

#include "platform/linux/SqliteDatabase.h"
#include "platform/linux/SqliteStore.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon {
namespace {

using test::contains;

class SuiteJournalTest : public testing::Test {
 protected:
  // A new store each time, as another process would have.
  std::shared_ptr<KeyValueSuite> open() {
    return SqliteStore(folder_).open("s", [this](const std::string& message) { reports_ += message + "\n"; });
  }
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
  std::string listed() {
    const auto page = open()->journal(1'000'000, 1'000);
    if (!page) return page.error();
    std::string list;
    for (const auto& record : page->records) list += std::to_string(record.number) + ":" + record.text + " ";
    for (const auto number : page->damaged) list += std::to_string(number) + "! ";
    return list;
  }
  // As somebody with the sqlite3 shell would.
  std::string shell(const char* sql) {
    auto database = SqliteDatabase::open(file_);
    if (!database) return database.error().text;
    const auto answer = database->ask(sql);
    return answer ? *answer : answer.error().text;
  }

  test::TemporaryFolder temporary_{test::TemporaryFolder::fastParent()};
  const std::filesystem::path folder_ = temporary_.path() / "app";
  const std::filesystem::path file_ = folder_ / "s.sqlite";
  std::string reports_;
};

}  // namespace

TEST_F(SuiteJournalTest, AFileFromBeforeTheJournalGainsOne) {
  ASSERT_TRUE(open()->update([](const SuiteEntries&) { return SuiteChanges{{"12", std::string("granted")}}; }));
  EXPECT_EQ(shell("DROP TABLE journal"), "");
  EXPECT_EQ(listed(), "");
  EXPECT_EQ(shell("SELECT count(*) FROM sqlite_schema"), "1") << "looking makes no table";
  ASSERT_TRUE(record({"a"}));
  EXPECT_EQ(listed(), "1:a ");
  EXPECT_EQ(open()->snapshot()->size(), 2u);
  EXPECT_EQ(reports_, "");
}

TEST_F(SuiteJournalTest, DamagedRecordsAreReportedAndNeverInvented) {
  ASSERT_TRUE(record({"a", "b", "c", "d", "e"}));
  for (const char* damage :
       {"UPDATE journal SET text='z' WHERE number=2", "UPDATE journal SET mark='sent' WHERE number=3",
        "UPDATE journal SET number=9 WHERE number=4", "UPDATE journal SET text=x'61' WHERE number=5"}) {
    EXPECT_EQ(shell(damage), "");
  }
  EXPECT_EQ(listed(), "1:a 9! 5! 3! 2! ");
  for (const char* number : {"2", "3", "5", "9"}) {
    EXPECT_TRUE(contains(reports_, std::string("record ") + number + " of the journal is damaged"));
  }
  ASSERT_TRUE(record({"f"})) << "the decision counts all the same";
  EXPECT_EQ(listed(), "10:f 1:a 9! 5! 3! 2! ");
  EXPECT_EQ(shell("UPDATE journal SET number=9223372036854775807 WHERE number=9"), "");
  ASSERT_TRUE(record({"g"})) << "numbers never run out";
  EXPECT_EQ(shell("UPDATE journal SET number=4611686018427387904 WHERE number=5"), "");
  EXPECT_EQ(shell("UPDATE journal SET number=4611686018427387903 WHERE number=3"), "");
  ASSERT_TRUE(record({"h"})) << "a journal that takes no more is begun anew with what is sound in it";
  EXPECT_EQ(listed(), "12:h 11:g 10:f 1:a ");
}

TEST_F(SuiteJournalTest, OutlivesADamagedEntryAndCostsNoEntryWhenItIsDamagedItself) {
  ASSERT_TRUE(record({"a", "b"}));
  EXPECT_EQ(shell("INSERT INTO entries VALUES('13', 'string', 'granted', 0)"), "");
  ASSERT_TRUE(record({"c"}));
  EXPECT_EQ(listed(), "3:c 2:b 1:a ") << "taken over into the new file";
  EXPECT_TRUE(contains(reports_, "a new one was begun"));

  // The page of the journal becomes one of no kind.
  const auto page = std::stoul(shell("SELECT rootpage FROM sqlite_schema WHERE name='journal'"));
  auto bytes = test::fileBytes(file_);
  bytes.at((page - 1) * 4096) = '\xff';
  test::setFileBytes(file_, bytes);
  reports_.clear();
  EXPECT_EQ(std::get<std::string>(open()->snapshot()->at("last")), "c");
  EXPECT_TRUE(contains(reports_, "the journal"));
  ASSERT_TRUE(record({"d"}));
  EXPECT_EQ(listed(), "1:d ");
  EXPECT_EQ(std::get<std::string>(open()->snapshot()->at("last")), "d");
}

TEST_F(SuiteJournalTest, FailsWithoutATraceWhenTheUpdateDoes) {
  ASSERT_TRUE(record({"a"}));
  EXPECT_EQ(shell("DROP TABLE journal"), "");
  const auto suite = open();
  EXPECT_FALSE(suite->update([](const SuiteEntries&) {
    SuiteUpdate update;
    update.appended = {"b"};
    update.settle = [](const std::vector<JournalRecord>&) -> std::vector<std::string> { throw 1; };
    return update;
  }));
  EXPECT_EQ(shell("SELECT count(*) FROM sqlite_schema"), "1");
  EXPECT_TRUE(suite->update([](const SuiteEntries&) {
    SuiteUpdate update;
    update.appended = {"c"};
    return update;
  }));
  EXPECT_EQ(listed(), "1:c ");
}

}  // namespace quillon
