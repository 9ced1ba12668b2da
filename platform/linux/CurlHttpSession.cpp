#include "platform/linux/CurlHttpSession.h"

#include <curl/curl.h>
#include <pthread.h>
#include <signal.h>

#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/CurlExchange.h"
#include "platform/parts/Contained.h"

namespace quillon {
namespace {

using Kind = TransportError::Kind;

constexpr int longestPollMilliseconds = 60'000;  // woken earlier by curl_multi_wakeup() and libcurl's timers

std::unexpected<TransportError> failed(Kind kind, std::string description) {
  return std::unexpected(TransportError{kind, std::move(description)});
}

std::unexpected<TransportError> cancelled() {
  return failed(Kind::cancelled, "The request was cancelled");
}

void initialiseCurlOnce() {
  static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
  static_cast<void>(code);  // after a failure, creating handles fails
}

// A closed connection must not terminate the process. The signal stays pending on this thread.
void blockBrokenPipeSignal() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

// The state shared by the session and its thread.
class CurlHttpSession::Loop {
 public:
  Loop() {
    initialiseCurlOnce();
    multi_.reset(curl_multi_init());
  }

  // Without wake-ups a stop request could not be honoured, so such a loop is not used.
  [[nodiscard]] bool isUsable() const { return multi_ && curl_multi_wakeup(multi_.get()) == CURLM_OK; }

  void add(std::unique_ptr<CurlExchange> exchange) {
    const std::lock_guard lock(mutex_);
    incoming_.push_back(std::move(exchange));
    curl_multi_wakeup(multi_.get());
  }

  // Ends the thread, which completes all exchanges as cancelled.
  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    if (multi_) curl_multi_wakeup(multi_.get());
  }

  void run() {
    blockBrokenPipeSignal();
    while (takeIncoming()) {
      cancelStopped();
      int running = 0;
      CURLMcode code = curl_multi_perform(multi_.get(), &running);
      processFinished();
      if (code == CURLM_OK) code = curl_multi_poll(multi_.get(), nullptr, 0, longestPollMilliseconds, nullptr);
      if (code != CURLM_OK) abandonAll(failed(Kind::unreachable, curl_multi_strerror(code)));
    }
    abandonAll(cancelled());
  }

 private:
  struct Wake {
    CURLM* multi;
    void operator()() const noexcept { curl_multi_wakeup(multi); }
  };
  struct FreeMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };
  // A running exchange. The order of the members avoids dangling handles.
  struct Active {
    std::unique_ptr<CurlExchange> exchange;
    std::unique_ptr<std::stop_callback<Wake>> wakeOnStop;
  };

  // Starts requests sent since the last call; false when the session is closed.
  bool takeIncoming() {
    std::vector<std::unique_ptr<CurlExchange>> fresh;
    bool closed = false;
    {
      const std::lock_guard lock(mutex_);
      fresh.swap(incoming_);
      closed = closed_;
    }
    for (auto& exchange : fresh) {
      auto wake = std::make_unique<std::stop_callback<Wake>>(exchange->stop(), Wake{multi_.get()});
      active_.push_back({std::move(exchange), std::move(wake)});
      if (!closed) beginHop(active_.size() - 1);
    }
    return !closed;
  }

  void beginHop(std::size_t index) {
    CurlExchange& exchange = *active_[index].exchange;
    if (!exchange.prepareHop() || curl_multi_add_handle(multi_.get(), exchange.handle()) != CURLM_OK) {
      finish(index, failed(Kind::unreachable, "The HTTP library could not begin the request"));
    }
  }

  void cancelStopped() {
    for (std::size_t i = active_.size(); i-- > 0;) {
      if (active_[i].exchange->stop().stop_requested()) finish(i, cancelled());
    }
  }

  // Handles transfers that libcurl has finished.
  void processFinished() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
      if (message->msg != CURLMSG_DONE) continue;
      const CURLcode code = message->data.result;
      const CURL* const handle = message->easy_handle;
      std::size_t index = 0;
      while (active_[index].exchange->handle() != handle) ++index;
      CurlExchange& exchange = *active_[index].exchange;
      auto outcome = exchange.afterHop(code);
      if (outcome) {
        finish(index, *std::move(outcome));
      } else {
        curl_multi_remove_handle(multi_.get(), exchange.handle());
        beginHop(index);
      }
    }
  }

  void abandonAll(const std::unexpected<TransportError>& error) {
    while (!active_.empty()) finish(active_.size() - 1, error);
  }

  // The completion runs last, after the exchange was removed: it may send or drop the session.
  void finish(std::size_t index, CurlExchange::Outcome outcome) {
    const Active done = std::move(active_[index]);
    active_.erase(active_.begin() + static_cast<std::ptrdiff_t>(index));
    if (done.exchange->handle() != nullptr) curl_multi_remove_handle(multi_.get(), done.exchange->handle());
    done.exchange->complete(std::move(outcome));
  }

  std::unique_ptr<CURLM, FreeMulti> multi_;
  std::mutex mutex_;  // guards the two members below
  std::vector<std::unique_ptr<CurlExchange>> incoming_;
  bool closed_ = false;
  std::vector<Active> active_;  // used by the thread only
};

CurlHttpSession::CurlHttpSession() : loop_(std::make_shared<Loop>()) {}

CurlHttpSession::~CurlHttpSession() {
  loop_->close();
}

void CurlHttpSession::send(HttpRequest request, std::stop_token stop, Completion completion) {
  auto origin = CurlExchange::admit(request);
  if (!origin) {
    contained([&] { completion(std::unexpected(origin.error())); });
    return;
  }
  const auto loop = loop_;
  if (!loop->isUsable() || !startThread()) {
    contained([&] { completion(failed(Kind::unreachable, "The system has no resources left for a connection")); });
    return;
  }
  loop->add(
      std::make_unique<CurlExchange>(std::move(request), *std::move(origin), std::move(stop), std::move(completion)));
}

bool CurlHttpSession::startThread() {
  const std::lock_guard lock(threadMutex_);
  contained([this] {
    if (!thread_) thread_ = std::make_unique<WorkerThread>("quillon-http", [loop = loop_] { loop->run(); });
  });
  return thread_ != nullptr;
}

}  // namespace quillon
