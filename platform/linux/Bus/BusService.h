// A service on a message bus.
#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <string>

#include "platform/linux/Bus/MessageBus.h"

namespace quillon {

struct BusMethod {
  std::string path;
  const char* interface;
  const char* name;
  const char* replyType;  // any other reply type is an error
};

// Used on the loop's thread only, but constructed on any.
class BusService {
 public:
  using Reply = std::expected<GLibPointer<GVariant>, BusError>;
  using Done = std::move_only_function<void(Reply)>;
  enum class Start { onDemand, never };

  // The bus must outlive it. Start::never does not start a service that is not running.
  BusService(MessageBus& bus, const char* name, Start start) : bus_(bus), name_(name), start_(start) {}

  // Passes the reply or the error to `done`, within the time limit. Takes ownership of floating arguments. A service
  // that timed out is not called again for a while, so that a series of calls does not wait for each.
  void call(const BusMethod& method, GVariant* arguments, Done done);

 private:
  void send(GDBusConnection* connection, const BusMethod& method, GVariant* arguments, Done done);
  void finish(Done done, Reply reply);

  MessageBus& bus_;
  const char* const name_;
  const Start start_;
  std::chrono::steady_clock::time_point silentUntil_;
};

}  // namespace quillon
