#include "signals/Gpp/Sections.h"

#include <array>

namespace quillon::signals {
namespace {

// Values: notices 0 not applicable, 1 given, 2 not given; opt-outs 0 not applicable, 1 opted out, 2 not opted out;
// consents 0 not applicable, 1 no consent, 2 consent.

constexpr Field national[] = {
    always("Version", 6, 2),
    integer("SharingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("SharingOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SensitiveDataProcessingOptOutNotice", 2),
    integer("SensitiveDataLimitUseNotice", 2),
    integer("SaleOptOut", 2),
    integer("SharingOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 16),
    values("KnownChildSensitiveDataConsents", 2, 3),
    integer("PersonalDataConsents", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field california[] = {
    always("Version", 6, 1),
    integer("SaleOptOutNotice", 2),
    integer("SharingOptOutNotice", 2),
    integer("SensitiveDataLimitUseNotice", 2),
    integer("SaleOptOut", 2),
    integer("SharingOptOut", 2),
    values("SensitiveDataProcessing", 2, 9),
    values("KnownChildSensitiveDataConsents", 2, 2),
    integer("PersonalDataConsents", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

// The variations among version 1 of the states' sections; most have the same fields.
struct StateLaw {
  std::string_view notice;                // field name of the notice of sharing or processing
  unsigned sensitiveKinds;                // number of kinds of sensitive data
  unsigned childrensKinds;                // number of kinds of children's data
  bool hasAdditional = false;             // has a field for consent to additional processing
  std::string_view sensitiveNotice = {};  // field name of the notice of sensitive data, if any
  std::string_view childrensName = "KnownChildSensitiveDataConsents";
};

class StateFields {
 public:
  constexpr explicit StateFields(const StateLaw& law) {
    add(always("Version", 6, 1));
    add(integer(law.notice, 2));
    add(integer("SaleOptOutNotice", 2));
    add(integer("TargetedAdvertisingOptOutNotice", 2));
    if (!law.sensitiveNotice.empty()) add(integer(law.sensitiveNotice, 2));
    add(integer("SaleOptOut", 2));
    add(integer("TargetedAdvertisingOptOut", 2));
    add(values("SensitiveDataProcessing", 2, law.sensitiveKinds));
    add(law.childrensKinds == 1 ? integer(law.childrensName, 2) : values(law.childrensName, 2, law.childrensKinds));
    if (law.hasAdditional) add(integer("AdditionalDataProcessingConsent", 2));
    add(integer("MspaCoveredTransaction", 2));
    add(integer("MspaOptOutOptionMode", 2));
    add(integer("MspaServiceProviderMode", 2));
  }

  // NOLINTNEXTLINE(google-explicit-constructor): converts like any other table of fields
  constexpr operator std::span<const Field>() const { return std::span(fields_).first(count_); }

 private:
  constexpr void add(const Field& field) { fields_[count_++] = field; }

  std::array<Field, 13> fields_{};
  std::size_t count_ = 0;
};

constexpr std::string_view sharing = "SharingNotice";
constexpr std::string_view processing = "ProcessingNotice";

constexpr StateFields virginia({sharing, 8, 1});
constexpr StateFields colorado({sharing, 7, 1});
constexpr StateFields utah({sharing, 8, 1, false, "SensitiveDataProcessingOptOutNotice"});
constexpr StateFields connecticut({sharing, 8, 3});
constexpr StateFields montana({sharing, 8, 3, true});
constexpr StateFields floridaNewHampshire({processing, 8, 3, true});
constexpr StateFields oregon({processing, 11, 3, true});
constexpr StateFields texasNebraskaMinnesota({processing, 8, 1, true});
constexpr StateFields delaware({processing, 9, 5, true});
constexpr StateFields iowa({processing, 8, 1, false, "SensitiveDataOptOutNotice"});
constexpr StateFields newJersey({processing, 10, 5, true});
constexpr StateFields tennessee({processing, 8, 1, true, {}, "KnownChildSensitiveDataConsent"});

// Later layouts, which begin with the MSPA fields.
constexpr Field maryland[] = {
    integer("MspaVersion", 6),
    integer("MspaCoveredTransaction", 2),
    integer("MspaMode", 2),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    integer("AdditionalDataProcessingConsent", 2),
};

constexpr Field indianaKentuckyRhodeIsland[] = {
    integer("MspaVersion", 6),
    integer("MspaCoveredTransaction", 2),
    integer("MspaMode", 2),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    integer("KnownChildSensitiveDataConsents", 2),
    integer("AdditionalDataProcessingConsent", 2),
};

constexpr Field gpc[] = {
    always("SubsectionType", 2, 1),
    boolean("Gpc"),
};

constexpr Field sensitiveDataConsents[] = {
    values("SensitiveDataProcessing", 2, 8),
};

constexpr std::span<const Field> none;

constexpr std::array all{
    UsSection{7, {"usnat", national}, {"usnat", gpc}},
    UsSection{8, {"usca", california}, {"usca", gpc}, AskedAs::optOut},
    UsSection{9, {"usva", virginia}, {"usva", none}},
    UsSection{10, {"usco", colorado}, {"usco", gpc}},
    UsSection{11, {"usut", utah}, {"usut", none}, AskedAs::optOut},
    UsSection{12, {"usct", connecticut}, {"usct", gpc}},
    UsSection{13, {"usfl", floridaNewHampshire}, {"usfl", none}},
    UsSection{14, {"usmt", montana}, {"usmt", gpc}},
    UsSection{15, {"usor", oregon}, {"usor", gpc}},
    UsSection{16, {"ustx", texasNebraskaMinnesota}, {"ustx", gpc}},
    UsSection{17, {"usde", delaware}, {"usde", gpc}},
    UsSection{18, {"usia", iowa}, {"usia", gpc}, AskedAs::optOut},
    UsSection{19, {"usne", texasNebraskaMinnesota}, {"usne", gpc}},
    UsSection{20, {"usnh", floridaNewHampshire}, {"usnh", gpc}},
    UsSection{21, {"usnj", newJersey}, {"usnj", gpc}},
    UsSection{22, {"ustn", tennessee}, {"ustn", gpc}},
    UsSection{23, {"usmn", texasNebraskaMinnesota}, {"usmn", gpc}},
    UsSection{24, {"usmd", maryland}, {"usmd", gpc}},
    UsSection{25, {"usin", indianaKentuckyRhodeIsland}, {"usin", sensitiveDataConsents}},
    UsSection{26, {"usky", indianaKentuckyRhodeIsland}, {"usky", sensitiveDataConsents}},
    UsSection{27, {"usri", indianaKentuckyRhodeIsland}, {"usri", sensitiveDataConsents}},
};

}  // namespace

std::span<const UsSection> usSections() noexcept {
  return all;
}

}  // namespace quillon::signals
