#include "platform/linux/Bus/BusService.h"

#include <utility>

namespace quillon {
namespace {

constexpr std::chrono::seconds pauseAfterSilence{10};
constexpr gsize largestReply = gsize{4} << 20;  // bytes; hundreds of devices need far less

}  // namespace

void BusService::call(const BusMethod& method, GVariant* arguments, Done done) {
  GLibPointer<GVariant> owned(arguments == nullptr ? nullptr : g_variant_ref_sink(arguments));
  if (std::chrono::steady_clock::now() < silentUntil_) {
    return done(std::unexpected(BusError{BusError::Kind::other, {}, std::string(name_) + ": gave no answer lately"}));
  }
  bus_.use([this, method, owned = std::move(owned), done = std::move(done)](auto connection) mutable {
    if (!connection) return finish(std::move(done), std::unexpected(std::move(connection.error())));
    send(*connection, method, owned.get(), std::move(done));
  });
}

void BusService::send(GDBusConnection* connection, const BusMethod& method, GVariant* arguments, Done done) {
  auto expected = bus_.loop().expect([this, done = std::move(done)](GObject* source, GAsyncResult* result) mutable {
    GError* error = nullptr;
    GLibPointer<GVariant> reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
    if (error != nullptr) return finish(std::move(done), std::unexpected(busError(error)));
    if (g_variant_get_size(reply.get()) > largestReply) {
      return finish(std::move(done), std::unexpected(BusError{BusError::Kind::other, {}, "the reply is too large"}));
    }
    finish(std::move(done), std::move(reply));
  });
  g_dbus_connection_call(connection, name_, method.path.c_str(), method.interface, method.name, arguments,
                         G_VARIANT_TYPE(method.replyType),
                         start_ == Start::never ? G_DBUS_CALL_FLAGS_NO_AUTO_START : G_DBUS_CALL_FLAGS_NONE,
                         answerMilliseconds, bus_.cancellable(), &BusLoop::finished, expected);
}

void BusService::finish(Done done, Reply reply) {
  if (!reply) {
    if (reply.error().kind == BusError::Kind::silent) {
      silentUntil_ = std::chrono::steady_clock::now() + pauseAfterSilence;
      reply.error().text = "no answer in time";
    }
    reply.error().text.insert(0, std::string(name_) + ": ");
  }
  done(std::move(reply));
}

}  // namespace quillon
