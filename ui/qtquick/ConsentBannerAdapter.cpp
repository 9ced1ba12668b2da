#include "ui/qtquick/ConsentBannerAdapter.h"

namespace quillon {

ConsentBannerAdapter::ConsentBannerAdapter(std::shared_ptr<ConsentBannerViewModel> model, QObject* parent)
    : Adapter(parent),
      model_(std::move(model)),
      text_(new RichTextAdapter(model_->sdk(), this)),
      logo_(new PictureSource(this)) {
  follow(model_->bannerConfigResult);
  follow(model_->companyLogoResult);
}

const BannerConfig& ConsentBannerAdapter::config() const {
  static const BannerConfig none;
  const auto& banner = model_->bannerConfig.get();
  return banner ? *banner : none;
}

void ConsentBannerAdapter::refresh() {
  text_->setHtml(model_->text(config().bannerText));
  const auto* logo = model_->companyLogoResult.get().value();
  if (logo && *logo != shownLogo_) {
    shownLogo_ = *logo;
    logo_->load(model_->sdk(), [image = shownLogo_](ScreenServices&) { return image; });
  }
}

QVariantList ConsentBannerAdapter::controls(const std::vector<BannerAction>& actions) const {
  QVariantList controls;
  for (const BannerAction action : actions) {
    controls.push_back(
        QVariant::fromValue(BannerControl{static_cast<int>(action), QString::fromStdString(model_->text(action))}));
  }
  return controls;
}

}  // namespace quillon
