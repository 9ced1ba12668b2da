// The link filter as the network thread of a browser engine asks it.
#pragma once

#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

#include "ui/Common/WebView/LinkFilter.h"

namespace quillon {

// Thread-safe. Shared by a web view model and its surface, so that either may go first.
class SubresourceGate {
 public:
  // Everything is refused until then.
  void open(std::shared_ptr<const LinkFilter> filter) {
    const std::scoped_lock lock(mutex_);
    filter_ = std::move(filter);
  }

  // Whether a page may fetch the address: the test that pages themselves must pass. What a page brings along within
  // its own text ("data:") is no fetch.
  [[nodiscard]] bool allowsSubresource(std::string_view address) const {
    if (address.starts_with("data:")) return true;
    const auto filter = current();
    return filter && filter->test(address).has_value();
  }

 private:
  std::shared_ptr<const LinkFilter> current() const {
    const std::scoped_lock lock(mutex_);
    return filter_;
  }

  mutable std::mutex mutex_;
  std::shared_ptr<const LinkFilter> filter_;
};

}  // namespace quillon
