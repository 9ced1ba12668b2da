// The servers that the processes reach, and the network between them.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/HttpSession.h"
#include "platform/memory/VirtualClock.h"
#include "quillon/ConsentStatus.h"
#include "tests/sim/Documents.h"
#include "tests/sim/Scheduler.h"

namespace quillon::sim {

enum class Server { configuration, location, uploads };
inline constexpr std::size_t serverCount = 3;

// What becomes of one request to come.
enum class RequestFault {
  lost,         // on the way there, at once
  timesOut,     // on the way there, after the request's whole time
  answerLost,   // the server took it
  slow,         // each way takes seconds, so that later requests overtake it
  serverError,  // status 500
  notFound,     // status 404
  garbage,      // an answer that is no JSON
  notModified,  // status 304, whatever was asked
  failed,       // upload: status 1; location: no country
  refused,      // upload: status 2
};
inline constexpr std::size_t requestFaultCount = static_cast<std::size_t>(RequestFault::refused) + 1;

struct Upload {
  int number = 0;  // in the order in which they were sent
  bool isImplicit = false;
  std::string subject = {};
  std::map<int, std::string> purposes = {};  // statuses in words
  std::set<int> signalled = {};              // of them, those said to be a privacy signal's
};

class Servers {
 public:
  // Told at the moment when it happens; each is given the owner that sent the request.
  struct Events {
    // `isTwice`: the same session waits for that document already.
    std::function<void(int owner, Server server, bool isTwice)> asked;
    std::function<void(int owner, const Upload& upload)> uploadSent;
    std::function<void(const Upload& upload)> uploadTaken;
    // `url` is that of the request; a version that is answered out of the cache of the process is not told.
    std::function<void(int owner, const std::string& url, int version)> configurationDelivered;
    std::function<void()> disturbed;  // a request failed
    std::function<void(const std::string& line)> noted;
  };

  Servers(std::shared_ptr<Scheduler> scheduler, std::shared_ptr<VirtualClock> clock, Events events);
  ~Servers();

  static constexpr const char* address = "https://sim.test/";

  // The document that is published under a name such as "app/live/config_en.json"; none is status 404.
  void publish(const std::string& name, const Document* document);
  void setPlace(std::optional<std::string> place) { place_ = std::move(place); }
  void setReachable(bool isReachable) { isReachable_ = isReachable; }
  void fail(Server server, RequestFault fault);
  void heal();
  // The process sets up the SDK, which may ask for the same document as before.
  void beginSession(int owner) { ++sessions_[owner]; }

  // The network as a process has it.
  [[nodiscard]] std::shared_ptr<HttpSession> sessionFor(int owner);
  // The process has ended. What has not arrived yet arrives now, or never.
  void end(int owner, bool arrives);
  [[nodiscard]] bool hasRequestsOf(int owner) const;

 private:
  struct Exchange;
  class Session;
  using Pointer = std::shared_ptr<Exchange>;

  void send(int owner, HttpRequest request, std::stop_token stop, HttpSession::Completion completion);
  // Runs the job as soon as the network gets to it.
  void travel(const Pointer& exchange, Job job);
  void arrive(const Pointer& exchange);
  HttpResponse answerTo(Exchange& exchange);
  std::string documentFor(Exchange& exchange, HttpResponse& response);
  static std::string lineAbout(const Exchange& exchange, const std::expected<HttpResponse, TransportError>& outcome);
  void complete(const Pointer& exchange, std::expected<HttpResponse, TransportError> outcome);

  const std::shared_ptr<Scheduler> scheduler_;
  const std::shared_ptr<VirtualClock> clock_;
  const Events events_;
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
