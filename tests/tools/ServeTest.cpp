#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/socket.h>
#include <unistd.h>

#include <boost/json.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tests/tools/ToolProcess.h"

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

constexpr auto kUploadPath = "/vantari/v1/consent/mobile/singleupload";

json::object validUpload() {
  return {{"uuid", "subject-1"},
          {"app_uuid", "reader"},
          {"device", "Linux"},
          {"implicit_consent", false},
          {"version", 3},
          {"purpose_consents",
           json::array{json::object{
               {"purpose_id", 12}, {"consent_status", "granted"}, {"timestamp", 1700000000}, {"is_essential", false}}}},
          {"permissions", json::array{}},
          {"is_test_mode", false},
          {"ad_id", ""},
          {"platform", "ios"},
          {"banner_info", "opt-in"}};
}

class ServeTest : public testing::Test {
 protected:
  ServeTest() {
    std::string name = (fs::temp_directory_path() / "serve-test-XXXXXX").string();
    base_ = mkdtemp(name.data());
    fs::create_directory(folder());
  }
  ~ServeTest() override {
    server_.reset();
    fs::remove_all(base_);
  }

  fs::path folder() const { return base_ / "published"; }
  std::string database() const { return base_ / "uploads.db"; }

  void write(const fs::path& file, std::string_view content) const {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << content;
  }

  void start(const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"serve", folder(), "--port", "0", "--db", database()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    server_ = std::make_unique<ToolProcess>(arguments);
    const auto line = server_->readLine().value_or("");
    const std::string prefix = "listening on http://127.0.0.1:";
    ASSERT_EQ(line.substr(0, prefix.size()), prefix);
    port_ = std::stoi(line.substr(prefix.size()));
  }

  httplib::Result get(const std::string& path, const httplib::Headers& headers = {}) const {
    httplib::Client client("127.0.0.1", port_);
    client.set_url_encode(false);
    return client.Get(path, headers);
  }
  httplib::Result post(const std::string& path, const std::string& body, const httplib::Headers& headers = {}) const {
    return httplib::Client("127.0.0.1", port_).Post(path, headers, body, "application/json");
  }
  httplib::Result upload(const json::value& body, const std::string& token = "token") const {
    return post(kUploadPath, json::serialize(body), {{"X-Auth-Token", token}});
  }

  // What `serve --list` prints, as objects.
  std::vector<json::object> listed() const {
    ToolProcess list({"serve", "--list", "--db", database()});
    std::vector<json::object> uploads;
    for (const auto& line : list.readLines()) uploads.push_back(json::parse(line).as_object());
    EXPECT_EQ(list.wait(), 0);
    return uploads;
  }

  // Ends the server and gives its request log.
  std::vector<std::string> stop(int signal = SIGTERM) {
    server_->sendSignal(signal);
    auto log = server_->readLines();
    EXPECT_EQ(server_->wait(), 0);
    return log;
  }

  fs::path base_;
  std::unique_ptr<ToolProcess> server_;
  int port_ = 0;
};

TEST_F(ServeTest, KnownEntityTagSavesTheBodyUntilTheFileChanges) {
  write(folder() / "a" / "config_de.json", R"({"version":1})");
  start();
  const auto first = get("/a/config_de.json");
  ASSERT_TRUE(first);
  EXPECT_EQ(first->status, 200);
  EXPECT_EQ(first->body, R"({"version":1})");
  const auto tag = first->get_header_value("ETag");
  ASSERT_GT(tag.size(), 2u);

  for (const auto& known : {tag, "\"other\", " + tag, "W/" + tag, std::string("*")}) {
    const auto again = get("/a/config_de.json", {{"If-None-Match", known}});
    ASSERT_TRUE(again);
    EXPECT_EQ(again->status, 304) << known;
    EXPECT_EQ(again->body, "");
    EXPECT_EQ(again->get_header_value("ETag"), tag);
  }

  write(folder() / "a" / "config_de.json", R"({"version":2})");
  const auto changed = get("/a/config_de.json", {{"If-None-Match", tag}});
  ASSERT_TRUE(changed);
  EXPECT_EQ(changed->status, 200);
  EXPECT_EQ(changed->body, R"({"version":2})");
  EXPECT_NE(changed->get_header_value("ETag"), tag);
}

