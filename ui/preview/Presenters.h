// Caches presenters: creating one and compiling its screens takes longer than drawing them.
#pragma once

#include <map>
#include <memory>
#include <utility>

#include "ui/qtquick/QtScreenPresenter.h"

namespace quillon::preview {

class Presenters {
 public:
  // A presenter of that appearance, without animation. It has no screen once its last preview has been destroyed.
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
