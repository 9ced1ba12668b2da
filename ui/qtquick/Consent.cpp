#include "ui/qtquick/Consent.h"

#include <QQmlInfo>
#include <cmath>

#include "ui/qtquick/PlacedScreen.h"

namespace quillon {
namespace {

// Null when it has none.
ConsentSDK* sdkOf(QQmlEngine& engine, QObject* asking) {
  const auto* page = engine.findChild<PageSdk*>(QString(), Qt::FindDirectChildrenOnly);
  if (!page) qmlWarning(asking) << "quillon::addConsentElements was not called for the engine: nothing is allowed";
  return page ? &page->sdk : nullptr;
}

}  // namespace

Consent::Consent(QQmlEngine& engine) : QObject(&engine), sdk_(sdkOf(engine, this)) {}

void ConsentGate::componentComplete() {
  constexpr double largestExact = 9007199254740992;  // 2^53
  if (!(std::abs(purposeId_) <= largestExact)) return;
  if (auto* sdk = sdkOf(*qmlEngine(this), this)) {
    gate_ =
        sdk->whileAllowed(static_cast<qint64>(purposeId_), [this] { Q_EMIT allowed(); }, [this] { Q_EMIT denied(); });
  }
}

}  // namespace quillon
