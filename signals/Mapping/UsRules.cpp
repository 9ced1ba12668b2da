// Maps decisions to US sections.
#include <algorithm>

#include "signals/Mapping/SignalRules.h"

namespace quillon::signals {
namespace {

using Purposes = std::vector<std::int64_t>;

// Values common to the sections' tables.
constexpr std::int64_t kNotApplicable = 0;
constexpr std::int64_t kYes = 1;
constexpr std::int64_t kNo = 2;
constexpr std::int64_t kOptedOut = 1;     // in consent fields: no consent
constexpr std::int64_t kNotOptedOut = 2;  // in consent fields: consent

class UsRules {
 public:
  UsRules(const UsPrivacyOptions& options, const SignalState& state) : options_(options), state_(state) {}

  [[nodiscard]] UsString stringOf(const UsSection& section) const {
    UsString us(section);
    fill(us.core, section);
    if (section.subsection.fields.empty()) return us;
    Record subsection(section.subsection);
    if (subsection.has("Gpc")) {
      if (!state_.globalPrivacyControl) return us;
      subsection.set("Gpc", std::int64_t{*state_.globalPrivacyControl});
    } else {
      fill(subsection, section);
    }
    us.subsection = std::move(subsection);
    return us;
  }

 private:
  struct Integer {
    std::string_view field;
    std::int64_t value;
  };

  void fill(Record& record, const UsSection& section) const {
    for (const auto& [field, value] : integers(section)) {
      if (record.has(field)) record.set(field, value);
    }
    if (!record.has("SensitiveDataProcessing")) return;
    const auto kinds = options_.sensitiveData.find(section.prefix());
    if (kinds == options_.sensitiveData.end()) return;
    auto values = record.get<Numbers>("SensitiveDataProcessing");
    for (const auto& [kind, purposes] : kinds->second) {
      values[static_cast<std::size_t>(kind - 1)] = static_cast<Numbers::value_type>(
          section.sensitiveData == AskedAs::optOut ? optOut(purposes) : consent(purposes));
    }
    record.set("SensitiveDataProcessing", std::move(values));
  }

  // All integer values; a section uses those of its fields.
  [[nodiscard]] std::vector<Integer> integers(const UsSection& section) const {
    const auto kinds = options_.sensitiveData.find(section.prefix());
    Purposes sensitive;
    if (kinds != options_.sensitiveData.end()) {
      for (const auto& [kind, purposes] : kinds->second)
        sensitive.insert(sensitive.end(), purposes.begin(), purposes.end());
    }
    // The national section asks for consent instead, to which these two notices do not apply.
    const auto sensitiveNotice = section.sensitiveData == AskedAs::optOut ? notice(sensitive) : kNotApplicable;
    using enum UsPrivacyOptions::MspaMode;
    const auto mspa = [&](UsPrivacyOptions::MspaMode mode) {
      if (!options_.mspaCovered) return kNotApplicable;
      return options_.mspaMode == mode ? kYes : kNo;
    };
    return {
        {"SharingNotice", shown()},
        {"ProcessingNotice", shown()},
        {"SaleOptOutNotice", notice(options_.sale)},
        {"SharingOptOutNotice", notice(options_.sharing)},
        {"TargetedAdvertisingOptOutNotice", notice(options_.targetedAdvertising)},
        {"SensitiveDataProcessingOptOutNotice", sensitiveNotice},
        {"SensitiveDataOptOutNotice", sensitiveNotice},
        {"SensitiveDataLimitUseNotice", sensitiveNotice},
        {"SaleOptOut", optOut(options_.sale)},
        {"SharingOptOut", optOut(options_.sharing)},
        {"TargetedAdvertisingOptOut", optOut(options_.targetedAdvertising)},
        {"PersonalDataConsents", consent(options_.additionalProcessing)},
        {"AdditionalDataProcessingConsent", consent(options_.additionalProcessing)},
        {"MspaVersion", options_.mspaCovered ? 1 : 0},
        {"MspaCoveredTransaction", options_.mspaCovered ? kYes : kNo},
        {"MspaOptOutOptionMode", mspa(optOutOption)},
        {"MspaServiceProviderMode", mspa(serviceProvider)},
        {"MspaMode", options_.mspaCovered ? static_cast<std::int64_t>(options_.mspaMode) : kNotApplicable},
    };
  }

  [[nodiscard]] std::int64_t shown() const { return state_.isDisclosed ? kYes : kNo; }
  [[nodiscard]] std::int64_t notice(const Purposes& purposes) const {
    return purposes.empty() ? kNotApplicable : shown();
  }

  // A purpose missing from the configuration counts as refused.
  template <class F>
  [[nodiscard]] bool areAll(const Purposes& purposes, const F& isGiven) const {
    return std::ranges::all_of(purposes, [&](std::int64_t id) {
      const auto purpose = std::ranges::find(state_.purposes, id, &SignalState::Purpose::id);
      return purpose != state_.purposes.end() && isGiven(*purpose);
    });
  }

  // A user who was not asked yet, and has not opted out, has not declined to opt out either.
  [[nodiscard]] std::int64_t optOut(const Purposes& purposes) const {
    if (purposes.empty()) return kNotApplicable;
    if (!areAll(purposes, [](const auto& purpose) { return purpose.isGranted; })) return kOptedOut;
    return state_.isDisclosed ? kNotOptedOut : kNotApplicable;
  }
  [[nodiscard]] std::int64_t consent(const Purposes& purposes) const {
    if (purposes.empty()) return kNotApplicable;
    return areAll(purposes, [](const auto& purpose) { return purpose.isGranted && purpose.isExplicit; }) ? kNotOptedOut
                                                                                                         : kOptedOut;
  }

  const UsPrivacyOptions& options_;
  const SignalState& state_;
};

// The section of a location such as "US#CA", or the national one with the national approach.
const UsSection* sectionAt(const std::string& place, bool nationalApproach) {
  if (place != "US" && !place.starts_with("US#")) return nullptr;
  if (nationalApproach) return usSection(usNationalSection);
  if (place.size() != 5) return nullptr;
  std::string prefix = "us" + place.substr(3);
  for (char& c : prefix) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return usSection(sectionOfPrefix(prefix));
}

}  // namespace

std::optional<UsString> usStringOf(const SignalRules& rules, const SignalState& state) {
  const auto& options = rules.options.us;
  if (!options || !state.place) return std::nullopt;
  const auto* const section = sectionAt(*state.place, options->nationalApproach);
  if (!section) return std::nullopt;
  return UsRules(*options, state).stringOf(*section);
}

}  // namespace quillon::signals
