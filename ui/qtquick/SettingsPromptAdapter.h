// The settings prompt's view model for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <memory>

#include "ui/SettingsPrompt/SettingsPromptViewModel.h"
#include "ui/qtquick/ConsentBannerAdapter.h"

namespace quillon {

class SettingsPromptAdapter : public Adapter {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each screen")
  Q_PROPERTY(quillon::ConsentBannerAdapter* banner READ banner CONSTANT)
  Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
  Q_PROPERTY(bool hasFailed READ hasFailed NOTIFY changed)
  Q_PROPERTY(QString failure READ failure NOTIFY changed)
  Q_PROPERTY(QString heading READ heading NOTIFY changed)
  Q_PROPERTY(QString name READ name NOTIFY changed)
  Q_PROPERTY(quillon::RichTextAdapter* message READ message CONSTANT)
  Q_PROPERTY(QVariantList answers READ answers NOTIFY changed)

 public:
  explicit SettingsPromptAdapter(std::unique_ptr<SettingsPromptViewModel> model, QObject* parent = nullptr)
      : Adapter(parent),
        model_(std::move(model)),
        banner_(new ConsentBannerAdapter(model_->banner(), this)),
        message_(new RichTextAdapter(model_->banner()->sdk(), this)) {
    follow(model_->banner()->settingsPromptResult);
    follow(model_->banner()->bannerConfigResult);
  }

  ConsentBannerAdapter* banner() const { return banner_; }
  bool isLoading() const { return !hasFailed() && !model_->banner()->settingsPromptResult.get().value(); }
  bool hasFailed() const { return model_->banner()->settingsPromptResult.get().error() != nullptr; }
  QString failure() const { return hasFailed() ? banner_->label(Label::settingsPromptUnavailable) : QString(); }
  QString heading() const { return QString::fromStdString(content_.heading); }
  QString name() const { return heading().isEmpty() ? banner_->label(Label::openSettings) : heading(); }
  RichTextAdapter* message() const { return message_; }
  QVariantList answers() const {
    if (hasFailed()) return {};
    return {QVariant::fromValue(BannerControl{notNow, QString::fromStdString(content_.notNowButton)}),
            QVariant::fromValue(BannerControl{openSettings, QString::fromStdString(content_.settingsButton)})};
  }

  // Loads the screen's content, or retries.
  Q_INVOKABLE void load() {
    model_->banner()->loadBannerConfig();
    model_->banner()->loadSettingsPrompt();
  }
  Q_INVOKABLE void perform(int action) { action == openSettings ? model_->openSettings() : model_->notNow(); }
  Q_INVOKABLE void close() { model_->close(); }

 protected:
  void refresh() override {
    content_ = model_->content().value_or(SettingsPromptViewModel::Content{});
    message_->setHtml(content_.message);
  }

 private:
  enum Action { notNow, openSettings };

  const std::unique_ptr<SettingsPromptViewModel> model_;
  ConsentBannerAdapter* const banner_;
  RichTextAdapter* const message_;
  SettingsPromptViewModel::Content content_;
};

}  // namespace quillon
