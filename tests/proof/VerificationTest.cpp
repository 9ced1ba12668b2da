#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "proof/Json/UntrustedJson.h"
#include "proof/Receipt/Receipt.h"
#include "tests/proof/Evidence.h"
#include "tests/support/Contains.h"
#include "tests/support/Effort.h"

namespace quillon::proof::test {
namespace {

using quillon::test::contains;

HistoryEntries entriesOf(const HistoryEvidence& evidence) {
  HistoryEntries entries;
  for (const auto& text : evidence.entries) entries.push_back(json::parse(text).as_object());
  return entries;
}

void link(HistoryEntries& entries, ChainState& state, std::string_view begin, std::size_t from = 0) {
  for (std::size_t i = from; i < entries.size(); ++i) {
    entries[i]["previous"] = i == from ? std::string(begin) : entryHash(entries[i - 1]);
  }
  state.head = entryHash(entries.back());
}

TEST(Chain, NamesTheEntryThatWasChangedRemovedInsertedOrMoved) {
  const struct {
    const char* name;
    std::function<void(HistoryEntries&, ChainState&)> change;
    std::vector<std::string> named;  // nothing: all holds
  } cases[] = {
      {"as it was written", [](auto&, auto&) {}, {}},
      {"an upload later", [](auto& e, auto&) { e[3]["upload"] = "uploaded"; }, {}},
      {"after a removal", [](auto& e, auto& s) { link(e, s, "removed"); }, {}},
      {"after entries of an earlier release",
       [](auto& e, auto& s) {
         for (std::size_t i = 0; i < 4; ++i) e[i].erase("previous");
         link(e, s, "unchained", 4);
       },
       {}},
      {"all of an earlier release",
       [](auto& e, auto& s) {
         for (auto& each : e) each.erase("previous");
         s.head.reset();
       },
       {}},
      {"an answer changed", [](auto& e, auto&) { e[4]["to"] = "granted!"; }, {"entry 5"}},
      {"the newest changed", [](auto& e, auto&) { e.back()["to"] = "x"; }, {"entry 13"}},
      {"one removed", [](auto& e, auto&) { e.erase(e.begin() + 4); }, {"entry 4"}},
      {"the first removed", [](auto& e, auto&) { e.erase(e.begin()); }, {"entry 2"}},
      {"the newest removed", [](auto& e, auto&) { e.pop_back(); }, {"entry 12"}},
      {"two in each other's place", [](auto& e, auto&) { std::swap(e[4], e[5]); }, {"entry 5", "entry 6", "entry 7"}},
      {"numbers only in each other's place",
       [](auto& e, auto&) { std::swap(e[4].at("number"), e[5].at("number")); },
       {"entry 5"}},
      {"a link less",
       [](auto& e, auto& s) { e[4].erase("previous"), link(e, s, "unchained", 5); },
       {"entry 5", "entry 6"}},
      {"a second beginning", [](auto& e, auto& s) { link(e, s, "first", 6); }, {"entry 7"}},
      {"a link lost to damage", [](auto& e, auto& s) { link(e, s, "lost", 6); }, {"entry 7"}},
      {"a word that is none", [](auto& e, auto& s) { link(e, s, "whatever", 6); }, {"entry 7"}},
      {"entries before the chain removed",
       [](auto& e, auto& s) {
         e.erase(e.begin(), e.begin() + 4);
         link(e, s, "unchained");
       },
       {"entry 5"}},
      {"no head", [](auto&, auto& s) { s.head.reset(); }, {"history"}},
      {"damage", [](auto&, auto& s) { s.damaged = 1; }, {"history"}},
      {"no decision", [](auto& e, auto& s) { e[2].erase("to"), link(e, s, "first"); }, {"entry 3"}},
  };
  for (const auto& each : cases) {
    auto entries = entriesOf(someEvidence());
    ChainState state{.head = entryHash(entries.back())};
    each.change(entries, state);
    Findings findings;
    checkChain(entries, state, findings);
    SCOPED_TRACE(testing::Message() << each.name << '\n' << listed(findings));
    EXPECT_EQ(findings.faults() == 0, each.named.empty());
    for (const auto& subject : each.named) EXPECT_TRUE(findings.names(subject)) << subject;
  }
}

// With as many entries as are kept, older ones are gone by age.
TEST(Chain, AllowsAnOldestEntryThatFollowsAnotherWhenAsManyAsAreKeptAreThere) {
  for (const auto& [count, isFine] : {std::pair(9'799, false), std::pair(9'800, true), std::pair(10'000, true)}) {
    auto entries = entriesOf(someEvidence(count));
    entries.erase(entries.begin());
    Findings findings;
    checkChain(entries, {.head = entryHash(entries.back())}, findings);
    EXPECT_EQ(findings.faults() == 0, isFine) << count << '\n' << listed(findings);
  }
}

TEST(Verification, TellsEveryPartOfAnExportThatHolds) {
  const auto findings = checkedExport(someExport());
  EXPECT_EQ(findings.faults(), 0u) << listed(findings);
  const auto holding = listed(findings, Finding::Kind::holds);
  for (const auto* part :
       {"signature of the manifest: ", "files: 5 are what", "chain: 13 entries follow", "notices: 2 are what was shown",
        "signature of the receipt: ", "receipt: is a part of the history"}) {
    EXPECT_TRUE(contains(holding, part));
  }
  EXPECT_TRUE(contains(listed(findings, Finding::Kind::note), "is not kept any more"));
  const auto empty = checkedExport(someExport({.time = issueTime}));
  EXPECT_EQ(empty.faults(), 0u) << listed(empty);
}

// Beside files that are missing.
TEST(Verification, NamesWhatDoesNotHoldInAnExport) {
  const auto path = "notices/" + sha256(noticeText(1)) + ".json";
  const auto ofOwnKey = [](ExportFiles& files) {
    files.erase("manifest.json");
    files["manifest.json"] = manifestOf(files, issueTime, deviceKey()).value();
  };
  const struct {
    const char* name;
    std::function<void(ExportFiles&)> change;
    const char* named;
    Expectations expected = {.now = issueTime};
  } cases[] = {
      {"a file added", [](auto& f) { f["notes.txt"] = "x"; }, "file notes.txt"},
      {"another's key", [](auto& f) { f["key.json"] = json::serialize(otherKey().publicKey().jwk()); }, "key"},
      {"a key that is none", [](auto& f) { f["key.json"] = "{}"; }, "file key.json"},
      {"another's manifest", [](auto& f) { f["manifest.json"] = manifestOf(f, issueTime, otherKey()).value(); }, "key"},
      {"all signed by another",
       [](auto& f) { f = someExport(request(), otherKey()); },
       "key",
       {.now = issueTime, .keyThumbprint = deviceKey().publicKey().thumbprint()}},
      {"a notice changed and listed anew", [&](auto& f) { f[path].insert(1, R"("more":1,)"), ofOwnKey(f); }, "notice "},
      {"a notice removed and listed no more", [&](auto& f) { f.erase(path), ofOwnKey(f); }, "notice "},
      {"the receipt of a later moment",
       [&](auto& f) {
         f["receipt.json"] = someExport(request(someEvidence(14)))["receipt.json"];
         ofOwnKey(f);
       },
       "receipt"},
      {"read a year before it was made", [](auto&) {}, "receipt", {.now = issueTime - 31'536'000}},
      {"no history", [&](auto& f) { f["history.json"] = "[", ofOwnKey(f); }, "file history.json"},
      {"a receipt that is none", [&](auto& f) { f["receipt.json"] = "{}", ofOwnKey(f); }, "receipt"},
      {"a signature less",
       [&](auto& f) {
         auto receipt = json::parse(f["receipt.json"]).as_object();
         receipt.erase("signature");
         f["receipt.json"] = json::serialize(receipt);
         ofOwnKey(f);
       },
       "signature of the receipt"},
  };
  for (const auto& [name, change, named, expected] : cases) {
    SCOPED_TRACE(name);
    auto files = someExport();
    change(files);
    EXPECT_TRUE(contains("\n" + listed(checkedExport(files, expected)), "\n" + std::string(named)));
  }
}

// A device may sign what it likes; what contradicts itself is found.
TEST(Verification, FindsAReceiptThatContradictsItself) {
  using Change = std::function<void(json::object & receipt, json::object & record)>;
  const auto statusOf = [](json::object& record) -> json::object& {
    return record.at("dpv:hasConsentStatus").as_array().at(0).as_object();
  };
  const std::vector<std::pair<Change, const char*>> cases{
      {[](auto&, auto& r) { r.erase("dpv:hasDataSubject"); }, "lacks the field dpv:hasDataSubject"},
      {[&](auto&, auto& r) { statusOf(r)["@type"] = "dpv:ConsentRefused"; }, "entry 1: was not what the receipt"},
      {[&](auto&, auto& r) { statusOf(r)["dpv:isIndicatedAtTime"] = "2020-01-01T00:00:00Z"; }, "entry 1: was not when"},
      {[&](auto&, auto& r) { statusOf(r)[term::decision].as_object()["to"] = "declined"; }, "of the receipt is not in"},
      {[&](auto&, auto& r) { statusOf(r).erase(term::decision); }, "without the entry of the history"},
      {[](auto& a, auto&) { a[term::notices].as_object().begin()->value() = json::object(); }, "was changed"},
      {[](auto& a, auto&) { a[term::notices].as_object().clear(); }, "is missing; entry"},
      {[](auto& a, auto&) { a[term::historyHead] = sha256(""); }, "the newest entry that it knew"},
      {[](auto& a, auto&) { a["dct:conformsTo"] = "https://other.example/"; }, "conforms to no profile"},
      {[](auto& a, auto&) { a["dct:created"] = "yesterday"; }, "has no time of its creation"},
      {[](auto& a, auto&) { a["dpv:hasRecordOfActivity"] = json::array(); }, "holds no record"},
      {[](auto& a, auto&) { a["dpv:hasRecordOfActivity"] = json::array{1}; }, "holds a record that is none"},
  };
  const auto files = someExport();
  const auto history = readHistory(files.at("history.json")).value();
  for (const auto& [change, fault] : cases) {
    auto receipt = json::parse(files.at("receipt.json")).at("receipt").as_object();
    change(receipt, receipt.at("dpv:hasRecordOfActivity").as_array().at(0).as_object());
    const auto document = signedDocument("receipt", receipt, deviceKey()).value();
    EXPECT_TRUE(contains(listed(checkedReceipt(document, {.now = issueTime}, KnownHistory{history})), fault));
  }
}

TEST(Verification, TakesAHistoryThatHasGrownSinceTheReceiptAndLinesAsTheToolPrintsThem) {
  const auto later = someEvidence(14);
  std::string lines;
  for (const auto& entry : later.entries) lines += entry + "\n";
  auto history = readHistory(lines);
  ASSERT_TRUE(history) << history.error();
  EXPECT_FALSE(history->state.isHeadKnown);
  auto earlier = request();
  earlier.evidence.entries.pop_back();  // the permission, which is elsewhere in the longer one
  earlier.evidence.head = entryHash(json::parse(earlier.evidence.entries.back()).as_object());
  const auto findings =
      checkedReceipt(someExport(earlier).at("receipt.json"), {.now = issueTime}, KnownHistory{*history});
  EXPECT_EQ(findings.faults(), 0u) << listed(findings);
  for (const auto* text : {"1", "[]", "{\"a\":1}\n2", "{\"entries\":[1]}", "{\"entries\":{}}"}) {
    EXPECT_FALSE(readHistory(text)) << text;
  }
}

// As somebody without the key would: the list is right again, and its signature is not.
void sumAnew(ExportFiles& files) {
  const auto manifest = files.find("manifest.json");
  if (manifest == files.end()) return;
  json::error_code error;
  auto document = json::parse(manifest->second, error);
  if (error || !document.is_object() || !document.get_object().contains("manifest")) return;
  json::array list;
  for (const auto& [name, content] : files) {
    if (name == "manifest.json") continue;
    list.push_back(json::object{{"name", name}, {"size", content.size()}, {"sha256", sha256(content)}});
  }
  document.get_object().at("manifest").as_object()["files"] = std::move(list);
  manifest->second = canonicalJson(document);
}

TEST(Changes, OfAnExportAreFoundAllTenThousand) {
  constexpr std::uint64_t count = quillon::test::isSlowed ? 500 : 10'000;
  const auto original = someExport();
  for (std::uint64_t seed = 0; seed < count; ++seed) {
    std::mt19937_64 random(seed);
    const auto below = [&](std::size_t limit) {
      return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    ExportFiles files = original;
    const auto file = std::next(files.begin(), static_cast<std::ptrdiff_t>(below(files.size())));
    auto& byte = file->second.at(below(file->second.size()));
    byte = static_cast<char>(byte ^ 1 << below(8));
    if (below(2) == 1) sumAnew(files);
    if (files == original) continue;  // a bit of a sum that was made right again
    ASSERT_GT(checkedExport(files).faults(), 0u) << "seed " << seed;
  }
}

// Whatever is missing is named, with and without a new list.
TEST(Changes, ThatLeaveAFileOutAreNamed) {
  const auto original = someExport();
  for (const auto& [name, content] : original) {
    auto files = original;
    files.erase(name);
    for (const bool isListedAnew : {false, true}) {
      if (isListedAnew) sumAnew(files);
      const auto findings = checkedExport(files);
      const auto subject = name.starts_with("notices/") ? "notice " + name.substr(8, 64) : "file " + name;
      EXPECT_TRUE(findings.names(subject)) << subject << '\n' << listed(findings);
    }
  }
}

}  // namespace
}  // namespace quillon::proof::test
