// The screens of one process: the real view models, without rendering.
#pragma once

#include <memory>
#include <optional>

#include "platform/ScreenPresenter.h"
#include "tests/sim/Surroundings.h"
#include "ui/ConsentBanner/ConsentBannerViewModel.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"

namespace quillon::sim {

// Presenting a banner or preference centre that is already shown has no effect.
class Screens : public ScreenPresenter {
 public:
  explicit Screens(Surroundings& around) : around_(around) {}

  void presentBanner(Services sdk) override;
  void presentPreferenceCenter(Services sdk) override;
  void presentSettingsPrompt(Services sdk, const VantariKey& permission) override;
  void presentWebView(Services /*sdk*/, const std::string& /*link*/) override {}
  void dismissTopMost() override;
  void dismissBanner(Services sdk) override;
  void openSystemSettings() override {}

  // Simulate user input on the screen, if shown; report the effect on the store.
  void tapBanner(unsigned what, ActReport& report);
  void tapPreferences(unsigned what, ActReport& report);
  // Removes all screens without input.
  void clear();

 private:
  struct Banner {
    std::shared_ptr<ConsentBannerViewModel> model;
    std::shared_ptr<void> shown;
  };
  struct Preferences {
    std::shared_ptr<PreferenceCenterViewModel> model;
    std::shared_ptr<void> shown;
    std::size_t openedAt;  // index into Surroundings::moments
  };

  void judge(const Preferences& preferences) const;

  Surroundings& around_;
  std::optional<Banner> banner_;
  std::optional<Preferences> preferences_;
};

}  // namespace quillon::sim
