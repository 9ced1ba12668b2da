#include "tools/schema/Descriptions.h"

#include <algorithm>

namespace quillon::tools {
namespace {

struct Description {
  std::string_view record;
  std::string_view key;
  std::string_view text;
};

constexpr Description descriptions[] = {
    {"configuration", "version", "Increases with each publication"},
    {"configuration", "re_consent_enabled", "Whether a greater version asks every user again"},
    {"configuration", "x-auth-token", "The access token of uploads"},
    {"configuration", "purposes", "What users decide on, in display order"},
    {"configuration", "permissions", "The device permissions that the application uses"},
    {"configuration", "banner_config", "The banners, and which of them users of a place get"},
    {"configuration", "i18n", "Labels of the screens: language, then label; null for the built-in English ones"},
    {"configuration", "att_or_gad_config", "Purposes that follow the device's tracking setting"},
    {"configuration", "settings_prompt", "The prompt that leads to the system settings"},
    {"configuration", "gcm_config", "Consent mode"},
    {"configuration", "privacy_signal_purposes", "Purposes that a privacy signal opts out of"},
    {"configuration", "logo_base64", "The company's logo, for banners without one: PNG, JPEG or GIF as base64"},
    {"purposes", "purpose_id", "Never reuse one"},
    {"purposes", "purpose_name", "Language code to text"},
    {"purposes", "disable_opt_out", "Whether the purpose is essential: users cannot decline it"},
    {"purposes", "opt_out_text", "Shown in place of the switch of an essential purpose"},
    {"purposes", "hide_details", "Hides the list of SDKs"},
    {"permissions", "permission_id", "The usage-description key"},
    {"banner_config", "categories", "Name to banner"},
    {"banner_config", "names_map", "Other names for categories"},
    {"banner_config", "locations", "Place, such as DE, US#CA or default, to category"},
    {"categories", "compliance_type",
     "opt-in: declined until the user agrees; opt-out: granted until the user objects; notice-only: not asked"},
    {"categories", "banner_reappearance_time", "Validity of an answer: a count and month or year, such as 6 month"},
    {"categories", "record_consent_upon_app_start", "Records the defaults when the banner appears"},
    {"categories", "hide_accept_toggle", "Hides the button that accepts"},
    {"categories", "company_logo", "PNG, JPEG or GIF as base64"},
    {"categories", "palette", "Colours such as #1D3A5F"},
    {"gcm_config", "region_overrides", "Places, such as US#CA, US#VA, to the mapping that holds there"},
};

}  // namespace

std::string_view descriptionOf(std::string_view record, std::string_view key) {
  const auto found = std::ranges::find_if(
      descriptions, [&](const Description& known) { return known.record == record && known.key == key; });
  return found == std::end(descriptions) ? std::string_view() : found->text;
}

}  // namespace quillon::tools
