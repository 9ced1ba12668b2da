#include "core/Purposes/OptOuts.h"

#include <algorithm>

#include "core/Purposes/PurposeTerms.h"

namespace quillon {

SignalMapping::SignalMapping(const PrivacySignal& options, const MainConfiguration* configuration) {
  const auto& named = options.purposes || !configuration ? options.purposes : configuration->privacySignalPurposes;
  isKnown_ = configuration || named;
  purposes_ = named.value_or(std::vector<std::int64_t>());
  if (configuration) {
    const PurposeTerms terms(*configuration, std::nullopt);
    std::erase_if(purposes_, [&](std::int64_t id) { return terms.isEssential(id) || terms.isBoundToTracking(id); });
  }
  std::ranges::sort(purposes_);
}

bool SignalMapping::covers(std::int64_t purposeId) const {
  return !isKnown_ || std::ranges::binary_search(purposes_, purposeId);
}

}  // namespace quillon
