#include "tools/init/NewConfiguration.h"

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/parse.hpp>
#include <set>

#include "quillon/VantariKey.h"
#include "tools/document/DocumentPath.h"
#include "tools/document/Symbols.h"
#include "tools/fairness/AskedBanners.h"
#include "tools/init/Template.h"
#include "tools/validate/Codes.h"
#include "tools/validate/Spelling.h"

namespace quillon::tools {
namespace {

namespace json = boost::json;
using Failure = std::unexpected<std::string>;

const json::object& texts() {
  static const json::value all = json::parse(json::string_view(configurationTemplate));
  return all.get_object();
}

const json::object& texts(std::string_view part) {
  return texts().at(part).get_object();
}

std::vector<std::string> keysOf(const json::object& object) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : object) keys.emplace_back(key);
  return keys;
}

// The text in the requested languages.
json::object in(const std::vector<std::string>& languages, const json::object& text) {
  json::object result;
  for (const auto& language : languages) {
    if (const auto* words = text.if_contains(language)) result[language] = *words;
  }
  // If there is none of them, falls back to English for translators to start from.
  if (const auto* words = text.if_contains("en"); words && result.empty()) result["en"] = *words;
  return result;
}

// Copies the members of a part of the template, with texts in the requested languages.
void add(json::object& to, const json::object& part, const std::vector<std::string>& languages) {
  for (const auto& [key, value] : part) {
    if (!value.is_object()) {
      to[key] = value;
    } else {
      to[key] = in(languages, value.get_object());
    }
  }
}

// "Plans" is in the first language; "en=Plans|de=Pläne" states its languages.
json::object ownText(std::string_view wish, const std::vector<std::string>& languages) {
  json::object text;
  while (wish.contains('=')) {
    const auto part = wish.substr(0, wish.find('|'));
    const auto equals = std::min(part.find('='), part.size());
    text[part.substr(0, equals)] = json::string_view(part.substr(std::min(equals + 1, part.size())));
    wish.remove_prefix(std::min(part.size() + 1, wish.size()));
  }
  if (text.empty()) text[languages.front()] = json::string_view(wish);
  return text;
}

json::array purposesOf(const NewConfiguration& wishes) {
  json::array purposes;
  for (const auto& wish : wishes.purposes) {
    json::object purpose{{"purpose_id", purposes.size() + 1}};
    if (const auto* known = texts("purposes").if_contains(wish)) {
      add(purpose, known->get_object(), wishes.languages);
    } else {
      purpose["purpose_name"] = ownText(wish, wishes.languages);
    }
    purpose["sdks"] = json::array();
    purpose["consent_status"] = wish == "essential" ? "granted" : "not_determined";
    purpose["disable_opt_out"] = wish == "essential";
    purposes.push_back(std::move(purpose));
  }
  return purposes;
}

json::array permissionsOf(const NewConfiguration& wishes) {
  json::array permissions;
  for (const auto& key : wishes.permissions) {
    json::object permission{{"id", permissions.size() + 1}, {"permission_id", json::string_view(key)}};
    if (const auto* names = texts("permissions").if_contains(key)) {
      permission["nameI18N"] = in(wishes.languages, names->get_object());
      permission["name"] = names->get_object().at("en");
    }
    permissions.push_back(std::move(permission));
  }
  return permissions;
}

json::object bannerOf(const std::string& type, const NewConfiguration& wishes) {
  json::object banner{{"compliance_type", json::string_view(type)}};
  add(banner, texts("banners").at(type).get_object(), wishes.languages);
  if (!wishes.privacyNotice.empty()) banner["privacy_notice_link"] = json::string_view(wishes.privacyNotice);
  add(banner, texts("texts"), wishes.languages);
  if (!wishes.permissions.empty()) add(banner, texts("permission_texts"), wishes.languages);
  return banner;
}

json::object bannersOf(const NewConfiguration& wishes) {
  json::object categories;
  json::object locations;
  for (const auto& [place, type] : wishes.places) {
    if (!categories.contains(type)) categories[type] = bannerOf(type, wishes);
    locations[place] = json::string_view(type);
  }
  return {{"categories", std::move(categories)}, {"names_map", json::object()}, {"locations", std::move(locations)}};
}

std::string problemOf(const NewConfiguration& wishes) {
  if (wishes.languages.empty()) return "no language is named";
  if (wishes.purposes.empty()) return "no purpose is named";
  if (!wishes.places.contains("default")) return "no rule is named for users elsewhere";
  std::string problem;
  for (const auto& language : wishes.languages) {
    if (problem.empty()) problem = languageProblem(language);
  }
  for (const auto& [place, type] : wishes.places) {
    if (problem.empty() && place != "default") problem = placeProblem(place);
  }
  for (const auto& key : wishes.permissions) {
    if (!problem.empty() || VantariKey(key).kind() != VantariKey::custom) continue;
    problem = inQuotes(key) + " is none of the device's permissions" + didYouMean(key, knownPermissions());
  }
  return problem;
}

}  // namespace

std::vector<std::string> templateLanguages() {
  std::vector<std::string> languages;
  for (const auto& language : texts().at("languages").get_array()) languages.emplace_back(language.get_string());
  return languages;
}

std::vector<std::string> templatePurposes() {
  return keysOf(texts("purposes"));
}

std::vector<std::string> placesOf(const std::string& region) {
  if (region != "EU") return {region};
  return {std::begin(europeanCountries), std::end(europeanCountries)};
}

std::expected<json::object, std::string> documentOf(const NewConfiguration& wishes) {
  if (auto problem = problemOf(wishes); !problem.empty()) return Failure(std::move(problem));
  json::object document{{"name", json::string_view(wishes.name)},
                        {"version", 1},
                        {"re_consent_enabled", true},
                        {"x-auth-token", json::string_view(wishes.token)},
                        {"purposes", purposesOf(wishes)}};
  if (!wishes.permissions.empty()) document["permissions"] = permissionsOf(wishes);
  document["banner_config"] = bannersOf(wishes);
  if (!wishes.permissions.empty()) {
    document["is_sp_enabled"] = true;
    json::object prompt;
    add(prompt, texts("settings_prompt"), wishes.languages);
    json::object enabled;
    for (const auto& key : wishes.permissions) enabled[key] = true;
    prompt["permissions"] = std::move(enabled);
    document["settings_prompt"] = std::move(prompt);
  }
  return document;
}

}  // namespace quillon::tools
