// The responses of the application server.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quillon/BannerConfig.h"

namespace quillon {

/// The response to a consent upload; status 0 means that the consents are stored.
struct GenericResponse {
  std::int64_t status = 0;
  std::string message;

  bool operator==(const GenericResponse&) const = default;
};

/// The response to a location look-up.
struct CurrentLocationResponse {
  /// The estimated location; each name by language or variant, as sent by the server.
  struct Place {
    LocalizedText city;
    LocalizedText continent;
    LocalizedText country;
    LocalizedText countryISOCode;
    LocalizedText language;
    LocalizedText location;
    LocalizedText registeredCountry;
    LocalizedText state;
    LocalizedText stateISOCode;

    bool operator==(const Place&) const = default;
  };

  std::int64_t status = 0;
  std::string message;
  std::optional<Place> data;

  bool operator==(const CurrentLocationResponse&) const = default;
};

}  // namespace quillon
