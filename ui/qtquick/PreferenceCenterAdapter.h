// The preference centre's view model for QML.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QString>
#include <QVariantList>
#include <memory>

#include "ui/PreferenceCenter/PreferenceCenterViewModel.h"
#include "ui/qtquick/ConsentBannerAdapter.h"
#include "ui/qtquick/PurposeAdapter.h"

namespace quillon {

// A permission as the list shows it. Those of one group follow one another; the first of them names it.
class PermissionAdapter : public QObject {
  Q_OBJECT
  QML_ANONYMOUS
  Q_PROPERTY(QString group MEMBER group CONSTANT)
  Q_PROPERTY(QString name MEMBER name CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description CONSTANT)
  Q_PROPERTY(bool isGranted READ isGranted NOTIFY changed)
  Q_PROPERTY(bool canUpdate MEMBER canUpdate NOTIFY changed)

 public:
  using QObject::QObject;

  bool isGranted() const { return status == ConsentStatus::granted; }

  QString group;
  QString name;
  RichTextAdapter* description = nullptr;
  std::optional<ConsentStatus> status;
  bool canUpdate = false;  // the way to the system settings may be offered
  std::optional<VantariKey> key;

 Q_SIGNALS:
  void changed();
};

class PreferenceCenterAdapter : public Adapter {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made for each screen")
  Q_PROPERTY(quillon::ConsentBannerAdapter* banner READ banner CONSTANT)
  Q_PROPERTY(QString heading READ heading NOTIFY changed)
  Q_PROPERTY(QString purposesTab READ purposesTab NOTIFY changed)
  Q_PROPERTY(QString permissionsTab READ permissionsTab NOTIFY changed)
  Q_PROPERTY(int tab READ tab WRITE setTab NOTIFY changed)
  Q_PROPERTY(quillon::RichTextAdapter* description MEMBER description_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* guidance MEMBER guidance_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* consentModeNote MEMBER consentModeNote_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* permissionsDescription MEMBER permissionsDescription_ CONSTANT)
  Q_PROPERTY(quillon::RichTextAdapter* permissionsGuidance MEMBER permissionsGuidance_ CONSTANT)
  Q_PROPERTY(QList<QObject*> purposes READ purposes NOTIFY purposesChanged)
  Q_PROPERTY(bool arePurposesLoading READ arePurposesLoading NOTIFY changed)
  Q_PROPERTY(QString purposesFailure READ purposesFailure NOTIFY changed)
  Q_PROPERTY(QString permissionsFailure READ permissionsFailure NOTIFY changed)
  Q_PROPERTY(bool hasSwitchablePurposes READ hasSwitchablePurposes NOTIFY changed)
  Q_PROPERTY(bool areAllSelected READ areAllSelected NOTIFY changed)
  Q_PROPERTY(QString selectAllLabel READ selectAllLabel NOTIFY changed)
  Q_PROPERTY(bool showsDescriptions READ showsDescriptions NOTIFY changed)
  Q_PROPERTY(QList<QObject*> permissions READ permissions NOTIFY permissionsChanged)
  Q_PROPERTY(bool arePermissionsLoading READ arePermissionsLoading NOTIFY changed)
  Q_PROPERTY(QString voiceOverText READ voiceOverText NOTIFY changed)
  Q_PROPERTY(QString saveLabel READ saveLabel NOTIFY changed)
  Q_PROPERTY(QString detailsLabel READ detailsLabel NOTIFY changed)
  Q_PROPERTY(QString allowedLabel READ allowedLabel NOTIFY changed)
  Q_PROPERTY(QString notAllowedLabel READ notAllowedLabel NOTIFY changed)
  Q_PROPERTY(QString updateLabel READ updateLabel NOTIFY changed)
  Q_PROPERTY(QString expandedState READ expandedState NOTIFY changed)
  Q_PROPERTY(QString collapsedState READ collapsedState NOTIFY changed)
  Q_PROPERTY(QString expandHint READ expandHint NOTIFY changed)
  Q_PROPERTY(QString collapseHint READ collapseHint NOTIFY changed)

