// One purpose of the preference centre for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <QVariantList>

#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/qtquick/Picture.h"
#include "ui/qtquick/RichTextAdapter.h"

namespace quillon {

// A line of facts about an SDK.
struct SdkFact {
  Q_GADGET
  Q_PROPERTY(QString label MEMBER label)
  Q_PROPERTY(QString value MEMBER value)

 public:
  QString label;
  QString value;
};

// A component that a purpose covers.
class SdkAdapter : public QObject {
  Q_OBJECT
  QML_ANONYMOUS
  Q_PROPERTY(QString name MEMBER name_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description_ CONSTANT)
  Q_PROPERTY(quillon::PictureSource* logo MEMBER logo_ CONSTANT)
  Q_PROPERTY(QVariantList facts MEMBER facts_ CONSTANT)
  Q_PROPERTY(QString website MEMBER website_ CONSTANT)
  Q_PROPERTY(QString websiteLabel MEMBER websiteLabel_ CONSTANT)

 public:
  SdkAdapter(const SDK& sdk, const std::shared_ptr<ConsentBannerViewModel>& banner, QObject* parent);

  Q_INVOKABLE void openWebsite() const;

 private:
  const std::shared_ptr<ConsentBannerViewModel> banner_;
  QString name_;
  RichTextAdapter* description_;
  PictureSource* logo_;
  QVariantList facts_;
  QString website_;
  QString websiteLabel_;
};

class PurposeAdapter : public QObject {
  Q_OBJECT
  QML_ANONYMOUS
  Q_PROPERTY(QString name READ name CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description_ CONSTANT)
  // Empty but for a purpose that cannot be switched.
  Q_PROPERTY(quillon::RichTextAdapter* disclaimer MEMBER disclaimer_ CONSTANT)
  Q_PROPERTY(QList<QObject*> sdks READ sdks NOTIFY sdksChanged)
  Q_PROPERTY(bool hasSdks READ hasSdks CONSTANT)
  Q_PROPERTY(bool isOn READ isOn NOTIFY changed)
  Q_PROPERTY(bool isSwitchable READ isSwitchable NOTIFY changed)
  Q_PROPERTY(bool hasSwitch READ hasSwitch NOTIFY changed)
  Q_PROPERTY(QString state READ state NOTIFY changed)
  Q_PROPERTY(QString hint READ hint NOTIFY changed)
  Q_PROPERTY(QString explanation READ explanation CONSTANT)

 public:
  PurposeAdapter(std::shared_ptr<const Purpose> purpose, const std::shared_ptr<PreferenceCenterViewModel>& model,
                 QObject* parent);

  QString name() const;
  QList<QObject*> sdks() const { return sdks_; }
  bool hasSdks() const;
  bool isOn() const { return toggle_.isOn; }
  bool isSwitchable() const { return toggle_.isEnabled; }
  bool hasSwitch() const;
  QString state() const { return QString::fromStdString(toggle_.label); }
  QString hint() const { return QString::fromStdString(toggle_.hint); }
  // Why it cannot be switched; empty when it can.
  QString explanation() const;

  Q_INVOKABLE void tapToggle() const;
  // Fills the list of SDKs, which is long and seldom looked at.
  Q_INVOKABLE void loadSdks();

  // Reads the state of the switch anew.
  void refresh();

 Q_SIGNALS:
  void changed();
  void sdksChanged();

 private:
  const std::shared_ptr<const Purpose> purpose_;
  const std::shared_ptr<PreferenceCenterViewModel> model_;
  RichTextAdapter* const description_;
  RichTextAdapter* const disclaimer_;
  QList<QObject*> sdks_;
  PurposeToggle toggle_;
};

}  // namespace quillon
