// The screens of one process, with the view models that a toolkit would draw.
#pragma once

#include <memory>
#include <optional>

#include "platform/ScreenPresenter.h"
#include "tests/sim/Surroundings.h"
#include "ui/ConsentBanner/ConsentBannerViewModel.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"

namespace quillon::sim {

// A banner that is asked for while there is one stays as it is, and so does a preference centre.
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

  // What the user does on the screen, if it is there; the effect on the store.
  void tapBanner(unsigned what, ActReport& report);
  void tapPreferences(unsigned what, ActReport& report);
  // Takes everything away without a tap.
  void clear();

 private:
  struct Banner {
    std::shared_ptr<ConsentBannerViewModel> model;
    std::shared_ptr<void> shown;
  };
  struct Preferences {
    std::shared_ptr<PreferenceCenterViewModel> model;
    std::shared_ptr<void> shown;
    std::size_t openedAt;  // contents of the store
  };

  void judge(const Preferences& preferences) const;

  Surroundings& around_;
  std::optional<Banner> banner_;
  std::optional<Preferences> preferences_;
};

}  // namespace quillon::sim