 public:
  explicit PreferenceCenterAdapter(std::shared_ptr<PreferenceCenterViewModel> model, QObject* parent = nullptr);

  ConsentBannerAdapter* banner() const { return banner_; }
  QString heading() const { return banner_->words(banner_->config().preferenceCenterHeading); }
  QString purposesTab() const { return tabName(MyPreferences::purposes); }
  QString permissionsTab() const { return tabName(MyPreferences::permissions); }
  int tab() const { return static_cast<int>(model_->currentSegment.get()); }
  void setTab(int tab) { model_->currentSegment.set(static_cast<MyPreferences>(tab)); }
  QList<QObject*> purposes() const { return {purposes_.begin(), purposes_.end()}; }
  bool arePurposesLoading() const { return model_->purposesResult.get().isLoading(); }
  QString purposesFailure() const { return messageOf(model_->purposesResult.get()); }
  QString permissionsFailure() const { return messageOf(model_->permissionsResult.get()); }
  bool hasSwitchablePurposes() const { return model_->hasSwitchablePurposes(); }
  bool areAllSelected() const { return model_->areAllSelected(); }
  QString selectAllLabel() const { return banner_->label(areAllSelected() ? Label::unselectAll : Label::selectAll); }
  bool showsDescriptions() const { return banner_->config().showDescriptionTextWithPrefCenterToggle.value_or(false); }
  QList<QObject*> permissions() const { return {permissions_.begin(), permissions_.end()}; }
  bool arePermissionsLoading() const { return model_->permissionsResult.get().isLoading(); }
  QString voiceOverText() const { return QString::fromStdString(model_->voiceOverText.get()); }
  QString saveLabel() const { return banner_->label(Label::saveChanges); }
  QString detailsLabel() const { return banner_->label(Label::details); }
  QString allowedLabel() const { return banner_->label(Label::allowed); }
  QString notAllowedLabel() const { return banner_->label(Label::notAllowed); }
  QString updateLabel() const { return banner_->label(Label::update); }
  QString expandedState() const { return banner_->label(Label::expandedState); }
  QString collapsedState() const { return banner_->label(Label::collapsedState); }
  QString expandHint() const { return hint(Label::expandHint); }
  QString collapseHint() const { return hint(Label::collapseHint); }

  // Loads what the screen shows, or tries it again.
  Q_INVOKABLE void load() {
    banner_->load();
    model_->loadPurposes();
    model_->loadPermissions();
  }
  Q_INVOKABLE void switchAll() { model_->setAll(!areAllSelected()); }
  Q_INVOKABLE void tapPermission(int index);
  Q_INVOKABLE void save() { model_->save(); }
  Q_INVOKABLE void close() { model_->close(); }

 Q_SIGNALS:
  void purposesChanged();
  void permissionsChanged();
  // To be shown and read out now.
  void announced(const QString& text);

 protected:
  void refresh() override;

 private:
  QString tabName(MyPreferences tab) const;
  QString hint(Label action) const;
  void refreshPurposes();
  PermissionAdapter* shownPermission(const AppPermission& permission);
  void refreshPermissions();

  const std::shared_ptr<PreferenceCenterViewModel> model_;
  ConsentBannerAdapter* const banner_;
  RichTextAdapter* const description_;
  RichTextAdapter* const guidance_;
  RichTextAdapter* const consentModeNote_;
  RichTextAdapter* const permissionsDescription_;
  RichTextAdapter* const permissionsGuidance_;
  std::shared_ptr<const std::vector<Purpose>> shownPurposes_;  // the cards look into it
  std::vector<AppPermission> shownPermissions_;
  std::vector<PurposeAdapter*> purposes_;
  std::vector<PermissionAdapter*> permissions_;
  Observation announcement_;
};

}  // namespace quillon
