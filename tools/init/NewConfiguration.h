// A configuration to begin with.
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
  std::string privacyNotice;                  // an address
  std::vector<std::string> languages;         // codes
  std::vector<std::string> purposes;          // names of the template, or texts such as "Plans" or "en=Plans|de=Pläne"
  std::vector<std::string> permissions;       // usage-description keys
  std::map<std::string, std::string> places;  // to a compliance type; "default" is elsewhere
};

// The languages and purposes that have texts already.
[[nodiscard]] std::vector<std::string> templateLanguages();
[[nodiscard]] std::vector<std::string> templatePurposes();

// "EU" stands for the countries of the European Economic Area, with the United Kingdom and Switzerland.
[[nodiscard]] std::vector<std::string> placesOf(const std::string& region);

// The document, or what is wrong with the wishes. It lints clean if every language has all texts.
[[nodiscard]] std::expected<boost::json::object, std::string> documentOf(const NewConfiguration& wishes);

}  // namespace quillon::tools
