#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <boost/json.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/ConsentServer.h"
#include "tests/support/Contains.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/World.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Store : testing::Test {
  Store() { server.serve(validConfiguration()); }

  std::string data() const { return folder.path() / "data"; }
  std::string errors() const { return folder.path() / "errors"; }

  // What `store` prints for these arguments; its exit status and error text are in `status` and `error`.
  std::string store(const std::vector<std::string>& operation) {
    std::vector<std::string> arguments{"store", "--data-dir", data()};
    arguments.insert(arguments.end(), operation.begin(), operation.end());
    std::filesystem::remove(errors());
    ToolProcess tool(arguments, errors());
    std::string output;
    for (const auto& line : tool.readLines()) output += line + "\n";
    status = tool.wait().value_or(-1);
    error = fileBytes(errors());
    return output;
  }

  json::object ask(ToolProcess& host, const std::string& line) {
    host.writeLine(line);
    const auto answer = host.readLine();
    return answer ? json::parse(*answer).as_object() : json::object{{"no answer to", line}};
  }
  std::unique_ptr<ToolProcess> readyHost() {
    auto host = std::make_unique<ToolProcess>(
        std::vector<std::string>{"host", "--data-dir", data(), "--vendor-url", server.url(), "--clock", "1700000000"},
        folder.path() / "log");
    ask(*host, json::serialize(json::object{{"op", "setup"},
                                            {"appUrl", server.url()},
                                            {"cdnUrl", server.url()},
                                            {"tenantId", "t1"},
                                            {"appId", "a1"},
                                            {"locationCode", "DE"}}));
    EXPECT_EQ(ask(*host, R"({"op":"waitReady"})").at("status"), "ready");
    return host;
  }

  TemporaryFolder folder;
  ConsentServer server;
  int status = -1;
  std::string error;
};

TEST_F(Store, ShowsWhatARunningHostHasDecided) {
  const auto host = readyHost();
  ask(*host, R"({"op":"set","purposeId":1,"consent":"granted"})");
  EXPECT_EQ(store({"get", "1"}), "\"granted\"\n");
  EXPECT_EQ(status, 0);
  ask(*host, R"({"op":"set","purposeId":1,"consent":"withdrawn"})");
  EXPECT_EQ(store({"get", "1"}), "\"withdrawn\"\n");
  EXPECT_EQ(store({"get", "PENDING_PURPOSES_LIST"}), "[1]\n");
  EXPECT_EQ(store({"get", "PURPOSES_CHANGE_TIMESTAMP"}), "1700000000\n");
  EXPECT_EQ(store({"get", "ARE_PURPOSES_CHANGED"}), "true\n");

  auto dumped = json::parse(store({"dump"})).as_object();
  EXPECT_EQ(status, 0);
  const auto live = ask(*host, R"({"op":"store"})").at("store").as_object();
  std::vector<std::string> keys;
  for (const auto& entry : dumped) keys.emplace_back(entry.key());
  EXPECT_TRUE(std::ranges::is_sorted(keys));
  EXPECT_EQ(live.at("X_AUTH_TOKEN"), "secret-token");
  EXPECT_EQ(dumped.at("X_AUTH_TOKEN"), "***");
  dumped["X_AUTH_TOKEN"] = "secret-token";
  EXPECT_EQ(json::serialize(dumped), json::serialize(live));
  EXPECT_EQ(store({"get", "X_AUTH_TOKEN"}), "\"***\"\n");
}

