// Maps decisions to a TC string.
#include <algorithm>
#include <map>
#include <span>

#include "signals/Mapping/SignalRules.h"
#include "signals/Records/Layout.h"
#include "signals/Tcf/TcString.h"

namespace quillon::signals {
namespace {

constexpr std::uint8_t kNotAllowed = 0;

using IsGiven = bool (*)(const SignalState::Purpose& purpose);

// TCF consent requires an explicit decision; a default is not enough.
bool isConsent(const SignalState::Purpose& purpose) {
  return purpose.isGranted && purpose.isExplicit;
}
// A refusal is an objection to legitimate interest.
bool isUnopposed(const SignalState::Purpose& purpose) {
  return purpose.isGranted;
}

class TcfRules {
 public:
  TcfRules(const TcfOptions& options, const VendorList& list, const SignalState& state)
      : options_(options), state_(state) {
    for (const auto& purpose : state.purposes) {
      for (const auto sdk : purpose.sdkIds) {
        const auto vendor = options.vendors.find(sdk);
        if (vendor == options.vendors.end()) continue;
        if (const auto* const listed = list.vendor(vendor->second)) listings_.push_back({listed, &purpose});
      }
    }
    std::ranges::sort(listings_, {}, [](const Listing& listing) { return listing.vendor->id; });
  }

  [[nodiscard]] Ids consents() const { return given(&TcfOptions::Meaning::consent, isConsent); }
  [[nodiscard]] Ids interests() const { return given(&TcfOptions::Meaning::legitimateInterest, isUnopposed); }
  [[nodiscard]] Ids specialFeatures() const { return given(&TcfOptions::Meaning::specialFeatures, isConsent); }

  [[nodiscard]] Ids disclosedVendors() const {
    return vendors([](const Vendor&, const Listings&) { return true; });
  }
  [[nodiscard]] Ids vendorConsents() const {
    return vendors([](const Vendor& vendor, const Listings& listings) {
      return !vendor.purposes.empty() && areAll(listings, isConsent);
    });
  }
  [[nodiscard]] Ids vendorInterests() const {
    return vendors([](const Vendor& vendor, const Listings& listings) {
      if (!vendor.legIntPurposes.empty()) return areAll(listings, isUnopposed);
      // Users cannot object to special purposes; for a vendor with no others, disclosure suffices.
      return vendor.purposes.empty() && !vendor.specialPurposes.empty();
    });
  }

  // Forbids a vendor any TCF purpose that none of the purposes listing the vendor maps to, since the user was not told
  // of that combination.
  [[nodiscard]] std::vector<Restriction> restrictions(const Ids& consents, const Ids& interests) const {
    std::map<int, Ids> forbidden;
    eachVendor([&](const Vendor& vendor, const Listings& listings) {
      for (int purpose = 1; purpose <= int{tcPurposes}; ++purpose) {
        const bool isGiven =
            (vendor.purposes.contains(purpose) && std::ranges::binary_search(consents, purpose)) ||
            (vendor.legIntPurposes.contains(purpose) && std::ranges::binary_search(interests, purpose));
        if (isGiven && !isAsked(listings, purpose)) {
          forbidden[purpose].push_back(static_cast<Ids::value_type>(vendor.id));
        }
      }
    });
    std::vector<Restriction> restrictions;
    restrictions.reserve(forbidden.size());
    for (auto& [purpose, ids] : forbidden) {
      restrictions.push_back({static_cast<std::uint8_t>(purpose), kNotAllowed, std::move(ids)});
    }
    return restrictions;
  }

  // Custom purposes are numbered by position.
  [[nodiscard]] Ids customConsents() const {
    Ids ids;
    for (std::size_t i = 0; i < options_.customPurposes->size(); ++i) {
      const auto purpose = std::ranges::find(state_.purposes, (*options_.customPurposes)[i], &SignalState::Purpose::id);
      if (purpose != state_.purposes.end() && isConsent(*purpose)) ids.push_back(static_cast<Ids::value_type>(i + 1));
    }
    return ids;
  }

 private:
  // The purpose lists a component of the vendor.
  struct Listing {
    const Vendor* vendor;
    const SignalState::Purpose* purpose;
  };
  using Listings = std::span<const Listing>;

  static bool areAll(Listings listings, IsGiven isGiven) {
    return std::ranges::all_of(listings, [&](const Listing& listing) { return isGiven(*listing.purpose); });
  }

  [[nodiscard]] bool isAsked(Listings listings, int tcfPurpose) const {
    return std::ranges::any_of(listings, [&](const Listing& listing) {
      const auto meaning = options_.purposes.find(listing.purpose->id);
      if (meaning == options_.purposes.end()) return false;
      return std::ranges::count(meaning->second.consent, tcfPurpose) > 0 ||
             std::ranges::count(meaning->second.legitimateInterest, tcfPurpose) > 0;
    });
  }

  // A TCF ID is given if all purposes mapped to it are; a purpose missing from the configuration is not given.
  [[nodiscard]] Ids given(std::vector<int> TcfOptions::Meaning::* meant, IsGiven isGiven) const {
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

  // Calls with each vendor and all its listings.
  template <class F>
  void eachVendor(const F& call) const {
    for (auto first = listings_.begin(); first != listings_.end();) {
      const auto* const vendor = first->vendor;
      const auto last = std::find_if(first, listings_.end(), [&](const auto& other) { return other.vendor != vendor; });
      call(*vendor, Listings(first, last));
      first = last;
    }
  }

  template <class F>
  [[nodiscard]] Ids vendors(const F& isMeant) const {
    Ids ids;
    eachVendor([&](const Vendor& vendor, const Listings& listings) {
      if (isMeant(vendor, listings)) ids.push_back(static_cast<Ids::value_type>(vendor.id));
    });
    return ids;
  }

  const TcfOptions& options_;
  const SignalState& state_;
  std::vector<Listing> listings_;  // sorted by vendor ID
};

// The screens' language if it has a two-letter code, else "EN".
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
