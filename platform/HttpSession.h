// One HTTP exchange at a time, without cookies, credentials or a cache.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace quillon {

// Orders header names without regard to the case of ASCII letters.
struct HeaderNameLess {
  using is_transparent = void;
  bool operator()(std::string_view left, std::string_view right) const noexcept {
    constexpr auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::lexicographical_compare(left, right, {}, lower, lower);
  }
};

using HttpHeaders = std::map<std::string, std::string, HeaderNameLess>;

struct HttpRequest {
  std::string url;
  std::string method;
  HttpHeaders headers;
  std::optional<std::string> body;
  std::chrono::seconds timeout{60};                      // for the whole exchange
  std::size_t maximumBodyBytes = std::size_t{32} << 20;  // of the decoded answer
};

struct HttpResponse {
  std::string url;            // after redirects
  std::optional<int> status;  // nothing when the answer is not an HTTP answer
  HttpHeaders headers;
  std::string body;
};

struct TransportError {
  enum class Kind { refused, unreachable, timedOut, tooLarge, cancelled };
  Kind kind;
  std::string description;  // one sentence for the log
};

// Thread-safe. Never throws and never blocks the caller.
//
// Contract of every implementation: http and https only, certificates verified; at most five redirects, none for a
// request with a body, none from https to http; "X-Auth-Token" goes to the requested origin alone; a request whose URL
// or headers hold control characters is refused; bodies are counted while they arrive.
class HttpSession {
 public:
  using Completion = std::move_only_function<void(std::expected<HttpResponse, TransportError>)>;

  virtual ~HttpSession() = default;

  // Calls completion exactly once, after send returned or from within it, on a thread of the session's or the caller's;
  // completion must not block. A stop request ends the exchange soon with `cancelled`.
  virtual void send(HttpRequest request, std::stop_token stop, Completion completion) = 0;
};

}  // namespace quillon
