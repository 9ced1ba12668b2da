// The preference centre's view model for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <memory>

#include "quillon/QtQuick.h"
#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/qtquick/ConsentBannerAdapter.h"
#include "ui/qtquick/PermissionAdapter.h"
#include "ui/qtquick/PurposeAdapter.h"
#include "ui/qtquick/ReceiptAdapter.h"

namespace quillon {

class PreferenceCenterAdapter : public Adapter {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each screen")
  Q_PROPERTY(quillon::ConsentBannerAdapter* banner READ banner CONSTANT)
  Q_PROPERTY(QString heading READ heading NOTIFY changed)
  Q_PROPERTY(QString name READ name NOTIFY changed)
  // The tabs' names.
  Q_PROPERTY(QStringList tabs READ tabs NOTIFY tabsChanged)
  Q_PROPERTY(int tab READ tab WRITE setTab NOTIFY changed)
  Q_PROPERTY(bool isAtPurposes READ isAtPurposes NOTIFY changed)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* guidance MEMBER guidance_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* consentModeNote MEMBER consentModeNote_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* permissionsDescription MEMBER permissionsDescription_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* permissionsGuidance MEMBER permissionsGuidance_ CONSTANT)
  Q_PROPERTY(QVariantList purposes READ purposes NOTIFY purposesChanged)
  Q_PROPERTY(bool arePurposesLoading READ arePurposesLoading NOTIFY changed)
  Q_PROPERTY(QString purposesFailure READ purposesFailure NOTIFY changed)
  Q_PROPERTY(QString permissionsFailure READ permissionsFailure NOTIFY changed)
  Q_PROPERTY(bool hasSwitchablePurposes READ hasSwitchablePurposes NOTIFY changed)
  Q_PROPERTY(QString selectAllLabel READ selectAllLabel NOTIFY changed)
  Q_PROPERTY(QString unselectAllLabel READ unselectAllLabel NOTIFY changed)
  Q_PROPERTY(bool showsDescriptions READ showsDescriptions NOTIFY changed)
  Q_PROPERTY(QVariantList permissions READ permissions NOTIFY permissionsChanged)
  // Null unless the application offers receipts.
  Q_PROPERTY(quillon::ReceiptAdapter* receipt MEMBER receipt_ CONSTANT)
  Q_PROPERTY(bool arePermissionsLoading READ arePermissionsLoading NOTIFY changed)
  Q_PROPERTY(QString voiceOverText READ voiceOverText NOTIFY changed)
  Q_PROPERTY(QString saveLabel READ saveLabel NOTIFY changed)
  Q_PROPERTY(QString detailsLabel READ detailsLabel NOTIFY changed)
  Q_PROPERTY(QString updateLabel READ updateLabel NOTIFY changed)
  // Descriptions of expanders: their state, and the effect of a tap.
  Q_PROPERTY(QString expandedDescription READ expandedDescription NOTIFY changed)
  Q_PROPERTY(QString collapsedDescription READ collapsedDescription NOTIFY changed)

 public:
  PreferenceCenterAdapter(std::shared_ptr<PreferenceCenterViewModel> model, const QtQuickOptions& options,
                          QObject* parent = nullptr);

  ConsentBannerAdapter* banner() const { return banner_; }
  QString heading() const { return banner_->words(banner_->config().preferenceCenterHeading); }
  QString name() const { return heading().isEmpty() ? banner_->label(Label::purposes) : heading(); }
  const QStringList& tabs() const { return tabs_; }
  int tab() const { return static_cast<int>(model_->currentSegment.get()); }
  bool isAtPurposes() const { return model_->currentSegment.get() == MyPreferences::purposes; }
  void setTab(int tab) { model_->currentSegment.set(static_cast<MyPreferences>(tab)); }
  QVariantList purposes() const { return listOf(purposes_); }
  bool arePurposesLoading() const { return model_->purposesResult.get().isLoading(); }
  QString purposesFailure() const { return failure(model_->purposesResult.get(), Label::purposesUnavailable); }
  QString permissionsFailure() const { return failure(model_->permissionsResult.get(), Label::permissionsUnavailable); }
  bool hasSwitchablePurposes() const { return model_->hasSwitchablePurposes(); }
  QString selectAllLabel() const { return banner_->label(Label::selectAll); }
  QString unselectAllLabel() const { return banner_->label(Label::unselectAll); }
  bool showsDescriptions() const { return banner_->config().showDescriptionTextWithPrefCenterToggle.value_or(false); }
  QVariantList permissions() const { return listOf(permissions_); }
  bool arePermissionsLoading() const { return model_->permissionsResult.get().isLoading(); }
  QString voiceOverText() const { return QString::fromStdString(model_->voiceOverText.get()); }
  QString saveLabel() const { return banner_->label(Label::saveChanges); }
  QString detailsLabel() const { return banner_->label(Label::details); }
  QString updateLabel() const { return banner_->label(Label::update); }
  QString expandedDescription() const { return stateAndHint(Label::expandedState, Label::collapseHint); }
  QString collapsedDescription() const { return stateAndHint(Label::collapsedState, Label::expandHint); }

  // Loads the screen's content, or retries.
  Q_INVOKABLE void load() {
    banner_->load();
    model_->loadPurposes();
    model_->loadPermissions();
  }
  Q_INVOKABLE void setAll(bool areAllowed) { model_->setAll(areAllowed); }
  Q_INVOKABLE void tapPermission(int index);
  Q_INVOKABLE void save();
  Q_INVOKABLE void close() { model_->close(); }

 Q_SIGNALS:
  void tabsChanged();
  void purposesChanged();
  void permissionsChanged();
  // Show and announce the text now.
  void announced(const QString& text);
  // The choices have been stored; `text` says so. The screen is about to close.
  void saved(const QString& text);

 protected:
  void refresh() override;

 private:
  // The message to show; empty without a failure.
  template <class Value>
  QString failure(const ConsentSDKResult<Value>& result, Label words) const {
    return result.error() ? banner_->label(words) : QString();
  }
  QString tabName(MyPreferences tab) const;
  QString stateAndHint(Label state, Label action) const;
  void refreshPurposes();
  void recreatePermissions();
  void refreshPermissions();

  const std::shared_ptr<PreferenceCenterViewModel> model_;
  ConsentBannerAdapter* const banner_;
  RichTextAdapter* const description_;
  RichTextAdapter* const guidance_;
  RichTextAdapter* const consentModeNote_;
  RichTextAdapter* const permissionsDescription_;
  RichTextAdapter* const permissionsGuidance_;
  ReceiptAdapter* const receipt_;
  std::shared_ptr<const std::vector<Purpose>> shownPurposes_;  // referenced by the cards
  std::vector<AppPermission> shownPermissions_;
  QStringList tabs_;
  std::vector<PurposeAdapter*> purposes_;
  std::vector<PermissionAdapter*> permissions_;
  Observation announcement_;
};

}  // namespace quillon
