// A document with every key set, for each structure.
#pragma once

#include <string>
#include <string_view>

#include "core/Network/Responses.h"
#include "quillon/MainConfiguration.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {

struct CompleteDocument {
  std::string json;
  // Patterns of required places, and of map entries, which may be missing but not null.
  const char* required;
  const char* entries = "";
};

// Replaces each placeholder with a distinct value: ? a number, % a text, @ one in two languages, * two numbers, $ a
// colour.
inline std::string filled(std::string_view form) {
  std::string json;
  int last = 100;
  const auto next = [&] { return std::to_string(++last); };
  for (const char mark : form) {
    json += mark == '?'   ? next()
            : mark == '%' ? "\"t" + next() + '"'
            : mark == '@' ? R"({"de": "d)" + next() + R"(", "en": "e)" + next() + "\"}"
            : mark == '*' ? "[" + next() + ", " + next() + "]"
            : mark == '$' ? "\"#000" + next() + '"'
                          : std::string(1, mark);
  }
  return json;
}

template <class R>
inline const CompleteDocument completeDocument{};

template <>
inline const CompleteDocument completeDocument<MainConfiguration>{
    filled(R"json({
  "generated_on": ?, "id": %, "name": %, "description": %, "tenant_id": %, "platform": %, "status": %, "version": ?,
  "logo_base64": %, "x-auth-token": %, "sdk_version": %,
  "purposes": [{
    "purpose_id": ?, "purpose_name": @, "purpose_description": @,
    "sdks": [{
      "sdk_id": ?, "namespace_id": %, "sdk_name": @, "sdk_description": @, "vendor": %, "logo_base64": %,
      "website": %, "matched_by": [%], "collecting_data": true, "release_date": %, "license": %
    }],
    "consent_status": "not_determined", "disable_opt_out": true, "opt_out_text": @, "hide_details": true
  }],
  "permissions": [{
    "id": ?, "name": %, "permission_id": "NSCameraUsageDescription", "description": @, "group": %, "group_id": ?,
    "consent_status": "not_determined", "nameI18N": @
  }],
  "banner_config": {
    "categories": {
      "default": {
        "hide_close_button": true, "hide_accept_toggle": true, "embed_dsr_portal_link": true,
        "record_consent_upon_app_start": true, "hide_toggle_for_essential_categories": true, "name": %,
        "dsr_portal_link": %, "compliance_type": "opt-in", "banner_reappearance_time": %, "privacy_notice_link": %,
        "accept": @, "reject": @, "banner_text": @, "banner_heading": @, "sdk_tab_heading": @,
        "privacy_notice_text": @, "preference_center_link": @, "permissions_tab_heading": @,
        "permissions_tab_guidance": @, "preference_center_heading": @, "preference_center_guidance": @,
        "permissions_tab_description": @, "preference_center_description": @,
        "show_powered_by_quillon_logo": true, "show_description_text_with_preference_center_toggle": true,
        "palette_theme": ?, "banner_position": "center", "button_shape": "pill", "company_logo": %,
        "palette": {
          "button_background": $, "button_text": $, "button_border": $, "banner_background": $, "banner_text": $,
          "banner_links": $, "preference_center_footer_background": $, "preference_center_footer_selector": $,
          "toggle_primary": $, "toggle_secondary": $, "purpose_disclaimer_text": $,
          "purpose_disclaimer_background": $
        },
        "should_show_settings_prompt": true
      }
    },
    "names_map": {"default": %}, "locations": {"default": %}
  },
  "i18n": {"de": {"all": "Alle"}, "fr": null}, "is_att_enabled": true,
  "att_or_gad_config": {"show_info_on_pref_center": true, "purpose_ids": *, "info_text": @},
  "settings_prompt": {
    "prompt_heading": @, "prompt_message": @, "settings_button_text": @, "not_now_button_text": @,
    "permissions": {"NSCameraUsageDescription": true}
  },
  "re_consent_enabled": true, "is_sp_enabled": true, "is_gcm_enabled": true,
  "gcm_config": {
    "show_gcm_description": true, "gcm_description": @,
    "default_mapping": {"analytics_storage": *, "ad_storage": *, "ad_user_data": *, "ad_personalization": *},
    "region_overrides": {
      "US#CA": {"analytics_storage": *, "ad_storage": *, "ad_user_data": *, "ad_personalization": *}
    }
  },
  "privacy_signal_purposes": *
})json"),
    R"(banner_config\.(categories|names_map|locations)|.*\.palette\.(button|banner|preference_center)_.*)",
    R"((?!i18n\.(de|fr)$).*\.(de|en|all|default|US#CA|NSCameraUsageDescription))"};

template <>
inline const CompleteDocument completeDocument<PostConsentsRequest>{filled(R"json({
  "uuid": %, "app_uuid": %, "device": %, "implicit_consent": true, "version": ?,
  "purpose_consents": [{"purpose_id": ?, "consent_status": "granted", "timestamp": ?, "is_essential": true, "cause": "signal"}],
  "permissions": [{"permission": "NSCameraUsageDescription", "consent_status": "declined", "timestamp": ?}],
  "is_test_mode": true, "ad_id": %, "banner_info": %, "platform": "ios", "sdk_version": %
})json"),
                                                                    R"((?!sdk_version|.*\.cause).*)"};

template <>
inline const CompleteDocument completeDocument<GenericResponse>{R"({"status": -4, "message": "m"})", ".*"};

template <>
inline const CompleteDocument completeDocument<CurrentLocationResponse>{filled(R"json({
  "status": ?, "message": %,
  "data": {
    "City": @, "Continent": @, "Country": @, "CountryISOCode": @, "Language": @, "Location": @,
    "RegisteredCountry": @, "State": @, "StateISOCode": @
  }
})json"),
                                                                        R"(status|message|data\.\w+)",
                                                                        R"(data\.\w+\.(de|en))"};

}  // namespace quillon
