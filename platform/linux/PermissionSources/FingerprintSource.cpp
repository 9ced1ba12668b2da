#include "platform/linux/PermissionSources/FingerprintSource.h"

#include <string>
#include <utility>

namespace quillon {
namespace {

// The platform values of a sensor.
constexpr int sensorUnusable = 0;
constexpr int sensorAllowed = 1;
constexpr int sensorDenied = 2;

PermissionSource::Answer sensorAnswer(const BusError& error) {
  if (error.kind == BusError::Kind::absent || error.name == "net.reactivated.Fprint.Error.NoSuchDevice") {
    return std::nullopt;
  }
  if (error.kind == BusError::Kind::denied || error.name == "net.reactivated.Fprint.Error.PermissionDenied") {
    return sensorDenied;
  }
  // A sensor without enrolled fingers is unusable, which is not a decision of the user.
  if (error.name == "net.reactivated.Fprint.Error.NoEnrolledPrints") return sensorUnusable;
  return std::unexpected(error.text);
}

PermissionSource::Answer sensorAnswer(const BusService::Reply& fingers) {
  if (!fingers) return sensorAnswer(fingers.error());
  const GLibPointer<GVariant> names(g_variant_get_child_value(fingers->get(), 0));
  return g_variant_n_children(names.get()) == 0 ? sensorUnusable : sensorAllowed;
}

}  // namespace

FingerprintSource::FingerprintSource(MessageBus& system)
    : fprintd_(system, "net.reactivated.Fprint", BusService::Start::onDemand) {}

void FingerprintSource::ask(std::move_only_function<void(Answer)> done) {
  const BusMethod defaultDevice{"/net/reactivated/Fprint/Manager", "net.reactivated.Fprint.Manager", "GetDefaultDevice",
                                "(o)"};
  fprintd_.call(defaultDevice, nullptr, [this, done = std::move(done)](const BusService::Reply& device) mutable {
    if (!device) return done(sensorAnswer(device.error()));
    const GLibPointer<GVariant> path(g_variant_get_child_value(device->get(), 0));
    const BusMethod enrolledFingers{g_variant_get_string(path.get(), nullptr), "net.reactivated.Fprint.Device",
                                    "ListEnrolledFingers", "(as)"};
    constexpr const char* whoAsks = "";
    fprintd_.call(enrolledFingers, g_variant_new("(s)", whoAsks),
                  [done = std::move(done)](const BusService::Reply& fingers) mutable { done(sensorAnswer(fingers)); });
  });
}

}  // namespace quillon
