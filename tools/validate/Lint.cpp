#include "tools/validate/Lint.h"

#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

constexpr Rule rules[] = {
    tokenIsThere,
    purposesAreThere,
    purposesAreComplete,
    purposeIdsAreUnique,
    trackingNamesPurposes,
    privacySignalNamesPurposes,
    consentModeNamesPurposes,
    permissionKeysAreUsable,
    promptsNamePermissions,
    bannersAreThere,
    complianceTypesAreThere,
    intervalsAreReadable,
    locationsLeadToBanners,
    namesLeadToBanners,
    textsAreLegible,
    linksOpen,
    linksInTextsOpen,
    textsHaveAllLanguages,
    labelsHaveAllLanguages,
};

}  // namespace

void lint(const MainConfiguration& configuration, const Report& report) {
  for (const Rule rule : rules) rule(configuration, report);
}

}  // namespace quillon::tools
