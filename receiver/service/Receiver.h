#pragma once

#include <random>
#include <string>

#include "receiver/http/HttpServer.h"
#include "receiver/service/EventLog.h"
#include "receiver/service/Metrics.h"
#include "receiver/store/CommitQueue.h"
#include "receiver/uploads/Tokens.h"

namespace quillon::receiver {

// Answers the requests. Used on the HTTP server's thread; its arguments must outlive it.
class Receiver {
 public:
  struct Options {
    std::string placeHeader;  // header with the device's location, set by the proxy; empty: not stored
    bool logsEveryRequest = false;
  };

  Receiver(Options options, Tokens tokens, CommitQueue& queue, Metrics& metrics, EventLog& log);

  void handle(HttpRequest request, HttpServer::Respond respond, const HttpServer& server);
  void replaceTokens(Tokens tokens) { tokens_ = std::move(tokens); }

 private:
  void upload(HttpRequest request, HttpServer::Respond respond);
  HttpServer::Respond counted(const HttpRequest& request, HttpServer::Respond respond);
  std::string placeOf(const HttpRequest& request) const;
  static std::string headOf(const HttpRequest& request);

  const Options options_;
  Tokens tokens_;
  CommitQueue& queue_;
  Metrics& metrics_;
  EventLog& log_;
};

}  // namespace quillon::receiver
