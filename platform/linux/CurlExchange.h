// One HTTP exchange on a libcurl handle, including redirects.
#pragma once

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <expected>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "platform/HttpSession.h"
#include "platform/linux/HttpOrigin.h"

namespace quillon {

// Used by one thread at a time. Its driver calls prepareHop(), lets libcurl perform, calls afterHop(), and repeats
// while that returns nullopt.
class CurlExchange {
 public:
  using Outcome = std::expected<HttpResponse, TransportError>;

  // The request's origin, or the reason why it must not be sent.
  static std::expected<HttpOrigin, TransportError> admit(const HttpRequest& request);

  // The request's timeout starts here.
  CurlExchange(HttpRequest request, HttpOrigin origin, std::stop_token stop, HttpSession::Completion completion);
  CurlExchange(const CurlExchange&) = delete;
  CurlExchange& operator=(const CurlExchange&) = delete;

  [[nodiscard]] CURL* handle() const { return easy_.get(); }
  [[nodiscard]] const std::stop_token& stop() const { return stop_; }

  // Prepares the handle for the current URL; false when libcurl cannot meet the requirements.
  [[nodiscard]] bool prepareHop();

  // The outcome; nullopt when another hop follows.
  [[nodiscard]] std::optional<Outcome> afterHop(CURLcode code);

  // Call exactly once, last.
  void complete(Outcome outcome) noexcept;

 private:
  struct FreeEasy {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
  };
  struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  using HeaderList = std::unique_ptr<curl_slist, FreeList>;

  static std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* self);
  static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* self);

  [[nodiscard]] HeaderList headerList() const;
  [[nodiscard]] bool mayFollow(long status) const;
  [[nodiscard]] std::optional<Outcome> follow(std::string url);
  [[nodiscard]] HttpResponse response(long status);
  [[nodiscard]] TransportError failure(CURLcode code) const;

  const HttpRequest request_;
  const HttpOrigin requestedOrigin_;
  const std::stop_token stop_;
  const std::chrono::steady_clock::time_point deadline_;
  HttpSession::Completion completion_;

  std::string url_;  // of the current hop
  HttpOrigin origin_;
  int redirects_ = 0;
  std::string body_;
  std::size_t headerBytes_ = 0;
  bool tooLarge_ = false;
  std::array<char, CURL_ERROR_SIZE> errorText_{};
  HeaderList headers_;
  std::unique_ptr<CURL, FreeEasy> easy_;  // last: destroyed first, as libcurl uses the other members
};

}  // namespace quillon
