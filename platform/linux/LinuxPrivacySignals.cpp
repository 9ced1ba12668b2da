#include "platform/linux/LinuxPrivacySignals.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/Bus/BusLoop.h"
#include "platform/parts/ChangeObservers.h"

namespace quillon {
namespace {

constexpr const char* schemaName = "org.gnome.desktop.privacy";

// The settings that count as a privacy signal. The desktop's other privacy switches concern its own data.
struct Switch {
  const char* key;
  gboolean asksForPrivacy;
};
constexpr std::array switches{
    Switch{"hide-identity", TRUE},
    Switch{"send-software-usage-stats", FALSE},
    Switch{"report-technical-problems", FALSE},
};

// Sufficient, since the first answer is read from files and needs no service.
constexpr std::chrono::seconds longestWait{1};

bool asksNotToTrack() {
  const char* value = std::getenv("DO_NOT_TRACK");
  const std::string_view text = value == nullptr ? "" : value;
  return !text.empty() && text != "0";
}

}  // namespace

// The state used by the thread.
class LinuxPrivacySignals::Desktop {
 public:
  [[nodiscard]] bool open() { return loop_.open(); }
  void run() {
    loop_.post([this] { begin(); });
    loop_.run([this] { settings_.reset(); });
  }
  void stop() { loop_.stop(); }

  enum class Answer { unknown, off, on };
  Answer answer() const { return answer_; }
  void awaitAnswer() const { answered_.wait_for(longestWait); }

  ChangeObservers<PrivacySignalSubscription>& observers() { return observers_; }

 private:
  void begin() {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    if (source != nullptr) schema_.reset(g_settings_schema_source_lookup(source, schemaName, TRUE));
    if (schema_) {
      settings_.reset(g_settings_new_full(schema_.get(), nullptr, nullptr));
      const auto changed = +[](GSettings*, const char*, gpointer self) { static_cast<Desktop*>(self)->read(); };
      g_signal_connect(settings_.get(), "changed", G_CALLBACK(changed), this);
    }
    read();
    first_.set_value();
  }

  void read() {
    bool isOn = false;
    for (const auto& [key, asksForPrivacy] : switches) {
      if (!schema_ || g_settings_schema_has_key(schema_.get(), key) == FALSE) continue;
      const GLibPointer<GVariant> set(g_settings_get_user_value(settings_.get(), key));
      if (!set || g_variant_is_of_type(set.get(), G_VARIANT_TYPE_BOOLEAN) == FALSE) continue;
      isOn = isOn || g_variant_get_boolean(set.get()) == asksForPrivacy;
    }
    const Answer now = isOn ? Answer::on : Answer::off;
    if (answer_.exchange(now) != now) observers_.notify();
  }

  BusLoop loop_;
  GLibPointer<GSettingsSchema> schema_;
  GLibPointer<GSettings> settings_;  // null without such switches; used on the loop's thread only
  std::atomic<Answer> answer_ = Answer::unknown;
  std::promise<void> first_;
  const std::shared_future<void> answered_ = first_.get_future().share();
  ChangeObservers<PrivacySignalSubscription> observers_;
};

LinuxPrivacySignals::LinuxPrivacySignals()
    : isInEnvironment_(asksNotToTrack()), desktop_(std::make_shared<Desktop>()) {}

LinuxPrivacySignals::~LinuxPrivacySignals() {
  desktop_->stop();
}

bool LinuxPrivacySignals::hasThread() const {
  const std::lock_guard lock(mutex_);
  if (thread_) return true;
  if (!desktop_->open()) return false;
  try {
    thread_.emplace("quillon-desktop", [desktop = desktop_] { desktop->run(); });
  } catch (const std::system_error&) {
    return false;  // out of threads; a later query retries
  }
  return true;
}

bool LinuxPrivacySignals::isOn() const {
  if (isInEnvironment_) return true;
  if (desktop_->answer() == Desktop::Answer::unknown && hasThread()) desktop_->awaitAnswer();
  return desktop_->answer() != Desktop::Answer::off;
}

std::unique_ptr<PrivacySignalSubscription> LinuxPrivacySignals::observe(std::function<void()> changed) {
  auto subscription = desktop_->observers().add(std::move(changed));
  hasThread();
  return subscription;
}

}  // namespace quillon
