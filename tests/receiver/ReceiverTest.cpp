#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>
#include <sqlite3.h>

#include <boost/asio/ip/tcp.hpp>

#include "tests/receiver/Servers.h"
#include "tests/receiver/UploadBody.h"
#include "tests/support/Contains.h"

namespace quillon::test {
namespace {

using namespace std::chrono_literals;

namespace json = boost::json;

constexpr auto kUploadPath = "/vantari/v1/consent/mobile/singleupload";

struct ReceiverTest : testing::Test {
  static httplib::Response answered(const httplib::Result& result) {
    EXPECT_TRUE(result) << httplib::to_string(result.error());
    return result ? *result : httplib::Response();
  }
  static httplib::Response upload(const ReceiverProcess& receiver, const std::string& body,
                                  const httplib::Headers& headers = {{"X-Auth-Token", "token"}}) {
    return answered(httplib::Client("127.0.0.1", receiver.port()).Post(kUploadPath, headers, body, "application/json"));
  }
  static httplib::Response get(int port, const std::string& path) {
    return answered(httplib::Client("127.0.0.1", port).Get(path));
  }
  std::string officer(const std::string& command, const std::string& arguments) const {
    return outputOf(QUILLON_RECEIVER_PROGRAM " " + command + " --store " + store + " " + arguments);
  }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  const std::string store = folder.path() / "store";
};

// A connection that the test writes to as slowly as it likes.
struct SlowClient {
  explicit SlowClient(int port) : stream("127.0.0.1", std::to_string(port)) { stream.expires_after(20s); }
  void say(const std::string& text) { EXPECT_TRUE(stream << text << std::flush); }
  // Until the server closes, or the answer's headers and body have come.
  std::string hear() {
    std::string text;
    std::getline(stream, text, '}');
    return text;
  }

  boost::asio::ip::tcp::iostream stream;
};

// Of an upload, with these further headers.
std::string headOf(const std::string& body, const std::string& headers = "") {
  return std::string("POST ") + kUploadPath +
         " HTTP/1.1\r\nHost: x\r\nX-Auth-Token: t\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
         headers + "\r\n";
}

TEST_F(ReceiverTest, KeepsWhatItAcknowledgesOnceAndGivesItToTheOfficerAlone) {
  ReceiverProcess receiver(store, {"--place-header", "X-Place", "--log-requests"});
  ASSERT_TRUE(receiver.waitUntilReady());
  const std::string body = uploadBody("anna@example.org", {{2, "granted", 86'400}, {3, "declined", 86'400}});
  const httplib::Headers headers{
      {"X-Auth-Token", "secret-token"}, {"X-Place", "DE"}, {"X-Quillon-History-Head", std::string(64, '7')}};
  for (int i = 0; i < 3; ++i) {
    const auto answer = upload(receiver, body, headers);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, R"({"status":0,"message":"Consents saved"})");
  }
  const std::string metrics = get(receiver.port(), "/metrics").body;
  EXPECT_TRUE(contains(metrics, "decisions_total{kept=\"new\"} 2"));
  EXPECT_TRUE(contains(metrics, "decisions_total{kept=\"repeated\"} 4"));

  const std::string exported = officer("export", "anna@example.org");
  EXPECT_TRUE(contains(exported, R"("purpose":"2","status":"granted","decided_at":86400)"));
  EXPECT_TRUE(contains(exported, "\"history_head\":\"" + std::string(64, '7') + '"'));
  EXPECT_TRUE(contains(officer("stats", ""), R"("place":"DE","version":3,"day":86400,"status":"declined")"));
  {
    ServerProcess page({QUILLON_RECEIVER_PROGRAM, "stats", "--store", store, "--page", "0"});
    const std::string line = page.waitForLine("listening on http://127.0.0.1:");
    ASSERT_NE(line, "");
    const auto shown = get(std::stoi(line.substr(line.rfind(':') + 1)), "/");
    EXPECT_TRUE(contains(shown.body, "1970-01-02"));
    EXPECT_FALSE(contains(shown.body, "anna"));
    page.sendSignal(SIGTERM);
    EXPECT_EQ(page.wait(), 0);
  }
  EXPECT_TRUE(contains(officer("erase", "anna@example.org"), "2 decisions erased\nstatus 0"));
  EXPECT_TRUE(contains(officer("export", "anna@example.org"), R"("decisions":[])"));