TEST_F(Store, HandsOutWhatIsKeptOfThePerson) {
  const auto host = readyHost();
  ask(*host, R"({"op":"set","purposeId":1,"consent":"granted"})");
  ask(*host, R"({"op":"set","purposeId":1,"consent":"withdrawn"})");
  ask(*host, R"({"op":"upload"})");
  const std::string last =
      R"({"number":4,"time":1700000000,"purpose_id":1,"from":"granted","to":"withdrawn","cause":"user",)"
      R"("given_type":"CONSENT_EXPLICIT","configuration_version":5,"compliance_type":"opt-in","language":"en",)"
      R"("upload":"uploaded"})";
  const auto history = store({"history"});
  EXPECT_TRUE(history.ends_with(last + "\n")) << history;
  EXPECT_EQ(std::ranges::count(history, '\n'), 4);

  auto person = json::parse(store({"export"})).as_object();
  EXPECT_EQ(person.at("decisions").as_array().size(), 4u);
  EXPECT_EQ(json::serialize(person.at("decisions").at(3)), last);
  EXPECT_EQ(person.at("subject_id").as_string().size(), 36u);
  person.stable_erase("subject_id");
  person.stable_erase("decisions");
  EXPECT_EQ(json::serialize(person),
            R"({"given_type":"CONSENT_EXPLICIT","compliance_type":"opt-in","configuration_version":5,)"
            R"("purposes":{"1":"withdrawn"},"permissions":{"NSCameraUsageDescription":"not_determined",)"
            R"("NSContactsUsageDescription":"not_determined"},"damaged_decisions":0})");
  EXPECT_EQ(store({"reset"}), "");
  EXPECT_EQ(store({"history"}), "");
  EXPECT_EQ(status, 0);
}

TEST_F(Store, TellsThatAKeyIsAbsent) {
  const auto host = readyHost();
  EXPECT_EQ(store({"get", "99"}), "");
  EXPECT_EQ(status, 1);
  EXPECT_EQ(error, "quillon-consent store: no value under 99\n");
}

TEST_F(Store, ResetsUnderARunningHost) {
  const auto host = readyHost();
  ask(*host, R"({"op":"set","purposeId":1,"consent":"granted"})");
  EXPECT_EQ(store({"reset"}), "");
  EXPECT_EQ(status, 0);
  EXPECT_EQ(store({"dump"}), "{}\n");
  EXPECT_EQ(status, 0);
  ask(*host, R"({"op":"set","purposeId":3,"consent":"granted"})");
  EXPECT_EQ(store({"get", "3"}), "\"granted\"\n");
  EXPECT_EQ(store({"get", "1"}), "");
  EXPECT_EQ(status, 1);
}

TEST_F(Store, MakesNoStoreByLookingForOne) {
  for (const bool folderThere : {false, true}) {
    if (folderThere) std::filesystem::create_directory(data());
    for (const auto& operation : {std::vector<std::string>{"dump"}, {"get", "1"}, {"history"}, {"export"}, {"reset"}}) {
      EXPECT_EQ(store(operation), "");
      EXPECT_EQ(status, 1);
      EXPECT_EQ(error, "quillon-consent store: " + data() + " holds no store\n");
    }
    EXPECT_TRUE(folderThere ? std::filesystem::is_empty(data()) : !std::filesystem::exists(data()));
  }
}

TEST_F(Store, LeavesADamagedStoreAsItIsUnlessItIsReset) {
  std::filesystem::create_directory(data());
  const auto file = std::filesystem::path(data()) / "quillon-cmp-sdk.sqlite";
  const std::string garbage(8192, 'x');
  setFileBytes(file, garbage);
  EXPECT_EQ(store({"dump"}), "");
  EXPECT_EQ(status, 1);
  EXPECT_TRUE(contains(error, file.string()));
  EXPECT_EQ(fileBytes(file), garbage);

  EXPECT_EQ(store({"reset"}), "");
  EXPECT_EQ(status, 0) << error;
  EXPECT_EQ(store({"dump"}), "{}\n");
  bool kept = false;
  for (const auto& entry : std::filesystem::directory_iterator(data())) kept |= fileBytes(entry) == garbage;
  EXPECT_TRUE(kept);
}

// Both take the user's folder when none is given.
TEST_F(Store, FindsTheStoreOfTheHostWithoutBeingToldWhere) {
  ASSERT_EQ(setenv("XDG_DATA_HOME", folder.path().c_str(), 1), 0);
  ToolProcess host({"host"}, errors());
  EXPECT_EQ(ask(host, R"({"op":"set","purposeId":1,"consent":"granted"})").at("stored"), true);
  ToolProcess tool({"store", "get", "1"});
  EXPECT_EQ(tool.readLine(), "\"granted\"");
  EXPECT_EQ(tool.wait(), 0);
}

}  // namespace
}  // namespace quillon::test
