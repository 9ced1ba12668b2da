// The hash chain of the history.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "core/History/DecisionChain.h"
#include "core/History/DecisionHistory.h"
#include "core/Persistance/UserDefaults/StoreKeys.h"
#include "core/Text/Sha256.h"
#include "tests/support/World.h"

namespace quillon::test {
namespace {

// A stored history: its journal, newest first, and its head.
struct Stored {
  JournalPage journal;
  std::string head;

  void add(std::int64_t number, std::string text) {
    journal.records.insert(journal.records.begin(), {number, std::move(text), {}});
  }
  JournalRecord& numbered(std::int64_t number) {
    return *std::ranges::find(journal.records, number, &JournalRecord::number);
  }
  void alter(std::int64_t number) {
    std::string& text = numbered(number).text;
    text.replace(text.find("granted"), 7, "declined");
  }
  void remove(std::int64_t number) {
    std::erase_if(journal.records, [&](const JournalRecord& record) { return record.number == number; });
  }

  // "number", with "!" for a broken link and "-" for an entry before the chain, newest first; "missing" for a head that
  // is not the newest entry's.
  std::string verified(std::size_t count = 100) const {
    JournalPage page = journal;
    page.records.resize(std::min(page.records.size(), count + 1));
    const auto newest = journal.records.empty() ? 0 : journal.records.front().number;
    const auto history = verifiedHistory(page, count, {head, newest, true});
    std::string text = history.isNewestMissing ? "missing" : "";
    for (const HistoryEntry& entry : history.entries) {
      text += (text.empty() ? "" : " ") + std::to_string(entry.number);
      text += entry.link == HistoryLink::broken ? "!" : entry.link == HistoryLink::beforeChain ? "-" : "";
    }
    return text;
  }
};

Decision decision(std::int64_t purpose) {
  return {.time = 1'700'000'000, .purposeId = purpose, .to = ConsentStatus::granted, .language = "en"};
}

Stored fiveEntries(std::string start = "first", std::int64_t number = 1) {
  Stored stored;
  auto [texts, head] = chained({decision(1), decision(2), decision(3), decision(4), decision(5)}, std::move(start));
  for (auto& text : texts) stored.add(number++, text);
  stored.head = head;
  return stored;
}

TEST(DecisionChain, NamesWhatWasChanged) {
  ASSERT_EQ(fiveEntries().verified(), "5 4 3 2 1");
  struct Row {
    const char* what;
    std::function<void(Stored&)> change;
    const char* verified;
  };
  const Row rows[] = {
      {"an entry in the middle changed", [](Stored& all) { all.alter(3); }, "5 4! 3 2 1"},
      {"the newest changed", [](Stored& all) { all.alter(5); }, "missing 5 4 3 2 1"},
      {"one removed", [](Stored& all) { all.remove(2); }, "5 4 3! 1"},
      {"the newest removed", [](Stored& all) { all.remove(5); }, "missing 4 3 2 1"},
      {"the oldest removed", [](Stored& all) { all.remove(1); }, "5 4 3 2!"},
      {"all removed", [](Stored& all) { all.journal = {}; }, "missing"},
      {"one appended that names the one before",
       [](Stored& all) { all.add(6, chained({decision(9)}, all.head).texts.front()); }, "missing 6 5 4 3 2 1"},
      {"one without a hash", [](Stored& all) { all.add(6, journalText(decision(6))); }, "missing 6! 5 4 3 2 1"},
      {"renumbered", [](Stored& all) { all.numbered(5).number = 9; }, "9! 4 3 2 1"},
      {"another beginning",
       [](Stored& all) {
         all.add(6, chained({decision(9)}, "first").texts.front());
         all.head = entryHash(all.numbered(6).text);
       },
       "6! 5 4 3 2 1"},
      {"the removal of what was before claimed", [](Stored& all) { all = fiveEntries("removed", 1); }, "5 4 3 2 1!"},
      {"damage in the middle",
       [](Stored& all) {
         all.remove(3);
         all.journal.damaged = {3};
       },
       "5 4! 2 1"},
  };
  for (const auto& [what, change, verified] : rows) {
    SCOPED_TRACE(what);
    Stored stored = fiveEntries();
    change(stored);
    EXPECT_EQ(stored.verified(), verified);
  }
}

TEST(DecisionChain, BeginsHonestlyAndAgesHonestly) {
  const auto startAfter = [](std::vector<JournalRecord> records, bool wereEntriesLost = false) {
    return chainStart({std::move(records), {}}, wereEntriesLost);
  };
  EXPECT_EQ(startAfter({}), "first");
  EXPECT_EQ(startAfter({}, true), "lost");
  EXPECT_EQ(chainStart({{}, {7}}, false), "lost");
  EXPECT_EQ(startAfter({{1, std::string(removalRecord), {}}}), "removed");
  EXPECT_EQ(startAfter({{4, journalText(decision(1)), {}}}), "unchained");
  EXPECT_EQ(startAfter({{4, fiveEntries().numbered(4).text, {}}}), "lost") << "there was a head";

  Stored removed = fiveEntries("removed", 2);
  removed.journal.records.push_back({1, std::string(removalRecord), {}});
  EXPECT_EQ(removed.verified(), "6 5 4 3 2") << "the mark of a removal is no entry";

  Stored grown = fiveEntries("unchained", 3);
  grown.journal.records.push_back({2, journalText(decision(8)), {}});
  grown.journal.records.push_back({1, journalText(decision(7)), {}});
  EXPECT_EQ(grown.verified(), "7 6 5 4 3 2- 1-");
  EXPECT_EQ(grown.verified(5), "7 6 5 4 3") << "the last one of a page is verified against the page after it";

  Stored aged = fiveEntries();
  aged.remove(1);
  aged.journal.records.front().number = 20'000;
  const auto kept = verifiedHistory({{aged.numbered(2)}, {}}, 1, {"", 11'000, false});
  EXPECT_EQ(kept.entries.at(0).link, HistoryLink::intact) << "what went by age leaves its hash behind";
  const auto tooFew = verifiedHistory({{aged.numbered(2)}, {}}, 1, {"", 9'000, false});
  EXPECT_EQ(tooFew.entries.at(0).link, HistoryLink::broken);
}

TEST(DecisionChain, HashesTheCanonicalForm) {
  auto [texts, head] = chained({decision(7)}, "first");
  EXPECT_EQ(texts.front(),
            R"({"cause":"user","compliance_type":"notice-only","configuration_version":0,)"
            R"("given_type":"CONSENT_NO_ACTION","language":"en","previous":"first","purpose_id":7,"time":1700000000,)"
            R"("to":"granted"})");
  EXPECT_EQ(head, sha256(texts.front()));
  EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(DecisionChain, TravelsWithEveryUploadAndItsHeadIsMissed) {
  World world;
  world.start();
  ASSERT_TRUE(world.sdk->set({.purposeId = 1}, ConsentStatus::granted));
  ASSERT_TRUE(world.sdk->uploadPendingConsents().get());
  const auto page = world.sdk->getHistory(100).get();
  EXPECT_FALSE(page.isNewestMissing);
  EXPECT_EQ(world.server.seen(uploadPath).back().headers.find("X-Quillon-History-Head")->second,
            page.entries.front().hash);
  world.store(key::historyHead, std::string(64, 'a'));
  EXPECT_TRUE(world.sdk->getHistory(100).get().isNewestMissing);
}

}  // namespace
}  // namespace quillon::test
