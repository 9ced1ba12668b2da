#include "platform/linux/CurlExchange.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/parts/Contained.h"

namespace quillon {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Kind = TransportError::Kind;

constexpr int mostRedirects = 5;
constexpr std::size_t mostHeaderBytes = std::size_t{256} << 10;  // of one hop, and of the request's address
constexpr std::chrono::seconds connectLimit{15};
constexpr std::chrono::seconds longestTimeout = std::chrono::hours(24);
constexpr long stallBytesPerSecond = 1;
constexpr long stallSeconds = 20;

std::unexpected<TransportError> refused(std::string description) {
  return std::unexpected(TransportError{Kind::refused, std::move(description)});
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

bool hasControl(std::string_view text) {
  return std::ranges::any_of(text, isControl);
}

// A token in HTTP's grammar, as in methods and header names.
bool isToken(std::string_view text) {
  static constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
  return !text.empty() && std::ranges::all_of(text, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || marks.contains(c);
  });
}

bool sameName(std::string_view left, std::string_view right) {
  return !HeaderNameLess()(left, right) && !HeaderNameLess()(right, left);
}

// Headers that identify the client are sent to the requested origin only.
bool isCredential(std::string_view name) {
  return sameName(name, "X-Auth-Token") || sameName(name, "Authorization") || sameName(name, "Cookie");
}

}  // namespace

std::expected<HttpOrigin, TransportError> CurlExchange::admit(const HttpRequest& request) {
  if (hasControl(request.url)) return refused("The address holds a control character");
  if (request.url.size() > mostHeaderBytes) return refused("The address is too long");
  if (!isToken(request.method)) return refused("The request method is not a word that HTTP allows");
  for (const auto& [name, value] : request.headers) {
    if (!isToken(name)) return refused("A header name is not a word that HTTP allows");
    if (hasControl(value)) return refused("The header " + name + " holds a control character");
  }
  auto origin = httpOrigin(request.url);
  if (!origin) return refused(origin.error());
  return *std::move(origin);
}

CurlExchange::CurlExchange(HttpRequest request, HttpOrigin origin, std::stop_token stop,
                           HttpSession::Completion completion)
    : request_(std::move(request)),
      requestedOrigin_(std::move(origin)),
      stop_(std::move(stop)),
      deadline_(steady_clock::now() + std::clamp(request_.timeout, std::chrono::seconds(0), longestTimeout)),
      completion_(std::move(completion)),
      url_(request_.url),
      origin_(requestedOrigin_),
      easy_(curl_easy_init()) {}

bool CurlExchange::prepareHop() {
  if (!easy_) return false;
  curl_easy_reset(handle());
  body_.clear();
  headerBytes_ = 0;
  errorText_[0] = '\0';
  headers_ = headerList();

  bool ok = headers_ != nullptr;
  const auto set = [&](CURLoption option, auto value) {
    ok = ok && curl_easy_setopt(handle(), option, value) == CURLE_OK;
  };
  set(CURLOPT_PRIVATE, this);
  set(CURLOPT_ERRORBUFFER, errorText_.data());
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);  // an unresponsive name server must not delay process exit

  set(CURLOPT_URL, url_.c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_FOLLOWLOCATION, 0L);  // libcurl would send custom headers to another host
  set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_FRESH_CONNECT, 1L);  // exchanges are rare: keep no idle connection in the host's process
  set(CURLOPT_FORBID_REUSE, 1L);
  if (origin_.isLoopback()) set(CURLOPT_PROXY, "");  // otherwise the environment's proxy

  const auto left = std::chrono::ceil<milliseconds>(deadline_ - steady_clock::now());
  set(CURLOPT_TIMEOUT_MS, static_cast<long>(std::max(left, milliseconds(1)).count()));  // 0 means no limit
  set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(milliseconds(connectLimit).count()));
  set(CURLOPT_LOW_SPEED_LIMIT, 0L);  // no limit before the first header; see onHeader()

  if (request_.body) {
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body->size()));
    set(CURLOPT_POSTFIELDS, request_.body->data());
  } else if (request_.method == "POST") {
    set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t{0});
    set(CURLOPT_POSTFIELDS, "");
  }
  if (sameName(request_.method, "HEAD")) set(CURLOPT_NOBODY, 1L);
  set(CURLOPT_CUSTOMREQUEST, request_.method.c_str());
  set(CURLOPT_HTTPHEADER, headers_.get());
  set(CURLOPT_ACCEPT_ENCODING, "");  // all encodings that libcurl supports

  set(CURLOPT_HEADERFUNCTION, &CurlExchange::onHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, &CurlExchange::onBody);
  set(CURLOPT_WRITEDATA, this);
  return ok;
}

