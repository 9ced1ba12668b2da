#include "platform/memory/ScriptedHttpSession.h"

#include <utility>

#include "platform/parts/Contained.h"

namespace quillon {

ScriptedHttpSession::ScriptedHttpSession(Script script) : script_(std::move(script)) {}

void ScriptedHttpSession::send(HttpRequest request, std::stop_token stop, Completion completion) {
  std::expected<HttpResponse, TransportError> outcome =
      std::unexpected(TransportError{TransportError::Kind::unreachable, "The script did not answer"});
  if (stop.stop_requested()) {
    outcome = std::unexpected(TransportError{TransportError::Kind::cancelled, "The request was cancelled"});
  } else {
    contained([&] { outcome = script_(request); });
  }
  contained([&] { completion(std::move(outcome)); });
}

}  // namespace quillon
