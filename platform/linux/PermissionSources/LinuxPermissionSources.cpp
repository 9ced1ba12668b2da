#include "platform/linux/PermissionSources/LinuxPermissionSources.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <exception>
#include <future>
#include <system_error>
#include <utility>

#include "platform/linux/PermissionSources/ApplicationIdentity.h"
#include "platform/linux/PermissionSources/BluetoothSource.h"
#include "platform/linux/PermissionSources/FingerprintSource.h"
#include "platform/linux/PermissionSources/NfcSource.h"
#include "platform/linux/PermissionSources/PermissionStore.h"
#include "platform/parts/ChangeObservers.h"
#include "platform/parts/Contained.h"

namespace quillon {
namespace {

using Answer = PermissionSource::Answer;

constexpr std::chrono::seconds longestWait{2};

// Sources on the buses.
enum Source : std::size_t { camera, microphone, location, notifications, bluetooth, fingerprint, sourceCount };

std::optional<Source> sourceOf(VantariKey::Case key) {
  switch (key) {
    case VantariKey::cameraUsageDescription:
    case VantariKey::cameraBroadcastUsageDescription:
      return camera;
    case VantariKey::microphoneUsageDescription:
    case VantariKey::microphoneBroadcastUsageDescription:
      return microphone;
    case VantariKey::locationWhenInUseUsageDescription:
    case VantariKey::locationAlwaysUsageDescription:
    case VantariKey::locationAlwaysAndWhenInUseUsageDescription:
      return location;
    case VantariKey::userNotificationsUsageDescription:
      return notifications;
    case VantariKey::bluetoothPeripheralUsageDescription:
    case VantariKey::bluetoothAlwaysUsageDescription:
      return bluetooth;
    case VantariKey::faceIDUsageDescription:
      return fingerprint;
    default:
      return std::nullopt;
  }
}

// The value of keys that need no bus.
PermissionSources::Value valueAtOnce(VantariKey::Case key) {
  return key == VantariKey::nfcReaderUsageDescription ? PermissionSources::Value(nfcAdapterValue()) : std::nullopt;
}

// Error texts are not compared.
bool same(const Answer& one, const Answer& other) {
  return one && other ? *one == *other : one.has_value() == other.has_value();
}

}  // namespace

// The state used by the thread.
class LinuxPermissionSources::Device {
 public:
  explicit Device(const std::string& application) {
    const auto stored = [&](Source source, const StoreEntry& entry) {
      entries_[source].source =
          std::make_unique<StoredPermission>(session_, store_, entry, application, refresher(source));
    };
    stored(camera, cameraEntry);
    stored(microphone, microphoneEntry);
    stored(location, locationEntry);
    stored(notifications, notificationsEntry);
    entries_[bluetooth].source = std::make_unique<BluetoothSource>(system_, refresher(bluetooth));
    entries_[fingerprint].source = std::make_unique<FingerprintSource>(system_);
  }

  [[nodiscard]] bool open() { return loop_.open(); }
  void run() {
    loop_.run([this] {
      session_.close();
      system_.close();
    });
  }
  void stop() { loop_.stop(); }

  std::future<Answer> ask(Source source) {
    std::promise<Answer> promise;
    auto future = promise.get_future();
    loop_.post([this, source, promise = std::move(promise)]() mutable {
      ask(source, [promise = std::move(promise)](const Answer& answer) mutable { promise.set_value(answer); });
    });
    return future;
  }

  Answer known(Source source) const {
    const std::lock_guard lock(mutex_);
    return entries_[source].known.value_or(std::unexpected("not known yet"));
  }

  std::unique_ptr<PermissionSubscription> observe(std::function<void()> changed) {
    auto subscription = observers_.add(std::move(changed));
    loop_.post([this] {  // opens the connections, without starting the sensor's service
      for (const Source source : {camera, microphone, location, notifications, bluetooth}) refresh(source);
    });
    return subscription;
  }

 private:
  struct Entry {
    std::unique_ptr<PermissionSource> source;
    std::optional<Answer> known;  // guarded by the mutex; the others belong to the thread
    bool refreshing = false;
    bool outdated = false;  // changed after the refresh began
  };

  std::function<void()> refresher(Source source) {
    return [this, source] { refresh(source); };
  }

  void ask(Source source, std::move_only_function<void(const Answer&)> done) {
    entries_[source].source->ask([this, source, done = std::move(done)](const Answer& answer) mutable {
      const bool changed = learn(source, answer);
      done(answer);
      if (changed) observers_.notify();
    });
  }

  void refresh(Source source) {
    Entry& entry = entries_[source];
    entry.outdated = entry.refreshing;
    if (entry.refreshing) return;
    entry.refreshing = true;
    ask(source, [this, source, &entry](const Answer&) {
      entry.refreshing = false;
      if (entry.outdated) refresh(source);
    });
  }

  // Stores the answer; true when it differs from the previous one.
  bool learn(Source source, const Answer& answer) {
    const std::lock_guard lock(mutex_);
    auto& known = entries_[source].known;
    const bool changed = known && !same(*known, answer);
    known = answer;
    return changed;
  }

  BusLoop loop_;
  MessageBus session_{loop_, sessionBusAddress()};
  MessageBus system_{loop_, systemBusAddress()};
  BusService store_{permissionStore(session_)};
  ChangeObservers<PermissionSubscription> observers_;
  mutable std::mutex mutex_;  // guards the `known` answers
  std::array<Entry, sourceCount> entries_;
};

LinuxPermissionSources::LinuxPermissionSources(const std::string& applicationId)
    : device_(std::make_shared<Device>(applicationIdentity(applicationId))) {}

LinuxPermissionSources::~LinuxPermissionSources() {
  device_->stop();
}

void LinuxPermissionSources::startThread() const {
  const std::lock_guard lock(mutex_);
  if (thread_) return;
  if (!device_->open()) throw std::system_error(EMFILE, std::generic_category(), "no message bus");
  thread_.emplace("quillon-bus", [device = device_] { device->run(); });
}

std::expected<PermissionSources::Value, std::string> LinuxPermissionSources::platformValue(
    const VantariKey& key) const {
  const auto source = sourceOf(key.kind());
  if (!source) return valueAtOnce(key.kind());
  try {
    startThread();
    auto answer = device_->ask(*source);
    if (answer.wait_for(longestWait) == std::future_status::ready) return answer.get();
    return std::unexpected("no answer in time");
  } catch (const std::exception& error) {
    return std::unexpected(error.what());
  }
}

std::expected<PermissionSources::Value, std::string> LinuxPermissionSources::knownValue(const VantariKey& key) const {
  const auto source = sourceOf(key.kind());
  return source ? device_->known(*source) : valueAtOnce(key.kind());
}

std::unique_ptr<PermissionSubscription> LinuxPermissionSources::observe(std::function<void()> changed) {
  contained([this] { startThread(); });  // without a thread nothing is reported
  return device_->observe(std::move(changed));
}

}  // namespace quillon
