// A connection to one message bus.
#pragma once

#include <deque>
#include <expected>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/Bus/BusError.h"
#include "platform/linux/Bus/BusLoop.h"

namespace quillon {

// The addresses of the session and system bus; empty when unknown. Unlike GIO's, they never start a bus.
[[nodiscard]] std::string sessionBusAddress();
[[nodiscard]] std::string systemBusAddress();

// Time limit for connecting, and for a service's reply. Below the callers' limit of two seconds, so that the caller
// that has waited longest is answered before the next query starts.
constexpr int answerMilliseconds = 1800;

// A null member matches anything.
struct BusSignal {
  const char* sender;
  const char* path;
  const char* interface;
  const char* name;
  const char* firstArgument;
};

// Connects on demand, and again after a lost connection. The connection is private, so it and the application's own do
// not affect each other. Used on the loop's thread only, except where noted.
class MessageBus {
 public:
  using Use = std::move_only_function<void(std::expected<GDBusConnection*, BusError>)>;

  // Any thread. The loop must outlive it.
  MessageBus(BusLoop& loop, std::string address) : loop_(loop), address_(std::move(address)) {}

  // Any thread, before the loop runs. Handlers receive the signal on every connection; its content is an untrusted
  // hint.
  void watch(const BusSignal& signal, std::function<void(GVariant* arguments)> handler);

  // Passes the connection to `user`, at once or when connected.
  void use(Use user);

  // Cancels every call over the current connection.
  [[nodiscard]] GCancellable* cancellable() const { return cancellable_.get(); }
  [[nodiscard]] BusLoop& loop() const { return loop_; }

  // Closes the connection, or aborts connecting.
  void close();

 private:
  struct Watch {
    BusLoop& loop;
    BusSignal signal;
    std::function<void(GVariant*)> handler;
  };

  void connect();
  void authenticate();
  void abandon();
  void connected(std::expected<GDBusConnection*, BusError> connection);
  static void heard(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments,
                    gpointer watch);

  BusLoop& loop_;
  const std::string address_;
  std::deque<Watch> watches_;      // GIO keeps their addresses
  GLibPointer<GIOStream> stream_;  // of the connection or the connection attempt
  GLibPointer<GDBusConnection> connection_;
  GLibPointer<GCancellable> cancellable_;
  GLibPointer<GSource> limit_;  // time limit of the connection attempt
  std::vector<Use> waiting_;    // for the current connection attempt; empty without one
};

}  // namespace quillon
