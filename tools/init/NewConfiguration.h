// Generates a configuration to start from.
#pragma once

#include <boost/json/object.hpp>
#include <expected>
#include <map>
#include <string>
#include <vector>

namespace quillon::tools {

struct NewConfiguration {
  std::string name;
  std::string token;
  std::string privacyNotice;                  // URL
  std::vector<std::string> languages;         // codes
  std::vector<std::string> purposes;          // template purposes, or texts such as "Plans" or "en=Plans|de=Pläne"
  std::vector<std::string> permissions;       // usage-description keys
  std::map<std::string, std::string> places;  // location to compliance type; "default" applies elsewhere
};

// The languages and purposes of the template.
[[nodiscard]] std::vector<std::string> templateLanguages();
[[nodiscard]] std::vector<std::string> templatePurposes();

// "EU" expands to the countries of the European Economic Area, the United Kingdom and Switzerland.
[[nodiscard]] std::vector<std::string> placesOf(const std::string& region);

// The document, or the error in `wishes`. It passes lint if every language has all texts.
[[nodiscard]] std::expected<boost::json::object, std::string> documentOf(const NewConfiguration& wishes);

}  // namespace quillon::tools
