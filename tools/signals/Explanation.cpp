#include "tools/signals/Explanation.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <utility>
#include <vector>

#include "core/Text/LogText.h"

namespace quillon::tools {
namespace {

using namespace quillon::signals;

constexpr std::int64_t kTimeUnitsADay = 864'000;
// The number of vendors named per line.
constexpr std::size_t kMostNames = 50;

std::string dateOf(std::int64_t time) {
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(time / kTimeUnitsADay))};
  const auto digits = [](unsigned value) { return (value < 10 ? "-0" : "-") + std::to_string(value); };
  return std::to_string(int{date.year()}) + digits(unsigned{date.month()}) + digits(unsigned{date.day()});
}

using NameOf = std::function<std::string(std::int64_t id)>;

NameOf namesIn(const VendorList* list, VendorList::Items VendorList::* items) {
  return [list, items](std::int64_t id) {
    if (!list) return std::string();
    const auto found = (list->*items).find(std::to_string(id));
    return found == (list->*items).end() ? "not in the vendor list" : found->second.name;
  };
}

NameOf vendorNamesIn(const VendorList* list) {
  return [list](std::int64_t id) {
    if (!list) return std::string();
    const auto* const vendor = list->vendor(id);
    return vendor ? vendor->name : "not in the vendor list";
  };
}

std::string listed(const Ids& ids, const NameOf& nameOf) {
  if (ids.empty()) return "none";
  std::string text;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (i == kMostNames) return text + ", and " + std::to_string(ids.size() - i) + " more";
    if (i > 0) text += ", ";
    text += std::to_string(ids[i]);
    if (const auto name = nameOf(ids[i]); !name.empty()) text += " (" + escapedForLog(name) + ")";
  }
  return text;
}

class Lines {
 public:
  void add(const std::string& line) { text_ += line + '\n'; }
  void add(std::string_view title, const std::string& what) { add(std::string(title) + ": " + what); }
  [[nodiscard]] std::string take() && { return std::move(text_); }

 private:
  std::string text_;
};

std::string_view meaningOfRestriction(std::uint8_t type) {
  constexpr std::array<std::string_view, 4> kMeanings = {"not allowed", "only with consent",
                                                         "only on the basis of a legitimate interest", "undefined"};
  return kMeanings[type % kMeanings.size()];
}

void explainCore(Lines& lines, const Record& core, const VendorList* list) {
  const auto number = [&](std::string_view name) { return std::to_string(core.get(name)); };
  lines.add("Last updated", dateOf(core.get("LastUpdated")));
  lines.add("Consent platform", number("CmpId") + " in version " + number("CmpVersion") + ", screen " +
                                    number("ConsentScreen") + ", in " + core.get<std::string>("ConsentLanguage"));
  lines.add("Vendor list", number("VendorListVersion") + ", policy " + number("TcfPolicyVersion"));
  lines.add("Country of the publisher", core.get<std::string>("PublisherCC"));
  if (core.get("PurposeOneTreatment") != 0) lines.add("Purpose 1 was not disclosed");
  if (core.get("UseNonStandardTexts") != 0) lines.add("The texts were not the standard ones");
  const auto purposes = namesIn(list, &VendorList::purposes);
  const auto vendors = vendorNamesIn(list);
  const auto ids = [&](std::string_view name) -> const Ids& { return core.get<Ids>(name); };
  lines.add("Consent to purposes", listed(ids("PurposesConsent"), purposes));
  lines.add("Legitimate interest for purposes", listed(ids("PurposesLITransparency"), purposes));
  lines.add("Special features opted in to",
            listed(ids("SpecialFeatureOptIns"), namesIn(list, &VendorList::specialFeatures)));
  lines.add("Consent to vendors", listed(ids("VendorConsent"), vendors));
  lines.add("Legitimate interest of vendors", listed(ids("VendorLegitimateInterest"), vendors));
  for (const auto& restriction : core.get<std::vector<Restriction>>("PubRestrictions")) {
    lines.add("Purpose " + std::to_string(restriction.purposeId) + " is " +
                  std::string(meaningOfRestriction(restriction.type)) + " to vendors",
              listed(restriction.vendorIds, vendors));
  }
}

// The string's violations of the framework's rules.
void explainFaults(Lines& lines, const TcString& tc) {
  if (tc.core.get("IsServiceSpecific") == 0) lines.add("Void: it claims to hold for more than this service");
  if (!tc.disclosedVendors) lines.add("Void since 28 February 2026: it does not say which vendors were disclosed");
  if (std::ranges::any_of(tc.core.get<Ids>("PurposesLITransparency"), [](auto id) { return id >= 3 && id <= 6; })) {
    lines.add("Against the rules: a legitimate interest for purposes 3 to 6");
  }
}

