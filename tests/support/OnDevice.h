// The test kit's device with one application, on which every state can be reached.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/ScreenServices.h"
#include "quillon/Testing.h"

namespace quillon::test {

struct OnDevice {
  using Change = std::function<void(ConsentSDKOptions&)>;

  // Another process, which has loaded.
  void launch(const Change& change = {}) {
    sdk.reset();
    sdk = device.launch();
    setup(change);
    device.settle();
  }
  void setup(const Change& change = {}) const {
    ConsentSDKOptions options = device.options();
    if (change) change(options);
    sdk->setup(options);
  }
  // The purposes that are allowed, one digit each.
  std::string allowed() const {
    std::string ids;
    for (const std::int64_t id : {1, 2, 3, 4, 9}) {
      if (sdk->isAllowed(id)) ids += std::to_string(id);
    }
    return ids;
  }
  std::size_t asked(std::string_view path) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        device.requests(), [&](const auto& request) { return request.url.find(path) != std::string::npos; }));
  }

  quillon::testing::Device device;
  std::unique_ptr<ConsentSDK> sdk;
};

}  // namespace quillon::test
