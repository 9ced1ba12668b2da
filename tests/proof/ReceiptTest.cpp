#include <gtest/gtest.h>

#include "proof/Json/UntrustedJson.h"
#include "proof/Receipt/Receipt.h"
#include "proof/Receipt/Vocabulary.h"
#include "tests/proof/Evidence.h"

namespace quillon::proof::test {
namespace {

json::object issued(const ReceiptRequest& from) {
  SeededRandom random;
  return readUntrustedJson(issueReceipt(from, deviceKey(), random).value())->at("receipt").get_object();
}

const json::object& recordOf(const json::object& receipt, std::size_t i) {
  return receipt.at("dpv:hasRecordOfActivity").at(i).get_object();
}

std::vector<std::string> missingIn(const json::object& record) {
  const auto* const missing = record.if_contains(term::missing);
  return missing != nullptr ? json::value_to<std::vector<std::string>>(*missing) : std::vector<std::string>();
}

TEST(Receipt, StatesEveryMandatoryFieldOfBothProfilesWhenTheControllerDoes) {
  for (const bool isGdpr : {true, false}) {
    auto from = request();
    from.controller->legalBasis = isGdpr ? "eu-gdpr:A6-1-a" : "dpv:Consent";
    const auto receipt = issued(from);
    EXPECT_EQ(receipt.at("dct:conformsTo").as_string(), isGdpr ? schema::receiptEuGdpr : schema::receipt);
    for (const std::size_t i : {0, 1}) {
      EXPECT_EQ(missingIn(recordOf(receipt, i)), std::vector<std::string>());
      EXPECT_EQ(recordOf(receipt, i).at("dct:conformsTo").as_string(), isGdpr ? schema::recordEuGdpr : schema::record);
    }
    EXPECT_EQ(recordOf(receipt, 0).at("dpv:hasProcess").at("dpv:hasRecipient"),
              (json::array{"Counter", "https://reader.example/"}));
  }
}

TEST(Receipt, ListsWhatNobodyStatedAndInventsNothing) {
  auto from = request();
  from.controller.reset();
  from.evidence.notices.clear();
  const auto receipt = issued(from);
  EXPECT_EQ(missingIn(recordOf(receipt, 0)),
            (std::vector<std::string>{"dpv:hasPersonalData", "dpv:StorageLocation", "dpv:StorageDuration",
                                      "dpv:hasDataController", "dpv:hasRecipient", "dpv:hasJurisdiction",
                                      "dpv:hasRight", "dpv:hasName", "dpv:hasIdentifier", "schema:contactPoint",
                                      "schema:address", "dpv:hasDuration"}));
  EXPECT_FALSE(receipt.contains("dct:publisher"));
  EXPECT_FALSE(recordOf(receipt, 0).at("dpv:hasProcess").at("dpv:hasPurpose").as_object().contains("dct:title"));
}

// What is not the user's own answer is no consent, whatever it allows.
TEST(Receipt, SaysOfEachDecisionWhatItWasAndCallsNoDefaultAConsent) {
  constexpr const char* user = "dpv:DataSubject";
  constexpr const char* other = "dpv:DataController";
  const struct {
    const char *cause, *from, *to, *state, *by;
  } cases[] = {
      {"user", "", "granted", "dpv:ConsentGiven", user},
      {"user", "granted", "granted", "dpv:RenewedConsentGiven", user},
      {"user", "", "declined", "dpv:ConsentRefused", user},
      {"user", "granted", "withdrawn", "dpv:ConsentWithdrawn", user},
      {"user", "granted", "not_determined", "dpv:ConsentUnknown", user},
      {"signal", "", "declined", "dpv:ConsentRefused", user},
      {"signal", "", "granted", "dpv:ConsentUnknown", other},
      {"default", "", "granted", "dpv:ConsentUnknown", other},
      {"essential", "", "granted", "dpv:ConsentUnknown", other},
      {"tracking_status", "", "granted", "dpv:ConsentUnknown", other},
      {"unheard of", "granted", "granted", "dpv:ConsentUnknown", other},
  };
  HistoryEvidence evidence{.subjectId = "s", .applicationId = "a"};
  for (const auto& each : cases) {
    auto entry = decision(7, each.to, each.cause);
    if (*each.from != '\0') entry.emplace("from", each.from);
    append(evidence, std::move(entry));
  }
  const auto receipt = issued(request(evidence));
  const auto& statuses = recordOf(receipt, 0).at("dpv:hasConsentStatus").as_array();
  ASSERT_EQ(statuses.size(), std::size(cases));
  for (std::size_t i = 0; i < statuses.size(); ++i) {
    const auto& types = statuses[i].at("@type").as_array();
    EXPECT_EQ(types.at(0), cases[i].state) << i;
    EXPECT_EQ(types.size() == 2, std::string_view(cases[i].state).ends_with("ConsentGiven")) << i;
    EXPECT_EQ(statuses[i].at("dpv:isIndicatedBy"), cases[i].by) << i;
  }
}

TEST(Receipt, IsForThePurposesNamedOrAllAndForNoneThatWasNotDecided) {
  auto from = request();
  from.purposes = {2};
  EXPECT_EQ(recordOf(issued(from), 0).at("dpv:hasProcess").at("dpv:hasPurpose").at("dct:identifier"), "2");
  SeededRandom random;
  from.purposes = {2, 3};
  EXPECT_EQ(issueReceipt(from, deviceKey(), random).error(), "purpose 3 was not decided on");
  EXPECT_EQ(issueReceipt({}, deviceKey(), random).error(), "no purpose was decided on");
  from.evidence.entries.emplace_back("{");
  EXPECT_EQ(issueReceipt(from, deviceKey(), random).error(), "an entry of the history cannot be read");
}

}  // namespace
}  // namespace quillon::proof::test
