#include "quillon/SignalPublisher.h"

#include <mutex>
#include <optional>
#include <utility>

#include "core/ConsentSDK/WithoutThrowing.h"
#include "core/Logger/UnitLog.h"
#include "platform/SignalSource.h"
#include "quillon/ConsentSDK.h"
#include "quillon/Signals.h"

namespace quillon {
namespace {

constexpr std::string_view publisherUnit = "Signals/SignalPublisher";

}  // namespace

// Shared with running callbacks. Thread-safe.
class SignalPublisher::Publication {
 public:
  Publication(const std::shared_ptr<SignalSource>& source, SignalOptions options,
              std::shared_ptr<SignalDefaults> defaults)
      : source_(source), signals_(std::move(options)), defaults_(std::move(defaults)) {}

  const Signals& signals() const { return signals_; }

  // Writes the keys; if another thread is writing, that thread writes again.
  void publish() {
    {
      const std::scoped_lock lock(mutex_);
      isDue_ = true;
      if (std::exchange(isPublishing_, true)) return;
    }
    while (acquireLock()) withoutThrowing([&] { write(); });
  }

  std::string pageScript() const {
    const auto source = source_.lock();
    return source ? signals_.pageScript(source->state()) : std::string();
  }

 private:
  bool acquireLock() {
    const std::scoped_lock lock(mutex_);
    if (!std::exchange(isDue_, false)) isPublishing_ = false;
    return isPublishing_;
  }

  void write() {
    const auto source = source_.lock();
    if (!source) return;
    SignalKeys keys = signals_.keys(source->state());
    if (written_ == keys) return;
    written_.reset();
    if (defaults_ && withoutThrowing([&] { return defaults_->replace(keys); }, false)) {
      written_ = std::move(keys);
    } else {
      UnitLog(source->logger(), publisherUnit)(LogLevel::error,
                                               "The keys of the trade's libraries could not be written", "write()");
    }
  }

 public:
  // Subscriptions to the SDK; dropped with the publisher.
  std::shared_ptr<void> changes;
  std::shared_ptr<void> script;

 private:
  const std::weak_ptr<SignalSource> source_;
  const Signals signals_;
  const std::shared_ptr<SignalDefaults> defaults_;
  std::optional<SignalKeys> written_;  // publishing thread only; nullopt if unknown
  std::mutex mutex_;                   // guards the members below; not held during calls to other objects
  bool isDue_ = false;
  bool isPublishing_ = false;
};

SignalPublisher::SignalPublisher(ConsentSDK& sdk, SignalOptions options, std::shared_ptr<SignalDefaults> defaults)
    : publication_(std::make_shared<Publication>(sdk.signalSource(), std::move(options), std::move(defaults))) {
  withoutThrowing([&] {
    const auto source = sdk.signalSource();
    for (const std::string& mistake : mistakes()) {
      UnitLog(source->logger(), publisherUnit)(LogLevel::error, mistake, "init(options:)");
    }
    const std::weak_ptr<Publication> weak = publication_;
    publication_->script = source->followPageScripts([weak](std::string& script) {
      if (const auto publication = weak.lock()) script += publication->pageScript();
    });
    publication_->changes = source->followChanges([weak] {
      if (const auto publication = weak.lock()) publication->publish();
    });
    publication_->publish();
  });
}

SignalPublisher::~SignalPublisher() {
  publication_->changes.reset();
  publication_->script.reset();
}

const std::vector<std::string>& SignalPublisher::mistakes() const noexcept {
  return publication_->signals().mistakes();
}

}  // namespace quillon
