#include "platform/linux/PermissionSources/BluetoothSource.h"

#include <string_view>
#include <utility>

namespace quillon {
namespace {

constexpr const char* bluez = "org.bluez";
constexpr const char* adapter = "org.bluez.Adapter1";
constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";

constexpr int bluetoothNotDetermined = 0;
constexpr int bluetoothDenied = 2;
constexpr int bluetoothAllowed = 3;

PermissionSources::Value valueOf(GVariant* objects) {
  PermissionSources::Value value;  // nullopt without an adapter
  GVariantIter all;
  g_variant_iter_init(&all, objects);
  while (const auto object = GLibPointer<GVariant>(g_variant_iter_next_value(&all))) {
    const GLibPointer<GVariant> interfaces(g_variant_get_child_value(object.get(), 1));
    const GLibPointer<GVariant> properties(g_variant_lookup_value(interfaces.get(), adapter, G_VARIANT_TYPE_VARDICT));
    if (!properties) continue;
    gboolean powered = FALSE;
    if (g_variant_lookup(properties.get(), "Powered", "b", &powered) && powered) return bluetoothAllowed;
    value = bluetoothNotDetermined;  // a switched-off adapter says nothing about the permission
  }
  return value;
}

PermissionSource::Answer answer(const BusService::Reply& reply) {
  if (reply) return valueOf(GLibPointer<GVariant>(g_variant_get_child_value(reply->get(), 0)).get());
  switch (reply.error().kind) {
    case BusError::Kind::absent:
      return std::nullopt;
    case BusError::Kind::denied:
      return bluetoothDenied;
    default:
      return std::unexpected(reply.error().text);
  }
}

// Whether an added or removed object has an adapter interface; most are nearby devices.
bool namesAdapter(GVariant* arguments) {
  if (g_variant_n_children(arguments) < 2) return false;
  const GLibPointer<GVariant> interfaces(g_variant_get_child_value(arguments, 1));
  if (g_variant_is_of_type(interfaces.get(), G_VARIANT_TYPE("a{sa{sv}}"))) {
    return GLibPointer<GVariant>(g_variant_lookup_value(interfaces.get(), adapter, nullptr)) != nullptr;
  }
  if (!g_variant_is_of_type(interfaces.get(), G_VARIANT_TYPE_STRING_ARRAY)) return false;
  GVariantIter all;
  g_variant_iter_init(&all, interfaces.get());
  while (const auto name = GLibPointer<GVariant>(g_variant_iter_next_value(&all))) {
    if (std::string_view(g_variant_get_string(name.get(), nullptr)) == adapter) return true;
  }
  return false;
}

}  // namespace

BluetoothSource::BluetoothSource(MessageBus& system, const std::function<void()>& changed)
    : bluez_(system, bluez, BusService::Start::never) {
  const auto always = [changed](GVariant*) { changed(); };
  const auto forAdapters = [changed](GVariant* arguments) {
    if (namesAdapter(arguments)) changed();
  };
  system.watch({.sender = bluez,
                .path = nullptr,
                .interface = "org.freedesktop.DBus.Properties",
                .name = "PropertiesChanged",
                .firstArgument = adapter},
               always);
  for (const char* name : {"InterfacesAdded", "InterfacesRemoved"}) {
    system.watch({.sender = bluez, .path = "/", .interface = objectManager, .name = name, .firstArgument = nullptr},
                 forAdapters);
  }
  system.watch({.sender = "org.freedesktop.DBus",
                .path = "/org/freedesktop/DBus",
                .interface = "org.freedesktop.DBus",
                .name = "NameOwnerChanged",
                .firstArgument = bluez},
               always);
}

void BluetoothSource::ask(std::move_only_function<void(Answer)> done) {
  const BusMethod managedObjects{"/", objectManager, "GetManagedObjects", "(a{oa{sa{sv}}})"};
  bluez_.call(managedObjects, nullptr,
              [done = std::move(done)](const BusService::Reply& reply) mutable { done(answer(reply)); });
}

}  // namespace quillon
