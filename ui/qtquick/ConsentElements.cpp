#include "ui/qtquick/ConsentElements.h"

#include <QPointer>
#include <QQmlEngine>
#include <cmath>

#include "core/Text/LocalizedTexts.h"
#include "ui/qtquick/PlacedScreen.h"

namespace quillon {
namespace {

std::optional<std::int64_t> exact(double number) {
  constexpr double largestExact = 9007199254740992;  // 2^53
  if (!(std::abs(number) <= largestExact)) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

}  // namespace

void FollowedConsent::componentComplete() {
  page_ = PageSdk::of(*qmlEngine(this), *this);
  if (!page_) return;
  readiness_ = page_->services->followStatus([this](SDKStatus) { refresh(); });
  changes_.push_back(page_->sdk.listenToConsents([this](const Decision&) { refreshAnswer(); }));
  refresh();
}

ConsentSDK* FollowedConsent::sdk() const {
  return page_ ? &page_->sdk : nullptr;
}

QString FollowedConsent::textOf(const std::optional<LocalizedText>& text) const {
  return text ? QString::fromStdString(textIn(page_->services->language(), *text)) : QString();
}

void FollowedConsent::refresh() {
  if (!page_) return;
  changes_.erase(changes_.begin() + 1, changes_.end());
  follow(changes_);
  refreshAnswer();
  askForTexts();
}

void FollowedConsent::refreshAnswer() {
  const bool isAllowed = isAllowedNow();
  const auto text = rawValue(statusNow());
  const auto status = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  if (isAllowed == isAllowed_ && status == status_) return;
  isAllowed_ = isAllowed;
  status_ = status;
  Q_EMIT changed();
}

void FollowedConsent::describe(const QString& name, const QString& explanation) {
  if (name == name_ && explanation == explanation_) return;
  name_ = name;
  explanation_ = explanation;
  Q_EMIT changed();
}

void PurposeElement::setPurposeId(double purposeId) {
  if (purposeId == purposeId_) return;
  purposeId_ = purposeId;
  Q_EMIT purposeIdChanged();
  describe({}, {});
  refresh();
}

std::optional<std::int64_t> PurposeElement::id() const {
  return exact(purposeId_);
}

bool PurposeElement::set(bool isGranted) {
  const auto number = id();
  if (!sdk() || !number) return false;
  return sdk()->set(Purpose{.purposeId = *number}, isGranted ? ConsentStatus::granted : ConsentStatus::declined);
}

// A gate opens or closes on every change of the answer, so the element refreshes on both.
void PurposeElement::follow(std::vector<Listening>& changes) {
  const auto number = id();
  if (!number) return;
  const QPointer<PurposeElement> self(this);
  const auto ask = [self] {
    if (self) self->refreshAnswer();
  };
  changes.push_back(sdk()->whileAllowed(*number, ask, ask));
}

bool PurposeElement::isAllowedNow() const {
  const auto number = id();
  return number && sdk()->isAllowed(*number);
}

ConsentStatus PurposeElement::statusNow() const {
  const auto number = id();
  return number ? sdk()->get(*number) : ConsentStatus::notDetermined;
}

void PurposeElement::askForTexts() {
  const QPointer<PurposeElement> self(this);
  sdk()->getPurposeConsents([self, asked = id()](const std::vector<Purpose>& purposes) {
    if (!self || self->id() != asked) return;
    for (const Purpose& purpose : purposes) {
      if (purpose.purposeId != asked) continue;
      self->describe(self->textOf(purpose.purposeName), self->textOf(purpose.purposeDescription));
    }
  });
}

void PermissionElement::setPermission(const QString& permission) {
  if (permission == permission_) return;
  permission_ = permission;
  Q_EMIT permissionChanged();
  describe({}, {});
  refresh();
}

void PermissionElement::follow(std::vector<Listening>&) {}

bool PermissionElement::isAllowedNow() const {
  return sdk()->isAllowed(VantariKey(permission_.toStdString()));
}

ConsentStatus PermissionElement::statusNow() const {
  return sdk()->get(VantariKey(permission_.toStdString()));
}

void PermissionElement::askForTexts() {
  const QPointer<PermissionElement> self(this);
  sdk()->getPermissionConsents([self, asked = permission_](const std::vector<AppPermission>& permissions) {
    if (!self || self->permission_ != asked) return;
    for (const AppPermission& permission : permissions) {
      if (!permission.permissionId || permission.permissionId->rawValue() != asked.toStdString()) continue;
      const QString name = self->textOf(permission.nameMap);
      self->describe(name.isEmpty() ? QString::fromStdString(permission.name.value_or("")) : name,
                     self->textOf(permission.description));
    }
  });
}

void ConsentGate::componentComplete() {
  const auto number = exact(purposeId_);
  if (!number) return;
  if (auto* page = PageSdk::of(*qmlEngine(this), *this)) {
    gate_ = page->sdk.whileAllowed(*number, [this] { Q_EMIT allowed(); }, [this] { Q_EMIT denied(); });
  }
}

}  // namespace quillon
