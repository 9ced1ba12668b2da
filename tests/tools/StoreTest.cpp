#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <boost/json.hpp>
#include <chrono>
#include <sstream>

#include "platform/linux/SuiteFile.h"
#include "tests/support/ConsentServer.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"
#include "tests/tools/HostProcess.h"

namespace quillon::test {
namespace {

namespace json = boost::json;
using namespace std::chrono_literals;

struct Store : testing::Test {
  Store() { server.serve(validConfiguration()); }

  ToolRun store(std::vector<std::string> operation) const {
    operation.insert(operation.begin(), {"store", "--data-dir", data});
    return runTool(operation);
  }
  // What it prints; it must succeed.
  std::string shown(const std::vector<std::string>& operation) const {
    const auto [status, output, errors] = store(operation);
    EXPECT_EQ(status, 0) << errors;
    return output;
  }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  const std::filesystem::path data = folder.path() / "data";
  ConsentServer server;
};

TEST_F(Store, ShowsAndResetsWhatARunningHostHasDecided) {
  HostProcess host(data, server.url(), {"--clock", "1700000000"});
  EXPECT_EQ(host.setUp().at("status"), "ready");
  for (const std::string consent : {"granted", "withdrawn"}) {
    host.ask(R"({"op":"set","purposeId":1,"consent":")" + consent + "\"}");
    EXPECT_EQ(shown({"get", "1"}), '"' + consent + "\"\n");
  }
  EXPECT_EQ(shown({"get", "PENDING_PURPOSES_LIST"}), "[1]\n");
  EXPECT_EQ(shown({"get", "PURPOSES_CHANGE_TIMESTAMP"}), "1700000000\n");
  EXPECT_EQ(shown({"get", "ARE_PURPOSES_CHANGED"}), "true\n");
  const auto absent = store({"get", "99"});
  EXPECT_EQ(absent.status, 1);
  EXPECT_EQ(absent.output + absent.errors, "quillon-consent store: no value under 99\n");

  auto dumped = json::parse(shown({"dump"})).as_object();
  EXPECT_TRUE(std::ranges::is_sorted(dumped, {}, [](const auto& entry) { return entry.key(); }));
  EXPECT_EQ(std::exchange(dumped["X_AUTH_TOKEN"], "secret-token"), "***");
  EXPECT_EQ(json::serialize(dumped), json::serialize(host.ask(R"({"op":"store"})").at("store")));
  EXPECT_EQ(shown({"get", "X_AUTH_TOKEN"}), "\"***\"\n");

