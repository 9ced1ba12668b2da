#include "ui/qtquick/PlacedScreen.h"

#include <QPointer>
#include <QQmlComponent>
#include <QQmlInfo>

#include "ui/qtquick/PreferenceCenterAdapter.h"
#include "ui/qtquick/SettingsPromptAdapter.h"
#include "ui/qtquick/Style.h"

namespace quillon {
namespace {

const QString saved = QStringLiteral("saved");
const QString closed = QStringLiteral("closed");

}  // namespace

PageSdk* PageSdk::of(QQmlEngine& engine, QObject& element) {
  auto* page = engine.findChild<PageSdk*>(QString(), Qt::FindDirectChildrenOnly);
  if (!page) qmlWarning(&element) << "quillon::addConsentElements was not called for the engine: nothing is allowed";
  return page;
}

void PlacedScreen::componentComplete() {
  QQuickItem::componentComplete();
  const auto* sdk = PageSdk::of(*qmlEngine(this), *this);
  if (!sdk) return;
  const auto leave = [self = QPointer(this)] {
    if (self) self->emitDone(self->reason_());
  };
  const Model model = makeModel(ConsentBannerViewModel::make(sdk->services, leave));
  reason_ = model.reason;
  feed(*sdk, model);
  show(model);
  // The preference centre opened by a banner answers the banner as well.
  if (model.adapter == model.banner) dismissal_ = sdk->services->followBannerDismissal([this] { emitDone(saved); });
}

void PlacedScreen::feed(const PageSdk& sdk, const Model& model) {
  const auto restyle = [this, &sdk, banner = model.banner] {
    Style::of(*qmlEngine(this)).show(sdk.options, *sdk.services, banner->model()->bannerConfig.get());
  };
  connect(model.banner, &Adapter::changed, this, restyle);
  restyle();
  const auto loadUnlessFetching = [banner = model.banner, load = model.load](SDKStatus status) {
    if (status != SDKStatus::fetching && !banner->isLoaded()) load();
  };
  readiness_ = sdk.services->followStatus(loadUnlessFetching);
  loadUnlessFetching(sdk.services->status());
}

void PlacedScreen::show(const Model& model) {
  QQmlComponent component(qmlEngine(this), QUrl(QString("qrc:/qt/qml/Quillon/Consent/%1.qml").arg(sheet())));
  screen_ = qobject_cast<QQuickItem*>(
      component.createWithInitialProperties({{"model", QVariant::fromValue(model.adapter)}, {"isModal", false}}));
  if (!screen_) {
    qmlWarning(this) << component.errorString();
    return;
  }
  screen_->setParent(this);
  screen_->setParentItem(this);
  const auto followSize = [this] { setImplicitSize(screen_->implicitWidth(), screen_->implicitHeight()); };
  connect(screen_, &QQuickItem::implicitWidthChanged, this, followSize);
  connect(screen_, &QQuickItem::implicitHeightChanged, this, followSize);
  screen_->setSize(size());
  followSize();
}

void PlacedScreen::geometryChange(const QRectF& now, const QRectF& before) {
  QQuickItem::geometryChange(now, before);
  if (screen_) screen_->setSize(now.size());
}

PlacedScreen::Model PlacedBanner::makeModel(std::shared_ptr<ConsentBannerViewModel> banner) {
  auto* adapter = new ConsentBannerAdapter(std::move(banner), this);
  return {adapter, adapter, [adapter] { adapter->load(); },
          [adapter] {
            switch (adapter->lastAction()) {
              case BannerAction::accept:
                return QStringLiteral("accepted");
              case BannerAction::reject:
                return QStringLiteral("rejected");
              default:
                return closed;
            }
          }};
}

PlacedScreen::Model PlacedPreferenceCenter::makeModel(std::shared_ptr<ConsentBannerViewModel> banner) {
  const auto& options = PageSdk::of(*qmlEngine(this), *this)->options;
  auto* adapter = new PreferenceCenterAdapter(PreferenceCenterViewModel::make(std::move(banner)), options, this);
  // On a page it can only be saved.
  return {adapter, adapter->banner(), [adapter] { adapter->load(); }, [] { return saved; }};
}

PlacedScreen::Model PlacedSettingsPrompt::makeModel(std::shared_ptr<ConsentBannerViewModel> banner) {
  auto* adapter = new SettingsPromptAdapter(
      std::make_unique<SettingsPromptViewModel>(std::move(banner), VantariKey(permission_.toStdString())), this);
  return {adapter, adapter->banner(), [adapter] { adapter->load(); }, [] { return closed; }};
}

}  // namespace quillon
