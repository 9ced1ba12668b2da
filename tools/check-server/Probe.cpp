#include "tools/check-server/Probe.h"

#include <curl/curl.h>

#include <algorithm>
#include <boost/json.hpp>
#include <cstring>
#include <memory>
#include <string_view>
#include <thread>

namespace quillon::tools {
namespace {

namespace json = boost::json;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr long kLimitMilliseconds = 25'000;  // a device times out after 20 seconds of silence
constexpr std::size_t kMaxAnswerBytes = std::size_t{32} << 20;

using Easy = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using List = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

struct Sending {
  const Probe::Request& request;
  std::size_t sent = 0;
  int part = 0;
};

std::size_t onRead(char* buffer, std::size_t size, std::size_t count, void* sending) {
  auto& [request, sent, part] = *static_cast<Sending*>(sending);
  const std::string& body = *request.body;
  if (request.breaksOff && sent >= body.size() / 2) return CURL_READFUNC_ABORT;
  if (request.parts > 1 && sent < body.size()) std::this_thread::sleep_for(request.pause);
  const int parts = request.breaksOff ? 2 : request.parts;
  const std::size_t portion = std::min(size * count, body.size() / static_cast<std::size_t>(parts) + 1);
  const std::size_t now = std::min(portion, body.size() - sent);
  std::memcpy(buffer, body.data() + sent, now);
  sent += now;
  ++part;
  return now;
}

std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* answer) {
  const std::string_view line(data, size * count);
  auto& headers = static_cast<Probe::Answer*>(answer)->headers;
  if (line.starts_with("HTTP/")) headers.clear();  // discards those of an earlier 100
  const auto colon = line.find(':');
  if (colon == std::string_view::npos) return line.size();
  auto value = line.substr(colon + 1);
  while (!value.empty() && std::strchr(" \t\r\n", value.front()) != nullptr) value.remove_prefix(1);
  while (!value.empty() && std::strchr(" \t\r\n", value.back()) != nullptr) value.remove_suffix(1);
  headers[std::string(line.substr(0, colon))] = std::string(value);
  return line.size();
}

std::size_t onBody(char* data, std::size_t size, std::size_t count, void* answer) {
  auto& body = static_cast<Probe::Answer*>(answer)->body;
  if (body.size() + size * count > kMaxAnswerBytes) return 0;
  body.append(data, size * count);
  return size * count;
}

json::object toJson(const HttpHeaders& headers) {
  json::object object;
  for (const auto& [name, value] : headers) object.emplace(name, value);
  return object;
}

}  // namespace

std::string Probe::Answer::summary() const {
  return status != 0 ? std::to_string(status) : problem.empty() ? "no answer" : problem;
}

std::string Probe::Answer::header(const char* name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? "" : found->second;
}

Probe::Probe(const std::string& trafficFile, std::string authorities) : authorities_(std::move(authorities)) {
  if (!trafficFile.empty()) traffic_.open(trafficFile);
}

Probe::Answer Probe::send(const Request& request) {
  return sendInTurn({request}).front();
}

std::vector<Probe::Answer> Probe::sendTogether(const std::vector<Request>& requests) {
  std::vector<Answer> answers(requests.size());
  std::vector<std::jthread> threads;
  for (std::size_t i = 0; i < requests.size(); ++i) {
    threads.emplace_back([&, i] { answers[i] = send(requests[i]); });
  }
  threads.clear();
  return answers;
}

std::vector<Probe::Answer> Probe::sendInTurn(const std::vector<Request>& requests) {
  const Easy easy(curl_easy_init(), &curl_easy_cleanup);
  std::vector<Answer> answers;
  for (const Request& request : requests) answers.push_back(exchange(easy.get(), request));
  return answers;
}

Probe::Answer Probe::exchange(void* handle, const Request& request) {
  Answer answer;
  {
    const std::scoped_lock lock(mutex_);
    if (++count_ > kMaxRequests) {
      answer.problem = "too many requests";
      return answer;
    }
  }
  auto* const easy = static_cast<CURL*>(handle);
  curl_easy_reset(easy);
  curl_slist* lines = nullptr;
  for (const auto& [name, value] : request.headers) lines = curl_slist_append(lines, (name + ": " + value).c_str());
  lines = curl_slist_append(lines, request.expectsContinue ? "Expect: 100-continue" : "Expect:");
  const List owned(lines, &curl_slist_free_all);
  char problem[CURL_ERROR_SIZE] = "";
  Sending sending{request};
  curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, problem);
  curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
  curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
  if (!authorities_.empty()) curl_easy_setopt(easy, CURLOPT_CAINFO, authorities_.c_str());
  curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, kLimitMilliseconds);
  curl_easy_setopt(easy, CURLOPT_HTTPHEADER, lines);
  curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
  if (request.body) {
    curl_easy_setopt(easy, CURLOPT_POST, 1L);
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body->size()));
    curl_easy_setopt(easy, CURLOPT_READFUNCTION, &onRead);
    curl_easy_setopt(easy, CURLOPT_READDATA, &sending);
  }
  curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.method.c_str());
  curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &onHeader);
  curl_easy_setopt(easy, CURLOPT_HEADERDATA, &answer);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &onBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, &answer);
  const auto begin = steady_clock::now();
  const CURLcode code = curl_easy_perform(easy);
  const auto own = request.pause * sending.part;
  answer.time = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(steady_clock::now() - begin - own));
  long status = 0;
  curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
  // A server may respond before reading the whole body; the response must be complete.
  if (code == CURLE_OK || (code == CURLE_SEND_ERROR && status >= 200)) answer.status = static_cast<int>(status);
  if (answer.status == 0) answer.problem = problem[0] != '\0' ? problem : curl_easy_strerror(code);
  note(request, answer);
  return answer;
}

void Probe::note(const Request& request, const Answer& answer) {
  const std::scoped_lock lock(mutex_);
  slowest_ = std::max(slowest_, answer.time);
  if (request.url.find("/consent/mobile_banner/") == std::string::npos) {
    largestSmallAnswer_ = std::max(largestSmallAnswer_, answer.body.size());
  }
  if (!traffic_.is_open() || answer.status == 0) return;
  traffic_ << json::serialize(json::object{{"method", request.method},
                                           {"url", request.url},
                                           {"request_headers", toJson(request.headers)},
                                           {"request_body", request.body.value_or("")},
                                           {"status", answer.status},
                                           {"headers", toJson(answer.headers)},
                                           {"body", answer.body}})
           << std::endl;
}

int Probe::count() const {
  const std::scoped_lock lock(mutex_);
  return count_;
}

milliseconds Probe::slowest() const {
  const std::scoped_lock lock(mutex_);
  return slowest_;
}

std::size_t Probe::largestSmallAnswer() const {
  const std::scoped_lock lock(mutex_);
  return largestSmallAnswer_;
}

}  // namespace quillon::tools
