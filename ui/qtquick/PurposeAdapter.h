// A purpose of the preference centre for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <QVariantList>

#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/qtquick/ConsentBannerAdapter.h"
#include "ui/qtquick/Picture.h"
#include "ui/qtquick/RichTextAdapter.h"

namespace quillon {

// A fact about an SDK.
struct SdkFact {
  Q_GADGET
  QML_VALUE_TYPE(sdkFact)
  Q_PROPERTY(QString label MEMBER label)
  Q_PROPERTY(QString value MEMBER value)
  // Label and value, for screen readers.
  Q_PROPERTY(QString sentence MEMBER sentence)

 public:
  QString label;
  QString value;
  QString sentence;
};

// An SDK covered by a purpose.
class SdkAdapter : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each component")
  Q_PROPERTY(QString name MEMBER name_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description_ CONSTANT)
  Q_PROPERTY(quillon::PictureSource* logo MEMBER logo_ CONSTANT)
  Q_PROPERTY(QVariantList facts MEMBER facts_ CONSTANT)
  Q_PROPERTY(QString website MEMBER website_ CONSTANT)
  Q_PROPERTY(QString websiteLabel MEMBER websiteLabel_ CONSTANT)
  // Distinguishes this link from those of other SDKs.
  Q_PROPERTY(QString websiteName MEMBER websiteName_ CONSTANT)

 public:
  SdkAdapter(const SDK& sdk, const ConsentBannerAdapter& banner, QObject* parent);

  Q_INVOKABLE void openWebsite() const;

 private:
  const std::shared_ptr<ConsentBannerViewModel> model_;
  QString name_;
  RichTextAdapter* description_;
  PictureSource* logo_;
  QVariantList facts_;
  QString website_;
  QString websiteLabel_;
  QString websiteName_;
};

class PurposeAdapter : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each purpose")
  Q_PROPERTY(QString name READ name CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description_ CONSTANT)
  // Empty unless the purpose cannot be switched.
  Q_PROPERTY(quillon::RichTextAdapter* disclaimer MEMBER disclaimer_ CONSTANT)
  Q_PROPERTY(QVariantList sdks READ sdks NOTIFY sdksChanged)
  Q_PROPERTY(bool hasSdks READ hasSdks CONSTANT)
  Q_PROPERTY(bool isOn READ isOn NOTIFY changed)
  Q_PROPERTY(bool isSwitchable READ isSwitchable NOTIFY changed)
  Q_PROPERTY(bool hasSwitch READ hasSwitch NOTIFY changed)
  Q_PROPERTY(QString state READ state NOTIFY changed)
  // Why it is off and cannot be switched; otherwise empty.
  Q_PROPERTY(QString reason READ reason NOTIFY changed)
  Q_PROPERTY(QString switchDescription READ switchDescription NOTIFY changed)
  // Whether there is collapsed content.
  Q_PROPERTY(bool canExpand READ canExpand NOTIFY changed)
  Q_PROPERTY(QString detailsName READ detailsName CONSTANT)

 public:
  PurposeAdapter(std::shared_ptr<const Purpose> purpose, const std::shared_ptr<PreferenceCenterViewModel>& model,
                 const ConsentBannerAdapter& banner, QObject* parent);

  QString name() const;
  QVariantList sdks() const { return listOf(sdks_); }
  bool hasSdks() const;
  bool isOn() const { return toggle_.isOn; }
  bool isSwitchable() const { return toggle_.isEnabled; }
  bool hasSwitch() const;
  QString state() const;
  QString reason() const;
  QString switchDescription() const;
  bool canExpand() const;
  QString detailsName() const;

  Q_INVOKABLE void tapToggle() const;
  // Creates the list of SDKs, which is long and rarely viewed.
  Q_INVOKABLE void loadSdks();

  // Reads the switch's state.
  void refresh();

 Q_SIGNALS:
  void changed();
  void sdksChanged();

 private:
  // Whether the device denies tracking.
  bool isDeclined() const { return !toggle_.isOn && !toggle_.isEnabled; }

  const std::shared_ptr<const Purpose> purpose_;
  const std::shared_ptr<PreferenceCenterViewModel> model_;
  const ConsentBannerAdapter& banner_;
  RichTextAdapter* const description_;
  RichTextAdapter* const disclaimer_;
  std::vector<SdkAdapter*> sdks_;
  PurposeToggle toggle_;
};

}  // namespace quillon