// Null when out of memory.
CurlExchange::HeaderList CurlExchange::headerList() const {
  HeaderList list;
  const auto append = [&list](const std::string& line) {
    curl_slist* longer = curl_slist_append(list.get(), line.c_str());
    if (longer == nullptr) return false;
    if (!list) list.reset(longer);  // later calls append to the owned list
    return true;
  };
  if (!append("Expect:")) return nullptr;  // an empty value stops libcurl from adding its own
  for (const char* name : {"Accept", "Content-Type"}) {
    if (!request_.headers.contains(name) && !append(std::string(name) + ':')) return nullptr;
  }
  for (const auto& [name, value] : request_.headers) {
    if (isCredential(name) && origin_ != requestedOrigin_) continue;
    const bool empty = value.find_first_not_of(' ') == std::string::npos;
    std::string line = name;
    line.append(empty ? ";" : ": ").append(empty ? "" : value);  // the semicolon sends an empty value
    if (!append(line)) return nullptr;
  }
  return list;
}

std::optional<CurlExchange::Outcome> CurlExchange::afterHop(CURLcode code) {
  if (code != CURLE_OK) return std::unexpected(failure(code));

  long status = 0;
  curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
  const char* target = nullptr;
  curl_easy_getinfo(handle(), CURLINFO_REDIRECT_URL, &target);
  if (target != nullptr && mayFollow(status)) return follow(target);
  return response(status);
}

bool CurlExchange::mayFollow(long status) const {
  const bool redirect = status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
  const bool safe = sameName(request_.method, "GET") || sameName(request_.method, "HEAD");
  return redirect && safe && !request_.body;
}

std::optional<CurlExchange::Outcome> CurlExchange::follow(std::string url) {
  if (++redirects_ > mostRedirects) return refused("The server redirected more than 5 times");
  if (hasControl(url)) return refused("The server redirected to an address with a control character");
  auto origin = httpOrigin(url);
  if (!origin) return refused("The server's redirect was not followed. " + origin.error());
  if (origin_.scheme == "https" && origin->scheme == "http") {
    return refused("The server redirected from https to http");
  }
  url_ = std::move(url);
  origin_ = *std::move(origin);
  return std::nullopt;
}

HttpResponse CurlExchange::response(long status) {
  HttpResponse result{.url = url_, .status = static_cast<int>(status), .headers = {}, .body = std::move(body_)};
  for (curl_header* header = nullptr; (header = curl_easy_nextheader(handle(), CURLH_HEADER, -1, header)) != nullptr;) {
    const auto [place, isNew] = result.headers.try_emplace(header->name, header->value);
    if (!isNew) place->second += std::string(", ") + header->value;
  }
  return result;
}

TransportError CurlExchange::failure(CURLcode code) const {
  if (tooLarge_) return {Kind::tooLarge, "The answer is larger than allowed"};
  if (code == CURLE_COULDNT_CONNECT) {
    long number = 0;
    curl_easy_getinfo(handle(), CURLINFO_OS_ERRNO, &number);
    std::array<char, 256> buffer{};
    const std::string reason =
        number == 0 ? curl_easy_strerror(code) : strerror_r(static_cast<int>(number), buffer.data(), buffer.size());
    return {Kind::unreachable, "Could not connect to " + origin_.host + " port " + origin_.port + ": " + reason};
  }
  // libcurl's detailed text quotes the proxy's address, which may contain a password.
  const bool detailed = errorText_[0] != '\0' && code != CURLE_COULDNT_RESOLVE_PROXY;
  std::string text = detailed ? errorText_.data() : curl_easy_strerror(code);
  std::ranges::replace_if(text, isControl, ' ');
  switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
      return {Kind::timedOut, std::move(text)};
    case CURLE_PEER_FAILED_VERIFICATION:
      return {Kind::refused, std::move(text)};
    default:
      return {Kind::unreachable, std::move(text)};
  }
}

void CurlExchange::complete(Outcome outcome) noexcept {
  easy_.reset();  // the completion may exit the process, and libcurl must be idle then
  contained([&] { completion_(std::move(outcome)); });
}

std::size_t CurlExchange::onHeader(char* /*bytes*/, std::size_t size, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  if (exchange.headerBytes_ == 0) {
    // The response has begun: from now on, silence is a stall.
    curl_easy_setopt(exchange.handle(), CURLOPT_LOW_SPEED_LIMIT, stallBytesPerSecond);
    curl_easy_setopt(exchange.handle(), CURLOPT_LOW_SPEED_TIME, stallSeconds);
  }
  exchange.headerBytes_ += size * count;
  if (exchange.headerBytes_ <= mostHeaderBytes) return size * count;
  exchange.tooLarge_ = true;
  return 0;  // aborts the transfer
}

std::size_t CurlExchange::onBody(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& exchange = *static_cast<CurlExchange*>(self);
  const std::size_t length = size * count;
  if (length > exchange.request_.maximumBodyBytes - exchange.body_.size()) {
    exchange.tooLarge_ = true;
    return 0;
  }
  std::size_t taken = 0;
  contained([&] {  // out of memory
    exchange.body_.append(bytes, length);
    taken = length;
  });
  return taken;
}

}  // namespace quillon
