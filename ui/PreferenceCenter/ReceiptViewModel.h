// The receipt in the preference centre: what it says, and what becomes of its file.
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

// For the main queue only. Lives as long as the screen, and the dialog with it.
class ReceiptViewModel : public std::enable_shared_from_this<ReceiptViewModel> {
 public:
  enum class Saving { notAsked, choosing, saved, cancelled, unavailable, failed };

  static std::shared_ptr<ReceiptViewModel> make(std::shared_ptr<ConsentBannerViewModel> banner);
  explicit ReceiptViewModel(std::shared_ptr<ConsentBannerViewModel> banner);  // use make()

  // What the receipt says.
  Published<ConsentSDKResult<std::vector<ReceiptLine>>> lines{ConsentSDKResult<std::vector<ReceiptLine>>::none()};
  Published<Saving> saving{Saving::notAsked};

  // Makes a new receipt of all decisions that are stored.
  void load();
  // Asks the user where to save the receipt that is shown; nothing without one. A dialog that is still open is closed.
  void save();

 private:
  const std::shared_ptr<ConsentBannerViewModel> banner_;
  std::string document_;  // what is shown; empty without a receipt
  std::optional<LoadTask> loading_;
  std::shared_ptr<char> asked_;  // of the newest dialog
  std::unique_ptr<FileChoice> choice_;
};

}  // namespace quillon
