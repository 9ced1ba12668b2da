// A user interface that records its calls.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/ScreenPresenter.h"

namespace quillon {

// Thread-safe.
class RecordingPresenter : public ScreenPresenter {
 public:
  void presentBanner(Services /*sdk*/) override { note("banner"); }
  void presentPreferenceCenter(Services /*sdk*/) override { note("preferences"); }
  void presentSettingsPrompt(Services /*sdk*/, const VantariKey& permission) override {
    note("prompt " + permission.rawValue());
  }
  void presentWebView(Services /*sdk*/, const std::string& link) override { note("link " + link); }
  void dismissTopMost() override { note("dismiss"); }
  void dismissBanner(Services /*sdk*/) override { note("dismiss banner"); }
  void openSystemSettings() override { note("settings"); }

  // The calls since the last take().
  std::vector<std::string> take() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(noted_, {});
  }

 private:
  void note(std::string what) {
    const std::scoped_lock lock(mutex_);
    noted_.push_back(std::move(what));
  }
  std::mutex mutex_;
  std::vector<std::string> noted_;
};

}  // namespace quillon
