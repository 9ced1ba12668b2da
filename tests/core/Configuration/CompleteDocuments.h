// For each record that travels as JSON, a document in which every key is set.
#pragma once

#include <string_view>

#include "core/Network/Responses.h"
#include "quillon/MainConfiguration.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon {

template <class R>
inline constexpr std::string_view completeDocument;

template <>
inline constexpr std::string_view completeDocument<MainConfiguration> = R"json({
  "generated_on": 101, "id": "t102", "name": "t103", "description": "t104", "tenant_id": "t105",
  "platform": "t106", "status": "t107", "version": 108, "logo_base64": "t109", "x-auth-token": "t110",
  "sdk_version": "t111",
  "purposes": [
    {
      "purpose_id": 112, "purpose_name": {"de": "d113", "en": "e114"},
      "purpose_description": {"de": "d115", "en": "e116"},
      "sdks": [
        {
          "sdk_id": 117, "namespace_id": "t118", "sdk_name": {"de": "d119", "en": "e120"},
          "sdk_description": {"de": "d121", "en": "e122"}, "vendor": "t123", "logo_base64": "t124",
          "website": "t125", "matched_by": ["s126"], "collecting_data": true, "release_date": "t127",
          "license": "t128"
        }
      ],
      "consent_status": "not_determined", "disable_opt_out": true,
      "opt_out_text": {"de": "d129", "en": "e130"}, "hide_details": true
    }
  ],
  "permissions": [
    {
      "id": 131, "name": "t132", "permission_id": "NSCameraUsageDescription",
      "description": {"de": "d133", "en": "e134"}, "group": "t135", "group_id": 136,
      "consent_status": "not_determined", "nameI18N": {"de": "d137", "en": "e138"}
    }
  ],
  "banner_config": {
    "categories": {
      "default": {
        "hide_close_button": true, "hide_accept_toggle": true, "embed_dsr_portal_link": true,
        "record_consent_upon_app_start": true, "hide_toggle_for_essential_categories": true, "name": "t139",
        "dsr_portal_link": "t140", "compliance_type": "opt-in", "banner_reappearance_time": "t141",
        "privacy_notice_link": "t142", "accept": {"de": "d143", "en": "e144"},
        "reject": {"de": "d145", "en": "e146"}, "banner_text": {"de": "d147", "en": "e148"},
        "banner_heading": {"de": "d149", "en": "e150"}, "sdk_tab_heading": {"de": "d151", "en": "e152"},
        "privacy_notice_text": {
          "de": "d153", "en": "e154"
        },
        "preference_center_link": {
          "de": "d155", "en": "e156"
        },
        "permissions_tab_heading": {
          "de": "d157", "en": "e158"
        },
        "permissions_tab_guidance": {
          "de": "d159", "en": "e160"
        },
        "preference_center_heading": {
          "de": "d161", "en": "e162"
        },
        "preference_center_guidance": {
          "de": "d163", "en": "e164"
        },
        "permissions_tab_description": {
          "de": "d165", "en": "e166"
        },
        "preference_center_description": {
          "de": "d167", "en": "e168"
        },
        "show_powered_by_quillon_logo": true, "show_description_text_with_preference_center_toggle": true,
        "palette_theme": 169, "banner_position": "center", "button_shape": "pill", "company_logo": "t170",
        "palette": {
          "button_background": "#0000ab", "button_text": "#0000ac", "button_border": "#0000ad",
          "banner_background": "#0000ae", "banner_text": "#0000af", "banner_links": "#0000b0",
          "preference_center_footer_background": "#0000b1", "preference_center_footer_selector": "#0000b2",
          "toggle_primary": "#0000b3", "toggle_secondary": "#0000b4", "purpose_disclaimer_text": "#0000b5",
          "purpose_disclaimer_background": "#0000b6"
        },
        "should_show_settings_prompt": true
      }
    },
    "names_map": {"default": "m183"}, "locations": {"default": "m184"}
  },
  "i18n": {"de": {"all": "Alle"}, "fr": null}, "is_att_enabled": true,
  "att_or_gad_config": {
    "show_info_on_pref_center": true, "purpose_ids": [185, 186], "info_text": {"de": "d187", "en": "e188"}
  },
  "settings_prompt": {
    "prompt_heading": {"de": "d189", "en": "e190"}, "prompt_message": {"de": "d191", "en": "e192"},
    "settings_button_text": {"de": "d193", "en": "e194"},
    "not_now_button_text": {"de": "d195", "en": "e196"}, "permissions": {"NSCameraUsageDescription": true}
  },
  "re_consent_enabled": true, "is_sp_enabled": true, "is_gcm_enabled": true,
  "gcm_config": {
    "show_gcm_description": true, "gcm_description": {"de": "d197", "en": "e198"},
    "default_mapping": {
      "analytics_storage": [199, 200], "ad_storage": [201, 202], "ad_user_data": [203, 204],
      "ad_personalization": [205, 206]
    },
    "region_overrides": {
      "US#CA": {
        "analytics_storage": [207, 208], "ad_storage": [209, 210], "ad_user_data": [211, 212],
        "ad_personalization": [213, 214]
      }
    }
  }
})json";

template <>
inline constexpr std::string_view completeDocument<PostConsentsRequest> = R"json({
  "uuid": "u", "app_uuid": "a", "device": "d", "implicit_consent": true, "version": 3,
  "purpose_consents": [
    {
      "purpose_id": 12, "consent_status": "granted", "timestamp": 1700000000, "is_essential": true
    }
  ],
  "permissions": [
    {
      "permission": "NSCameraUsageDescription", "consent_status": "declined", "timestamp": 1700000001
    }
  ],
  "is_test_mode": true, "ad_id": "ad", "banner_info": "b", "platform": "ios", "sdk_version": "1.2"
})json";

template <>
inline constexpr std::string_view completeDocument<GenericResponse> = R"json({"status": -4, "message": "m"})json";

template <>
inline constexpr std::string_view completeDocument<CurrentLocationResponse> = R"json({
  "status": 0, "message": "ok",
  "data": {
    "City": {"en": "City"}, "Continent": {"en": "Continent"}, "Country": {"en": "Country"},
    "CountryISOCode": {"en": "CountryISOCode"}, "Language": {"en": "Language"},
    "Location": {"en": "Location"}, "RegisteredCountry": {"en": "RegisteredCountry"},
    "State": {"en": "State"}, "StateISOCode": {"en": "StateISOCode"}
  }
})json";

}  // namespace quillon
