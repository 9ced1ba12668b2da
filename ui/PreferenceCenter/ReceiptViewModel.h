// The view model of the receipt in the preference centre.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileChooser.h"
#include "platform/ReceiptSummary.h"
#include "quillon/ConsentSDKResult.h"
#include "ui/Common/LoadTask.h"
#include "ui/Common/Published.h"
#include "ui/ConsentBanner/ConsentBannerViewModel.h"

namespace quillon {

// Main queue only. Lives as long as the screen; its destruction closes the dialog.
class ReceiptViewModel : public std::enable_shared_from_this<ReceiptViewModel> {
 public:
  enum class Saving { notAsked, choosing, saved, cancelled, unavailable, failed };

  static std::shared_ptr<ReceiptViewModel> make(std::shared_ptr<ConsentBannerViewModel> banner);
  explicit ReceiptViewModel(std::shared_ptr<ConsentBannerViewModel> banner);  // use make()

  // The receipt's content.
  Published<ConsentSDKResult<std::vector<ReceiptLine>>> lines{ConsentSDKResult<std::vector<ReceiptLine>>::none()};
  Published<Saving> saving{Saving::notAsked};

  // Makes a new receipt of all stored decisions.
  void load();
  // Asks the user where to save the displayed receipt; no-op without one. Closes an earlier dialog.
  void save();

 private:
  const std::shared_ptr<ConsentBannerViewModel> banner_;
  std::string document_;  // the displayed receipt; empty without one
  std::optional<LoadTask> loading_;
  std::shared_ptr<char> asked_;  // identifies the latest dialog
  std::unique_ptr<FileChoice> choice_;
};

}  // namespace quillon
