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
  std::optional<ConsentTable::Signal> shown;
  if (mapping_) shown.emplace(isGiven_, mapping_->purposes());
  store_.consentTable().updateSignal(std::move(shown));
}

OptOuts HonouredSignal::optOuts() const {
  std::unique_lock lock(mutex_);
  auto mapping = mapping_;
  const bool isGiven = isGiven_;
  lock.unlock();
  const bool isOn = mapping && (isGiven || (platform_.signals && platform_.signals->isOn()));
  return isOn ? OptOuts(std::move(mapping)) : OptOuts();
}

std::unique_ptr<PrivacySignalSubscription> HonouredSignal::observe(std::function<void()> changed) const {
  return platform_.signals ? platform_.signals->observe(std::move(changed)) : nullptr;
}

}  // namespace quillon
