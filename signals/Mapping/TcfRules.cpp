// What decisions mean in the framework of Europe.
#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {
namespace {

constexpr std::int64_t kTimeUnitsASecond = 10;
constexpr std::uint8_t kNotAllowed = 0;

using IsGiven = std::function<bool(const SignalState::Purpose& purpose)>;

// Positive consent is what the user has said, never a default.
bool isConsent(const SignalState::Purpose& purpose) {
  return purpose.isGranted && purpose.isExplicit;
}
// A refusal is an objection.
bool isUnopposed(const SignalState::Purpose& purpose) {
  return purpose.isGranted;
}

class TcfRules {
 public:
  TcfRules(const TcfOptions& options, const VendorList& list, const SignalState& state)
      : options_(options), list_(list), state_(state) {
    for (const auto& purpose : state.purposes) {
      for (const auto sdk : purpose.sdkIds) {
        const auto vendor = options.vendors.find(sdk);
        if (vendor != options.vendors.end()) listings_[vendor->second].push_back(&purpose);
      }
    }
  }

  [[nodiscard]] Ids consents() const { return given(&TcfOptions::Meaning::consent, isConsent); }
  [[nodiscard]] Ids interests() const { return given(&TcfOptions::Meaning::legitimateInterest, isUnopposed); }
  [[nodiscard]] Ids specialFeatures() const { return given(&TcfOptions::Meaning::specialFeatures, isConsent); }

  [[nodiscard]] Ids disclosedVendors() const {
    return vendors([](const Vendor&, const Listing&) { return true; });
  }
  [[nodiscard]] Ids vendorConsents() const {
    return vendors([](const Vendor& vendor, const Listing& listing) {
      return vendor.purposes && !vendor.purposes->empty() && areAll(listing, isConsent);
    });
  }
  [[nodiscard]] Ids vendorInterests() const {
    return vendors([](const Vendor& vendor, const Listing& listing) {
      const auto isEmpty = [](const auto& purposes) { return !purposes || purposes->empty(); };
      if (!isEmpty(vendor.legIntPurposes)) return areAll(listing, isUnopposed);
      // Nobody can object to special purposes; who has no others only needs to be shown.
      return isEmpty(vendor.purposes) && !isEmpty(vendor.specialPurposes);
    });
  }

  // A vendor may declare a purpose for which the user was never told of it, as none of the purposes that list it
  // stands for that one.
  [[nodiscard]] std::vector<Restriction> restrictions(const Ids& consents, const Ids& interests) const {
    std::map<std::uint8_t, Ids> forbidden;
    for (const auto& [id, listing] : listings_) {
      const auto* const vendor = list_.vendor(id);
      if (!vendor) continue;
      std::set<int> declared;
      collect(declared, vendor->purposes, consents);
      collect(declared, vendor->legIntPurposes, interests);
      for (const int purpose : declared) {
        if (!isAsked(listing, purpose)) {
          forbidden[static_cast<std::uint8_t>(purpose)].push_back(static_cast<Ids::value_type>(id));
        }
      }
    }
    std::vector<Restriction> restrictions;
    for (auto& [purpose, ids] : forbidden) restrictions.push_back({purpose, kNotAllowed, std::move(ids)});
    return restrictions;
  }

  // Custom purposes have their numbers from their order.
  [[nodiscard]] Ids customConsents() const {
    Ids ids;
    for (std::size_t i = 0; i < options_.customPurposes->size(); ++i) {
      const auto purpose = std::ranges::find(state_.purposes, (*options_.customPurposes)[i], &SignalState::Purpose::id);
      if (purpose != state_.purposes.end() && isConsent(*purpose)) ids.push_back(static_cast<Ids::value_type>(i + 1));
    }
    return ids;
  }

 private:
  using Listing = std::vector<const SignalState::Purpose*>;

  static bool areAll(const Listing& listing, const IsGiven& isGiven) {
    return std::ranges::all_of(listing, [&](const auto* purpose) { return isGiven(*purpose); });
  }

  static void collect(std::set<int>& into, const std::optional<std::vector<std::int64_t>>& declared, const Ids& given) {
    if (!declared) return;
    for (const auto purpose : *declared) {
      if (std::ranges::binary_search(given, purpose)) into.insert(static_cast<int>(purpose));
    }
  }

