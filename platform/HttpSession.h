// HTTP exchanges without cookies, credentials or a cache.
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

// Compares header names, ignoring ASCII case.
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
  std::size_t maximumBodyBytes = std::size_t{32} << 20;  // of the decoded response
};

struct HttpResponse {
  std::string url;            // after redirects
  std::optional<int> status;  // nullopt when the response is not HTTP
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
// Contract of every implementation: http and https only, with verified certificates; at most five redirects, none for a
// request with a body, none from https to http; "X-Auth-Token" is sent to the requested origin only; a request with
// control characters in its URL or headers is refused; the body limit is enforced while receiving.
class HttpSession {
 public:
  using Completion = std::move_only_function<void(std::expected<HttpResponse, TransportError>)>;

  virtual ~HttpSession() = default;

  // Calls completion exactly once, after send() has returned or from within it, on the session's or the caller's
  // thread; it must not block. A stop request ends the exchange soon, with `cancelled`.
  virtual void send(HttpRequest request, std::stop_token stop, Completion completion) = 0;
};

}  // namespace quillon
