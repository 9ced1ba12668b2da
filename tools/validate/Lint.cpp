#include "tools/validate/Lint.h"

#include "tools/validate/Rules.h"

namespace quillon::tools {
namespace {

constexpr Rule rulesOfDocuments[] = {
    {"file", Level::error, "The file can be read."},
    {"syntax", Level::error, "The document is JSON, of at most 32 MiB and 64 levels."},
    {"type", Level::error, "A value has the type of its key."},
    {"value", Level::error, "A value is one of those listed."},
    {"required", Level::error, "Required keys are there."},
    {"duplicate-key", Level::error, "No object has a key twice."},
    {"document", Level::error, "The SDK takes the document."},
    {"unknown-key", Level::warning, "The SDK knows every key."},
    {"version-rises", Level::warning, "A material change comes with a greater version."},
    {"fair-drawn", Level::warning, "Accepting and refusing weigh the same on the screen."},
    {"findings", Level::note, "No document has more than 1000 findings."},
};

constexpr auto warning = Level::warning;

constexpr Rule rules[] = {
    {"token", warning, "There is an access token for uploads.", tokenIsThere},
    {"version", warning, "There is a version.", versionIsThere},
    {"purposes", warning, "There are purposes.", purposesAreThere},
    {"purpose-complete", warning, "A purpose has what it needs.", purposesAreComplete},
    {"purpose-unique", warning, "No two purposes have the same identifier.", purposeIdsAreUnique},
    {"tracking-purpose", warning, "Tracking names purposes that exist.", trackingNamesPurposes},
    {"signal-purpose", warning, "The privacy signal names purposes that exist.", privacySignalNamesPurposes},
    {"consent-mode-purpose", warning, "Consent mode names purposes that exist.", consentModeNamesPurposes},
    {"permission-key", warning, "The key of a permission can be stored.", permissionKeysAreUsable},
    {"permission-known", warning, "A permission is one of the device's.", permissionsAreKnown},
    {"prompt-permission", warning, "The settings prompt names permissions that are listed.", promptsNamePermissions},
    {"banner", warning, "There is a banner.", bannersAreThere},
    {"banner-text", warning, "A banner says what it is about.", bannersSayWhatTheyAsk},
    {"banner-buttons", warning, "A banner has the buttons that its type needs.", bannersHaveTheirButtons},
    {"compliance-type", warning, "A banner has a compliance type.", complianceTypesAreThere},
    {"reappearance-time", warning, "The validity of an answer can be read.", intervalsAreReadable},
    {"location-category", warning, "A location leads to a category.", locationsLeadToBanners},
    {"name-category", warning, "A name leads to a category.", namesLeadToBanners},
    {"location-default", warning, "Users elsewhere get a banner by intent.", elsewhereHasABanner},
    {"place", warning, "A place is spelt as the location look-up spells it.", placesExist},
    {"region", warning, "A region of consent mode exists.", regionsExist},
    {"color", warning, "A colour is one.", colorsAreColors},
    {"contrast", warning, "Texts are legible on their backgrounds.", textsAreLegible},
    {"image", warning, "A picture is one.", imagesAreImages},
    {"link", warning, "A link opens in the in-app web view.", linksOpen},
    {"link-in-text", warning, "A link in a text opens in the in-app web view.", linksInTextsOpen},
    {"language", warning, "A language exists.", languagesExist},
    {"text-languages", warning, "A text has all languages.", textsHaveAllLanguages},
    {"label-languages", warning, "Every label has all languages.", labelsAreComplete},
    {"label-known", warning, "The screens have the label.", labelsAreKnown},
    {"label-pattern", warning, "A pattern has its places.", patternsHaveTheirPlaces},
};

}  // namespace

std::span<const Rule> lintRules() {
  return rules;
}

std::span<const Rule> documentRules() {
  return rulesOfDocuments;
}

}  // namespace quillon::tools
