// The lint rules. Each checks one subject and is named after what it expects. Their names for users are in Lint.cpp.
#pragma once

#include "quillon/MainConfiguration.h"
#include "tools/validate/Finding.h"

namespace quillon::tools {

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
void permissionsAreKnown(const MainConfiguration& configuration, const Report& report);
void promptsNamePermissions(const MainConfiguration& configuration, const Report& report);

// BannerRules.cpp
void bannersAreThere(const MainConfiguration& configuration, const Report& report);
void versionIsThere(const MainConfiguration& configuration, const Report& report);
void elsewhereHasABanner(const MainConfiguration& configuration, const Report& report);
void bannersSayWhatTheyAsk(const MainConfiguration& configuration, const Report& report);
void bannersHaveTheirButtons(const MainConfiguration& configuration, const Report& report);
void complianceTypesAreThere(const MainConfiguration& configuration, const Report& report);
void intervalsAreReadable(const MainConfiguration& configuration, const Report& report);
void locationsLeadToBanners(const MainConfiguration& configuration, const Report& report);
void namesLeadToBanners(const MainConfiguration& configuration, const Report& report);

// PlaceRules.cpp
void placesExist(const MainConfiguration& configuration, const Report& report);
void regionsExist(const MainConfiguration& configuration, const Report& report);

// ColorRules.cpp
void colorsAreColors(const MainConfiguration& configuration, const Report& report);
void textsAreLegible(const MainConfiguration& configuration, const Report& report);

// ImageRules.cpp
void imagesAreImages(const MainConfiguration& configuration, const Report& report);

// LinkRules.cpp
void linksOpen(const MainConfiguration& configuration, const Report& report);
void linksInTextsOpen(const MainConfiguration& configuration, const Report& report);

// LanguageRules.cpp
void languagesExist(const MainConfiguration& configuration, const Report& report);
void textsHaveAllLanguages(const MainConfiguration& configuration, const Report& report);

// LabelRules.cpp
void labelsAreComplete(const MainConfiguration& configuration, const Report& report);
void labelsAreKnown(const MainConfiguration& configuration, const Report& report);
void patternsHaveTheirPlaces(const MainConfiguration& configuration, const Report& report);

}  // namespace quillon::tools
