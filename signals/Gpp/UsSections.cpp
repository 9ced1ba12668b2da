#include "signals/Gpp/Sections.h"

#include <array>

namespace quillon::signals {
namespace {

// What a value means: notices 0 not applicable, 1 given, 2 not given; opt-outs 0 not applicable, 1 opted out, 2 not;
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

constexpr Field virginia[] = {
    always("Version", 6, 1),
    integer("SharingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    integer("KnownChildSensitiveDataConsents", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field colorado[] = {
    always("Version", 6, 1),
    integer("SharingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 7),
    integer("KnownChildSensitiveDataConsents", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field utah[] = {
    always("Version", 6, 1),
    integer("SharingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SensitiveDataProcessingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    integer("KnownChildSensitiveDataConsents", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field connecticut[] = {
    always("Version", 6, 1),
    integer("SharingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    values("KnownChildSensitiveDataConsents", 2, 3),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field floridaNewHampshire[] = {
    always("Version", 6, 1),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    values("KnownChildSensitiveDataConsents", 2, 3),
    integer("AdditionalDataProcessingConsent", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field montana[] = {
    always("Version", 6, 1),
    integer("SharingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    values("KnownChildSensitiveDataConsents", 2, 3),
    integer("AdditionalDataProcessingConsent", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field oregon[] = {
    always("Version", 6, 1),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 11),
    values("KnownChildSensitiveDataConsents", 2, 3),
    integer("AdditionalDataProcessingConsent", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field texasNebraskaMinnesota[] = {
    always("Version", 6, 1),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    integer("KnownChildSensitiveDataConsents", 2),
    integer("AdditionalDataProcessingConsent", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field delaware[] = {
    always("Version", 6, 1),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 9),
    values("KnownChildSensitiveDataConsents", 2, 5),
    integer("AdditionalDataProcessingConsent", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field iowa[] = {
    always("Version", 6, 1),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SensitiveDataOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    integer("KnownChildSensitiveDataConsents", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field newJersey[] = {
    always("Version", 6, 1),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 10),
    values("KnownChildSensitiveDataConsents", 2, 5),
    integer("AdditionalDataProcessingConsent", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

constexpr Field tennessee[] = {
    always("Version", 6, 1),
    integer("ProcessingNotice", 2),
    integer("SaleOptOutNotice", 2),
    integer("TargetedAdvertisingOptOutNotice", 2),
    integer("SaleOptOut", 2),
    integer("TargetedAdvertisingOptOut", 2),
    values("SensitiveDataProcessing", 2, 8),
    integer("KnownChildSensitiveDataConsent", 2),
    integer("AdditionalDataProcessingConsent", 2),
    integer("MspaCoveredTransaction", 2),
    integer("MspaOptOutOptionMode", 2),
    integer("MspaServiceProviderMode", 2),
};

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
