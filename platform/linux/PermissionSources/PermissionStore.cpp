#include "platform/linux/PermissionSources/PermissionStore.h"

#include <utility>

namespace quillon {
namespace {

constexpr const char* service = "org.freedesktop.impl.portal.PermissionStore";
constexpr const char* path = "/org/freedesktop/impl/portal/PermissionStore";

constexpr int undecided = 0;

int device(const std::string& word) {
  constexpr int denied = 2;
  constexpr int authorized = 3;
  if (word == "yes") return authorized;
  return word == "no" ? denied : undecided;
}

// The permitted accuracy of the position.
int locationStatus(const std::string& word) {
  constexpr int denied = 2;
  constexpr int authorized = 3;
  if (word == "NONE") return denied;
  for (const char* accuracy : {"COUNTRY", "CITY", "NEIGHBORHOOD", "STREET", "EXACT"}) {
    if (word == accuracy) return authorized;
  }
  return undecided;
}

constexpr int notificationsAuthorized = 2;

int notificationsStatus(const std::string& word) {
  constexpr int denied = 1;
  if (word == "yes") return notificationsAuthorized;
  return word == "no" ? denied : undecided;
}

}  // namespace

const StoreEntry cameraEntry{"devices", "camera", undecided, device};
const StoreEntry microphoneEntry{"devices", "microphone", undecided, device};
const StoreEntry locationEntry{"location", "location", undecided, locationStatus};
// Desktops show notifications unless they were forbidden.
const StoreEntry notificationsEntry{"notifications", "notification", notificationsAuthorized, notificationsStatus};

BusService permissionStore(MessageBus& session) {
  return {session, service, BusService::Start::onDemand};
}

StoredPermission::StoredPermission(MessageBus& session, BusService& store, const StoreEntry& entry,
                                   std::string application, std::function<void()> changed)
    : store_(store), entry_(entry), application_(std::move(application)) {
  session.watch(
      {.sender = service, .path = path, .interface = service, .name = "Changed", .firstArgument = entry.table},
      [changed = std::move(changed)](GVariant*) { changed(); });
}

void StoredPermission::ask(std::move_only_function<void(Answer)> done) {
  const BusMethod lookup{path, service, "Lookup", "(a{sas}v)"};
  store_.call(lookup, g_variant_new("(ss)", entry_.table, entry_.id),
              [this, done = std::move(done)](const BusService::Reply& reply) mutable { done(answer(reply)); });
}

PermissionSource::Answer StoredPermission::answer(const BusService::Reply& reply) const {
  if (!reply) {
    if (reply.error().name == "org.freedesktop.portal.Error.NotFound") return entry_.unset;
    if (reply.error().kind == BusError::Kind::absent) return undecided;
    return std::unexpected(reply.error().text);
  }
  const GLibPointer<GVariant> permissions(g_variant_get_child_value(reply->get(), 0));
  const GLibPointer<GVariant> own(
      g_variant_lookup_value(permissions.get(), application_.c_str(), G_VARIANT_TYPE_STRING_ARRAY));
  if (!own) return entry_.unset;
  if (g_variant_n_children(own.get()) == 0) return undecided;
  const GLibPointer<GVariant> word(g_variant_get_child_value(own.get(), 0));
  return entry_.meaning(g_variant_get_string(word.get(), nullptr));
}

}  // namespace quillon
