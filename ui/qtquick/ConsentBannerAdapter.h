// The banner's view model for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <QVariantList>
#include <memory>

#include "ui/ConsentBanner/ConsentBannerViewModel.h"
#include "ui/qtquick/Adapter.h"
#include "ui/qtquick/Picture.h"
#include "ui/qtquick/RichTextAdapter.h"

namespace quillon {

// A button of the banner.
struct BannerControl {
  Q_GADGET
  QML_VALUE_TYPE(bannerControl)
  Q_PROPERTY(int action MEMBER action)
  Q_PROPERTY(QString text MEMBER text)

 public:
  int action;
  QString text;
};

class ConsentBannerAdapter : public Adapter {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each screen")
  Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
  Q_PROPERTY(bool hasFailed READ hasFailed NOTIFY changed)
  // The message to show; empty without a failure.
  Q_PROPERTY(QString failure READ failure NOTIFY changed)
  Q_PROPERTY(bool isCentered READ isCentered NOTIFY changed)
  Q_PROPERTY(bool showsPoweredBy READ showsPoweredBy NOTIFY changed)
  Q_PROPERTY(bool canClose READ canClose NOTIFY changed)
  Q_PROPERTY(QString heading READ heading NOTIFY changed)
  // The dialog's accessible name, also without a heading.
  Q_PROPERTY(QString name READ name NOTIFY changed)
  Q_PROPERTY(quillon::RichTextAdapter* text READ text CONSTANT)
  Q_PROPERTY(quillon::PictureSource* logo READ logo CONSTANT)
  Q_PROPERTY(QVariantList answers READ answers NOTIFY changed)
  Q_PROPERTY(QVariantList links READ links NOTIFY changed)
  Q_PROPERTY(QString closeLabel READ closeLabel NOTIFY changed)
  Q_PROPERTY(QString logoLabel READ logoLabel NOTIFY changed)
  Q_PROPERTY(QString refreshLabel READ refreshLabel NOTIFY changed)
  Q_PROPERTY(QString activationHint READ activationHint NOTIFY changed)
  Q_PROPERTY(QString loadingLabel READ loadingLabel NOTIFY changed)

 public:
  explicit ConsentBannerAdapter(std::shared_ptr<ConsentBannerViewModel> model, QObject* parent = nullptr);

  const std::shared_ptr<ConsentBannerViewModel>& model() const { return model_; }

  bool isLoading() const { return !isLoaded() && !hasFailed(); }
  bool isLoaded() const { return model_->bannerConfigResult.get().value() != nullptr; }
  bool hasFailed() const { return model_->bannerConfigResult.get().error() != nullptr; }
  QString failure() const { return hasFailed() ? label(Label::bannerUnavailable) : QString(); }
  bool isCentered() const { return config().bannerPosition == BannerPosition::center; }
  bool showsPoweredBy() const { return config().showPoweredByQuillonLogo.value_or(false); }
  bool canClose() const { return buttons().close; }
  QString heading() const { return words(config().bannerHeading); }
  QString name() const { return heading().isEmpty() ? label(Label::privacyNotice) : heading(); }
  RichTextAdapter* text() const { return text_; }
  PictureSource* logo() const { return logo_; }
  // Empty while there is nothing to answer.
  QVariantList answers() const { return hasFailed() ? QVariantList() : controls(buttons().answers); }
  QVariantList links() const { return controls(buttons().links); }
  QString closeLabel() const { return label(Label::close); }
  QString logoLabel() const { return label(Label::companyLogo); }
  QString refreshLabel() const { return label(Label::webViewRefresh); }
  QString activationHint() const { return label(Label::activationHint); }
  QString loadingLabel() const { return label(Label::loading); }

  // Loads the screen's content, or retries.
  Q_INVOKABLE void load() {
    model_->loadBannerConfig();
    model_->loadCompanyLogo();
  }
  Q_INVOKABLE void perform(int action) {
    lastAction_ = static_cast<BannerAction>(action);
    model_->perform(lastAction_);
  }
  Q_INVOKABLE void close() { perform(static_cast<int>(BannerAction::close)); }
  // The user's last action on this banner.
  BannerAction lastAction() const { return lastAction_; }
  Q_INVOKABLE void appeared() { model_->appeared(); }
  // Combines two texts for a screen reader.
  Q_INVOKABLE QString sentences(const QString& first, const QString& second) const {
    return joined(Label::twoSentences, first, second);
  }

  QString joined(Label pattern, const QString& first, const QString& second) const {
    return QString::fromStdString(model_->joined(pattern, first.toStdString(), second.toStdString()));
  }
  QString label(Label label) const { return QString::fromStdString(model_->label(label)); }
  QString words(const std::optional<LocalizedText>& text) const { return QString::fromStdString(model_->text(text)); }
  const BannerConfig& config() const;

 protected:
  void refresh() override;

 private:
  BannerButtons buttons() const { return buttonsByComplianceType(config()); }
  QVariantList controls(const std::vector<BannerAction>& actions) const;

  const std::shared_ptr<ConsentBannerViewModel> model_;
  RichTextAdapter* const text_;
  PictureSource* const logo_;
  std::optional<EncodedImage> shownLogo_;
  BannerAction lastAction_ = BannerAction::close;
};

}  // namespace quillon
