// Servers against docs/servers.md: the check passes ours and finds every fault, and every exchange is as the OpenAPI
// document says.
#include <gtest/gtest.h>

#include "tests/receiver/Servers.h"
#include "tests/receiver/WrongServer.h"
#include "tests/support/Contains.h"
#include "tests/support/Effort.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {
namespace {

const std::string checkTraffic =
    "python3 " QUILLON_SOURCE "/tests/servers/check_traffic.py " QUILLON_SOURCE "/docs/servers.openapi.json ";

std::string check(const std::string& appUrl, const std::string& cdnUrl, const std::string& options = {}) {
  return outputOf(QUILLON_CONSENT " check-server --app-url " + appUrl + " --cdn-url " + cdnUrl +
                  " --tenant demo-tenant --app news-reader " + options);
}

// Checks the servers, and their traffic against the document.
void expectSound(const std::string& appUrl, const std::string& cdnUrl, const std::string& options = {}) {
  const TemporaryFolder folder(TemporaryFolder::fastParent());
  const std::string traffic = folder.path() / "traffic";
  const std::string report = check(appUrl, cdnUrl, options + " --traffic " + traffic);
  EXPECT_TRUE(report.ends_with("0 could lose decisions, 0 untidy\nstatus 0")) << report;
  const std::string verdict = outputOf(checkTraffic + traffic);
  EXPECT_TRUE(verdict.ends_with("0 failures\nstatus 0")) << verdict;
}

TEST(Contract, IsKeptByTheDevelopmentServer) {
  ServerProcess serve({QUILLON_CONSENT, "serve", QUILLON_SAMPLE_SITE, "--port", "0"});
  const std::string line = serve.waitForLine("listening on ");
  const std::string url = line.substr(line.find("http"));
  expectSound(url, url);
}

TEST(Contract, IsKeptByTwoReceiversBehindNginx) {
  if (!NginxServer::isInstalled()) GTEST_SKIP() << "nginx is not installed";
  const TemporaryFolder folder(TemporaryFolder::fastParent());
  const auto tokens = folder.path() / "tokens";
  setFileBytes(tokens, "demo-tenant news-reader sample-access-token\n");
  for (const bool isPostgres : {false, true}) {
    if (isPostgres && !PostgresServer::isInstalled()) GTEST_SKIP() << "PostgreSQL is missing";
    const std::string store =
        isPostgres ? sharedPostgres().newDatabase("contract") : (folder.path() / "store").string();
    ReceiverProcess first(store, {"--tokens", tokens});
    ReceiverProcess second(store, {"--tokens", tokens});
    ASSERT_TRUE(first.waitUntilReady() && second.waitUntilReady());
    NginxServer nginx(QUILLON_SAMPLE_SITE, first.port(), second.port(),
                      isPostgres ? NginxServer::Tls::off : NginxServer::Tls::on);
    expectSound(nginx.appUrl(), nginx.cdnUrl(), isPostgres ? "" : "--ca " + nginx.certificate());
    const std::string log = nginx.accessLog();
    EXPECT_TRUE(contains(log, "POST 200"));
    EXPECT_FALSE(contains(log, "127.0.0.1"));
  }
}

TEST(Contract, IsKeptByTheTestKit) {
  const std::string verdict = outputOf(QUILLON_KIT_TRAFFIC " " QUILLON_SAMPLE_CONFIGURATION " | " + checkTraffic + "-");
  EXPECT_TRUE(verdict.ends_with("0 failures\nstatus 0")) << verdict;
}

TEST(CheckServer, FindsEachFaultAndSaysWhetherItLosesDecisions) {
  using enum WrongServer::Fault;
  const std::string configuration = fileBytes(QUILLON_SAMPLE_CONFIGURATION);
  const std::string location = fileBytes(QUILLON_SAMPLE_SITE "/location.json");
  std::vector<std::pair<WrongServer::Fault, const char*>> rows{
      {none, "0 could lose decisions, 0 untidy\nstatus 0"},
      {acknowledgesAnything, "LOSES    refusal: a body cut off"},
      {refusesRepeats, "LOSES    upload: repeated"},
      {refusesLateUploads, "LOSES    upload: late"},
      {refusesUploadsAtOnce, "LOSES    client: ten uploads of one subject"},
      {answersUploadsByEntityTag, "LOSES    upload: If-None-Match of the configuration"},
      {takesAnyToken, "LOSES    refusal: a wrong token"},
      {writesStatusAsText, "LOSES    upload  "},
      {refusesLargeUploads, "LOSES    upload: 1500 purposes"},
      {dropsSlowClients, "LOSES    client: slow"},
      {servesPageForMissing, "LOSES    configuration: language that is not there"},
      {changesEntityTags, "untidy   configuration: same tag"},
      {tagsTheLocation, "untidy   location: entity tag"}};
  if (isSanitized) rows.resize(3);  // each is a hundred requests to a server of the test itself
  // They wait more than they work: all at once.
  std::vector<std::string> reports(rows.size());
  {
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      threads.emplace_back([&, i] {
        const WrongServer server(rows[i].first, configuration, location);
        reports[i] = check(server.url(), server.url());
      });
    }
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string_view found = rows[i].second;
    EXPECT_TRUE(contains(reports[i], found));
    const int status = found.starts_with("LOSES") ? 1 : found.starts_with("untidy") ? 2 : 0;
    EXPECT_TRUE(reports[i].ends_with("status " + std::to_string(status))) << found << '\n' << reports[i];
  }
}

}  // namespace
}  // namespace quillon::test