TEST_F(ServeTest, NothingOutsideTheFolderIsServed) {
  write(base_ / "secret.json", "{}");
  write(base_ / "published-too" / "secret.json", "{}");
  write(folder() / "config.json", "{}");
  write(folder() / "notes.txt", "{}");
  fs::create_symlink(base_ / "secret.json", folder() / "outside.json");
  fs::create_symlink(base_, folder() / "up");
  fs::create_symlink("config.json", folder() / "inside.json");
  start();
  for (const auto& path : {"/missing.json", "/../secret.json", "/%2e%2e/secret.json", "/..%2fsecret.json",
                           "/outside.json", "/up/secret.json", "/../published-too/secret.json", "/notes.txt", "/",
                           "//etc/hostname", "/config.json%00.json", "/config.json/"}) {
    const auto answer = get(path);
    ASSERT_TRUE(answer) << path;
    EXPECT_EQ(answer->status, 404) << path;
  }
  const auto absolute = get("/" + (base_ / "secret.json").string());
  ASSERT_TRUE(absolute);
  EXPECT_EQ(absolute->status, 404);
  const auto inside = get("/inside.json");
  ASSERT_TRUE(inside);
  EXPECT_EQ(inside->status, 200);
}

TEST_F(ServeTest, LocationComesWithoutAnEntityTag) {
  start();
  EXPECT_EQ(get("/core/v1/utils/geo/location")->status, 404);
  write(folder() / "location.json", R"({"status":0,"message":""})");
  const auto tag = get("/location.json")->get_header_value("ETag");
  const auto location = get("/core/v1/utils/geo/location", {{"If-None-Match", tag}});
  ASSERT_TRUE(location);
  EXPECT_EQ(location->status, 200);
  EXPECT_EQ(location->body, R"({"status":0,"message":""})");
  EXPECT_FALSE(location->has_header("ETag"));
}

TEST_F(ServeTest, ValidUploadIsListedWhileTheServerRuns) {
  start();
  const auto answer = upload(validUpload());
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 200);
  EXPECT_EQ(json::parse(answer->body).at("status"), 0);

  const auto uploads = listed();
  ASSERT_EQ(uploads.size(), 1u);
  EXPECT_EQ(uploads[0].at("status"), 0);
  EXPECT_GT(uploads[0].at("received").as_int64(), 1700000000);
  EXPECT_EQ(uploads[0].at("upload"), validUpload());
}

