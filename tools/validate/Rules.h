// The lint rules. Each checks one subject and is named after what it expects.
#pragma once

#include "tools/validate/DocumentPath.h"
#include "tools/validate/Lint.h"

namespace quillon::tools {

using Rule = void (*)(const MainConfiguration& configuration, const Report& report);

// PurposeRules.cpp
void tokenIsThere(const MainConfiguration& configuration, const Report& report);
void purposesAreThere(const MainConfiguration& configuration, const Report& report);
void purposesAreComplete(const MainConfiguration& configuration, const Report& report);
void purposeIdsAreUnique(const MainConfiguration& configuration, const Report& report);
void trackingNamesPurposes(const MainConfiguration& configuration, const Report& report);
void privacySignalNamesPurposes(const MainConfiguration& configuration, const Report& report);
void consentModeNamesPurposes(const MainConfiguration& configuration, const Report& report);

// PermissionRules.cpp
void permissionKeysAreUsable(const MainConfiguration& configuration, const Report& report);
void promptsNamePermissions(const MainConfiguration& configuration, const Report& report);

// BannerRules.cpp
void bannersAreThere(const MainConfiguration& configuration, const Report& report);
void complianceTypesAreThere(const MainConfiguration& configuration, const Report& report);
void intervalsAreReadable(const MainConfiguration& configuration, const Report& report);
void locationsLeadToBanners(const MainConfiguration& configuration, const Report& report);
void namesLeadToBanners(const MainConfiguration& configuration, const Report& report);

// ColorRules.cpp
void textsAreLegible(const MainConfiguration& configuration, const Report& report);

// LinkRules.cpp
void linksOpen(const MainConfiguration& configuration, const Report& report);
void linksInTextsOpen(const MainConfiguration& configuration, const Report& report);

// LanguageRules.cpp
void textsHaveAllLanguages(const MainConfiguration& configuration, const Report& report);
void labelsHaveAllLanguages(const MainConfiguration& configuration, const Report& report);

}  // namespace quillon::tools
