// What both stores promise.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <thread>

#include "receiver/store/DecisionStore.h"
#include "tests/receiver/Servers.h"

namespace quillon::test {
namespace {

using receiver::Decision;
using receiver::Kind;
using receiver::Status;
using receiver::Upload;

Upload upload(const std::string& subject, std::vector<Decision> decisions, std::int64_t receivedAt = 1000) {
  return {.tenant = "acme",
          .application = "reader",
          .subject = subject,
          .device = "Linux",
          .version = 3,
          .compliance = "opt-in",
          .place = "DE",
          .receivedAt = receivedAt,
          .decisions = std::move(decisions)};
}

Decision purpose(int id, Status status, std::int64_t time) {
  return {.kind = Kind::purpose, .item = std::to_string(id), .decidedAt = time, .status = status};
}

class StoreTest : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    address = folder.path() / "store";
    if (GetParam() == std::string("PostgreSQL")) {
      if (!PostgresServer::isInstalled()) GTEST_SKIP() << "PostgreSQL is not installed";
      static int count = 0;
      address = sharedPostgres().newDatabase("store" + std::to_string(++count));
    }
    store = open();
  }
  std::unique_ptr<receiver::DecisionStore> open() const {
    auto opened = receiver::openStore(address);
    EXPECT_TRUE(opened) << opened.error().text;
    return opened ? *std::move(opened) : nullptr;
  }
  std::int64_t add(const std::vector<Upload>& uploads) {
    const auto added = store->add(uploads);
    EXPECT_TRUE(added) << added.error().text;
    return added.value_or(-1);
  }
  // "1 granted 100, 1 declined 200"
  std::string historyOf(const std::string& subject) {
    std::string text;
    const auto history = store->history({subject}).value();
    for (const Upload& entry : history) text += (text.empty() ? "" : ", ") + decisionOf(entry);
    return text;
  }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  std::string address;
  std::unique_ptr<receiver::DecisionStore> store;
};

TEST_P(StoreTest, KeepsEachDecisionOnceInTheDevicesOrderWhateverTheArrival) {
  const auto late = upload("s", {purpose(1, Status::declined, 100), purpose(2, Status::granted, 100)});
  const auto early = upload("s", {purpose(1, Status::granted, 200)});
  const auto tie = upload("s", {purpose(1, Status::declined, 300)});
  const auto tieGranted = upload("s", {purpose(1, Status::granted, 300)});
  EXPECT_EQ(add({tie, early, early}), 2);
  EXPECT_EQ(add({early, late}), 2);
  EXPECT_EQ(add({tieGranted, late, tie}), 1);
  // Within a second what grants comes first, although it came last.
  const std::string expected = "2 granted 100, 1 declined 100, 1 granted 200, 1 granted 300, 1 declined 300";
  EXPECT_EQ(historyOf("s"), expected);
  store.reset();
  store = open();
  EXPECT_EQ(historyOf("s"), expected);
}

