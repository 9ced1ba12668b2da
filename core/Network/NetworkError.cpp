#include "core/Network/NetworkError.h"

#include "core/Text/LogText.h"

namespace quillon {

std::string NetworkError::description() const {
  switch (kind) {
    case Case::invalidPath:
      return "Invalid Patherror ocurred (" + escapedForLog(message);
    case Case::badUrl:
      return "Bad URL error ocurred\n" + escapedForLog(message);
    case Case::invalidStatusCode:
      return "Failed with Status (" + std::to_string(code) + ")";
    case Case::decodingError:
      return "Failed while Decoding Response.\n" + escapedForLog(message);
    case Case::invalidURL:
      return "Invalid URL error ocurred.\n" + escapedForLog(message);
    case Case::response:
    case Case::keyMapping:
    case Case::cdnNotModified:
      break;
  }
  return "An unknown error occurred.";
}

std::string NetworkError::localizedDescription(const HostApplication& host) const {
  switch (kind) {
    case Case::invalidPath:
      return host.localized(message, "Invalid Path Error");
    case Case::badUrl:
      return host.localized(message, "BadURL Error");
    case Case::invalidStatusCode:
      return host.localized("Failed with " + std::to_string(code) + " status code", "Status Code Error");
    case Case::decodingError:
      return host.localized(message, "Decoding Error");
    case Case::invalidURL:
      return host.localized(message, "Invalid Error");
    case Case::response:
    case Case::keyMapping:
    case Case::cdnNotModified:
      break;
  }
  return host.localized("Unexpected Error", "Unexpected Error");
}

std::string description(const RequestFailure& failure) {
  if (const auto* error = std::get_if<NetworkError>(&failure)) return error->description();
  return escapedForLog(std::get<TransportError>(failure).description);
}

}  // namespace quillon
