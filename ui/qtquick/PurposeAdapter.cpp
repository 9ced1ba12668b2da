#include "ui/qtquick/PurposeAdapter.h"

namespace quillon {

SdkAdapter::SdkAdapter(const SDK& sdk, const ConsentBannerAdapter& banner, QObject* parent)
    : QObject(parent),
      model_(banner.model()),
      name_(banner.words(sdk.sdkName)),
      description_(new RichTextAdapter(model_->sdk(), this)),
      logo_(new PictureSource(this)),
      website_(QString::fromStdString(sdk.website.value_or(""))),
      websiteLabel_(banner.label(Label::developerURL)),
      websiteName_(banner.joined(Label::partOf, websiteLabel_, name_)) {
  description_->setHtml(model_->text(sdk.sdkDescription));
  if (sdk.logoBase64) {
    logo_->load(model_->sdk(), [text = *sdk.logoBase64](ScreenServices& services) {
      return imageFromBase64(text, services.logger());
    });
  }
  const auto add = [&](Label label, const QString& value) {
    if (value.isEmpty()) return;
    const QString name = banner.label(label);
    facts_.push_back(QVariant::fromValue(SdkFact{name, value, banner.joined(Label::fact, name, value)}));
  };
  add(Label::vendor, QString::fromStdString(sdk.vendor.value_or("")));
  if (sdk.collectingData) add(Label::dataCollected, banner.label(*sdk.collectingData ? Label::yes : Label::no));
  add(Label::licence, QString::fromStdString(sdk.license.value_or("")));
  add(Label::releaseDate, QString::fromStdString(sdk.releaseDate.value_or("")));
}

void SdkAdapter::openWebsite() const {
  model_->openLink(website_.toStdString());
}

PurposeAdapter::PurposeAdapter(std::shared_ptr<const Purpose> purpose,
                               const std::shared_ptr<PreferenceCenterViewModel>& model,
                               const ConsentBannerAdapter& banner, QObject* parent)
    : QObject(parent),
      purpose_(std::move(purpose)),
      model_(model),
      banner_(banner),
      description_(new RichTextAdapter(model->banner()->sdk(), this)),
      disclaimer_(new RichTextAdapter(model->banner()->sdk(), this)),
      toggle_(model->toggle(*purpose_)) {
  description_->setHtml(model->banner()->text(purpose_->purposeDescription));
  if (purpose_->isATTMapped.value_or(false)) {
    disclaimer_->setHtml(model->banner()->text(purpose_->attDescription));
  } else if (purpose_->disableOptOut.value_or(false)) {
    disclaimer_->setHtml(model->banner()->text(purpose_->optOutText));
  } else if (purpose_->isOptedOutBySignal) {
    disclaimer_->setHtml(model->banner()->label(Label::privacySignalExplanation));
  }
  connect(description_, &Adapter::changed, this, &PurposeAdapter::changed);
}

QString PurposeAdapter::name() const {
  return banner_.words(purpose_->purposeName);
}

bool PurposeAdapter::hasSdks() const {
  return !purpose_->hideDetails.value_or(false) && purpose_->sdks && !purpose_->sdks->empty();
}

bool PurposeAdapter::hasSwitch() const {
  const bool hidesEssential = banner_.config().hideToggleForEssentialCategories.value_or(false);
  return !(hidesEssential && purpose_->disableOptOut.value_or(false));
}

// The view model reports "always active" for any fixed purpose; one that is off is not active.
QString PurposeAdapter::state() const {
  return isDeclined() ? banner_.label(Label::rejected) : QString::fromStdString(toggle_.label);
}

QString PurposeAdapter::reason() const {
  return isDeclined() && purpose_->isATTMapped.value_or(false) ? banner_.label(Label::trackingNotAllowed) : QString();
}

QString PurposeAdapter::switchDescription() const {
  if (toggle_.isEnabled) return banner_.joined(Label::twoSentences, state(), QString::fromStdString(toggle_.hint));
  const QString explanation = banner_.label(purpose_->isATTMapped.value_or(false) ? Label::attManagedPurposeExplanation
                                                                                  : Label::essentialPurposeExplanation);
  return banner_.joined(Label::twoSentences, banner_.joined(Label::twoSentences, state(), reason()), explanation);
}

bool PurposeAdapter::canExpand() const {
  const bool showsDescription = banner_.config().showDescriptionTextWithPrefCenterToggle.value_or(false);
  return hasSdks() || (!showsDescription && !description_->plainText().isEmpty());
}

QString PurposeAdapter::detailsName() const {
  return banner_.joined(Label::partOf, banner_.label(Label::details), name());
}

void PurposeAdapter::tapToggle() const {
  if (purpose_->purposeId) model_->tapToggle(*purpose_->purposeId);
}

void PurposeAdapter::loadSdks() {
  if (!sdks_.empty() || !hasSdks()) return;
  for (const SDK& sdk : *purpose_->sdks) sdks_.push_back(new SdkAdapter(sdk, banner_, this));
  Q_EMIT sdksChanged();
}

void PurposeAdapter::refresh() {
  PurposeToggle now = model_->toggle(*purpose_);
  if (now == toggle_) return;
  toggle_ = std::move(now);
  Q_EMIT changed();
}

}  // namespace quillon
