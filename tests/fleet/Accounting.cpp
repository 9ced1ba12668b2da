#include "tests/fleet/Fleet.h"

#include <set>
#include <tuple>

#include "core/Json/Codec.h"
#include "quillon/PostConsentsRequest.h"

namespace quillon::fleet {

std::expected<Accounting, std::string> account(const Fleet& fleet, const tools::UploadStore& uploads) {
  Accounting result;
  std::map<std::string, std::map<std::int64_t, ConsentStatus>> kept;  // by subject; later uploads replace earlier ones
  std::set<std::tuple<std::string, std::int64_t, ConsentStatus, std::int64_t>> seen;
  const auto read = uploads.forEach([&](const tools::UploadStore::Upload& upload) -> std::expected<void, std::string> {
    if (upload.status != 0) return {};
    const auto request = decode<PostConsentsRequest>(upload.body);
    if (!request) return std::unexpected(request.error());
    ++result.uploads;
    for (const PurposeConsent& consent : request->purposeConsents) {
      kept[request->uuid][consent.purposeID] = consent.consentStatus;
      if (!seen.emplace(request->uuid, consent.purposeID, consent.consentStatus, consent.timestamp).second) {
        ++result.repeated;
      }
    }
    return {};
  });
  if (!read) return std::unexpected(read.error());

  for (const auto& device : fleet.devices()) {
    result.decisions += device->decisionCount();
    result.contradictions += device->contradictions();
    auto atServer = kept.extract(device->subject());
    for (const auto& [purpose, status] : device->statuses()) {
      ++result.purposes;
      if (atServer.empty() || !atServer.mapped().contains(purpose)) {
        ++result.missing;
      } else if (atServer.mapped().extract(purpose).mapped() != status) {
        ++result.different;
      }
    }
    if (!atServer.empty()) result.unknown += static_cast<std::int64_t>(atServer.mapped().size());
  }
  for (const auto& [subject, purposes] : kept) result.unknown += static_cast<std::int64_t>(purposes.size());
  return result;
}

}  // namespace quillon::fleet
