#include "ui/qtquick/PurposeAdapter.h"

namespace quillon {

SdkAdapter::SdkAdapter(const SDK& sdk, const std::shared_ptr<ConsentBannerViewModel>& banner, QObject* parent)
    : QObject(parent),
      banner_(banner),
      name_(QString::fromStdString(banner->text(sdk.sdkName))),
      description_(new RichTextAdapter(banner->sdk(), this)),
      logo_(new PictureSource(this)),
      website_(QString::fromStdString(sdk.website.value_or(""))),
      websiteLabel_(QString::fromStdString(banner->label(Label::developerURL))) {
  description_->setHtml(banner->text(sdk.sdkDescription));
  if (sdk.logoBase64) {
    logo_->load(banner->sdk(), [text = *sdk.logoBase64](ScreenServices& services) {
      return imageFromBase64(text, services.logger());
    });
  }
  const auto add = [&](Label label, const std::optional<std::string>& value) {
    if (!value || value->empty()) return;
    facts_.push_back(
        QVariant::fromValue(SdkFact{QString::fromStdString(banner->label(label)), QString::fromStdString(*value)}));
  };
  add(Label::vendor, sdk.vendor);
  if (sdk.collectingData) add(Label::dataCollected, banner->label(*sdk.collectingData ? Label::yes : Label::no));
  add(Label::licence, sdk.license);
  add(Label::releaseDate, sdk.releaseDate);
}

void SdkAdapter::openWebsite() const {
  banner_->openLink(website_.toStdString());
}

PurposeAdapter::PurposeAdapter(std::shared_ptr<const Purpose> purpose,
                               const std::shared_ptr<PreferenceCenterViewModel>& model, QObject* parent)
    : QObject(parent),
      purpose_(std::move(purpose)),
      model_(model),
      description_(new RichTextAdapter(model->banner()->sdk(), this)),
      disclaimer_(new RichTextAdapter(model->banner()->sdk(), this)),
      toggle_(model->toggle(*purpose_)) {
  const auto& banner = model_->banner();
  description_->setHtml(banner->text(purpose_->purposeDescription));
  if (purpose_->isATTMapped.value_or(false)) {
    disclaimer_->setHtml(banner->text(purpose_->attDescription));
  } else if (purpose_->disableOptOut.value_or(false)) {
    disclaimer_->setHtml(banner->text(purpose_->optOutText));
  } else if (purpose_->isOptedOutBySignal) {
    disclaimer_->setHtml(banner->label(Label::privacySignalExplanation));
  }
}

QString PurposeAdapter::name() const {
  return QString::fromStdString(model_->banner()->text(purpose_->purposeName));
}

bool PurposeAdapter::hasSdks() const {
  return !purpose_->hideDetails.value_or(false) && purpose_->sdks && !purpose_->sdks->empty();
}

bool PurposeAdapter::hasSwitch() const {
  const auto& banner = model_->banner()->bannerConfig.get();
  const bool hidesEssential = banner && banner->hideToggleForEssentialCategories.value_or(false);
  return !(hidesEssential && purpose_->disableOptOut.value_or(false));
}

QString PurposeAdapter::explanation() const {
  if (toggle_.isEnabled) return {};
  return QString::fromStdString(model_->banner()->label(purpose_->isATTMapped.value_or(false)
                                                            ? Label::attManagedPurposeExplanation
                                                            : Label::essentialPurposeExplanation));
}

void PurposeAdapter::tapToggle() const {
  if (purpose_->purposeId) model_->tapToggle(*purpose_->purposeId);
}

void PurposeAdapter::loadSdks() {
  if (!sdks_.isEmpty() || !hasSdks()) return;
  for (const SDK& sdk : *purpose_->sdks) sdks_.push_back(new SdkAdapter(sdk, model_->banner(), this));
  Q_EMIT sdksChanged();
}

void PurposeAdapter::refresh() {
  PurposeToggle now = model_->toggle(*purpose_);
  if (now == toggle_) return;
  toggle_ = std::move(now);
  Q_EMIT changed();
}

}  // namespace quillon
