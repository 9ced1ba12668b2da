#include "tests/sim/Documents.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace quillon::sim {
namespace {

constexpr int howMany = 8;

Law anyLaw(Choices& choices) {
  return choices.oneIn(2) ? Law::optIn : choices.oneIn(3) ? Law::noticeOnly : Law::optOut;
}

bool has(const std::vector<int>& list, int purpose) {
  return std::ranges::find(list, purpose) != list.end();
}

std::string listText(const std::vector<int>& numbers) {
  std::string text = "[";
  for (const int number : numbers) text += (text.size() > 1 ? "," : "") + std::to_string(number);
  return text + "]";
}

std::string category(const char* law, const std::optional<std::string>& interval) {
  std::string text = std::string(R"({"compliance_type":")") + law + "\"";
  if (interval) text += R"(,"banner_reappearance_time":")" + *interval + "\"";
  return text + "}";
}

}  // namespace

bool Document::lists(int purpose) const {
  return has(listed, purpose);
}

bool Document::isEssential(int purpose) const {
  return has(essential, purpose);
}

bool Document::isSignalled(int purpose, const std::optional<std::vector<int>>& named) const {
  const auto& list = named ? named : signalled;
  const bool isTracked = bindsToTracking && purpose == trackedPurpose;
  return list && has(*list, purpose) && !isEssential(purpose) && !isTracked;
}

std::string Document::json() const {
  std::string text = R"({"version":)" + std::to_string(version) + R"(,"x-auth-token":"token","purposes":[)";
  for (const int purpose : listed) {
    text += (purpose == listed.front() ? "" : ",") + (R"({"purpose_id":)" + std::to_string(purpose)) +
            R"(,"disable_opt_out":)" + (isEssential(purpose) ? "true}" : "false}");
  }
  text += "]";
  if (hasPermission) text += R"(,"permissions":[{"permission_id":"NSCameraUsageDescription"}])";
  if (asksAgain) text += R"(,"re_consent_enabled":true)";
  if (bindsToTracking) {
    text += R"(,"is_att_enabled":true,"att_or_gad_config":{"purpose_ids":)" + listText({trackedPurpose}) + "}";
  }
  if (signalled) text += R"(,"privacy_signal_purposes":)" + listText(*signalled);
  if (hasBanner) {
    text += R"(,"banner_config":{"categories":{"here":)" + category(textOf(law), interval);
    if (lawInPlace) text += R"(,"there":)" + category(textOf(*lawInPlace), interval);
    text += R"(},"names_map":{},"locations":{"default":"here")";
    if (lawInPlace) text += std::string(",\"") + lawfulPlace + R"(":"there")";
    text += "}}";
  }
  if (!analytics.empty()) {
    text +=
        R"(,"is_gcm_enabled":true,"gcm_config":{"default_mapping":{"analytics_storage":)" + listText(analytics) + "}}";
  }
  return text + "}";
}

const char* textOf(Law law) {
  constexpr std::array texts{"notice-only", "opt-in", "opt-out"};  // in the order of Law
  return texts[static_cast<std::size_t>(law)];
}

int monthsOf(const std::string& interval) {
  constexpr int year = 12;
  char unit[8] = {};
  int count = 0;
  if (std::sscanf(interval.c_str(), "%d %7s", &count, unit) != 2) return year;
  std::string word = unit;
  std::ranges::transform(word, word.begin(), [](unsigned char c) { return std::tolower(c); });
  return word == "month" ? count : word == "year" ? count * year : year;
}

std::vector<int> anyPurposes(Choices& choices) {
  const bool isAll = choices.oneIn(3);
  std::vector<int> some;
  for (const int purpose : purposes) {
    if (isAll || choices.oneIn(2)) some.push_back(purpose);
  }
  return some;
}

std::vector<Document> makeDocuments(std::uint64_t seed) {
  Choices choices(seed);
  Choices ofSignals(~seed);  // a separate sequence, so that older seeds keep their documents
  std::vector<Document> documents;
  for (int version = 1; version <= howMany; ++version) {
    Document document;
    document.version = version;
    document.asksAgain = choices.oneIn(3);
    for (const int purpose : purposes) {
      if (!choices.oneIn(5)) document.listed.push_back(purpose);
    }
    if (document.listed.empty()) document.listed.push_back(purposes.front());
    for (const int purpose : document.listed) {
      if (choices.oneIn(purpose == 2 ? 2 : 10)) document.essential.push_back(purpose);
    }
    document.bindsToTracking = choices.oneIn(3);
    document.hasBanner = !choices.oneIn(10);
    document.law = anyLaw(choices);
    if (choices.oneIn(4)) document.lawInPlace = anyLaw(choices);
    constexpr std::array intervals{"1 month", "12 month", "2 year", "1 MONTH", "soon", "0 month"};
    if (!choices.oneIn(3)) document.interval = intervals[choices.below(choices.oneIn(3) ? intervals.size() : 2)];
    if (choices.oneIn(2)) document.analytics = {1};
    if (!document.analytics.empty() && choices.oneIn(2)) document.analytics.push_back(3);
    document.hasPermission = choices.oneIn(2);
    if (!ofSignals.oneIn(5)) document.signalled = anyPurposes(ofSignals);
    documents.push_back(std::move(document));
    if (version == howMany) documents.back().asksAgain = false;
  }
  return documents;
}

std::optional<int> versionIn(const std::string& bytes) {
  constexpr std::string_view key = "\"version\":";
  const auto found = bytes.find(key);
  return found == std::string::npos ? std::nullopt : std::optional(std::atoi(bytes.c_str() + found + key.size()));
}

}  // namespace quillon::sim
