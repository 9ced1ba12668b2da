#include "tests/sim/Servers.h"

#include <algorithm>
#include <boost/json/parse.hpp>
#include <utility>

#include "tests/sim/Surroundings.h"

namespace quillon::sim {
namespace {

constexpr std::chrono::seconds slowness{9};

Upload uploadOf(const std::string& body, int number) {
  Upload upload{.number = number};
  boost::system::error_code error;
  const auto parsed = boost::json::parse(body, error);
  const auto* root = parsed.if_object();
  if (!root) return upload;
  upload.isImplicit = root->at("implicit_consent").as_bool();
  upload.subject = root->at("uuid").as_string();
  for (const auto& consent : root->at("purpose_consents").as_array()) {
    const int purpose = static_cast<int>(consent.at("purpose_id").as_int64());
    upload.purposes.emplace(purpose, std::string(consent.at("consent_status").as_string()));
    const auto* cause = consent.as_object().if_contains("cause");
    if (cause && cause->as_string() == "signal") upload.signalled.insert(purpose);
  }
  return upload;
}

Server serverOf(const HttpRequest& request) {
  if (request.method == "POST") return Server::uploads;
  return request.url.ends_with("/location") ? Server::location : Server::configuration;
}

}  // namespace

struct Servers::Exchange {
  int owner;
  Server server;
  HttpRequest request;
  HttpSession::Completion completion;
  std::optional<RequestFault> fault;
  Upload upload;
  std::optional<int> version;  // of the document in transit
  bool hasArrived = false;
  bool isOver = false;
  std::unique_ptr<Timer> limit;
  std::unique_ptr<Timer> delay;
  std::optional<std::stop_callback<std::function<void()>>> stop;
};

class Servers::Session : public HttpSession {
 public:
  Session(Servers& servers, int owner) : servers_(servers), owner_(owner) {}
  void send(HttpRequest request, std::stop_token stop, Completion completion) override {
    servers_.send(owner_, std::move(request), std::move(stop), std::move(completion));
  }

 private:
  Servers& servers_;
  const int owner_;
};

Servers::Servers(Surroundings& around) : around_(around) {}

Servers::~Servers() = default;

void Servers::publish(const std::string& name, const Document* document) {
  published_[name] = document;
}

void Servers::fail(Server server, RequestFault fault) {
  faults_[static_cast<std::size_t>(server)].push_back(fault);
}

void Servers::heal() {
  for (auto& faults : faults_) faults.clear();
}

std::shared_ptr<HttpSession> Servers::sessionFor(int owner) {
  return std::make_shared<Session>(*this, owner);
}

void Servers::end(int owner, bool arrives) {
  for (const Pointer& exchange : std::exchange(underWay_, {})) {
    if (exchange->owner != owner) {
      underWay_.push_back(exchange);
      continue;
    }
    if (arrives && !exchange->hasArrived && exchange->fault != RequestFault::lost) answerTo(*exchange);
    exchange->isOver = true;
    exchange->stop.reset();
    exchange->completion = {};
    exchange->limit.reset();
    exchange->delay.reset();
  }
}

bool Servers::hasRequestsOf(int owner) const {
  return std::ranges::any_of(underWay_, [&](const Pointer& exchange) { return exchange->owner == owner; });
}

void Servers::send(int owner, HttpRequest request, std::stop_token stop, HttpSession::Completion completion) {
  const auto exchange = std::make_shared<Exchange>();
  exchange->owner = owner;
  exchange->server = serverOf(request);
  exchange->request = std::move(request);
  exchange->completion = std::move(completion);
  const bool isTwice = exchange->server == Server::configuration && sessions_[owner] == 1 &&
                       std::ranges::any_of(underWay_, [&](const Pointer& other) {
                         return other->owner == owner && other->request.url == exchange->request.url;
                       });
  underWay_.push_back(exchange);
  const std::string who = "process " + std::to_string(owner);
  if (isTwice) around_.trail.fail(8, who + " downloads a document twice at once");
  if (around_.traffic.isTooMuch(owner, exchange->server, around_.elapsed())) {
    around_.trail.fail(8, who + " makes too many requests");
  }
  if (exchange->server == Server::uploads) {
    exchange->upload = uploadOf(exchange->request.body.value_or(""), ++lastUpload_);
    around_.model.uploadSent(owner, exchange->upload, around_.view());
  }
  auto& faults = faults_[static_cast<std::size_t>(exchange->server)];
  if (!faults.empty()) {
    exchange->fault = faults.front();
    faults.pop_front();
  }
  exchange->stop.emplace(std::move(stop), [this, weak = std::weak_ptr(exchange)] {
    if (const auto stopped = weak.lock()) {
      complete(stopped, std::unexpected(TransportError{TransportError::Kind::cancelled, "The request was cancelled"}));
    }
  });
  if (exchange->isOver) return;
  exchange->limit = around_.clock->after(exchange->request.timeout, [this, weak = std::weak_ptr(exchange)] {
    if (const auto late = weak.lock()) {
      complete(late, std::unexpected(TransportError{TransportError::Kind::timedOut, "The server did not answer"}));
    }
  });
  if (!isReachable_ || exchange->fault == RequestFault::lost) {
    travel(exchange, [this, exchange] {
      complete(exchange, std::unexpected(TransportError{TransportError::Kind::unreachable, "There is no network"}));
    });
  } else if (exchange->fault != RequestFault::timesOut) {
    travel(exchange, [this, exchange] { arrive(exchange); });
  }
}

void Servers::travel(const Pointer& exchange, Job job) {
  if (exchange->fault != RequestFault::slow) {
    around_.scheduler->post(Scheduler::network, Scheduler::unordered, std::move(job));
    return;
  }
  exchange->delay = around_.clock->after(slowness, [this, job = std::move(job)]() mutable {
    around_.scheduler->post(Scheduler::network, Scheduler::unordered, std::move(job));
  });
}

void Servers::arrive(const Pointer& exchange) {
  if (exchange->isOver) return;
  exchange->hasArrived = true;
  HttpResponse response = answerTo(*exchange);
  if (exchange->fault == RequestFault::answerLost) return;
  travel(exchange,
         [this, exchange, response = std::move(response)]() mutable { complete(exchange, std::move(response)); });
}

HttpResponse Servers::answerTo(Exchange& exchange) {
  HttpResponse response{.url = exchange.request.url, .status = 200, .headers = {}, .body = {}};
  // Tags of any server may be sent to any other, since the SDK stores only one tag for all requests.
  if (++answered_ % 5 == 0) response.headers["Etag"] = "\"other\"";
  if (exchange.fault == RequestFault::serverError) response.status = 500;
  if (exchange.fault == RequestFault::notFound) response.status = 404;
  if (exchange.fault == RequestFault::notModified) response.status = 304;
  if (exchange.fault == RequestFault::garbage) response.body = R"({"version":)";
  if (response.status != 200 || !response.body.empty()) return response;
  switch (exchange.server) {
    case Server::configuration:
      response.body = documentFor(exchange, response);
      break;
    case Server::location: {
      const std::string place = exchange.fault == RequestFault::failed ? "" : place_.value_or("");
      const auto hash = place.find('#');
      const std::string country = place.substr(0, hash);
      const std::string state = hash == std::string::npos ? "" : place.substr(hash + 1);
      response.body =
          R"({"status":0,"message":"","data":{"City":{},"Continent":{},"Country":{},"CountryISOCode":{"en":")" +
          country + R"("},"Language":{},"Location":{},"RegisteredCountry":{},"State":{},"StateISOCode":{"en":")" +
          state + R"("}}})";
      break;
    }
    case Server::uploads: {
      const bool isRefused = exchange.fault == RequestFault::failed || exchange.fault == RequestFault::refused;
      if (!isRefused) around_.model.uploadTaken(exchange.upload);
      const int status = !isRefused ? 0 : exchange.fault == RequestFault::failed ? 1 : 2;
      response.body = R"({"status":)" + std::to_string(status) + R"(,"message":"answered"})";
      break;
    }
  }
  return response;
}

