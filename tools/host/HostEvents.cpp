#include "tools/host/HostEvents.h"

#include <boost/json/parse.hpp>
#include <utility>

#include "core/Json/Codec.h"

namespace quillon::tools {

namespace json = boost::json;

void HostEvents::listenTo(ConsentSDK& sdk) {
  if (!listening_.empty()) return;
  listening_.push_back(sdk.listenToConsents([this](const Decision& change) {
    json::object event = json::parse(encode(change)).as_object();
    event["event"] = "consent";
    add(std::move(event));
  }));
  listening_.push_back(sdk.listenToScreens([this](const ScreenEvent& screen) {
    add({{"event", screen.isShown ? "shown" : "dismissed"},
         {"screen", rawValue(screen.screen)},
         {"time", screen.time}});
  }));
  listening_.push_back(sdk.listenToUploads([this](const UploadEvent& upload) {
    add({{"event", "upload"},
         {"accepted", upload.isAccepted},
         {"status", upload.status ? json::value(*upload.status) : json::value()},
         {"message", upload.message},
         {"time", upload.time}});
  }));
}

json::array HostEvents::take() {
  const std::scoped_lock lock(mutex_);
  return std::exchange(events_, {});
}

void HostEvents::add(json::object event) {
  const std::scoped_lock lock(mutex_);
  events_.push_back(std::move(event));
}

void HostGates::note(ConsentSDK& sdk, std::int64_t purposeId) {
  gates_.push_back(sdk.whileAllowed(
      purposeId, [this, purposeId] { add(purposeId, "start"); }, [this, purposeId] { add(purposeId, "stop"); }));
}

boost::json::array HostGates::take() {
  const std::scoped_lock lock(mutex_);
  return std::exchange(calls_, {});
}

void HostGates::add(std::int64_t purposeId, const char* call) {
  const std::scoped_lock lock(mutex_);
  calls_.push_back({{"purposeId", purposeId}, {"call", call}});
}

}  // namespace quillon::tools
