#include "signals/Keys/TcfKeys.h"

#include <array>
#include <string>

#include "signals/Tcf/TcString.h"

namespace quillon::signals {
namespace {

// '1' at index n for ID n + 1.
std::string binaryString(const Ids& ids, std::size_t length) {
  std::string digits(length, '0');
  for (const auto id : ids) digits[id - 1U] = '1';
  return digits;
}
std::string binaryString(const Ids& vendors) {
  return binaryString(vendors, vendors.empty() ? 0 : vendors.back());
}

// The restriction type at index n for vendor n + 1, '_' for none.
std::string restrictionString(std::string digits, const Restriction& restriction) {
  const Ids& ids = restriction.vendorIds;
  if (ids.empty()) return digits;
  if (digits.size() < ids.back()) digits.resize(ids.back(), '_');
  for (const auto id : ids) digits[id - 1U] = static_cast<char>('0' + restriction.type);
  return digits;
}

class KeyWriter {
 public:
  explicit KeyWriter(SignalKeys& keys) : keys_(keys) {}
  void operator()(std::string_view name, SignalValue value) {
    keys_.insert_or_assign("IABTCF_" + std::string(name), std::move(value));
  }

 private:
  SignalKeys& keys_;
};

constexpr std::size_t kSpecialFeatures = 12;

void addCore(KeyWriter& write, const TcString& tc, std::string text) {
  const Record& core = tc.core;
  const auto ids = [&](std::string_view name) -> const Ids& { return core.get<Ids>(name); };
  write("PublisherCC", core.get<std::string>("PublisherCC"));
  write("PurposeOneTreatment", core.get("PurposeOneTreatment"));
  write("UseNonStandardTexts", core.get("UseNonStandardTexts"));
  write("TCString", std::move(text));
  write("VendorConsents", binaryString(ids("VendorConsent")));
  write("VendorLegitimateInterests", binaryString(ids("VendorLegitimateInterest")));
  write("PurposeConsents", binaryString(ids("PurposesConsent"), tcPurposes));
  write("PurposeLegitimateInterests", binaryString(ids("PurposesLITransparency"), tcPurposes));
  write("SpecialFeaturesOptIns", binaryString(ids("SpecialFeatureOptIns"), kSpecialFeatures));
  std::map<int, std::string> restrictions;
  for (const auto& restriction : core.get<std::vector<Restriction>>("PubRestrictions")) {
    auto& digits = restrictions[restriction.purposeId];
    digits = restrictionString(std::move(digits), restriction);
  }
  for (auto& [purpose, digits] : restrictions) {
    write("PublisherRestrictions" + std::to_string(purpose), std::move(digits));
  }
  if (tc.disclosedVendors) {
    write("DisclosedVendors", binaryString(tc.disclosedVendors->get<Ids>("DisclosedVendors")));
  }
}

void addPublisher(KeyWriter& write, const Record& publisher) {
  const auto count = static_cast<std::size_t>(publisher.get("NumCustomPurposes"));
  const auto ids = [&](std::string_view name) -> const Ids& { return publisher.get<Ids>(name); };
  write("PublisherConsent", binaryString(ids("PubPurposesConsent"), tcPurposes));
  write("PublisherLegitimateInterests", binaryString(ids("PubPurposesLITransparency"), tcPurposes));
  write("PublisherCustomPurposesConsents", binaryString(ids("CustomPurposesConsent"), count));
  write("PublisherCustomPurposesLegitimateInterests", binaryString(ids("CustomPurposesLITransparency"), count));
}

struct RepeatedKey {
  std::string_view tcf;
  std::string_view gpp;
};

constexpr std::array repeatedKeys{
    RepeatedKey{"IABTCF_CmpSdkID", "IABGPP_TCFEU2_CmpSdkID"},
    RepeatedKey{"IABTCF_CmpSdkVersion", "IABGPP_TCFEU2_CmpSdkVersion"},
    RepeatedKey{"IABTCF_PolicyVersion", "IABGPP_TCFEU2_PolicyVersion"},
    RepeatedKey{"IABTCF_gdprApplies", "IABGPP_TCFEU2_gdprApplies"},
    RepeatedKey{"IABTCF_PublisherCC", "IABGPP_TCFEU2_PublisherCC"},
    RepeatedKey{"IABTCF_PurposeOneTreatment", "IABGPP_TCFEU2_PurposeOneTreatment"},
    RepeatedKey{"IABTCF_UseNonStandardTexts", "IABGPP_TCFEU2_UseNonStandardStacks"},
    RepeatedKey{"IABTCF_TCString", "IABGPP_2_TCString"},
    RepeatedKey{"IABTCF_VendorConsents", "IABGPP_TCFEU2_VendorConsents"},
    RepeatedKey{"IABTCF_VendorLegitimateInterests", "IABGPP_TCFEU2_VendorLegitimateInterests"},
    RepeatedKey{"IABTCF_PurposeConsents", "IABGPP_TCFEU2_PurposeConsents"},
    RepeatedKey{"IABTCF_PurposeLegitimateInterests", "IABGPP_TCFEU2_PurposeLegitimateInterests"},
    RepeatedKey{"IABTCF_SpecialFeaturesOptIns", "IABGPP_TCFEU2_SpecialFeaturesOptIns"},
    RepeatedKey{"IABTCF_PublisherConsent", "IABGPP_TCFEU2_PublisherConsent"},
    RepeatedKey{"IABTCF_PublisherLegitimateInterests", "IABGPP_TCFEU2_PublisherLegitimateInterests"},
    RepeatedKey{"IABTCF_PublisherCustomPurposesConsents", "IABGPP_TCFEU2_PublisherCustomPurposesConsents"},
    RepeatedKey{"IABTCF_PublisherCustomPurposesLegitimateInterests",
                "IABGPP_TCFEU2_PublisherCustomPurposesLegitimateInterests"},
};
constexpr std::string_view restrictionsKey = "IABTCF_PublisherRestrictions";  // the purpose's number is appended

}  // namespace

void addTcfKeys(SignalKeys& keys, const SignalRules& rules, std::optional<bool> gdprApplies, const TcString* tc,
                std::string text) {
  KeyWriter write(keys);
  write("CmpSdkID", std::int64_t{rules.options.cmpId});
  write("CmpSdkVersion", std::int64_t{rules.options.cmpVersion});
  write("PolicyVersion", rules.vendorList.tcfPolicyVersion);
  if (gdprApplies) write("gdprApplies", std::int64_t{*gdprApplies});
  if (!tc) return;
  addCore(write, *tc, std::move(text));
  if (tc->publisherTC) addPublisher(write, *tc->publisherTC);
}

void addGppCopiesOfTcfKeys(SignalKeys& keys) {
  for (const auto& [tcf, gpp] : repeatedKeys) {
    if (const auto found = keys.find(tcf); found != keys.end()) keys.insert_or_assign(std::string(gpp), found->second);
  }
  for (auto key = keys.lower_bound(restrictionsKey); key != keys.end() && key->first.starts_with(restrictionsKey);
       ++key) {
    keys.insert_or_assign("IABGPP_TCFEU2_" + key->first.substr(std::string_view("IABTCF_").size()), key->second);
  }
}

}  // namespace quillon::signals
