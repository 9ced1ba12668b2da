#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>
#include <sqlite3.h>

#include <boost/json.hpp>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quillon::test {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

constexpr auto uploadPath = "/vantari/v1/consent/mobile/singleupload";

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

struct ServeTest : testing::Test {
  ServeTest() { fs::create_directory(folder); }

  static void write(const fs::path& file, const std::string& content) {
    fs::create_directories(file.parent_path());
    setFileBytes(file, content);
  }

  void start(const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"serve", folder, "--port", "0", "--db", database};
    arguments.insert(arguments.end(), options.begin(), options.end());
    server.emplace(arguments);
    const auto line = server->readLine().value_or("");
    const std::string prefix = "listening on http://127.0.0.1:";
    ASSERT_EQ(line.substr(0, prefix.size()), prefix);
    port = std::stoi(line.substr(prefix.size()));
  }

  static httplib::Response answered(const httplib::Result& result) {
    EXPECT_TRUE(result);
    return result ? *result : httplib::Response();
  }
  httplib::Response get(const std::string& path, const httplib::Headers& headers = {}) const {
    httplib::Client client("127.0.0.1", port);
    client.set_url_encode(false);
    return answered(client.Get(path, headers));
  }
  httplib::Response post(const std::string& path, const std::string& body, const httplib::Headers& headers = {}) const {
    return answered(httplib::Client("127.0.0.1", port).Post(path, headers, body, "application/json"));
  }
  httplib::Response upload(const json::value& body, const std::string& token = "token") const {
    return post(uploadPath, json::serialize(body), {{"X-Auth-Token", token}});
  }

  // What `serve --list` prints: a line for each upload.
  json::array listed() const {
    json::array uploads;
    std::istringstream lines(runTool({"serve", "--list", "--db", database}).output);
    for (std::string line; std::getline(lines, line);) uploads.push_back(json::parse(line));
    return uploads;
  }

  // Ends the server and gives its request log.
  std::string stop(int signal = SIGTERM) {
    server->sendSignal(signal);
    auto log = server->readAll();
    EXPECT_EQ(server->wait(), 0);
    return log;
  }

  const TemporaryFolder place{TemporaryFolder::fastParent()};
  const fs::path folder = place.path() / "published";
  const std::string database = place.path() / "uploads.db";
  std::optional<ToolProcess> server;
  int port = 0;
};

TEST_F(ServeTest, KnownEntityTagSavesTheBodyUntilTheFileChanges) {
  write(folder / "a" / "config_de.json", R"({"version":1})");
  start();
  const auto first = get("/a/config_de.json");
  EXPECT_EQ(first.status, 200);
  EXPECT_EQ(first.body, R"({"version":1})");
  const auto tag = first.get_header_value("ETag");
  ASSERT_GT(tag.size(), 2u);
  for (const auto& known : {tag, "\"other\", " + tag, "W/" + tag, std::string("*")}) {
    const auto again = get("/a/config_de.json", {{"If-None-Match", known}});
    EXPECT_EQ(again.status, 304) << known;
    EXPECT_EQ(again.body, "");
    EXPECT_EQ(again.get_header_value("ETag"), tag);
  }
  write(folder / "a" / "config_de.json", R"({"version":2})");
  const auto changed = get("/a/config_de.json", {{"If-None-Match", tag}});
  EXPECT_EQ(changed.status, 200);
  EXPECT_EQ(changed.body, R"({"version":2})");
  EXPECT_NE(changed.get_header_value("ETag"), tag);
}

TEST_F(ServeTest, NothingOutsideTheFolderIsServed) {
  const auto& base = place.path();
  for (const auto& file :
       {base / "secret.json", base / "published-too" / "secret.json", folder / "config.json", folder / "notes.txt"}) {
    write(file, "{}");
  }
  fs::create_symlink(base / "secret.json", folder / "outside.json");
  fs::create_symlink(base, folder / "up");
  fs::create_symlink("config.json", folder / "inside.json");
  start();
  for (const std::string path : {"/missing.json", "/../secret.json", "/%2e%2e/secret.json", "/..%2fsecret.json",
                                 "/outside.json", "/up/secret.json", "/../published-too/secret.json", "/notes.txt", "/",
                                 "//etc/hostname", "/config.json%00.json", "/config.json/"}) {
    EXPECT_EQ(get(path).status, 404) << path;
  }
  EXPECT_EQ(get("/" + (base / "secret.json").string()).status, 404);
  EXPECT_EQ(get("/inside.json").status, 200);
}