  EXPECT_EQ(shown({"reset"}), "");
  EXPECT_EQ(shown({"dump"}), "{}\n");
  host.ask(R"({"op":"set","purposeId":3,"consent":"granted"})");
  EXPECT_EQ(shown({"get", "3"}), "\"granted\"\n");
  EXPECT_EQ(store({"get", "1"}).status, 1);
}

TEST_F(Store, ShowsWhatADecisionAnsweredAndNamesAnEntryThatWasChanged) {
  {
    HostProcess host(data, server.url(), {"--clock", "1700000000"});
    host.setUp();
    host.ask(R"({"op":"banner","perform":"reject"})");
    host.ask(R"({"op":"set","purposeId":1,"consent":"granted"})");
    host.ask(R"({"op":"set","purposeId":1,"consent":"declined"})");
  }
  std::string digest;
  std::istringstream lines(shown({"history"}));
  for (std::string line; std::getline(lines, line);) {
    const auto entry = json::parse(line).as_object();
    if (entry.contains("notice") && digest.empty()) digest = entry.at("notice").as_string();
  }
  const auto notice = json::parse(shown({"notice", digest})).as_object();
  EXPECT_EQ(notice.at("screen"), "banner");
  EXPECT_EQ(store({"notice", std::string(64, 'a')}).status, 1);

  // The configuration that shows it again makes the same notice.
  {
    const auto again = json::parse(shown({"notice", digest, "--as-configuration"})).as_object();
    ConsentServer other;
    other.serve(again);
    HostProcess host(folder.path() / "other", other.url(), {"--clock", "1700000000"});
    host.setUp();
    host.ask(R"({"op":"banner","perform":"reject"})");
    const auto history = host.ask(R"({"op":"history","count":1})");
    EXPECT_EQ(history.at("history").at(0).at("notice"), json::string(digest));
  }

  // Somebody rewrites the store, with the checksums made right again.
  const auto file = data / "quillon-cmp-sdk.sqlite";
  SuiteFile opened = std::move(SuiteFile::open(file, std::chrono::steady_clock::now() + 2s)->file);
  auto records = opened.readableJournal();
  auto& changed = records.at(records.size() - 2);
  changed.text.replace(changed.text.find("granted"), 7, "declined");
  ASSERT_TRUE(opened.begin());
  SuiteUpdate update;
  update.clearsJournal = true;
  ASSERT_TRUE(opened.writeJournal(update));
  for (const auto& record : records) update.appended.push_back(record.text);
  update.clearsJournal = false;
  ASSERT_TRUE(opened.writeJournal(update));
  ASSERT_TRUE(opened.commit(std::chrono::steady_clock::now() + 2s));
  const auto told = store({"history"});
  EXPECT_EQ(told.status, 1);
  EXPECT_TRUE(contains(told.errors, "entry " + std::to_string(changed.number + 1) + " does not follow")) << told.errors;
}

TEST_F(Store, HandsOutWhatIsKeptOfThePerson) {
  HostProcess host(data, server.url(), {"--clock", "1700000000"});
  host.setUp();
  host.ask(R"({"op":"set","purposeId":1,"consent":"granted"})");
  host.ask(R"({"op":"set","purposeId":1,"consent":"withdrawn"})");
  host.ask(R"({"op":"upload"})");
  const std::string last =
      R"({"number":4,"time":1700000000,"purpose_id":1,"from":"granted","to":"withdrawn","cause":"user",)"
      R"("given_type":"CONSENT_EXPLICIT","configuration_version":5,"compliance_type":"opt-in","language":"en",)"
      R"("notice":"application","upload":"uploaded","link":"intact"})";
  const auto withoutHashes = [](json::object entry) {
    entry.stable_erase("previous");
    entry.stable_erase("hash");
    return json::serialize(entry);
  };
  const auto history = shown({"history"});
  EXPECT_EQ(std::ranges::count(history, '\n'), 4);
  const auto newest = history.rfind('\n', history.size() - 2) + 1;
  EXPECT_EQ(withoutHashes(json::parse(history.substr(newest)).as_object()), last);

  auto person = json::parse(shown({"export"})).as_object();
  EXPECT_EQ(person.at("decisions").as_array().size(), 4u);
  EXPECT_EQ(withoutHashes(person.at("decisions").at(3).as_object()), last);
  EXPECT_EQ(person.at("subject_id").as_string().size(), 36u);
  person.stable_erase("subject_id");
  person.stable_erase("decisions");
  EXPECT_EQ(json::serialize(person),
            R"({"given_type":"CONSENT_EXPLICIT","compliance_type":"opt-in","configuration_version":5,)"
            R"("purposes":{"1":"withdrawn"},"permissions":{"NSCameraUsageDescription":"not_determined",)"
            R"("NSContactsUsageDescription":"not_determined"},"damaged_decisions":0})");
  shown({"reset"});
  EXPECT_EQ(shown({"history"}), "");
}

TEST_F(Store, MakesNoStoreByLookingForOne) {
  for (const bool folderThere : {false, true}) {
    if (folderThere) std::filesystem::create_directory(data);
    for (const auto& operation : {std::vector<std::string>{"dump"}, {"get", "1"}, {"history"}, {"export"}, {"reset"}}) {
      const auto [status, output, errors] = store(operation);
      EXPECT_EQ(status, 1);
      EXPECT_EQ(output + errors, "quillon-consent store: " + data.string() + " holds no store\n");
    }
    EXPECT_TRUE(folderThere ? std::filesystem::is_empty(data) : !std::filesystem::exists(data));
  }
}

TEST_F(Store, LeavesADamagedStoreAsItIsUnlessItIsReset) {
  std::filesystem::create_directory(data);
  const auto file = data / "quillon-cmp-sdk.sqlite";
  const std::string garbage(8192, 'x');
  setFileBytes(file, garbage);
  const auto [status, output, errors] = store({"dump"});
  EXPECT_EQ(status, 1);
  EXPECT_EQ(output, "");
  EXPECT_TRUE(contains(errors, file.string()));
  EXPECT_EQ(fileBytes(file), garbage);

  EXPECT_EQ(shown({"reset"}), "");
  EXPECT_EQ(shown({"dump"}), "{}\n");
  EXPECT_TRUE(std::ranges::any_of(std::filesystem::directory_iterator(data),
                                  [&](const auto& entry) { return fileBytes(entry) == garbage; }));
}

// Both take the user's folder when none is given.
TEST_F(Store, FindsTheStoreOfTheHostWithoutBeingToldWhere) {
  ASSERT_EQ(setenv("XDG_DATA_HOME", folder.path().c_str(), 1), 0);
  ToolProcess host({"host"}, folder.path() / "log");
  host.writeLine(R"({"op":"set","purposeId":1,"consent":"granted"})");
  EXPECT_EQ(host.readLine(), R"({"ok":true,"stored":true})");
  EXPECT_EQ(runTool({"store", "get", "1"}).output, "\"granted\"\n");
}

}  // namespace
}  // namespace quillon::test
