"""What the scenarios work on."""

TEXT = "banner_config.categories.opt-in.banner_text.en"
HAND_WRITTEN = """{
    "version": 3,   "name": "Run\\u006eer", "x-auth-token": "T", "re_consent_enabled": true,
    "purposes": [
        {"purpose_id": 1, "purpose_name": {"en": "Plans"}, "purpose_description": {"en": "Makes plans."}, "disable_opt_out": false},
        { "purpose_id": 2,
          "purpose_name": {"en": "Ads"}, "disable_opt_out" : false, "purpose_description": {"en": "Shows ads."} }
    ],
    "banner_config": {"categories": {"opt-in": {"compliance_type": "opt-in", "banner_text": {"en": "May we?"},
      "accept": {"en": "Yes"}, "reject": {"en": "No"}}}, "names_map": {}, "locations": {"default": "opt-in"}}
}
"""
