#include "core/ConsentSDK/Work.h"

#include "core/Logger/UnitLog.h"

namespace quillon {

void Work::begin(std::weak_ptr<void> owner) {
  owner_ = std::move(owner);
  tasks_.emplace(platform_.executors->background(), whileAlive([this](const char* what) {
                   UnitLog(logger_, unit::consentSDK)(LogLevel::error, "A task failed: " + escapedForLog(what), "task");
                 }));
}

void Work::start(std::move_only_function<Task<void>()> makeTask) {
  auto alive = owner_.lock();
  if (!alive) return;
  tasks_->start([alive = std::move(alive), makeTask = std::move(makeTask)]() mutable { return makeTask(); });
}

void Work::run(Job job) {
  start([job = std::move(job)]() mutable -> Task<void> {
    job();
    co_return;
  });
}

void Work::onMain(Job job) {
  platform_.executors->main()->post(whileAlive([this, job = std::move(job)]() mutable {
    const HostCalls::Call call(hostCalls_);  // before isClosed(), so that close() sees the call or stops it
    if (!isClosed()) callHost(job);
  }));
}

void Work::callHost(Job& job) {
  const UnitLog log(logger_, unit::consentSDK);
  try {
    job();
  } catch (const std::exception& exception) {
    log(LogLevel::error, "A callback of the host threw: " + escapedForLog(exception.what()), "callback");
  } catch (...) {
    log(LogLevel::error, "A callback of the host threw", "callback");
  }
}

void Work::close() {
  tasks_->close();
  stop_.request_stop();
}

void Work::waitUntilIdle(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  tasks_->settled().wait_until(deadline);
  hostCalls_.waitForOthers(deadline);
}

}  // namespace quillon
