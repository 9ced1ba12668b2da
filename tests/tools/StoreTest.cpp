// What the tool tells of a store that a host has written: entries, history, notices, receipts and exports.

#include <algorithm>
#include <sstream>

#include "platform/linux/SuiteFile.h"
#include "tests/support/Contains.h"
#include "tests/tools/ToolTest.h"

namespace quillon::test {
namespace {

namespace json = boost::json;

using namespace std::chrono_literals;

constexpr const char* storeFile = "quillon-cmp-sdk.sqlite";

struct Store : HostedTest {
  // A host that was set up and has decided on purpose 1.
  void startAndDecide() {
    start();
    EXPECT_EQ(host->setUp().at("status"), "ready");
    for (const char* consent : {"granted", "withdrawn"}) decide(consent);
  }
};

TEST_F(Store, ShowsAndResetsWhatARunningHostHasDecided) {
  startAndDecide();
  EXPECT_EQ(shown({"get", "1"}), "\"withdrawn\"\n");
  EXPECT_EQ(shown({"get", "X_AUTH_TOKEN"}), "\"***\"\n");
  const auto absent = store({"get", "99"});
  EXPECT_EQ(absent.status, 1);
  EXPECT_EQ(absent.output + absent.errors, "quillon-consent store: no value under 99\n");

  auto dumped = json::parse(shown({"dump"})).as_object();
  EXPECT_EQ(std::exchange(dumped["X_AUTH_TOKEN"], "secret-token"), "***");
  EXPECT_EQ(json::serialize(dumped), json::serialize(ask(R"({"op":"store"})").at("store")));

  EXPECT_EQ(shown({"reset"}), "");
  EXPECT_EQ(shown({"dump"}), "{}\n");
  EXPECT_EQ(shown({"history"}), "");
}

TEST_F(Store, ShowsWhatADecisionAnsweredAndNamesAnEntryThatWasChanged) {
  start();
  host->setUp();
  ask(R"({"op":"banner","perform":"reject"})");
  for (const char* consent : {"granted", "declined"}) decide(consent);
  host.reset();
  std::string digest;
  std::istringstream lines(shown({"history"}));
  for (std::string line; std::getline(lines, line);) {
    const auto entry = json::parse(line).as_object();
    if (entry.contains("notice") && digest.empty()) digest = entry.at("notice").as_string();
  }
  EXPECT_EQ(json::parse(shown({"notice", digest})).at("screen"), "banner");

  // The configuration that shows it again makes the same notice.
  {
    ConsentServer other;
    other.serve(json::parse(shown({"notice", digest, "--as-configuration"})).as_object());
    HostProcess again(folder.path() / "other", other.url(), {"--clock", "1700000000"});
    again.setUp();
    again.ask(R"({"op":"banner","perform":"reject"})");
    const auto history = again.ask(R"({"op":"history","count":1})");
    EXPECT_EQ(history.at("history").at(0).at("notice"), json::string(digest));
  }

  // Somebody rewrites the store, with the checksums made right again.
  SuiteFile opened = std::move(SuiteFile::open(data / storeFile, std::chrono::steady_clock::now() + 2s)->file);
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
  startAndDecide();
  ask(R"({"op":"upload"})");
  const auto history = shown({"history"});
  auto person = json::parse(shown({"export"})).as_object();
  ASSERT_EQ(person.at("decisions").as_array().size(), 4u);
  json::object last = person.at("decisions").at(3).as_object();
  EXPECT_EQ(json::parse(history.substr(history.rfind('\n', history.size() - 2) + 1)), last);
  last.stable_erase("previous");
  last.stable_erase("hash");
  EXPECT_EQ(json::serialize(last),
            R"({"number":4,"time":1700000000,"purpose_id":1,"from":"granted","to":"withdrawn","cause":"user",)"
            R"("given_type":"CONSENT_EXPLICIT","configuration_version":5,"compliance_type":"opt-in","language":"en",)"
            R"("notice":"application","upload":"uploaded","link":"intact"})");
  EXPECT_EQ(person.at("subject_id").as_string().size(), 36u);
  person.stable_erase("subject_id");
  person.stable_erase("decisions");
  EXPECT_EQ(json::serialize(person),
            R"({"given_type":"CONSENT_EXPLICIT","compliance_type":"opt-in","configuration_version":5,)"
            R"("purposes":{"1":"withdrawn"},"permissions":{"NSCameraUsageDescription":"not_determined",)"
            R"("NSContactsUsageDescription":"not_determined"},"damaged_decisions":0})");
}

TEST_F(Store, MakesNoStoreByLookingForOne) {
  for (const auto& operation : {std::vector<std::string>{"dump"}, {"get", "1"}, {"history"}, {"export"}, {"reset"}}) {
    const auto [status, output, errors] = store(operation);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(output + errors, "quillon-consent store: " + data.string() + " holds no store\n");
  }
  EXPECT_FALSE(std::filesystem::exists(data));
}

TEST_F(Store, LeavesADamagedStoreAsItIsUnlessItIsReset) {
  std::filesystem::create_directory(data);
  const std::string garbage(8192, 'x');
  setFileBytes(data / storeFile, garbage);
  const auto [status, output, errors] = store({"dump"});
  EXPECT_EQ(status, 1);
  EXPECT_TRUE(contains(errors, (data / storeFile).string()));
  EXPECT_EQ(fileBytes(data / storeFile), garbage);

  EXPECT_EQ(shown({"reset"}), "");
  EXPECT_EQ(shown({"dump"}), "{}\n");
  EXPECT_TRUE(std::ranges::any_of(std::filesystem::directory_iterator(data),
                                  [&](const auto& entry) { return fileBytes(entry) == garbage; }));
}

// Both take the user's folder when none is given.
TEST_F(Store, FindsTheStoreOfTheHostWithoutBeingToldWhere) {
  ASSERT_EQ(setenv("XDG_DATA_HOME", folder.path().c_str(), 1), 0);
  ToolProcess started({"host"}, file("log"));
  started.writeLine(R"({"op":"set","purposeId":1,"consent":"granted"})");
  EXPECT_EQ(started.readLine(), R"({"ok":true,"stored":true})");
  EXPECT_EQ(runTool({"store", "get", "1"}).output, "\"granted\"\n");
}

struct Receipts : Store {
  Receipts() {
    startAndDecide();
    host.reset();
  }
  void replace(const std::string& name, const std::string& what, const std::string& by) const {
    auto content = read(name);
    write(name, content.replace(content.find(what), what.size(), by));
  }
};

TEST_F(Receipts, OfAnExportHoldUntilAnythingOfItIsChanged) {
  write("controller.json", R"({"name":"Reader Ltd","legal_basis":"eu-gdpr:A6-1-a"})");
  const auto exported = store({"export", "--out", file("export"), "--controller", file("controller.json")});
  ASSERT_EQ(exported.status, 0) << exported.errors;
  EXPECT_EQ(modeOf(file("export")), 0700u);
  EXPECT_EQ(modeOf(data / "receipt.key"), 0600u);
  EXPECT_EQ(store({"export", "--out", file("export")}).status, 1) << "it is not empty";

  auto run = runTool({"receipt", "verify", file("export"), "--key", file("export/key.json")});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_TRUE(contains(run.output, "does not state these fields, and says so: dpv:hasNotice, dpv:hasPersonalData, "));
  EXPECT_TRUE(run.output.ends_with("everything holds\n"));

  // A later receipt by the same key is a part of the store's history.
  ASSERT_EQ(store({"receipt", "--out", file("receipt.json"), "--purpose", "1"}).status, 0);
  for (const auto* history : {"export", "export/history.json"}) {
    run = runTool(
        {"receipt", "verify", file("receipt.json"), "--key", file("export/key.json"), "--history", file(history)});
    EXPECT_EQ(run.status, 0) << history << '\n' << run.output << run.errors;
  }

  replace("export/history.json", "withdrawn", "declined\"");
  run = runTool({"receipt", "verify", file("export")});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(contains(run.output, "fault: file history.json: "));
}

TEST_F(Receipts, AreShownToPeopleInTheirLanguageAndNothingOfThemBecomesMarkUp) {
  write("controller.json", R"({"name":"<script>alert('x')</script>&\u001b[31m"})");
  ASSERT_EQ(store({"receipt", "--out", file("r.json"), "--controller", file("controller.json")}).status, 0);
  const auto page = runTool({"receipt", "show", "--html", "--language", "de", file("r.json")});
  for (const auto* said :
       {"<html lang=\"de\">", "Akzeptiert", "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;&amp;&#xfffd;[31m"}) {
    EXPECT_TRUE(contains(page.output, said));
  }
  for (const auto* mark : {"<script", "http-equiv=\"refresh", "src=", "href=", "url(", "\x1b"}) {
    EXPECT_FALSE(contains(page.output, mark));
  }
  const auto text = runTool({"receipt", "show", file("r.json")});
  EXPECT_TRUE(contains(text.output, "2023-11-14 22:13:20 UTC: Rejected"));
  EXPECT_FALSE(contains(text.output, "\x1b"));

  replace("r.json", "2023-11-14", "2022-11-14");
  EXPECT_TRUE(contains(runTool({"receipt", "show", file("r.json")}).output, "Does not hold: signature of the receipt"));
}

TEST_F(Receipts, FromAnybodyAreRefusedWithAReason) {
  ASSERT_EQ(store({"receipt", "--out", file("r.json")}).status, 0);
  std::filesystem::create_directory(file("links"));
  std::filesystem::create_symlink("/etc/passwd", file("links/history.json"));
  write("bad.json", "{");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"receipt", "verify", file("absent")}, "absent: cannot be read: No such file or directory"},
      {{"receipt", "verify", file("bad.json")}, "fault: receipt: cannot be read: no JSON"},
      {{"receipt", "verify", file("links")}, "history.json: is no file"},
      {{"receipt", "verify", file("r.json"), "--key", "AAAA"}, "AAAA: is neither an Ed25519 key nor a thumbprint"},
      {{"receipt", "verify", file("r.json"), "--key", std::string(43, 'A')}, "fault: key: the receipt is signed by"},
      {{"receipt", "show", file("bad.json")}, "cannot be read: no JSON"},
      {{"store", "--data-dir", data, "receipt", "--out", "-", "--controller", file("bad.json")}, "bad.json: no JSON"},
      {{"store", "--data-dir", file("empty"), "receipt", "--out", "-"}, "holds no store"},
  };
  for (const auto& [arguments, reason] : cases) {
    const auto run = runTool(arguments);
    EXPECT_EQ(run.status, 1) << reason;
    EXPECT_TRUE(contains(run.output + run.errors, reason));
  }
}

}  // namespace
}  // namespace quillon::test
