#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <boost/json.hpp>

#include "tests/support/ConsentServer.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"
#include "tests/tools/HostProcess.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

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

TEST_F(Store, HandsOutWhatIsKeptOfThePerson) {
  HostProcess host(data, server.url(), {"--clock", "1700000000"});
  host.setUp();
  host.ask(R"({"op":"set","purposeId":1,"consent":"granted"})");
  host.ask(R"({"op":"set","purposeId":1,"consent":"withdrawn"})");
  host.ask(R"({"op":"upload"})");
  const std::string last =
      R"({"number":4,"time":1700000000,"purpose_id":1,"from":"granted","to":"withdrawn","cause":"user",)"
      R"("given_type":"CONSENT_EXPLICIT","configuration_version":5,"compliance_type":"opt-in","language":"en",)"
      R"("upload":"uploaded"})";
  const auto history = shown({"history"});
  EXPECT_TRUE(history.ends_with(last + "\n")) << history;
  EXPECT_EQ(std::ranges::count(history, '\n'), 4);

  auto person = json::parse(shown({"export"})).as_object();
  EXPECT_EQ(person.at("decisions").as_array().size(), 4u);
  EXPECT_EQ(json::serialize(person.at("decisions").at(3)), last);
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
