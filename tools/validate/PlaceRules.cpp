#include <algorithm>

#include "core/Text/Ascii.h"
#include "tools/validate/Codes.h"
#include "tools/validate/Rules.h"

namespace quillon::tools {

void placesExist(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.bannerConfig) return;
  for (const auto& [place, category] : configuration.bannerConfig->locations) {
    if (report.isFull()) return;
    if (place == "default") continue;
    const auto problem = placeProblem(place);
    if (!problem.empty()) report(DocumentPath().at("banner_config").at("locations").at(place), problem);
  }
}

// A key lists locations, or subdivisions of the user's country such as "CA".
void regionsExist(const MainConfiguration& configuration, const Report& report) {
  if (!configuration.gcmConfig || !configuration.gcmConfig->regionOverrides) return;
  for (const auto& [regions, mapping] : *configuration.gcmConfig->regionOverrides) {
    for (std::string_view rest = regions; !report.isFull();) {
      const auto comma = rest.find(',');
      const auto region = trimmed(rest.substr(0, comma));
      const auto problem = placeProblem(region);
      if (!problem.empty() && !isPartOfAny(region)) {
        report(DocumentPath().at("gcm_config").at("region_overrides").at(regions), problem);
      }
      if (comma == std::string_view::npos) break;
      rest.remove_prefix(comma + 1);
    }
  }
}

}  // namespace quillon::tools
