// The link filter for the network thread of a browser engine.
#pragma once

#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

#include "ui/Common/WebView/LinkFilter.h"

namespace quillon {

// Thread-safe. Shared by a web view model and its surface, which may be destroyed in any order.
class SubresourceGate {
 public:
  // Refuses everything until called.
  void open(std::shared_ptr<const LinkFilter> filter) {
    const std::scoped_lock lock(mutex_);
    filter_ = std::move(filter);
  }

  // Whether a page may fetch the URL, by the same test as for pages. "data:" URLs cause no request.
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