TEST(OlderStore, GetsTheColumnsThatItLacksAndKeepsItsDecisions) {
  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  const std::string address = folder.path() / "store";
  ASSERT_TRUE(receiver::openStore(address).value()->add(std::vector{upload("s", {purpose(1, Status::granted, 5)})}));
  sqlite3* database = nullptr;
  sqlite3_open((address + "/decisions.db").c_str(), &database);
  ASSERT_EQ(sqlite3_exec(database,
                         "ALTER TABLE quillon_decisions DROP COLUMN cause; "
                         "ALTER TABLE quillon_decisions DROP COLUMN history_head",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(database);
  const auto reopened = receiver::openStore(address).value();
  const auto history = reopened->history({"s", {}}).value();
  ASSERT_EQ(history.size(), 1u);
  EXPECT_EQ(history.front().historyHead, "");
}

TEST_P(StoreTest, GivesBackEveryMemberWhateverItHolds) {
  Upload odd = upload("NULL", {{.kind = Kind::permission, .item = "a,b", .decidedAt = -5, .status = Status::withdrawn},
                               {.kind = Kind::purpose,
                                .item = "-9223372036854775808",
                                .decidedAt = 7,
                                .status = Status::notDetermined,
                                .isEssential = true,
                                .cause = "signal"}});
  odd.historyHead = std::string(64, 'a');
  odd.device = "{\"quoted\", \\ NULL} \xF0\x9F\x93\xB1\n\t'";
  odd.isImplicit = odd.isTest = true;
  odd.version = INT64_MAX;
  odd.advertisingId = "ad";
  odd.sdkVersion = "\\N";
  ASSERT_EQ(add({odd}), 2);
  const auto history = store->history({"NULL"}).value();
  ASSERT_EQ(history.size(), 2u);
  for (std::size_t i = 0; i < 2; ++i) {
    Upload one = odd;
    one.decisions = {odd.decisions[i]};
    EXPECT_EQ(history[i], one);
  }
}

TEST_P(StoreTest, WritersThatMeetNeitherWaitForeverNorCountTwice) {
  constexpr int writers = 4;
  std::atomic<std::int64_t> fresh = 0;
  {
    std::vector<std::jthread> threads;
    for (int writer = 0; writer < writers; ++writer) {
      threads.emplace_back([&, writer] {
        const auto own = open();
        for (int round = 0; round < 10; ++round) {
          std::vector<Upload> uploads;
          for (int i = 0; i < 20; ++i) {
            const int subject = writer % 2 == 0 ? i : 19 - i;
            uploads.push_back(upload("s" + std::to_string(subject), {purpose(round, Status::granted, round)}));
          }
          auto added = own->add(uploads);
          while (!added && added.error().kind == receiver::StoreError::Kind::conflict) added = own->add(uploads);
          ASSERT_TRUE(added) << added.error().text;
          fresh += *added;
        }
      });
    }
  }
  EXPECT_EQ(fresh, 200);
}

TEST_P(StoreTest, ErasesAndExpiresWhatIsMeantAndCountsTheRest) {
  auto other = upload("s1", {purpose(1, Status::granted, 86'400)});
  other.tenant = "other";
  auto test = upload("s3", {purpose(1, Status::granted, 1)});
  test.isTest = true;
  add({upload("s1", {purpose(1, Status::granted, 1), purpose(1, Status::declined, 2)}, 500), other, test,
       upload("s2", {purpose(1, Status::granted, 5)}, 2000)});

  const auto answers = store->answers().value();
  ASSERT_EQ(answers.size(), 3u);  // what is in test mode does not count
  EXPECT_EQ(answers[0].status, "declined");
  EXPECT_EQ(answers[1].status, "granted");
  EXPECT_EQ(answers[1].count, 2);
  EXPECT_EQ(answers[1].place, "DE");
  EXPECT_EQ(answers[2].tenant, "other");
  EXPECT_EQ(answers[2].day, 1);

  EXPECT_EQ(store->expire(1000).value(), 2);
  EXPECT_EQ(historyOf("s1"), "1 granted 86400");
  EXPECT_EQ(store->erase({"s1", "acme"}).value(), 0);
  EXPECT_EQ(store->erase({"s1"}).value(), 1);
  EXPECT_EQ(historyOf("s1"), "");
  EXPECT_EQ(historyOf("s2"), "1 granted 5");
}

TEST_P(StoreTest, ExpiryPassesThroughManyPartsAndForgetsNone) {
  const std::vector<Decision> two{purpose(1, Status::granted, 1), purpose(2, Status::granted, 1)};
  std::vector<Upload> uploads;
  // All but the first are old, those at the ends of the parts among them.
  for (int i = 0; i < 6000; ++i) uploads.push_back(upload("s" + std::to_string(i), two, i == 0 ? 5000 : 10));
  ASSERT_EQ(add(uploads), 12'000);
  EXPECT_EQ(store->expire(1000).value(), 11'998);
  EXPECT_EQ(store->expire(1000).value(), 0);
  EXPECT_EQ(store->answers().value().size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(Each, StoreTest, testing::Values("SQLite", "PostgreSQL"),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
}  // namespace quillon::test
