// An HTTP session whose responses come from a function.
#pragma once

#include <expected>
#include <functional>

#include "platform/HttpSession.h"

namespace quillon {

// Thread-safe if the script is. Completions are called inside send(). The script sees every request, including those a
// real session would refuse; a request stopped before send() is cancelled without it.
class ScriptedHttpSession : public HttpSession {
 public:
  using Script = std::function<std::expected<HttpResponse, TransportError>(const HttpRequest&)>;

  explicit ScriptedHttpSession(Script script);

  void send(HttpRequest request, std::stop_token stop, Completion completion) override;

 private:
  const Script script_;
};

}  // namespace quillon
