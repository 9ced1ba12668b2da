// What the application server answers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "quillon/BannerConfig.h"

namespace quillon {

/// The reply to a consent upload; status 0 means that the consents are recorded.
struct GenericResponse {
  std::int64_t status = 0;
  std::string message;

  bool operator==(const GenericResponse&) const = default;
};

/// The reply to a location lookup.
struct CurrentLocationResponse {
  /// Where the device seems to be; each name by language or variant, as the server sends it.
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
