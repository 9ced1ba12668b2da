#include "ui/SettingsPrompt/SettingsPromptViewModel.h"

namespace quillon {

std::optional<SettingsPromptViewModel::Content> SettingsPromptViewModel::content() const {
  const auto* result = banner_->settingsPromptResult.get().value();
  if (!result || !*result) return std::nullopt;
  const SettingsPrompt& prompt = **result;
  const auto buttonText = [&](const std::optional<LocalizedText>& configured, Label otherwise) {
    std::string text = banner_->text(configured);
    return text.empty() ? banner_->label(otherwise) : text;
  };
  return Content{banner_->text(prompt.promptHeading), banner_->text(prompt.promptMessage),
                 buttonText(prompt.settingsButtonText, Label::openSettings),
                 buttonText(prompt.notNowButtonText, Label::notNow)};
}

void SettingsPromptViewModel::openSettings() {
  banner_->sdk()->openSystemSettings();
  banner_->leave();
}

void SettingsPromptViewModel::notNow() {
  banner_->leave();
}

void SettingsPromptViewModel::close() {
  banner_->sdk()->closeSettingsPrompt();
  banner_->leave();
}

}  // namespace quillon
