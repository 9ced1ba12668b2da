#include "platform/linux/Bus/BusLoop.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/FileDescriptor.h"
#include "platform/parts/Contained.h"

namespace quillon {
namespace {

constexpr guint drainMilliseconds = 1000;

}  // namespace

bool BusLoop::hasDescriptors() {
  std::array<FileDescriptor, 16> spare;  // twice the number one connection was observed to use
  return std::ranges::all_of(spare, [](FileDescriptor& descriptor) {
    descriptor = FileDescriptor(::eventfd(0, EFD_CLOEXEC));
    return static_cast<bool>(descriptor);
  });
}

bool BusLoop::open() {
  const std::lock_guard lock(mutex_);
  if (context_) return true;
  if (!hasDescriptors()) return false;
  context_.reset(g_main_context_new());
  return true;
}

void BusLoop::run(const std::function<void()>& leave) {
  g_main_context_push_thread_default(context_.get());
  while (!stopped()) {
    runJobs();
    g_main_context_iteration(context_.get(), TRUE);
  }
  contained(leave);
  drain();
  g_main_context_pop_thread_default(context_.get());
}

void BusLoop::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  wake();
}

bool BusLoop::stopped() const {
  const std::lock_guard lock(mutex_);
  return stopped_;
}

void BusLoop::post(std::move_only_function<void()> job) {
  {
    const std::lock_guard lock(mutex_);
    if (stopped_) return;
    jobs_.push_back(std::move(job));
  }
  wake();
}

void BusLoop::wake() const {
  const std::lock_guard lock(mutex_);
  if (context_) g_main_context_wakeup(context_.get());
}

void BusLoop::runJobs() {
  std::vector<std::move_only_function<void()>> jobs;
  {
    const std::lock_guard lock(mutex_);
    jobs.swap(jobs_);
  }
  for (auto& job : jobs) contained(job);
}

// Waits for unfinished GIO operations, which would otherwise leak.
void BusLoop::drain() {
  bool expired = false;
  const GLibPointer<GSource> limit(g_timeout_source_new(drainMilliseconds));
  const auto expire = [](gpointer flag) -> gboolean {
    *static_cast<bool*>(flag) = true;
    return G_SOURCE_REMOVE;
  };
  g_source_set_callback(limit.get(), expire, &expired, nullptr);
  g_source_attach(limit.get(), context_.get());
  while (underWay_ > 0 && !expired) g_main_context_iteration(context_.get(), TRUE);
  while (!expired && g_main_context_iteration(context_.get(), FALSE)) {
  }
}

gpointer BusLoop::expect(Finish finish) {
  auto expected = std::make_unique<Expected>(*this, std::move(finish));
  ++underWay_;
  return expected.release();
}

void BusLoop::finished(GObject* source, GAsyncResult* result, gpointer expected) {
  const std::unique_ptr<Expected> owned(static_cast<Expected*>(expected));
  --owned->loop.underWay_;
  if (!owned->loop.stopped()) contained([&] { owned->finish(source, result); });
}

}  // namespace quillon
