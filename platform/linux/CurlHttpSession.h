// HTTP with libcurl.
#pragma once

#include <memory>
#include <mutex>

#include "platform/HttpSession.h"
#include "platform/linux/WorkerThread.h"

namespace quillon {

// Thread-safe. One thread, started with the first request, drives all exchanges and calls completions, which may send
// or drop the session. Destruction completes running exchanges with `cancelled` and takes at most two seconds, whatever
// servers and name servers do. Uses the environment's proxies, except for loopback.
class CurlHttpSession : public HttpSession {
 public:
  CurlHttpSession();
  ~CurlHttpSession() override;

  void send(HttpRequest request, std::stop_token stop, Completion completion) override;

 private:
  class Loop;

  bool startThread();

  std::shared_ptr<Loop> loop_;
  std::mutex threadMutex_;  // guards thread_
  std::unique_ptr<WorkerThread> thread_;
};

}  // namespace quillon
