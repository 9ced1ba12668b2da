#include "platform/linux/LinuxDesktopSettings.h"

#include <algorithm>
#include <cmath>
#include <system_error>
#include <utility>

#include "platform/linux/Bus/BusService.h"
#include "platform/linux/Bus/DesktopPortal.h"
#include "platform/parts/ChangeObservers.h"

namespace quillon {
namespace {

constexpr const char* interface = "org.freedesktop.portal.Settings";

constexpr const char* common = "org.freedesktop.appearance";
constexpr const char* gnome = "org.gnome.desktop.interface";
constexpr const char* gnomeAccessibility = "org.gnome.desktop.a11y.interface";

// The portal's reply: namespace to key to value.
class PortalSettings {
 public:
  explicit PortalSettings(GVariant* reply) : all_(g_variant_get_child_value(reply, 0)) {}

  // Whether an unsigned setting has this value.
  bool is(const char* space, const char* key, guint32 value) const {
    const auto setting = find(space, key, G_VARIANT_TYPE_UINT32);
    return setting && g_variant_get_uint32(setting.get()) == value;
  }
  bool isBoolean(const char* space, const char* key, bool value) const {
    const auto setting = find(space, key, G_VARIANT_TYPE_BOOLEAN);
    return setting && (g_variant_get_boolean(setting.get()) != FALSE) == value;
  }
  std::optional<double> number(const char* space, const char* key) const {
    const auto setting = find(space, key, G_VARIANT_TYPE_DOUBLE);
    return setting ? std::optional(g_variant_get_double(setting.get())) : std::nullopt;
  }
  // A component out of range means no color.
  std::optional<Color> color(const char* space, const char* key) const {
    const auto setting = find(space, key, G_VARIANT_TYPE("(ddd)"));
    if (!setting) return std::nullopt;
    Color color;
    g_variant_get(setting.get(), "(ddd)", &color.red, &color.green, &color.blue);
    const auto isPart = [](double part) { return part >= 0 && part <= 1; };
    return isPart(color.red) && isPart(color.green) && isPart(color.blue) ? std::optional(color) : std::nullopt;
  }

 private:
  GLibPointer<GVariant> find(const char* space, const char* key, const GVariantType* type) const {
    const GLibPointer<GVariant> keys(g_variant_lookup_value(all_.get(), space, G_VARIANT_TYPE_VARDICT));
    return GLibPointer<GVariant>(keys ? g_variant_lookup_value(keys.get(), key, type) : nullptr);
  }

  GLibPointer<GVariant> all_;
};

DesktopAppearance appearanceOf(GVariant* reply) {
  const PortalSettings settings(reply);
  constexpr guint32 dark = 1;
  constexpr guint32 more = 1;
  DesktopAppearance appearance;
  appearance.prefersDark = settings.is(common, "color-scheme", dark);
  appearance.isContrastHigh =
      settings.is(common, "contrast", more) || settings.isBoolean(gnomeAccessibility, "high-contrast", true);
  appearance.isMotionReduced =
      settings.is(common, "reduced-motion", more) || settings.isBoolean(gnome, "enable-animations", false);
  const double scale = settings.number(gnome, "text-scaling-factor").value_or(1);
  if (std::isfinite(scale) && scale > 0) appearance.textScale = scale;
  appearance.accent = settings.color(common, "accent-color");
  return appearance;
}

}  // namespace

// The state used by the thread.
class LinuxDesktopSettings::Portal {
 public:
  Portal() {
    session_.watch({.sender = portal::service,
                    .path = portal::path,
                    .interface = interface,
                    .name = "SettingChanged",
                    .firstArgument = nullptr},
                   [this](GVariant*) { ask(); });
  }

  [[nodiscard]] bool open() { return loop_.open(); }
  void run() {
    loop_.post([this] { ask(); });
    loop_.run([this] { session_.close(); });
  }
  void stop() { loop_.stop(); }

  DesktopAppearance appearance() const {
    const std::lock_guard lock(mutex_);
    return appearance_;
  }
  ChangeObservers<DesktopSettingsSubscription>& observers() { return observers_; }

 private:
  // One query at a time; a change during a query causes another.
  void ask() {
    if (std::exchange(isAsking_, true)) {
      isOutdated_ = true;
      return;
    }
    isOutdated_ = false;
    const BusMethod readAll{portal::path, interface, "ReadAll", "(a{sa{sv}})"};
    const char* const spaces[] = {common, gnome, gnomeAccessibility, nullptr};
    portal_.call(readAll, g_variant_new("(^as)", spaces), [this](const BusService::Reply& reply) {
      isAsking_ = false;
      if (reply) learn(appearanceOf(reply->get()));
      if (isOutdated_) ask();
    });
  }

  void learn(const DesktopAppearance& appearance) {
    {
      const std::lock_guard lock(mutex_);
      if (std::exchange(appearance_, appearance) == appearance) return;
    }
    observers_.notify();
  }

  BusLoop loop_;
  MessageBus session_{loop_, sessionBusAddress()};
  BusService portal_{session_, portal::service, BusService::Start::onDemand};
  bool isAsking_ = false;  // this and the next are used on the loop's thread only
  bool isOutdated_ = false;
  mutable std::mutex mutex_;  // guards the member below
  DesktopAppearance appearance_;
  ChangeObservers<DesktopSettingsSubscription> observers_;
};

LinuxDesktopSettings::LinuxDesktopSettings() : portal_(std::make_shared<Portal>()) {}

LinuxDesktopSettings::~LinuxDesktopSettings() {
  portal_->stop();
}

DesktopAppearance LinuxDesktopSettings::appearance() const {
  return portal_->appearance();
}

std::unique_ptr<DesktopSettingsSubscription> LinuxDesktopSettings::observe(std::function<void()> changed) {
  auto subscription = portal_->observers().add(std::move(changed));
  const std::lock_guard lock(mutex_);
  if (thread_ || !portal_->open()) return subscription;
  try {
    thread_.emplace("quillon-desktop", [portal = portal_] { portal->run(); });
  } catch (const std::system_error&) {
    return subscription;  // out of threads: nothing is reported until the next observer, which retries
  }
  return subscription;
}

}  // namespace quillon
