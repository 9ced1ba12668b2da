#include "ui/Common/RichText/RichTextViewModel.h"

#include <utility>

namespace quillon {

std::shared_ptr<RichTextViewModel> RichTextViewModel::make(std::shared_ptr<ScreenServices> sdk) {
  return std::make_shared<RichTextViewModel>(std::move(sdk));
}

RichTextViewModel::RichTextViewModel(std::shared_ptr<ScreenServices> sdk) : sdk_(std::move(sdk)) {}

void RichTextViewModel::setHtml(std::string text) {
  conversion_ = LoadTask::start(
      sdk_, weak_from_this(), [text](ScreenServices&) { return richTextFromHtml(text); },
      [](RichTextViewModel& model, std::optional<AttributedText> converted) {
        model.attributedString.set(std::move(converted));
      });
  // Observers may release the model or call setHtml(), whose conversion then has replaced this one.
  const auto self = shared_from_this();
  html.set(std::move(text));
  if (attributedString.get()) attributedString.set(std::nullopt);
}

}  // namespace quillon