TEST_F(ServeTest, MalformedUploadIsRefusedAndNotKept) {
  start();
  auto withoutDevice = validUpload();
  withoutDevice.erase("device");
  auto badStatus = validUpload();
  badStatus["purpose_consents"].at(0).as_object()["consent_status"] = "maybe";
  auto badVersion = validUpload();
  badVersion["version"] = "3";
  const auto whole = json::serialize(validUpload());
  for (const auto& body : {std::string(), std::string("<html></html>"), std::string("[]"), whole.substr(0, 40),
                           whole + "x", json::serialize(withoutDevice), json::serialize(badStatus),
                           json::serialize(badVersion), std::string(100'000, '[')}) {
    const auto answer = post(kUploadPath, body, {{"X-Auth-Token", "token"}});
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 400) << body.substr(0, 300);
    const auto reply = json::parse(answer->body);
    EXPECT_EQ(reply.at("status"), 1);
    EXPECT_NE(reply.at("message").as_string(), "");
  }
  const auto large = post(kUploadPath, std::string((1 << 20) + 1, ' '), {{"X-Auth-Token", "token"}});
  ASSERT_TRUE(large);
  EXPECT_EQ(large->status, 413);
  EXPECT_TRUE(listed().empty());
}

TEST_F(ServeTest, UploadNeedsTheTokenOfItsApplication) {
  const auto published = folder() / "consent" / "mobile_banner" / "tenant";
  write(published / "reader" / "live" / "config.json", R"({"x-auth-token":"live-token"})");
  write(published / "reader" / "draft" / "config_de.json", R"({"x-auth-token":"draft-token"})");
  write(published / "player" / "live" / "config.json", R"({"x-auth-token":"player-token"})");
  write(published / "shop" / "live" / "config.json", "not a configuration");
  start();
  auto shopUpload = validUpload();
  shopUpload["app_uuid"] = "shop";
  EXPECT_EQ(upload(validUpload(), "")->status, 401);
  EXPECT_EQ(upload(validUpload(), "player-token")->status, 401);
  EXPECT_EQ(post(kUploadPath, json::serialize(validUpload()))->status, 401);
  EXPECT_TRUE(listed().empty());
  EXPECT_EQ(upload(validUpload(), "live-token")->status, 200);
  EXPECT_EQ(upload(validUpload(), "draft-token")->status, 200);
  EXPECT_EQ(upload(shopUpload, "any")->status, 200);
  EXPECT_EQ(listed().size(), 3u);
}

TEST_F(ServeTest, UploadThatCannotBeKeptIsNotAccepted) {
  start();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(database().c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "DROP TABLE uploads", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(other);
  const auto answer = upload(validUpload());
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 500);
  EXPECT_EQ(json::parse(answer->body).at("status"), 1);
}

TEST_F(ServeTest, FaultsOfTheCommandLineAreChangedWhileItRuns) {
  write(folder() / "config.json", "{}");
  start({"--upload-status", "2", "--fail", "503"});
  EXPECT_EQ(get("/config.json")->status, 503);
  EXPECT_EQ(upload(validUpload())->status, 503);
  EXPECT_TRUE(listed().empty());

  EXPECT_EQ(post("/control", R"({"fail":0})")->body, R"({"uploadStatus":2,"fail":0,"delay":0})");
  EXPECT_EQ(get("/config.json")->status, 200);
  EXPECT_EQ(json::parse(upload(validUpload())->body).at("status"), 2);
  EXPECT_EQ(post("/control", R"({"uploadStatus":1})")->status, 200);
  EXPECT_EQ(json::parse(upload(validUpload())->body).at("status"), 1);
  const auto uploads = listed();
  ASSERT_EQ(uploads.size(), 2u);
  EXPECT_EQ(uploads[0].at("status"), 2);
  EXPECT_EQ(uploads[1].at("status"), 1);

  for (const auto& bad : {"", "[]", R"({"fail":200})", R"({"fail":"500"})", R"({"delay":-1})", R"({"delay":1e9})",
                          R"({"uploadStatus":0,"other":1})"}) {
    EXPECT_EQ(post("/control", bad)->status, 400) << bad;
  }
  EXPECT_EQ(post("/control", R"({"fail":500})", {{"Origin", "http://example.com"}})->status, 403);
  EXPECT_EQ(post("/control", "{}")->body, R"({"uploadStatus":1,"fail":0,"delay":0})");
}

TEST_F(ServeTest, SignalEndsTheServerEvenWhileAnAnswerIsDelayed) {
  write(folder() / "config.json", "{}");
  start({"--delay", "600000"});
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port_));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  const std::string request = "GET /config.json HTTP/1.1\r\nHost: localhost\r\n\r\n";
  ASSERT_EQ(send(connection, request.data(), request.size(), 0), static_cast<ssize_t>(request.size()));
  // Connections are taken in their order: once this one is answered, the one above has been taken.
  ASSERT_EQ(post("/control", "{}")->status, 200);
  EXPECT_EQ(stop(SIGINT), (std::vector<std::string>{"POST /control 200", "GET /config.json 200"}));
  close(connection);
}

TEST_F(ServeTest, EveryRequestHasItsLineInTheLog) {
  write(folder() / "config.json", "{}");
  start();
  const auto tag = get("/config.json")->get_header_value("ETag");
  get("/config.json?x=1", {{"If-None-Match", tag}});
  get("/a%0Ab.json");
  upload(validUpload());
  httplib::Client("127.0.0.1", port_).Put("/config.json", "{}", "application/json");
  EXPECT_EQ(stop(), (std::vector<std::string>{"GET /config.json 200", "GET /config.json?x=1 304", "GET /a%0Ab.json 404",
                                              std::string("POST ") + kUploadPath + " 200", "PUT /config.json 404"}));
}

TEST_F(ServeTest, WrongCommandLineIsAnError) {
  start();
  for (const auto& arguments :
       std::vector<std::vector<std::string>>{{"serve"},
                                             {"serve", base_ / "missing"},
                                             {"serve", folder(), "--port", "70000"},
                                             {"serve", folder(), "--port", std::to_string(port_)},
                                             {"serve", folder(), "--fail", "200"},
                                             {"serve", folder(), "--db", folder()},
                                             {"serve", "--list"},
                                             {"serve", "--list", "--db", base_ / "missing.db"},
                                             {}}) {
    ToolProcess tool(arguments);
    EXPECT_GT(tool.wait(), 0) << testing::PrintToString(arguments);
  }
}

}  // namespace