std::string Servers::documentFor(Exchange& exchange, HttpResponse& response) {
  constexpr std::string_view folder = "consent/mobile_banner/tenant/";
  const auto found = published_.find(exchange.request.url.substr(std::string_view(address).size() + folder.size()));
  if (found == published_.end() || !found->second) {
    response.status = 404;
    return {};
  }
  const Document& document = *found->second;
  const std::string tag = "\"v" + std::to_string(document.version) + "\"";
  const auto known = exchange.request.headers.find("If-None-Match");
  if (known != exchange.request.headers.end() && known->second == tag) {
    response.status = 304;
    return {};
  }
  response.headers["Etag"] = tag;
  exchange.version = document.version;
  return document.json();
}

std::string Servers::lineAbout(const Exchange& exchange, const std::expected<HttpResponse, TransportError>& outcome) {
  std::string line = "  p" + std::to_string(exchange.owner) + " " + exchange.request.method + " " +
                     exchange.request.url.substr(std::string_view(address).size());
  if (exchange.server == Server::uploads) {
    line += " of " + exchange.upload.subject.substr(0, 8) + (exchange.upload.isImplicit ? " implicit" : " explicit");
    for (const auto& [purpose, status] : exchange.upload.purposes) line += " " + std::to_string(purpose) + "=" + status;
    for (const int purpose : exchange.upload.signalled) line += " signal:" + std::to_string(purpose);
  }
  return line + ": " + (outcome ? std::to_string(outcome->status.value_or(0)) : outcome.error().description);
}

void Servers::complete(const Pointer& exchange, std::expected<HttpResponse, TransportError> outcome) {
  if (std::exchange(exchange->isOver, true)) return;
  std::erase(underWay_, exchange);
  exchange->limit.reset();
  exchange->delay.reset();
  if (!outcome || exchange->fault) around_.isDisturbed = true;
  if (around_.trail.isKept()) around_.trail.note(lineAbout(*exchange, outcome));
  // Not for a version that comes from the process's own cache.
  if (outcome && exchange->version) {
    around_.model.delivered(exchange->owner, exchange->request.url, *exchange->version);
  }
  if (auto completion = std::exchange(exchange->completion, {})) completion(std::move(outcome));
}

}  // namespace quillon::sim
