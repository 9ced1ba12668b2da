#include <signal.h>
#include <sqlite3.h>

#include <boost/asio/ip/tcp.hpp>
#include <sstream>

#include "tests/tools/ToolTest.h"

namespace quillon::test {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

constexpr auto uploadTo = "/vantari/v1/consent/mobile/singleupload";
constexpr std::string_view listening = "listening on http://127.0.0.1:";

std::string validUpload(const char* application = "reader") {
  auto upload = json::parse(R"({"uuid": "subject-1", "device": "Linux", "implicit_consent": false, "version": 3,
    "purpose_consents": [{"purpose_id": 12, "consent_status": "granted", "timestamp": 1700000000, "is_essential": false}],
    "permissions": [], "is_test_mode": false, "ad_id": "", "platform": "ios", "banner_info": "opt-in"})");
  upload.as_object()["app_uuid"] = application;
  return json::serialize(upload);
}

struct ServeTest : ToolTest {
  ServeTest() { fs::create_directory(published); }

  void publish(const std::string& name, const std::string& content) const {
    fs::create_directories((published / name).parent_path());
    setFileBytes(published / name, content);
  }
  static int portOf(const ToolProcess& process) {
    const auto line = process.readLine().value_or("");
    EXPECT_TRUE(line.starts_with(listening)) << line;
    return std::atoi(line.substr(std::min(listening.size(), line.size())).c_str());
  }
  void start(const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"serve", published, "--port", "0", "--db", file("uploads.db")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    port = portOf(server.emplace(arguments));
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
  httplib::Response upload(const std::string& body, const std::string& token = "token") const {
    return post(uploadTo, body, {{"X-Auth-Token", token}});
  }

  // What `serve --list` prints: a line for each upload.
  json::array listed() const {
    json::array uploads;
    std::istringstream lines(runTool({"serve", "--list", "--db", file("uploads.db")}).output);
    for (std::string line; std::getline(lines, line);) uploads.push_back(json::parse(line));
    return uploads;
  }

  const fs::path published = folder.path() / "published";
  std::optional<ToolProcess> server;
  int port = 0;
};

TEST_F(ServeTest, AFileThatChangesHasAnotherEntityTag) {
  publish("a/config_de.json", R"({"version":1})");
  start();
  const auto tag = get("/a/config_de.json").get_header_value("ETag");
  for (const auto& known : {"\"other\", " + tag, "W/" + tag, std::string("*")}) {
    EXPECT_EQ(get("/a/config_de.json", {{"If-None-Match", known}}).status, 304) << known;
  }
  publish("a/config_de.json", R"({"version":2})");
  EXPECT_EQ(get("/a/config_de.json", {{"If-None-Match", tag}}).body, R"({"version":2})");
}

TEST_F(ServeTest, NothingOutsideTheFolderIsServed) {
  for (const auto* name : {"../secret.json", "../published-too/secret.json", "config.json", "notes.txt"}) {
    publish(name, "{}");
  }
  fs::create_symlink(file("secret.json"), published / "outside.json");
  fs::create_symlink(folder.path(), published / "up");
  fs::create_symlink("config.json", published / "inside.json");
  start();
  for (const std::string path : {"/missing.json", "/../secret.json", "/%2e%2e/secret.json", "/..%2fsecret.json",
                                 "/outside.json", "/up/secret.json", "/../published-too/secret.json", "/notes.txt", "/",
                                 "//etc/hostname", "/config.json%00.json", "/config.json/"}) {
    EXPECT_EQ(get(path).status, 404) << path;
  }
  EXPECT_EQ(get("/" + file("secret.json")).status, 404);
  EXPECT_EQ(get("/inside.json").status, 200);
}

TEST_F(ServeTest, UploadNeedsTheTokenOfItsApplication) {
  for (const auto& [name, content] : {std::pair("reader/live/config.json", R"({"x-auth-token":"live-token"})"),
                                      {"reader/draft/config_de.json", R"({"x-auth-token":"draft-token"})"},
                                      {"player/live/config.json", R"({"x-auth-token":"player-token"})"},
                                      {"shop/live/config.json", "not a configuration"}}) {
    publish("consent/mobile_banner/tenant/" + std::string(name), content);
  }
  start();
  EXPECT_EQ(upload(validUpload("shop"), "").status, 401);
  EXPECT_EQ(upload(validUpload(), "player-token").status, 401);
  EXPECT_TRUE(listed().empty());
  EXPECT_EQ(upload(validUpload(), "live-token").status, 200);
  EXPECT_EQ(upload(validUpload(), "draft-token").status, 200);
  EXPECT_EQ(upload(validUpload("shop"), "any").status, 200);
  EXPECT_EQ(listed().size(), 3u);
}

TEST_F(ServeTest, UploadsCanGoToAnotherServerWhoseAnswersComeBack) {
  start();
  const ToolProcess other(
      {"serve", published, "--port", "0", "--uploads-to", "http://127.0.0.1:" + std::to_string(port)});
  port = portOf(other);
  EXPECT_EQ(upload("{").status, 400);
  EXPECT_EQ(upload(validUpload()).status, 200);
  EXPECT_EQ(listed().size(), 1u);
  server.reset();
  EXPECT_EQ(upload(validUpload()).status, 502);
}

TEST_F(ServeTest, UploadThatCannotBeKeptIsNotAccepted) {
  start();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(file("uploads.db").c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "DROP TABLE uploads", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(other);
  const auto answer = upload(validUpload());
  EXPECT_EQ(answer.status, 500);
  EXPECT_EQ(json::parse(answer.body).at("status"), 1);
}

TEST_F(ServeTest, FaultsOfTheCommandLineAreChangedWhileItRuns) {
  publish("config.json", "{}");
  start({"--upload-status", "2", "--fail", "503"});
  EXPECT_EQ(get("/config.json").status, 503);
  EXPECT_EQ(upload(validUpload()).status, 503);
  EXPECT_TRUE(listed().empty());

  EXPECT_EQ(post("/control", R"({"fail":0})").body, R"({"uploadStatus":2,"fail":0,"delay":0})");
  EXPECT_EQ(get("/config.json").status, 200);
  EXPECT_EQ(json::parse(upload(validUpload()).body).at("status"), 2);
  const auto uploads = listed();
  ASSERT_EQ(uploads.size(), 1u);
  EXPECT_EQ(uploads[0].at("status"), 2);
  EXPECT_GT(uploads[0].at("received").as_int64(), 1700000000);
  EXPECT_EQ(uploads[0].at("upload"), json::parse(validUpload()));

  for (const auto& bad : {"", "[]", R"({"fail":200})", R"({"fail":"500"})", R"({"delay":-1})", R"({"other":1})"}) {
    EXPECT_EQ(post("/control", bad).status, 400) << bad;
  }
  EXPECT_EQ(post("/control", R"({"fail":500})", {{"Origin", "http://example.com"}}).status, 403);
  EXPECT_EQ(post("/control", "{}").body, R"({"uploadStatus":2,"fail":0,"delay":0})");
}

TEST_F(ServeTest, SignalEndsTheServerEvenWhileAnswersAreDelayed) {
  publish("config.json", "{}");
  start();
  get("/a%0Ab.json");
  post("/control", R"({"delay":600000})");
  boost::asio::ip::tcp::iostream connection("127.0.0.1", std::to_string(port));
  connection << "GET /config.json HTTP/1.1\r\nHost: localhost\r\n\r\n" << std::flush;
  // Connections are taken in their order: once this one is answered, the one above has been taken.
  ASSERT_EQ(post("/control", "{}").status, 200);
  server->sendSignal(SIGINT);
  EXPECT_EQ(server->readAll(), "GET /a%0Ab.json 404\nPOST /control 200\nPOST /control 200\nGET /config.json 200\n");
  EXPECT_EQ(server->wait(), 0);
}

TEST_F(ServeTest, WrongCommandLineIsAnError) {
  start();
  const std::vector<std::string> cases[] = {{"serve"},
                                            {"serve", published, "--port", std::to_string(port)},
                                            {"serve", published, "--fail", "200"},
                                            {"serve", published, "--db", published},
                                            {"serve", "--list"},
                                            {"serve", "--list", "--db", file("missing.db")},
                                            {}};
  for (const auto& arguments : cases) EXPECT_GT(runTool(arguments).status, 0) << testing::PrintToString(arguments);
}

}  // namespace
}  // namespace quillon::test
