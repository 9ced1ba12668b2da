// Receipts and exports of a real store, as a person gets and checks them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <boost/json.hpp>
#include <fstream>

#include "tests/support/ConsentServer.h"
#include "tests/support/Contains.h"
#include "tests/support/World.h"
#include "tests/tools/HostProcess.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

struct Receipts : testing::Test {
  Receipts() {
    server.serve(validConfiguration());
    HostProcess host(data, server.url(), {"--clock", "1700000000"});
    host.setUp();
    host.ask(R"({"op":"set","purposeId":1,"consent":"granted"})");
    host.ask(R"({"op":"set","purposeId":1,"consent":"withdrawn"})");
  }

  ToolRun store(std::vector<std::string> operation) const {
    operation.insert(operation.begin(), {"store", "--data-dir", data});
    return runTool(operation);
  }
  std::string in(const char* name) const { return folder.path() / name; }

  static std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static void write(const std::string& path, const std::string& content) { std::ofstream(path) << content; }

  const TemporaryFolder folder{TemporaryFolder::fastParent()};
  const std::filesystem::path data = folder.path() / "data";
  ConsentServer server;
};

TEST_F(Receipts, OfAnExportHoldUntilAnythingOfItIsChanged) {
  write(in("controller.json"), R"({"name":"Reader Ltd","legal_basis":"eu-gdpr:A6-1-a"})");
  const auto exported = store({"export", "--out", in("export"), "--controller", in("controller.json")});
  ASSERT_EQ(exported.status, 0) << exported.errors;
  struct stat status{};
  ASSERT_EQ(stat(in("export").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700u);
  ASSERT_EQ(stat((data / "receipt.key").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_EQ(store({"export", "--out", in("export")}).status, 1) << "it is not empty";

  auto run = runTool({"receipt", "verify", in("export"), "--key", in("export/key.json")});
  EXPECT_EQ(run.status, 0) << run.output << run.errors;
  EXPECT_TRUE(contains(run.output, "holds: receipt: is a part of the history")) << run.output;
  EXPECT_TRUE(contains(run.output, "holds: chain: 4 entries follow each other")) << run.output;
  EXPECT_TRUE(contains(run.output, "does not state these fields, and says so: dpv:hasNotice, dpv:hasPersonalData, "))
      << run.output;
  EXPECT_TRUE(run.output.ends_with("everything holds\n"));

  // A later receipt by the same key is a part of the store's history, in every form that that is handed out in.
  ASSERT_EQ(store({"receipt", "--out", in("receipt.json"), "--purpose", "1"}).status, 0);
  write(in("history"), store({"history"}).output);
  for (const auto* history : {"export", "export/history.json", "history"}) {
    run = runTool({"receipt", "verify", in("receipt.json"), "--key", in("export/key.json"), "--history", in(history)});
    EXPECT_EQ(run.status, 0) << history << '\n' << run.output << run.errors;
  }
  EXPECT_EQ(store({"receipt", "--out", in("none.json"), "--purpose", "77"}).errors,
            "quillon-consent store: purpose 77 was not decided on\n");

  auto history = contentOf(in("export/history.json"));
  history.replace(history.find("withdrawn"), 9, "declined\"");
  write(in("export/history.json"), history);
  run = runTool({"receipt", "verify", in("export")});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(contains(run.output, "fault: file history.json: ")) << run.output;
}

TEST_F(Receipts, AreShownToPeopleInTheirLanguageAndNothingOfThemBecomesMarkUp) {
  write(in("controller.json"), R"({"name":"<script>alert('x')</script>&\u001b[31m"})");
  ASSERT_EQ(store({"receipt", "--out", in("r.json"), "--controller", in("controller.json")}).status, 0);
  const auto page = runTool({"receipt", "show", "--html", "--language", "de", in("r.json")});
  EXPECT_EQ(page.status, 0) << page.errors;
  EXPECT_TRUE(contains(page.output, "<html lang=\"de\">"));
  for (const auto* said : {"<title>Nachweis</title>", "Akzeptiert", "Verantwortlicher", "Erstellt am"}) {
    EXPECT_TRUE(contains(page.output, said)) << page.output;
  }
  EXPECT_TRUE(contains(page.output, "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;&amp;&#xfffd;[31m"));
  for (const auto* mark : {"<script", "http-equiv=\"refresh", "src=", "href=", "url(", "\x1b"}) {
    EXPECT_FALSE(contains(page.output, mark)) << mark;
  }
  const auto text = runTool({"receipt", "show", in("r.json")});
  EXPECT_TRUE(contains(text.output, "2023-11-14 22:13:20 UTC: Rejected")) << text.output;
  EXPECT_FALSE(contains(text.output, "\x1b"));

  auto changed = contentOf(in("r.json"));
  changed.replace(changed.find("2023-11-14"), 10, "2022-11-14");
  write(in("r.json"), changed);
  EXPECT_TRUE(contains(runTool({"receipt", "show", in("r.json")}).output, "Does not hold: signature of the receipt"));
}

TEST_F(Receipts, FromAnybodyAreRefusedWithAReason) {
  ASSERT_EQ(store({"receipt", "--out", in("r.json")}).status, 0);
  std::filesystem::create_directory(in("links"));
  std::filesystem::create_symlink("/etc/passwd", in("links/history.json"));
  write(in("bad.json"), "{");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"receipt", "verify", in("absent")}, "absent: cannot be read: No such file or directory"},
      {{"receipt", "verify", in("bad.json")}, "fault: receipt: cannot be read: no JSON"},
      {{"receipt", "verify", in("links")}, "history.json: is no file"},
      {{"receipt", "verify", in("r.json"), "--key", "AAAA"}, "AAAA: is neither an Ed25519 key nor a thumbprint"},
      {{"receipt", "verify", in("r.json"), "--key", std::string(43, 'A')}, "fault: key: the receipt is signed by"},
      {{"receipt", "verify", in("r.json"), "--history", in("bad.json")}, "bad.json: no JSON"},
      {{"receipt", "show", in("bad.json")}, "cannot be read: no JSON"},
      {{"store", "--data-dir", data, "receipt", "--out", "-", "--controller", in("bad.json")}, "bad.json: no JSON"},
      {{"store", "--data-dir", in("empty"), "receipt", "--out", "-"}, "holds no store"},
  };
  for (const auto& [arguments, reason] : cases) {
    const auto run = runTool(arguments);
    EXPECT_EQ(run.status, 1) << reason;
    EXPECT_TRUE(contains(run.output + run.errors, reason)) << run.output << run.errors;
  }
}

}  // namespace
}  // namespace quillon::test
