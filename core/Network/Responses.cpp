#include "core/Network/Responses.h"

#include "core/Json/JsonMapping.h"
#include "core/Json/Record.h"

namespace quillon {

template <>
inline constexpr auto fields<GenericResponse> = std::tuple{
    Field<&GenericResponse::status>{"status"},
    Field<&GenericResponse::message>{"message"},
};

template <>
inline constexpr auto fields<CurrentLocationResponse::Place> = std::tuple{
    Field<&CurrentLocationResponse::Place::city>{"City"},
    Field<&CurrentLocationResponse::Place::continent>{"Continent"},
    Field<&CurrentLocationResponse::Place::country>{"Country"},
    Field<&CurrentLocationResponse::Place::countryISOCode>{"CountryISOCode"},
    Field<&CurrentLocationResponse::Place::language>{"Language"},
    Field<&CurrentLocationResponse::Place::location>{"Location"},
    Field<&CurrentLocationResponse::Place::registeredCountry>{"RegisteredCountry"},
    Field<&CurrentLocationResponse::Place::state>{"State"},
    Field<&CurrentLocationResponse::Place::stateISOCode>{"StateISOCode"},
};

template <>
inline constexpr auto fields<CurrentLocationResponse> = std::tuple{
    Field<&CurrentLocationResponse::status>{"status"},
    Field<&CurrentLocationResponse::message>{"message"},
    Field<&CurrentLocationResponse::data>{"data"},
};

template const JsonType& jsonType<GenericResponse>();
template const JsonType& jsonType<CurrentLocationResponse>();

}  // namespace quillon
