// The simulated servers and network.
#pragma once

#include <array>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/HttpSession.h"
#include "tests/sim/Documents.h"
#include "tests/sim/Scheduler.h"

namespace quillon::sim {

enum class Server { configuration, location, uploads };
inline constexpr std::size_t serverCount = 3;

// The fault of an upcoming request.
enum class RequestFault {
  lost,         // not delivered, fails immediately
  timesOut,     // not delivered, fails after the request's time limit
  answerLost,   // processed by the server, response lost
  slow,         // seconds in each direction, so later requests may overtake it
  serverError,  // status 500
  notFound,     // status 404
  garbage,      // response is not JSON
  notModified,  // status 304, regardless of the request
  failed,       // upload: status 1; location: no country
  refused,      // upload: status 2
};
inline constexpr std::size_t requestFaultCount = static_cast<std::size_t>(RequestFault::refused) + 1;

struct Upload {
  int number = 0;  // in sending order
  bool isImplicit = false;
  std::string subject = {};
  std::map<int, std::string> purposes = {};  // statuses as text
  std::set<int> signalled = {};              // those of them attributed to a privacy signal
};

class Surroundings;

class Servers {
 public:
  // Reports to the model of this world, and to its trail.
  explicit Servers(Surroundings& around);
  ~Servers();

  static constexpr const char* address = "https://sim.test/";

  // Publishes a document under a name such as "app/live/config_en.json"; null means status 404.
  void publish(const std::string& name, const Document* document);
  void setPlace(std::optional<std::string> place) { place_ = std::move(place); }
  void setReachable(bool isReachable) { isReachable_ = isReachable; }
  void fail(Server server, RequestFault fault);
  void heal();
  // The process sets up the SDK. A download of its former session may ask for the same document once more.
  void beginSession(int owner) { ++sessions_[owner]; }

  // The network service of a process.
  [[nodiscard]] std::shared_ptr<HttpSession> sessionFor(int owner);
  // The process has ended. Its requests in flight arrive now if `arrives`, else never.
  void end(int owner, bool arrives);
  [[nodiscard]] bool hasRequestsOf(int owner) const;

 private:
  struct Exchange;
  class Session;
  using Pointer = std::shared_ptr<Exchange>;

  void send(int owner, HttpRequest request, std::stop_token stop, HttpSession::Completion completion);
  // Schedules a network job.
  void travel(const Pointer& exchange, Job job);
  void arrive(const Pointer& exchange);
  HttpResponse answerTo(Exchange& exchange);
  std::string documentFor(Exchange& exchange, HttpResponse& response);
  static std::string lineAbout(const Exchange& exchange, const std::expected<HttpResponse, TransportError>& outcome);
  void complete(const Pointer& exchange, std::expected<HttpResponse, TransportError> outcome);

  Surroundings& around_;
  std::map<std::string, const Document*> published_;
  std::optional<std::string> place_;
  bool isReachable_ = true;
  std::array<std::deque<RequestFault>, serverCount> faults_;
  std::vector<Pointer> underWay_;
  std::map<int, int> sessions_;
  int lastUpload_ = 0;
  unsigned answered_ = 0;
};

}  // namespace quillon::sim
