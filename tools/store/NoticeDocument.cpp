#include "tools/store/NoticeDocument.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "ui/Common/Labels/Labels.h"

namespace quillon::tools {
namespace {

constexpr const char* category = "notice";

const boost::json::value* memberOf(const boost::json::object& object, std::string_view name) {
  return object.if_contains(name);
}

const boost::json::array& arrayOf(const boost::json::object& object, std::string_view name) {
  static const boost::json::array none;
  const auto* value = memberOf(object, name);
  const auto* array = value ? value->if_array() : nullptr;
  return array ? *array : none;
}

std::string textOf(const boost::json::object& object, std::string_view name) {
  const auto* value = memberOf(object, name);
  const auto* text = value ? value->if_string() : nullptr;
  return text ? std::string(*text) : std::string();
}

boost::json::object purposeShowing(const boost::json::object& purpose, const std::string& language) {
  const auto inLanguage = [&](const boost::json::object& from, std::string_view name) {
    return boost::json::object{{language, textOf(from, name)}};
  };
  boost::json::array components;
  for (const auto& value : arrayOf(purpose, "components")) {
    const auto* component = value.if_object();
    if (!component) continue;
    components.push_back(boost::json::object{{"sdk_id", static_cast<std::int64_t>(components.size() + 1)},
                                             {"sdk_name", inLanguage(*component, "name")},
                                             {"sdk_description", inLanguage(*component, "description")},
                                             {"vendor", textOf(*component, "vendor")},
                                             {"website", textOf(*component, "website")},
                                             {"license", textOf(*component, "licence")}});
  }
  const auto* essential = memberOf(purpose, "essential");
  boost::json::object document{{"purpose_name", inLanguage(purpose, "name")},
                               {"purpose_description", inLanguage(purpose, "description")},
                               {"opt_out_text", inLanguage(purpose, "note")},
                               {"disable_opt_out", essential && essential->is_bool() && essential->get_bool()},
                               {"sdks", std::move(components)}};
  if (const auto* number = memberOf(purpose, "purpose_id")) document.emplace("purpose_id", *number);
  return document;
}

}  // namespace

boost::json::object documentShowing(const boost::json::object& notice) {
  const std::string language = textOf(notice, "language").empty() ? "en" : textOf(notice, "language");
  boost::json::object banner{{"compliance_type", textOf(notice, "compliance_type")},
                             {"banner_position", textOf(notice, "banner_type")},
                             {"hide_close_button", true},
                             {"hide_accept_toggle", true}};
  boost::json::object labels;
  boost::json::object consentMode;
  for (const auto& value : arrayOf(notice, "texts")) {
    const auto* shown = value.if_object();
    if (!shown) continue;
    const std::string role = textOf(*shown, "role");
    const std::string text = textOf(*shown, "text");
    const std::string address = textOf(*shown, "address");
    if (role == "close") banner["hide_close_button"] = false;
    if (role == "accept") banner["hide_accept_toggle"] = false;
    if (role == "privacy_notice_text") banner["privacy_notice_link"] = address;
    if (role == "dsr_portal") {
      banner["embed_dsr_portal_link"] = true;
      banner["dsr_portal_link"] = address;
    }
    if (role == "gcm_description") {
      consentMode = {{"show_gcm_description", true}, {"gcm_description", {{language, text}}}};
    } else if (std::ranges::find(labelKeys, role) != labelKeys.end() && role != "accept" && role != "reject") {
      labels.emplace(role, text);
    } else {
      banner[role] = {{language, text}};
    }
  }
  boost::json::array purposes;
  for (const auto& value : arrayOf(notice, "purposes")) {
    if (const auto* purpose = value.if_object()) purposes.push_back(purposeShowing(*purpose, language));
  }
  boost::json::object document{{"purposes", std::move(purposes)},
                               {"banner_config",
                                {{"categories", {{category, std::move(banner)}}},
                                 {"names_map", boost::json::object()},
                                 {"locations", {{"default", category}}}}},
                               {"i18n", {{language, std::move(labels)}}}};
  if (const auto* version = memberOf(notice, "configuration_version")) document.emplace("version", *version);
  if (!consentMode.empty()) document.emplace("gcm_config", std::move(consentMode));
  return document;
}

}  // namespace quillon::tools
