#include "ui/PreferenceCenter/ReceiptViewModel.h"

#include <utility>

#include "platform/ReceiptIssuer.h"
#include "ui/Common/Labels/Languages.h"
#include "ui/Common/Labels/ReceiptWords.h"

namespace quillon {
namespace {

using LinesResult = ConsentSDKResult<std::vector<ReceiptLine>>;
using Saving = ReceiptViewModel::Saving;

struct MadeReceipt {
  std::string document;
  LinesResult lines;
};

// A failure is logged.
MadeReceipt receiptFrom(ScreenServices& sdk, const ReceiptWords& words) {
  const auto receipt = sdk.receipt();
  const auto* const document = receipt.value();
  if (document != nullptr && sdk.receipts() != nullptr) {
    if (auto lines = sdk.receipts()->summary(*document, words)) {
      return {*document, LinesResult::success(std::move(*lines))};
    }
  }
  return {"", LinesResult::failure({std::string(englishLabels().text(Label::receiptUnavailable))})};
}

Saving savingAfter(SaveOutcome outcome) {
  switch (outcome) {
    case SaveOutcome::saved:
      return Saving::saved;
    case SaveOutcome::cancelled:
      return Saving::cancelled;
    case SaveOutcome::unavailable:
      return Saving::unavailable;
    case SaveOutcome::failed:
      break;
  }
  return Saving::failed;
}

}  // namespace

std::shared_ptr<ReceiptViewModel> ReceiptViewModel::make(std::shared_ptr<ConsentBannerViewModel> banner) {
  return std::make_shared<ReceiptViewModel>(std::move(banner));
}

ReceiptViewModel::ReceiptViewModel(std::shared_ptr<ConsentBannerViewModel> banner) : banner_(std::move(banner)) {}

void ReceiptViewModel::load() {
  auto words = receiptWords([this](Label label) { return banner_->label(label); });
  loading_ = LoadTask::start(
      banner_->sdk(), weak_from_this(),
      [words = std::move(words)](ScreenServices& sdk) { return receiptFrom(sdk, words); },
      [](ReceiptViewModel& model, MadeReceipt made) {
        model.document_ = std::move(made.document);
        model.lines.set(std::move(made.lines));
      });
  lines.set(LinesResult::loading());
  if (saving.get() != Saving::choosing) saving.set(Saving::notAsked);
}

void ReceiptViewModel::save() {
  if (document_.empty()) return;
  choice_.reset();
  const auto chooser = banner_->sdk()->chooser();
  if (!chooser) return saving.set(Saving::unavailable);
  saving.set(Saving::choosing);
  FileToSave file{.title = banner_->label(Label::saveReceipt),
                  .accept = banner_->label(Label::saveReceipt),
                  .name = "receipt.json",
                  .content = document_};
  // Tells a late result of an earlier dialog from that of this one.
  asked_ = std::make_shared<char>();
  choice_ = chooser->save(std::move(file), [sdk = std::weak_ptr(banner_->sdk()), model = weak_from_this(),
                                            asked = std::weak_ptr(asked_)](SaveOutcome outcome) {
    const auto alive = sdk.lock();  // the services own the chooser, so a strong reference would be a cycle
    if (!alive) return;
    alive->onMain([model, asked, outcome] {
      const auto shown = model.lock();
      if (shown && !asked.expired()) shown->saving.set(savingAfter(outcome));
    });
  });
}

}  // namespace quillon