  receiver.process().sendSignal(SIGTERM);
  EXPECT_EQ(receiver.process().wait(std::chrono::seconds(5)), 0);
  const std::string log = receiver.process().output();
  EXPECT_TRUE(contains(log, R"("event":"request","upload":true,"status":200)"));
  for (const auto* personal : {"anna", "secret", "granted", "DE", "Linux"}) EXPECT_FALSE(contains(log, personal));
}

TEST_F(ReceiverTest, TakesTheTokensOfItsFileAndNewOnesAfterASignal) {
  const auto tokens = folder.path() / "tokens";
  setFileBytes(tokens, "acme reader first\n");
  ReceiverProcess receiver(store, {"--tokens", tokens});
  ASSERT_TRUE(receiver.waitUntilReady());
  const auto statusWith = [&](const std::string& token) {
    return upload(receiver, uploadBody("s", {{}}), {{"X-Auth-Token", token}}).status;
  };
  EXPECT_EQ(statusWith("first"), 200);
  EXPECT_EQ(statusWith("second"), 401);
  EXPECT_EQ(upload(receiver, uploadBody("s", {{}}), {}).status, 401);
  setFileBytes(tokens, "acme reader first\nacme reader second\n");
  receiver.process().sendSignal(SIGHUP);
  EXPECT_TRUE(contains(receiver.process().waitForLine("tokens read"), "\"count\":2"));
  EXPECT_EQ(statusWith("second"), 200);
  EXPECT_EQ(statusWith("first"), 200);
  EXPECT_TRUE(contains(get(receiver.port(), "/metrics").body, "token_uses_total{line=\"2\"} 1"));
  setFileBytes(tokens, "nonsense\n");
  receiver.process().sendSignal(SIGHUP);
  EXPECT_NE(receiver.process().waitForLine("tokens kept"), "");
  EXPECT_EQ(statusWith("second"), 200);
  EXPECT_TRUE(contains(officer("export", "s --tenant acme"), "\"tenant\":\"acme\""));
}

TEST_F(ReceiverTest, RefusesWhatIsNoUploadInAnAnswerThatADeviceReads) {
  ReceiverProcess receiver(store);
  ASSERT_TRUE(receiver.waitUntilReady());
  EXPECT_EQ(json::parse(upload(receiver, "{").body).at("status"), 1);
  for (const auto& [request, status] : std::vector<std::pair<std::string, std::string>>{
           {"nonsense\r\n\r\n", " 400 "},
           {"GET / HTTP/1.1\r\nA: " + std::string(17'000, 'x') + "\r\n\r\n", " 431 "},
           {"POST / HTTP/1.1\r\nContent-Length: x\r\n\r\n", " 400 "},
           {"POST / HTTP/1.1\r\nContent-Length: 99999999999\r\n\r\n", " 413 "},
           {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n", " 400 "}}) {
    SlowClient client(receiver.port());
    client.say(request);
    EXPECT_TRUE(contains(client.hear(), status)) << request.substr(0, 60);
  }
  EXPECT_EQ(upload(receiver, uploadBody("s", {{}})).status, 200);
}

TEST_F(ReceiverTest, SlowAndBrokenOffClientsCostNobodyAnAnswer) {
  ReceiverProcess receiver(store, {"--connections", "60"});
  ASSERT_TRUE(receiver.waitUntilReady());
  const std::string body = uploadBody("slow", {{}});
  const std::string head = headOf(body);
  std::vector<std::unique_ptr<SlowClient>> clients;
  for (int i = 0; i < 50; ++i) {
    clients.push_back(std::make_unique<SlowClient>(receiver.port()));
    clients.back()->say(i % 2 == 0 ? head.substr(0, 20) : head + body.substr(0, 10));
  }
  EXPECT_EQ(upload(receiver, uploadBody("quick", {{}})).status, 200);
  clients[1]->say(body.substr(10));
  EXPECT_TRUE(contains(clients[1]->hear(), "Consents saved"));
  for (int i = 0; i < 20; ++i) clients.push_back(std::make_unique<SlowClient>(receiver.port()));
  EXPECT_TRUE(contains(clients.back()->hear(), "503 Service Unavailable"));
  clients.clear();
  EXPECT_TRUE(contains(officer("export", "slow"), "granted"));
  receiver.process().sendSignal(SIGTERM);
  EXPECT_EQ(receiver.process().wait(std::chrono::seconds(5)), 0);
}

TEST_F(ReceiverTest, WithoutItsStoreItAnswers503AndGoesOnWhenItIsBack) {
  setFileBytes(folder.path() / "store", "no folder");
  ReceiverProcess receiver(store);
  ASSERT_NE(receiver.process().waitForLine("store lost"), "");
  const auto refused = upload(receiver, uploadBody("s", {{}}));
  EXPECT_EQ(refused.status, 503);
  EXPECT_EQ(refused.get_header_value("Retry-After"), "30");
  EXPECT_EQ(get(receiver.port(), "/health").status, 503);
  std::filesystem::remove(folder.path() / "store");
  ASSERT_TRUE(receiver.waitUntilReady());
  EXPECT_EQ(upload(receiver, uploadBody("s", {{}})).status, 200);
}

TEST_F(ReceiverTest, LeavesWithinFiveSecondsAfterAnsweringWhatItTook) {
  ReceiverProcess receiver(store);
  ASSERT_TRUE(receiver.waitUntilReady());
  const std::string body = uploadBody("taken", {{}});
  SlowClient client(receiver.port());
  client.say(headOf(body, "Expect: 100-continue\r\n"));
  // Told to go on, the request is under way.
  std::string goOn = "HTTP/1.1 100 Continue\r\n\r\n";
  ASSERT_TRUE(client.stream.read(goOn.data(), static_cast<std::streamsize>(goOn.size())));
  const SlowClient idle(receiver.port());
  receiver.process().sendSignal(SIGTERM);
  ASSERT_NE(receiver.process().waitForLine("\"ending\""), "");
  client.say(body);
  EXPECT_TRUE(contains(client.hear(), "Consents saved"));
  EXPECT_EQ(receiver.process().wait(std::chrono::seconds(5)), 0);
  EXPECT_TRUE(contains(officer("export", "taken"), "granted"));
}

TEST_F(ReceiverTest, LeavesWithinFiveSecondsWhenItsStoreHoldsItUpAndAcknowledgesNothing) {
  ReceiverProcess receiver(store);
  ASSERT_TRUE(receiver.waitUntilReady());
  sqlite3* another = nullptr;  // writer, which lets nobody else write
  ASSERT_EQ(sqlite3_open((store + "/decisions.db").c_str(), &another), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(another, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  const std::string body = uploadBody("held", {{}});
  SlowClient client(receiver.port());
  client.say(headOf(body) + body);
  // One thread reads both connections, and this one came later.
  EXPECT_EQ(get(receiver.port(), "/health").status, 200);
  receiver.process().sendSignal(SIGTERM);
  EXPECT_EQ(receiver.process().wait(std::chrono::seconds(5)), 0);
  EXPECT_FALSE(contains(client.hear(), "saved"));
  sqlite3_close(another);
}

TEST_F(ReceiverTest, WrongCommandLineIsAnErrorAndLookingMakesNoStore) {
  for (const auto* arguments : {"", "--store x", "--store x --any-token --tokens y", "--store x --tokens /missing",
                                "--store x --any-token --listen nonsense", "--store x --any-token --listen 127.0.0.1:x",
                                "export --store /missing s", "stats --store /missing", "expire --store x"}) {
    EXPECT_FALSE(
        outputOf("cd " + folder.path().string() + "; " QUILLON_RECEIVER_PROGRAM " " + arguments).ends_with("status 0"))
        << arguments;
  }
  EXPECT_FALSE(std::filesystem::exists("/missing"));
}

}  // namespace
}  // namespace quillon::test
