// The connection to one message bus.
#pragma once

#include <deque>
#include <expected>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/PermissionSources/BusError.h"
#include "platform/linux/PermissionSources/BusLoop.h"

namespace quillon {

// Where the buses of the user's session and of the system listen; empty when that is unknown. Unlike GIO they never
// start a bus of their own.
[[nodiscard]] std::string sessionBusAddress();
[[nodiscard]] std::string systemBusAddress();

// How long a bus, and then a service on it, may take for an answer. Less than the two seconds for which an answer is
// waited for, so that who waited longest is told before the next question is asked.
constexpr int answerMilliseconds = 1800;

// A null member matches everything.
struct BusSignal {
  const char* sender;
  const char* path;
  const char* interface;
  const char* name;
  const char* firstArgument;
};

// Connects when it is needed, and again when the connection was lost. The connection is private: what the application
// does with its own does not matter here, nor the other way round. Used on the loop's thread only, except where noted.
class MessageBus {
 public:
  using Use = std::move_only_function<void(std::expected<GDBusConnection*, BusError>)>;

  // Any thread. The loop must outlive it.
  MessageBus(BusLoop& loop, std::string address) : loop_(loop), address_(std::move(address)) {}

  // Any thread, but before the loop runs. Handlers hear the signal on every connection; what it carries is a hint from
  // whoever sent it.
  void watch(const BusSignal& signal, std::function<void(GVariant* arguments)> handler);

  // Hands out the connection, at once or when it stands.
  void use(Use user);

  // Ends every call over the present connection.
  [[nodiscard]] GCancellable* cancellable() const { return cancellable_.get(); }
  [[nodiscard]] BusLoop& loop() const { return loop_; }

  // Ends the connection, or the attempt to make it.
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
  GLibPointer<GIOStream> stream_;  // of the connection or the attempt to make it
  GLibPointer<GDBusConnection> connection_;
  GLibPointer<GCancellable> cancellable_;
  GLibPointer<GSource> limit_;  // of the attempt to connect
  std::vector<Use> waiting_;    // for the attempt under way; empty when there is none
};

}  // namespace quillon
