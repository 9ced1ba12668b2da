#include "ui/qtquick/PreferenceCenterAdapter.h"

#include <QGuiApplication>
#include <algorithm>

namespace quillon {
namespace {

bool isSameButForStatus(AppPermission left, AppPermission right) {
  left.consentStatus = right.consentStatus = std::nullopt;
  return left == right;
}

}  // namespace

PreferenceCenterAdapter::PreferenceCenterAdapter(std::shared_ptr<PreferenceCenterViewModel> model,
                                                 const QtQuickOptions& options, QObject* parent)
    : Adapter(parent),
      model_(std::move(model)),
      banner_(new ConsentBannerAdapter(model_->banner(), this)),
      description_(new RichTextAdapter(model_->banner()->sdk(), this)),
      guidance_(new RichTextAdapter(model_->banner()->sdk(), this)),
      consentModeNote_(new RichTextAdapter(model_->banner()->sdk(), this)),
      permissionsDescription_(new RichTextAdapter(model_->banner()->sdk(), this)),
      permissionsGuidance_(new RichTextAdapter(model_->banner()->sdk(), this)),
      receipt_(options.offersReceipt ? new ReceiptAdapter(*banner_, this) : nullptr) {
  follow(model_->banner()->bannerConfigResult);
  follow(model_->purposesResult);
  follow(model_->permissionsResult);
  follow(model_->selectedPurposes);
  follow(model_->currentSegment);
  follow(model_->voiceOverText);
  announcement_ = model_->announcement.observe([this](const std::string& text) {
    if (!text.empty()) Q_EMIT announced(QString::fromStdString(text));
  });
  // The user may return from the system settings.
  connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
    if (state == Qt::ApplicationActive) model_->loadPermissions();
  });
}

QString PreferenceCenterAdapter::tabName(MyPreferences tab) const {
  const BannerConfig& config = banner_->config();
  const bool isPurposes = tab == MyPreferences::purposes;
  QString configured = banner_->words(isPurposes ? config.sdkTabHeading : config.permissionsTabHeading);
  return configured.isEmpty() ? banner_->label(isPurposes ? Label::purposesTab : Label::permissionsTab) : configured;
}

QString PreferenceCenterAdapter::stateAndHint(Label state, Label action) const {
  const QString hint = banner_->joined(Label::hint, banner_->label(Label::hintPrefix), banner_->label(action));
  return banner_->sentences(banner_->label(state), hint);
}

void PreferenceCenterAdapter::tapPermission(int index) {
  const auto& key = permissions_.at(static_cast<std::size_t>(index))->key();
  if (key) model_->tapPermission(*key);
}

void PreferenceCenterAdapter::save() {
  if (model_->save()) {
    Q_EMIT saved(banner_->label(Label::saved));
  } else {
    Q_EMIT announced(banner_->label(Label::notSaved));
  }
}

void PreferenceCenterAdapter::refresh() {
  const auto& banner = *model_->banner();
  const BannerConfig& config = banner_->config();
  QStringList tabs{tabName(MyPreferences::purposes), tabName(MyPreferences::permissions)};
  if (std::exchange(tabs_, std::move(tabs)) != tabs_) Q_EMIT tabsChanged();
  description_->setHtml(banner.text(config.preferenceCenterDescription));
  guidance_->setHtml(banner.text(config.preferenceCenterGuidance));
  permissionsDescription_->setHtml(banner.text(config.permissionsTabDescription));
  permissionsGuidance_->setHtml(banner.text(config.permissionsTabGuidance));
  const auto& consentMode = banner.gcmConfig.get();
  const bool showsNote = consentMode && consentMode->showGcmDescription.value_or(false);
  consentModeNote_->setHtml(showsNote ? banner.text(consentMode->gcmDescription) : "");
  // The cards' texts depend on the banner's configuration.
  if (!model_->banner()->bannerConfig.get()) return;
  refreshPurposes();
  refreshPermissions();
}

// Keeps the cards while the list is unchanged, to preserve focus and expansion.
void PreferenceCenterAdapter::refreshPurposes() {
  if (shownPurposes_ && model_->purposes.get() == *shownPurposes_) {
    for (PurposeAdapter* purpose : purposes_) purpose->refresh();
    return;
  }
  shownPurposes_ = std::make_shared<const std::vector<Purpose>>(model_->purposes.get());
  const auto former = std::exchange(purposes_, {});
  for (const Purpose& purpose : *shownPurposes_) {
    purposes_.push_back(new PurposeAdapter({shownPurposes_, &purpose}, model_, *banner_, this));
  }
  Q_EMIT purposesChanged();
  for (PurposeAdapter* purpose : former) purpose->deleteLater();
}

// Creates the permissions grouped by category, in the order of the groups' first permissions.
void PreferenceCenterAdapter::recreatePermissions() {
  const auto former = std::exchange(permissions_, {});
  std::vector<std::optional<std::string>> groups;
  for (const AppPermission& permission : shownPermissions_) {
    if (std::ranges::find(groups, permission.group) == groups.end()) groups.push_back(permission.group);
  }
  for (const auto& group : groups) {
    QString heading = QString::fromStdString(group.value_or(""));
    for (const AppPermission& permission : shownPermissions_) {
      if (permission.group != group) continue;
      permissions_.push_back(new PermissionAdapter(permission, std::exchange(heading, {}), *banner_, this));
      permissions_.back()->set(permission.consentStatus, model_->offersSettings(permission));
    }
  }
  Q_EMIT permissionsChanged();
  for (PermissionAdapter* permission : former) permission->deleteLater();
}

void PreferenceCenterAdapter::refreshPermissions() {
  const auto& loaded = model_->permissions.get();
  const bool isSameList = std::ranges::equal(loaded, shownPermissions_, isSameButForStatus);
  shownPermissions_ = loaded;
  if (!isSameList) return recreatePermissions();
  for (PermissionAdapter* shown : permissions_) {
    const auto now = std::ranges::find(loaded, shown->key(), &AppPermission::permissionId);
    if (now != loaded.end()) shown->set(now->consentStatus, model_->offersSettings(*now));
  }
}

}  // namespace quillon
