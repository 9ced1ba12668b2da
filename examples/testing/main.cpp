// Tests an application's consent flow on an in-memory device, instantly and without a network.
#include <chrono>
#include <cstdlib>
#include <iostream>

#include "quillon/Testing.h"

namespace {

using namespace std::chrono_literals;
using quillon::ConsentStatus;

// The code under test: it measures only when allowed.
class Measuring {
 public:
  explicit Measuring(quillon::ConsentSDK& sdk) : sdk_(sdk) {}
  bool isAllowed() const { return sdk_.isAllowed(2); }

 private:
  quillon::ConsentSDK& sdk_;
};

constexpr const char* configuration = R"({
  "version": 1,
  "purposes": [{"purpose_id": 2, "purpose_name": {"en": "Audience measurement"}}],
  "permissions": [{"permission_id": "NSCameraUsageDescription"}],
  "banner_config": {
    "categories": {"all": {"compliance_type": "opt-in", "banner_reappearance_time": "12 month"}},
    "names_map": {}, "locations": {"default": "all"}
  }
})";

int failures = 0;

void expect(bool isTrue, const char* claim) {
  std::cout << (isTrue ? "ok     " : "FAILED ") << claim << '\n';
  if (!isTrue) ++failures;
}

}  // namespace

int main() {
  quillon::testing::Device device;
  device.publish(configuration);
  device.setPermission(quillon::VantariKey::cameraUsageDescription, ConsentStatus::declined);
  auto sdk = device.launch();
  sdk->setup(device.options());
  device.settle();

  expect(!Measuring(*sdk).isAllowed(), "nothing is measured before the user was asked");
  sdk->presentBanner();
  device.settle();
  expect(device.takeScreens() == std::vector<std::string>{"banner"}, "the first start shows the banner");
  expect(sdk->get(quillon::VantariKey::cameraUsageDescription) == ConsentStatus::declined,
         "the device's own setting counts for the camera");

  device.setOnline(false);
  bool isStored = false;
  sdk->acceptOrReject(true, [&](bool stored) { isStored = stored; });
  device.settle();
  expect(isStored && Measuring(*sdk).isAllowed(), "an answer counts at once, also without a network");

  const auto failed = device.uploads().size();
  device.setOnline(true);
  device.advance(std::chrono::minutes(1));  // uploads after an outage are spread randomly
  expect(device.uploads().size() == failed + 1, "it is uploaded when the network is back");

  sdk.reset();
  sdk = device.launch();
  sdk->setup(device.options());
  device.settle();
  expect(Measuring(*sdk).isAllowed() && !sdk->isBannerDue(), "the next start remembers the answer");
  device.advance(std::chrono::hours(24 * 366));
  expect(sdk->isBannerDue(), "after a year the user is asked again");

  quillon::Purpose measuring;
  measuring.purposeId = 2;
  device.setDiskFull(true);
  expect(!sdk->set(measuring, ConsentStatus::declined) && Measuring(*sdk).isAllowed(),
         "a choice that cannot be stored is reported, and the earlier one stands");
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