void explain(Lines& lines, const TcString& tc, const VendorList* list) {
  explainFaults(lines, tc);
  explainCore(lines, tc.core, list);
  if (tc.disclosedVendors) {
    lines.add("Disclosed vendors", listed(tc.disclosedVendors->get<Ids>("DisclosedVendors"), vendorNamesIn(list)));
  }
  if (!tc.publisherTC) return;
  const auto purposes = namesIn(list, &VendorList::purposes);
  const NameOf nameless = [](std::int64_t) { return std::string(); };
  lines.add("The publisher's own purposes with consent",
            listed(tc.publisherTC->get<Ids>("PubPurposesConsent"), purposes));
  lines.add("The publisher's own purposes with a legitimate interest",
            listed(tc.publisherTC->get<Ids>("PubPurposesLITransparency"), purposes));
  if (tc.publisherTC->get("NumCustomPurposes") == 0) return;
  lines.add("Custom purposes, of " + std::to_string(tc.publisherTC->get("NumCustomPurposes")) + ", with consent",
            listed(tc.publisherTC->get<Ids>("CustomPurposesConsent"), nameless));
  lines.add("Custom purposes with a legitimate interest",
            listed(tc.publisherTC->get<Ids>("CustomPurposesLITransparency"), nameless));
}

// The meanings of 0, 1 and 2 in a field.
using Meanings = std::array<std::string_view, 3>;
Meanings meaningsOf(const UsSection& section, std::string_view name) {
  constexpr Meanings kNotice = {"not applicable", "given", "not given"};
  constexpr Meanings kOptOut = {"not applicable", "opted out", "did not opt out"};
  constexpr Meanings kConsent = {"not applicable", "no consent", "consent"};
  constexpr Meanings kSwitch = {"not applicable", "yes", "no"};
  constexpr Meanings kMode = {"not applicable", "opt-out option", "service provider"};
  if (name == "MspaMode") return kMode;
  if (name.starts_with("Mspa")) return kSwitch;
  if (name.ends_with("Notice")) return kNotice;
  if (name.ends_with("OptOut")) return kOptOut;
  return name == "SensitiveDataProcessing" && section.sensitiveData == AskedAs::optOut ? kOptOut : kConsent;
}

std::string wordOf(const Meanings& meanings, std::int64_t value) {
  return value < 3 ? std::string(meanings[static_cast<std::size_t>(value)]) : "undefined";
}

void explain(Lines& lines, const UsSection& section, const Record& record) {
  for (std::size_t i = 0; i < record.values().size(); ++i) {
    const Field& field = record.layout().fields[i];
    const auto meanings = meaningsOf(section, field.name);
    if (field.kind == FieldKind::values) {
      std::string text;
      const auto& numbers = std::get<Numbers>(record.values()[i]);
      for (std::size_t at = 0; at < numbers.size(); ++at) {
        if (numbers[at] == 0) continue;
        text += (text.empty() ? "" : ", ") + std::to_string(at + 1) + " " + wordOf(meanings, numbers[at]);
      }
      lines.add(field.name, text.empty() ? "not applicable" : text);
    } else if (field.kind == FieldKind::boolean) {
      lines.add(field.name, std::get<std::int64_t>(record.values()[i]) != 0 ? "yes" : "no");
    } else if (field.bits == 2 && !field.always) {
      lines.add(field.name, wordOf(meanings, std::get<std::int64_t>(record.values()[i])));
    }
  }
}

}  // namespace

std::string explanationOf(const TcString& tc, const VendorList* list) {
  Lines lines;
  lines.add("A string of the Transparency & Consent Framework");
  explain(lines, tc, list);
  return std::move(lines).take();
}

std::string explanationOf(const GppString& gpp, const VendorList* list) {
  Lines lines;
  lines.add("A string of the Global Privacy Platform with " + std::to_string(gpp.sections.size()) + " sections");
  for (const auto& [id, section] : gpp.sections) {
    lines.add("Section " + std::to_string(id) + ", " +
              (sectionPrefix(id).empty() ? "unknown" : std::string(sectionPrefix(id))));
    if (const auto* const tc = std::get_if<TcString>(&section)) explain(lines, *tc, list);
    if (const auto* const us = std::get_if<UsString>(&section)) {
      explain(lines, *usSection(id), us->core);
      if (us->subsection) explain(lines, *usSection(id), *us->subsection);
    }
    if (const auto* const text = std::get_if<std::string>(&section)) lines.add("Not read", *text);
  }
  return std::move(lines).take();
}

}  // namespace quillon::tools