TEST_F(ServeTest, LocationComesWithoutAnEntityTag) {
  start();
  EXPECT_EQ(get("/core/v1/utils/geo/location").status, 404);
  write(folder / "location.json", R"({"status":0,"message":""})");
  const auto tag = get("/location.json").get_header_value("ETag");
  const auto location = get("/core/v1/utils/geo/location", {{"If-None-Match", tag}});
  EXPECT_EQ(location.status, 200);
  EXPECT_EQ(location.body, R"({"status":0,"message":""})");
  EXPECT_FALSE(location.has_header("ETag"));
}

TEST_F(ServeTest, MalformedUploadIsRefusedAndNotKept) {
  start();
  const auto changed = [](std::string_view pointer, const json::value& value) {
    json::value body = validUpload();
    body.at_pointer(pointer) = value;
    return json::serialize(body);
  };
  auto withoutDevice = validUpload();
  withoutDevice.erase("device");
  const auto whole = json::serialize(validUpload());
  for (const auto& body :
       {std::string(), std::string("<html></html>"), std::string("[]"), whole.substr(0, 40), whole + "x",
        json::serialize(withoutDevice), changed("/purpose_consents/0/consent_status", "maybe"),
        changed("/version", "3"), std::string(100'000, '[')}) {
    const auto answer = post(uploadPath, body, {{"X-Auth-Token", "token"}});
    EXPECT_EQ(answer.status, 400) << body.substr(0, 300);
    const auto reply = json::parse(answer.body);
    EXPECT_EQ(reply.at("status"), 1);
    EXPECT_NE(reply.at("message").as_string(), "");
  }
  EXPECT_EQ(post(uploadPath, std::string((1 << 20) + 1, ' '), {{"X-Auth-Token", "token"}}).status, 413);
  EXPECT_TRUE(listed().empty());
}

TEST_F(ServeTest, UploadNeedsTheTokenOfItsApplication) {
  const auto published = folder / "consent" / "mobile_banner" / "tenant";
  write(published / "reader" / "live" / "config.json", R"({"x-auth-token":"live-token"})");
  write(published / "reader" / "draft" / "config_de.json", R"({"x-auth-token":"draft-token"})");
  write(published / "player" / "live" / "config.json", R"({"x-auth-token":"player-token"})");
  write(published / "shop" / "live" / "config.json", "not a configuration");
  start();
  auto shopUpload = validUpload();
  shopUpload["app_uuid"] = "shop";
  EXPECT_EQ(upload(shopUpload, "").status, 401);
  EXPECT_EQ(upload(validUpload(), "player-token").status, 401);
  EXPECT_EQ(post(uploadPath, json::serialize(validUpload())).status, 401);
  EXPECT_TRUE(listed().empty());
  EXPECT_EQ(upload(validUpload(), "live-token").status, 200);
  EXPECT_EQ(upload(validUpload(), "draft-token").status, 200);
  EXPECT_EQ(upload(shopUpload, "any").status, 200);
  EXPECT_EQ(listed().size(), 3u);
}

TEST_F(ServeTest, UploadsCanGoToAnotherServerWhoseAnswersComeBack) {
  start();
  ToolProcess other({"serve", folder, "--port", "0", "--uploads-to", "http://127.0.0.1:" + std::to_string(port)});
  const int otherPort =
      std::stoi(other.readLine().value_or("").substr(std::string("listening on http://127.0.0.1:").size()));
  const auto post = [&](const std::string& body) {
    return answered(httplib::Client("127.0.0.1", otherPort)
                        .Post(uploadPath, {{"X-Auth-Token", "token"}}, body, "application/json"));
  };
  EXPECT_EQ(post("{").status, 400);
  EXPECT_EQ(post(json::serialize(validUpload())).status, 200);
  EXPECT_EQ(listed().size(), 1u);
  stop();
  EXPECT_EQ(post(json::serialize(validUpload())).status, 502);
}

TEST_F(ServeTest, UploadThatCannotBeKeptIsNotAccepted) {
  start();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(database.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "DROP TABLE uploads", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(other);
  const auto answer = upload(validUpload());
  EXPECT_EQ(answer.status, 500);
  EXPECT_EQ(json::parse(answer.body).at("status"), 1);
}

TEST_F(ServeTest, FaultsOfTheCommandLineAreChangedWhileItRuns) {
  write(folder / "config.json", "{}");
  start({"--upload-status", "2", "--fail", "503"});
  EXPECT_EQ(get("/config.json").status, 503);
  EXPECT_EQ(upload(validUpload()).status, 503);
  EXPECT_TRUE(listed().empty());

  EXPECT_EQ(post("/control", R"({"fail":0})").body, R"({"uploadStatus":2,"fail":0,"delay":0})");
  EXPECT_EQ(get("/config.json").status, 200);
  EXPECT_EQ(json::parse(upload(validUpload()).body).at("status"), 2);
  EXPECT_EQ(post("/control", R"({"uploadStatus":1})").status, 200);
  EXPECT_EQ(json::parse(upload(validUpload()).body).at("status"), 1);
  const auto uploads = listed();
  ASSERT_EQ(uploads.size(), 2u);
  EXPECT_EQ(uploads[0].at("status"), 2);
  EXPECT_GT(uploads[0].at("received").as_int64(), 1700000000);
  EXPECT_EQ(uploads[0].at("upload"), validUpload());
  EXPECT_EQ(uploads[1].at("status"), 1);

  for (const auto& bad : {"", "[]", R"({"fail":200})", R"({"fail":"500"})", R"({"delay":-1})", R"({"delay":1e9})",
                          R"({"uploadStatus":0,"other":1})"}) {
    EXPECT_EQ(post("/control", bad).status, 400) << bad;
  }
  EXPECT_EQ(post("/control", R"({"fail":500})", {{"Origin", "http://example.com"}}).status, 403);
  EXPECT_EQ(post("/control", "{}").body, R"({"uploadStatus":1,"fail":0,"delay":0})");
}

TEST_F(ServeTest, SignalEndsTheServerEvenWhileAnAnswerIsDelayed) {
  write(folder / "config.json", "{}");
  start({"--delay", "600000"});
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address{.sin_family = AF_INET,
                            .sin_port = htons(static_cast<std::uint16_t>(port)),
                            .sin_addr = {htonl(INADDR_LOOPBACK)},
                            .sin_zero = {}};
  ASSERT_EQ(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  const std::string request = "GET /config.json HTTP/1.1\r\nHost: localhost\r\n\r\n";
  ASSERT_EQ(send(connection, request.data(), request.size(), 0), static_cast<ssize_t>(request.size()));
  // Connections are taken in their order: once this one is answered, the one above has been taken.
  ASSERT_EQ(post("/control", "{}").status, 200);
  EXPECT_EQ(stop(SIGINT), "POST /control 200\nGET /config.json 200\n");
  close(connection);
}

TEST_F(ServeTest, EveryRequestHasItsLineInTheLog) {
  write(folder / "config.json", "{}");
  start();
  const auto tag = get("/config.json").get_header_value("ETag");
  get("/config.json?x=1", {{"If-None-Match", tag}});
  get("/a%0Ab.json");
  upload(validUpload());
  httplib::Client("127.0.0.1", port).Put("/config.json", "{}", "application/json");
  EXPECT_EQ(stop(), "GET /config.json 200\nGET /config.json?x=1 304\nGET /a%0Ab.json 404\nPOST " +
                        std::string(uploadPath) + " 200\nPUT /config.json 404\n");
}

TEST_F(ServeTest, WrongCommandLineIsAnError) {
  start();
  for (const auto& arguments :
       std::vector<std::vector<std::string>>{{"serve"},
                                             {"serve", place.path() / "missing"},
                                             {"serve", folder, "--port", "70000"},
                                             {"serve", folder, "--port", std::to_string(port)},
                                             {"serve", folder, "--fail", "200"},
                                             {"serve", folder, "--db", folder},
                                             {"serve", "--list"},
                                             {"serve", "--list", "--db", place.path() / "missing.db"},
                                             {}}) {
    EXPECT_GT(runTool(arguments).status, 0) << testing::PrintToString(arguments);
  }
}

}  // namespace
}  // namespace quillon::test
