#include "ui/SettingsPrompt/SettingsPromptViewModel.h"

namespace quillon {

std::optional<SettingsPromptViewModel::Content> SettingsPromptViewModel::content() const {
  const auto* result = banner_->settingsPromptResult.get().value();
  if (!result || !*result) return std::nullopt;
  const SettingsPrompt& prompt = **result;
  return Content{banner_->text(prompt.promptHeading), banner_->text(prompt.promptMessage),
                 banner_->text(prompt.settingsButtonText), banner_->text(prompt.notNowButtonText)};
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
