// The forms of JSON, of times and of the vocabulary, against what others publish.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "proof/Json/CanonicalJson.h"
#include "proof/Json/Times.h"
#include "proof/Json/UntrustedJson.h"
#include "proof/Receipt/Vocabulary.h"

namespace quillon::proof::test {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(CanonicalJson, IsWhatThePublishedVectorsSayByteForByte) {
  int count = 0;
  for (const auto& input : fs::directory_iterator(QUILLON_PROOF_DATA "/jcs/input")) {
    const auto read = readUntrustedJson(contentOf(input.path()));
    ASSERT_TRUE(read) << input.path() << ": " << read.error();
    EXPECT_EQ(canonicalJson(*read), contentOf(fs::path(QUILLON_PROOF_DATA "/jcs/output") / input.path().filename()));
    ++count;
  }
  EXPECT_EQ(count, 6);
}

// Those of the appendix of RFC 8785, and the neighbours that a hasty reader rounds to one.
TEST(CanonicalJson, WritesNumbersAsEcmaScriptDoes) {
  constexpr std::pair<const char*, const char*> cases[] = {
      {"-0", "0"},
      {"5e-324", "5e-324"},
      {"1.7976931348623157e308", "1.7976931348623157e+308"},
      {"9007199254740993", "9007199254740993"},
      {"1e23", "1e+23"},
      {"999999999999999700000", "999999999999999700000"},
      {"1e21", "1e+21"},
      {"9.999999999999997e-7", "9.999999999999997e-7"},
      {"0.000001", "0.000001"},
      {"-0.0000033333333333333333", "-0.0000033333333333333333"},
      {"10.0", "10"},
  };
  for (const auto& [written, canonical] : cases) {
    const auto read = readUntrustedJson(written);
    ASSERT_TRUE(read) << written;
    EXPECT_EQ(canonicalJson(*read), canonical) << written;
  }
}

TEST(UntrustedJson, RefusesWhatTwoReadersReadDifferentlyAndWhatIsTooDeep) {
  const std::pair<std::string, std::string> cases[] = {
      {R"({"a":1,"a":2})", "a member stands twice in one object"},
      {"[1] [2]", "something follows it"},
      {"\"\xff\"", "no JSON"},
      {R"("\ud800")", "no JSON"},
      {"", "no JSON"},
      {std::string(65, '[') + std::string(65, ']'), "no JSON"},
      {std::string(largestProofFile + 1, ' '), "larger than 32 MiB"},
  };
  for (const auto& [text, error] : cases) {
    const auto read = readUntrustedJson(text);
    ASSERT_FALSE(read) << text.substr(0, 80);
    EXPECT_NE(read.error().find(error), std::string::npos) << read.error();
  }
  EXPECT_TRUE(readUntrustedJson(std::string(64, '[') + std::string(64, ']')));
}

TEST(Times, AreReadAsTheyAreWrittenAndNotOtherwise) {
  for (const std::int64_t time : {0L, 951'782'400L, -1L, 253'402'300'799L}) {
    EXPECT_EQ(fromTimeText(timeText(time)), time) << timeText(time);
  }
  EXPECT_EQ(timeText(951'782'400), "2000-02-29T00:00:00Z");
  for (const auto* text :
       {"", "2026-02-29T00:00:00Z", "2026-01-01T24:00:00Z", "2026-01-01 00:00:00Z", "2026-01-01T00:00:0-1"}) {
    EXPECT_FALSE(fromTimeText(text)) << text;
  }
}

TEST(Vocabulary, ReadsTheGuidesRecordsWithoutLossAndKnowsWhatTheyLack) {
  // None of them says who the parties are or how long a consent is valid.
  const std::vector<std::string> lacking{"dpv:hasName", "dpv:hasIdentifier", "schema:contactPoint", "schema:address",
                                         "dpv:hasDuration"};
  int records = 0;
  for (const auto& file : fs::directory_iterator(QUILLON_PROOF_DATA "/dpv")) {
    const auto read = readUntrustedJson(contentOf(file.path()));
    ASSERT_TRUE(read) << file.path() << ": " << read.error();
    EXPECT_EQ(readUntrustedJson(canonicalJson(*read)), *read) << file.path();
    const auto& object = read->get_object();
    const std::string name = file.path().stem();
    if (name == "receipt-summary" || name == "receipt-two-records") continue;
    const auto& record = name == "receipt" ? object.at("dpv:hasRecordOfActivity").get_object() : object;
    EXPECT_TRUE(hasType(record, "dpv:ConsentRecord")) << name;
    EXPECT_EQ(missingFields(record, Profile::generic), lacking) << name;
    ++records;
  }
  EXPECT_EQ(records, 3);
}

}  // namespace
}  // namespace quillon::proof::test
