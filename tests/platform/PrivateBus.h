// A private message bus, and scripted services on it.
#pragma once

#include <fcntl.h>
#include <gio/gio.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

#include "tests/platform/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace quillon::test {

// A running dbus-daemon. Desktop services are started on demand and keep their files in the bus's folder.
class PrivateBus {
 public:
  enum class Services { desktop, none };

  explicit PrivateBus(Services services) {
    setFileBytes(folder_.path() / "bus.conf",
                 "<busconfig><type>session</type><auth>EXTERNAL</auth><listen>unix:path=" + socket() + "</listen>" +
                     (services == Services::desktop ? "<servicedir>/usr/share/dbus-1/services</servicedir>" : "") +
                     "<policy context=\"default\"><allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                     "<allow own=\"*\"/></policy></busconfig>");
    start();
  }
  static bool installed() { return run("dbus-daemon --version") && run("gdbus help"); }

  std::string address() const { return "unix:path=" + socket(); }

  void start() {
    daemon_.emplace([path = folder_.path().string()](const ChildProcess::Say& say) {
      ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
      ::clearenv();
      ::setenv("PATH", "/usr/bin:/bin", 1);
      for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) ::setenv(name, path.c_str(), 1);
      ::execlp("dbus-daemon", "dbus-daemon", ("--config-file=" + path + "/bus.conf").c_str(), "--nofork", "--nopidfile",
               ("--print-address=" + std::to_string(say.end)).c_str(), nullptr);
    });
    if (daemon_->hear().empty()) throw std::runtime_error("no message bus");
  }

  // Also ends its services.
  void stop() {
    daemon_.reset();
    std::error_code ignored;
    std::filesystem::remove(socket(), ignored);
  }

  // Calls a method with gdbus.
  void call(const std::string& service, const std::string& path, const std::string& methodAndArguments) const {
    const std::string command =
        "gdbus call --session --dest " + service + " --object-path " + path + " --method " + methodAndArguments;
    if (!run("DBUS_SESSION_BUS_ADDRESS=" + address() + " " + command)) throw std::runtime_error(command);
  }

 private:
  std::string socket() const { return folder_.path() / "socket"; }

  static bool run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

  const TemporaryFolder folder_;
  std::optional<ChildProcess> daemon_;
};

// Owns a bus name and answers methods with texts in GVariant notation, of any type. A text "error:NAME" is an error of
// that name; a method without a text gets no reply.
class BusPeer {
 public:
  BusPeer(const std::string& address, const std::string& name, const std::map<std::string, std::string>& replies) {
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_ = g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
    if (connection_ == nullptr) throw std::runtime_error("no connection to " + address);
    for (const auto& [method, text] : replies) reply(method, text);
    g_dbus_connection_add_filter(connection_, &BusPeer::filter, nullptr, nullptr);
    constexpr guint32 doNotQueue = 4;
    GVariant* owned = g_dbus_connection_call_sync(
        connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name.c_str(), doNotQueue), nullptr, G_DBUS_CALL_FLAGS_NONE, 10000, nullptr, nullptr);
    if (owned == nullptr) throw std::runtime_error("no name " + name);
    g_variant_unref(owned);
  }
  BusPeer(const BusPeer&) = delete;
  BusPeer& operator=(const BusPeer&) = delete;
  ~BusPeer() {
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    {
      const std::lock_guard lock(mutex_);
      replies_.erase(connection_);
      calls_.erase(connection_);
    }
    g_object_unref(connection_);
  }

  void reply(const std::string& method, const std::string& text) {
    const std::lock_guard lock(mutex_);
    replies_[connection_][method] = text;
  }

  struct Call {
    std::string sender;
    std::string arguments;  // in GVariant notation
  };
  // The next call of a method, waited for; nullopt when none comes.
  std::optional<Call> nextCall(const std::string& method) {
    std::unique_lock lock(mutex_);
    auto& calls = calls_[connection_][method];
    if (!called_.wait_for(lock, std::chrono::seconds(10), [&] { return !calls.empty(); })) return std::nullopt;
    auto call = std::move(calls.front());
    calls.pop_front();
    return call;
  }

  void emit(const std::string& path, const std::string& interface, const std::string& name,
            const std::string& arguments) {
    GVariant* const parsed = g_variant_parse(nullptr, arguments.c_str(), nullptr, nullptr, nullptr);
    if (parsed == nullptr) throw std::runtime_error(arguments);
    g_dbus_connection_emit_signal(connection_, nullptr, path.c_str(), interface.c_str(), name.c_str(), parsed, nullptr);
    g_variant_unref(parsed);
  }

 private:
  // Called on a GLib thread.
  static GDBusMessage* filter(GDBusConnection* connection, GDBusMessage* message, gboolean incoming, gpointer) {
    if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return message;
    const std::string text = replyTo(connection, message);
    if (!text.empty()) {
      GDBusMessage* answer = nullptr;
      if (text.starts_with("error:")) {
        answer = g_dbus_message_new_method_error_literal(message, text.c_str() + 6, "refused");
      } else {
        answer = g_dbus_message_new_method_reply(message);
        g_dbus_message_set_body(answer, g_variant_new_parsed(text.c_str()));
      }
      g_dbus_connection_send_message(connection, answer, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
      g_object_unref(answer);
    }
    g_object_unref(message);
    return nullptr;
  }

  static std::string replyTo(GDBusConnection* connection, GDBusMessage* message) {
    const std::string method = g_dbus_message_get_member(message);
    Call call{g_dbus_message_get_sender(message), {}};
    if (GVariant* const body = g_dbus_message_get_body(message)) {
      char* const text = g_variant_print(body, FALSE);
      call.arguments = text;
      g_free(text);
    }
    const std::lock_guard lock(mutex_);
    calls_[connection][method].push_back(std::move(call));
    called_.notify_all();
    return replies_[connection][method];
  }

  GDBusConnection* connection_ = nullptr;

  // Shared by all peers: data used by GLib's thread must not be created or destroyed with one, since the thread
  // sanitizer does not see GLib's hand-over.
  static inline std::mutex mutex_;  // guards the members below
  static inline std::condition_variable called_;
  static inline std::map<GDBusConnection*, std::map<std::string, std::deque<Call>>> calls_;
  static inline std::map<GDBusConnection*, std::map<std::string, std::string>> replies_;
};

}  // namespace quillon::test
