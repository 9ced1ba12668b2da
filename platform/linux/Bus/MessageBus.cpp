#include "platform/linux/Bus/MessageBus.h"

#include <stdlib.h>

#include <utility>

#include "platform/parts/Contained.h"

namespace quillon {
namespace {

// Privileged programs ignore the user's environment.
std::string environment(const char* name) {
  const char* value = ::secure_getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

std::string sessionBusAddress() {
  if (auto address = environment("DBUS_SESSION_BUS_ADDRESS"); !address.empty()) {
    return address.starts_with("autolaunch:") ? std::string() : address;
  }
  const std::string folder = environment("XDG_RUNTIME_DIR");
  if (!folder.starts_with('/')) return {};
  const GLibPointer<char> escaped(g_dbus_address_escape_value((folder + "/bus").c_str()));
  return std::string("unix:path=") + escaped.get();
}

std::string systemBusAddress() {
  const std::string address = environment("DBUS_SYSTEM_BUS_ADDRESS");
  return address.empty() ? "unix:path=/var/run/dbus/system_bus_socket" : address;
}

void MessageBus::watch(const BusSignal& signal, std::function<void(GVariant*)> handler) {
  watches_.emplace_back(loop_, signal, std::move(handler));
}

void MessageBus::use(Use user) {
  if (connection_ && !g_dbus_connection_is_closed(connection_.get())) return user(connection_.get());
  if (address_.empty()) return user(std::unexpected(BusError{BusError::Kind::absent, {}, "no message bus"}));
  if (!BusLoop::hasDescriptors()) {
    return user(std::unexpected(BusError{BusError::Kind::other, {}, "too many open files"}));
  }
  waiting_.push_back(std::move(user));
  if (waiting_.size() == 1) connect();
}

void MessageBus::connect() {
  connection_.reset();
  stream_.reset();
  cancellable_.reset(g_cancellable_new());
  limit_.reset(g_timeout_source_new(answerMilliseconds));
  const auto expire = [](gpointer bus) -> gboolean {
    static_cast<MessageBus*>(bus)->abandon();
    return G_SOURCE_REMOVE;
  };
  g_source_set_callback(limit_.get(), expire, this, nullptr);
  g_source_attach(limit_.get(), g_main_context_get_thread_default());
  g_dbus_address_get_stream(address_.c_str(), cancellable_.get(), &BusLoop::finished,
                            loop_.expect([this](GObject*, GAsyncResult* result) {
                              GError* error = nullptr;
                              stream_.reset(g_dbus_address_get_stream_finish(result, nullptr, &error));
                              if (error != nullptr) return connected(std::unexpected(busError(error)));
                              authenticate();
                            }));
}

void MessageBus::authenticate() {
  constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                           G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  g_dbus_connection_new(stream_.get(), nullptr, flags, nullptr, cancellable_.get(), &BusLoop::finished,
                        loop_.expect([this](GObject*, GAsyncResult* result) {
                          GError* error = nullptr;
                          connection_.reset(g_dbus_connection_new_finish(result, &error));
                          if (error != nullptr) return connected(std::unexpected(busError(error)));
                          connected(connection_.get());
                        }));
}

// GIO cancels all but the last step of connecting, the wait for the greeting; closing the socket ends that.
void MessageBus::abandon() {
  g_cancellable_cancel(cancellable_.get());
  if (!stream_ || !G_IS_SOCKET_CONNECTION(stream_.get())) return;
  g_socket_shutdown(g_socket_connection_get_socket(G_SOCKET_CONNECTION(stream_.get())), TRUE, TRUE, nullptr);
}

void MessageBus::connected(std::expected<GDBusConnection*, BusError> connection) {
  limit_.reset();
  if (!connection && g_cancellable_is_cancelled(cancellable_.get())) connection.error().kind = BusError::Kind::silent;
  // The bus handles requests in order: queries sent from here on follow the signal subscriptions, so no change is
  // missed.
  if (connection) {
    for (Watch& watch : watches_) {
      const BusSignal& signal = watch.signal;
      g_dbus_connection_signal_subscribe(*connection, signal.sender, signal.interface, signal.name, signal.path,
                                         signal.firstArgument, G_DBUS_SIGNAL_FLAGS_NONE, &MessageBus::heard, &watch,
                                         nullptr);
    }
  }
  for (auto& user : std::exchange(waiting_, {})) user(connection);
}

void MessageBus::heard(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments,
                       gpointer watch) {
  const Watch& owner = *static_cast<Watch*>(watch);
  if (!owner.loop.stopped()) contained([&] { owner.handler(arguments); });
}

void MessageBus::close() {
  limit_.reset();
  waiting_.clear();
  if (connection_) {
    g_cancellable_cancel(cancellable_.get());
    g_dbus_connection_close(connection_.get(), nullptr, &BusLoop::finished,
                            loop_.expect([](GObject*, GAsyncResult*) {}));
    connection_.reset();
  } else if (cancellable_) {
    abandon();
  }
}

}  // namespace quillon
