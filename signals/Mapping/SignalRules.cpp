#include "signals/Mapping/SignalRules.h"

#include <algorithm>

#include "signals/Gpp/Sections.h"

namespace quillon::signals {
namespace {

using Mistakes = std::vector<std::string>;

void checkRange(Mistakes& mistakes, const std::string& what, int value, int least, int largest) {
  if (value >= least && value <= largest) return;
  mistakes.push_back(what + ": " + std::to_string(value) + " is not from " + std::to_string(least) + " to " +
                     std::to_string(largest));
}

bool isCountry(const std::string& code) {
  return code.size() == 2 && std::ranges::all_of(code, [](char c) { return c >= 'A' && c <= 'Z'; });
}

void checkMeaning(Mistakes& mistakes, const VendorList& list, const std::string& path,
                  const TcfOptions::Meaning& meaning) {
  const auto checkIn = [&](const VendorList::Items& items, int id, const char* what) {
    if (!items.contains(std::to_string(id))) {
      mistakes.push_back(path + ": the vendor list has no " + what + " " + std::to_string(id));
    }
  };
  for (const int purpose : meaning.consent) checkIn(list.purposes, purpose, "purpose");
  for (const int purpose : meaning.legitimateInterest) {
    checkIn(list.purposes, purpose, "purpose");
    if (purpose == 1 || (purpose >= 3 && purpose <= 6)) {
      mistakes.push_back(path + ": purpose " + std::to_string(purpose) + " needs consent");
    }
  }
  for (const int feature : meaning.specialFeatures) checkIn(list.specialFeatures, feature, "special feature");
}

void check(Mistakes& mistakes, const TcfOptions& tcf, VendorList& list) {
  auto read = readVendorList(tcf.vendorList);
  if (!read) {
    mistakes.push_back("tcf.vendorList: " + read.error());
    return;
  }
  list = std::move(*read);
  if (!isCountry(tcf.publisherCountry)) mistakes.emplace_back("tcf.publisherCountry: is no code of two capitals");
  for (const auto& [id, meaning] : tcf.purposes) {
    checkMeaning(mistakes, list, "tcf.purposes." + std::to_string(id), meaning);
  }
  for (const auto& [id, vendor] : tcf.vendors) {
    if (!list.vendor(vendor)) {
      mistakes.push_back("tcf.vendors." + std::to_string(id) + ": the vendor list has no vendor " +
                         std::to_string(vendor));
    }
  }
  if (tcf.customPurposes && tcf.customPurposes->size() > 63) mistakes.emplace_back("tcf.customPurposes: more than 63");
}

unsigned kindsOfSensitiveData(const UsSection& section) {
  for (const auto* const layout : {&section.core, &section.subsection}) {
    for (const auto& field : layout->fields) {
      if (field.name == "SensitiveDataProcessing") return field.count;
    }
  }
  return 0;
}

void check(Mistakes& mistakes, const UsPrivacyOptions& us) {
  for (const auto& [prefix, kinds] : us.sensitiveData) {
    const auto* const section = usSection(sectionOfPrefix(prefix));
    const std::string path = "us.sensitiveData." + prefix;
    if (!section) {
      mistakes.push_back(path + ": is no section");
      continue;
    }
    for (const auto& [kind, purposes] : kinds) {
      checkRange(mistakes, path, kind, 1, static_cast<int>(kindsOfSensitiveData(*section)));
    }
  }
  if (us.mspaMode != UsPrivacyOptions::MspaMode::notApplicable && !us.mspaCovered) {
    mistakes.emplace_back("us.mspaMode: has no meaning without mspaCovered");
  }
  if (us.nationalApproach && !us.mspaCovered) {
    mistakes.emplace_back("us.nationalApproach: has no meaning without mspaCovered");
  }
}

}  // namespace

std::expected<SignalRules, std::vector<std::string>> rulesOf(SignalOptions options) {
  Mistakes mistakes;
  SignalRules rules;
  if (options.cmpId == 0) {
    mistakes.emplace_back("cmpId: without the number of a registered consent platform nothing is written");
  } else {
    checkRange(mistakes, "cmpId", options.cmpId, 2, 4095);
  }
  checkRange(mistakes, "cmpVersion", options.cmpVersion, 0, 4095);
  checkRange(mistakes, "consentScreen", options.consentScreen, 0, 63);
  if (options.tcf) check(mistakes, *options.tcf, rules.vendorList);
  if (options.us) check(mistakes, *options.us);
  if (!mistakes.empty()) return std::unexpected(std::move(mistakes));
  rules.options = std::move(options);
  return rules;
}

std::optional<bool> isGdprPlace(const std::optional<std::string>& place) {
  // The European Economic Area and the United Kingdom.
  constexpr std::string_view kCountries =
      "AT BE BG HR CY CZ DK EE FI FR DE GR HU IE IT LV LT LU MT NL PL PT RO SK SI ES SE IS LI NO GB";
  if (!place || place->size() < 2) return std::nullopt;
  return kCountries.find(std::string_view(*place).substr(0, 2)) != std::string_view::npos &&
         (place->size() == 2 || (*place)[2] == '#');
}

EncodedGpp gppOf(const SignalRules& rules, const SignalState& state) {
  GppString gpp;
  if (auto tc = tcStringOf(rules, state)) gpp.sections.emplace(tcfEuSection, std::move(*tc));
  if (auto us = usStringOf(rules, state)) {
    gpp.sections.emplace(sectionOfPrefix(us->core.layout().name), std::move(*us));
  }
  if (auto text = encode(gpp)) return {std::move(gpp), std::move(*text)};
  // With more restrictions than a string can hold, no string is published.
  gpp.sections.clear();
  return {gpp, encode(gpp).value_or(std::string())};
}

}  // namespace quillon::signals
