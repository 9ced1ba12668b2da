// Presenters that are kept: to make one and to compile its screens takes longer than to draw them.
#pragma once

#include <map>
#include <memory>
#include <utility>

#include "ui/qtquick/QtScreenPresenter.h"

namespace quillon::preview {

class Presenters {
 public:
  // Of that appearance, without motion. The presenter has no screen when its last preview has ended.
  std::shared_ptr<QtScreenPresenter> of(bool isDark, double scale) {
    constexpr std::size_t most = 8;
    const auto key = std::pair(isDark, scale);
    if (presenters_.size() == most && !presenters_.contains(key)) presenters_.clear();
    auto& presenter = presenters_[key];
    if (!presenter) {
      presenter = QtScreenPresenter::make({.isDark = isDark, .textScale = scale, .isMotionReduced = true});
    }
    return presenter;
  }

 private:
  std::map<std::pair<bool, double>, std::shared_ptr<QtScreenPresenter>> presenters_;
};

}  // namespace quillon::preview
