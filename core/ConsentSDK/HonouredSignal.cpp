#include "core/ConsentSDK/HonouredSignal.h"

namespace quillon {

void HonouredSignal::follow(const Session& session, const MainConfiguration* configuration) {
  const auto& wanted = session.options.privacySignal;
  auto mapping = wanted ? std::make_shared<const SignalMapping>(*wanted, configuration) : nullptr;
  const std::scoped_lock lock(mutex_);
  if (session.generation < generation_) return;
  generation_ = session.generation;
  isGiven_ = wanted && wanted->isGiven;
  mapping_ = std::move(mapping);
}

OptOuts HonouredSignal::optOuts() const {
  std::shared_ptr<const SignalMapping> mapping;
  {
    const std::scoped_lock lock(mutex_);
    mapping = mapping_;
    if (!mapping || isGiven_) return OptOuts(std::move(mapping));
  }
  return platform_.signals && platform_.signals->isOn() ? OptOuts(std::move(mapping)) : OptOuts();
}

std::unique_ptr<PrivacySignalSubscription> HonouredSignal::observe(std::function<void()> changed) const {
  return platform_.signals ? platform_.signals->observe(std::move(changed)) : nullptr;
}

}  // namespace quillon
