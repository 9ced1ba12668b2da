#include "core/ConsentSDK/Gates.h"

#include <utility>

namespace quillon {

struct Gates::Gate {
  Gate(std::int64_t purpose, std::function<void(bool)> call) : purposeId(purpose), changed(std::move(call)) {}

  const std::int64_t purposeId;
  HostCallback<bool> changed;
  std::atomic<bool> isDue = false;  // an evaluation is queued
  bool isOpen = false;              // on the main queue only
};

Listening Gates::add(std::int64_t purposeId, std::function<void()> start, std::function<void()> stop) {
  const auto gate = std::make_shared<Gate>(purposeId, [start = std::move(start), stop = std::move(stop)](bool isOpen) {
    const auto& call = isOpen ? start : stop;
    if (call) call();
  });
  {
    const std::scoped_lock lock(mutex_);
    std::erase_if(gates_, [](const auto& earlier) { return earlier.expired(); });
    gates_.push_back(gate);
  }
  evaluate(gate);
  return Listening([gate] { gate->changed.end(); });
}

void Gates::update() {
  followers.notify();
  std::vector<std::weak_ptr<Gate>> gates;
  {
    const std::scoped_lock lock(mutex_);
    gates = gates_;
  }
  for (const auto& each : gates) {
    if (const auto gate = each.lock()) evaluate(gate);
  }
}

void Gates::evaluate(const std::shared_ptr<Gate>& gate) {
  if (gate->isDue.exchange(true)) return;
  onMain_([this, weak = std::weak_ptr(gate)] {
    const auto present = weak.lock();
    if (!present) return;
    present->isDue = false;  // before evaluating: a later change queues another evaluation
    const bool isAllowed = isAllowed_(present->purposeId);
    if (std::exchange(present->isOpen, isAllowed) != isAllowed) present->changed(isAllowed);
  });
}

}  // namespace quillon
