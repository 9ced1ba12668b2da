#include "platform/linux/PermissionSources/FingerprintSource.h"

#include <string>
#include <utility>

namespace quillon {
namespace {

constexpr int unusable = 0;
constexpr int allowed = 1;
constexpr int denied = 2;

PermissionSource::Answer answer(const BusError& error) {
  if (error.kind == BusError::Kind::absent || error.name == "net.reactivated.Fprint.Error.NoSuchDevice") {
    return std::nullopt;
  }
  if (error.kind == BusError::Kind::denied || error.name == "net.reactivated.Fprint.Error.PermissionDenied") {
    return denied;
  }
  // A sensor without enrolled fingers is unusable, but nobody decided that.
  if (error.name == "net.reactivated.Fprint.Error.NoEnrolledPrints") return unusable;
  return std::unexpected(error.text);
}

PermissionSource::Answer answer(const BusService::Reply& fingers) {
  if (!fingers) return answer(fingers.error());
  const GLibPointer<GVariant> names(g_variant_get_child_value(fingers->get(), 0));
  return g_variant_n_children(names.get()) == 0 ? unusable : allowed;
}

}  // namespace

FingerprintSource::FingerprintSource(MessageBus& system)
    : fprintd_(system, "net.reactivated.Fprint", BusService::Start::onDemand) {}

void FingerprintSource::ask(std::move_only_function<void(Answer)> done) {
  const BusMethod defaultDevice{"/net/reactivated/Fprint/Manager", "net.reactivated.Fprint.Manager", "GetDefaultDevice",
                                "(o)"};
  fprintd_.call(defaultDevice, nullptr, [this, done = std::move(done)](const BusService::Reply& device) mutable {
    if (!device) return done(answer(device.error()));
    const GLibPointer<GVariant> path(g_variant_get_child_value(device->get(), 0));
    const BusMethod enrolledFingers{g_variant_get_string(path.get(), nullptr), "net.reactivated.Fprint.Device",
                                    "ListEnrolledFingers", "(as)"};
    constexpr const char* whoAsks = "";
    fprintd_.call(enrolledFingers, g_variant_new("(s)", whoAsks),
                  [done = std::move(done)](const BusService::Reply& fingers) mutable { done(answer(fingers)); });
  });
}

}  // namespace quillon
