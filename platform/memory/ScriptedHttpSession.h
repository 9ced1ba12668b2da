// A network whose answers are made by a function.
#pragma once

#include <expected>
#include <functional>

#include "platform/HttpSession.h"

namespace quillon {

// Thread-safe when the script is. Completions are called within send. The script sees every request, also those that a
// real session would refuse; a request whose stop was asked for before send is cancelled unseen.
class ScriptedHttpSession : public HttpSession {
 public:
  using Script = std::function<std::expected<HttpResponse, TransportError>(const HttpRequest&)>;

  explicit ScriptedHttpSession(Script script);

  void send(HttpRequest request, std::stop_token stop, Completion completion) override;

 private:
  const Script script_;
};

}  // namespace quillon