  [[nodiscard]] bool isAsked(const Listing& listing, int tcfPurpose) const {
    return std::ranges::any_of(listing, [&](const auto* purpose) {
      const auto meaning = options_.purposes.find(purpose->id);
      if (meaning == options_.purposes.end()) return false;
      return std::ranges::count(meaning->second.consent, tcfPurpose) > 0 ||
             std::ranges::count(meaning->second.legitimateInterest, tcfPurpose) > 0;
    });
  }

  // Given by every purpose that stands for it; one that the configuration does not have gives nothing.
  [[nodiscard]] Ids given(std::vector<int> TcfOptions::Meaning::* meant, const IsGiven& isGiven) const {
    std::map<int, bool> all;
    for (const auto& [id, meaning] : options_.purposes) {
      const auto purpose = std::ranges::find(state_.purposes, id, &SignalState::Purpose::id);
      const bool is = purpose != state_.purposes.end() && isGiven(*purpose);
      for (const int tcfId : meaning.*meant) {
        const auto [entry, isNew] = all.emplace(tcfId, is);
        if (!isNew) entry->second = entry->second && is;
      }
    }
    Ids ids;
    for (const auto& [tcfId, is] : all) {
      if (is) ids.push_back(static_cast<Ids::value_type>(tcfId));
    }
    return ids;
  }

  template <class F>
  [[nodiscard]] Ids vendors(const F& isMeant) const {
    Ids ids;
    for (const auto& [id, listing] : listings_) {
      const auto* const vendor = list_.vendor(id);
      if (vendor && isMeant(*vendor, listing)) ids.push_back(static_cast<Ids::value_type>(id));
    }
    return ids;
  }

  const TcfOptions& options_;
  const VendorList& list_;
  const SignalState& state_;
  std::map<int, Listing> listings_;  // the purposes under which the components of a vendor stand
};

// The language of the screens when it is one of two letters, else the one that everybody has.
std::string languageCode(const std::string& language) {
  std::string code = language.substr(0, 2);
  if (code.size() != 2 || (language.size() > 2 && language[2] != '-')) return "EN";
  for (char& c : code) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c < 'A' || c > 'Z') return "EN";
  }
  return code;
}

}  // namespace

std::optional<TcString> tcStringOf(const SignalRules& rules, const SignalState& state) {
  const auto& tcf = rules.options.tcf;
  if (!tcf || !state.isDisclosed || !isGdprPlace(state.place).value_or(false)) return std::nullopt;
  const TcfRules decided(*tcf, rules.vendorList, state);
  const auto consents = decided.consents();
  const auto interests = decided.interests();
  const auto day = std::chrono::floor<std::chrono::days>(state.decidedAt);
  const std::int64_t time = std::chrono::sys_seconds(day).time_since_epoch().count() * kTimeUnitsASecond;

  TcString tc;
  Record& core = tc.core;
  core.set("Created", time);
  core.set("LastUpdated", time);
  core.set("CmpId", std::int64_t{rules.options.cmpId});
  core.set("CmpVersion", std::int64_t{rules.options.cmpVersion});
  core.set("ConsentScreen", std::int64_t{rules.options.consentScreen});
  core.set("ConsentLanguage", languageCode(state.language));
  core.set("VendorListVersion", rules.vendorList.vendorListVersion);
  core.set("TcfPolicyVersion", rules.vendorList.tcfPolicyVersion);
  core.set("IsServiceSpecific", std::int64_t{1});
  core.set("UseNonStandardTexts", std::int64_t{tcf->useNonStandardTexts});
  core.set("SpecialFeatureOptIns", decided.specialFeatures());
  core.set("PurposesConsent", consents);
  core.set("PurposesLITransparency", interests);
  core.set("PurposeOneTreatment", std::int64_t{tcf->purposeOneTreatment});
  core.set("PublisherCC", tcf->publisherCountry);
  core.set("VendorConsent", decided.vendorConsents());
  core.set("VendorLegitimateInterest", decided.vendorInterests());
  core.set("PubRestrictions", decided.restrictions(consents, interests));
  tc.disclosedVendors.emplace(tcDisclosedVendors);
  tc.disclosedVendors->set("DisclosedVendors", decided.disclosedVendors());
  if (tcf->customPurposes) {
    Record& publisher = tc.publisherTC.emplace(tcPublisher);
    publisher.set("PubPurposesConsent", consents);
    publisher.set("PubPurposesLITransparency", interests);
    publisher.set("NumCustomPurposes", static_cast<std::int64_t>(tcf->customPurposes->size()));
    publisher.set("CustomPurposesConsent", decided.customConsents());
  }
  return tc;
}

}  // namespace quillon::signals
