// The terms of ISO/IEC TS 27560:2023 as the Data Privacy Vocabulary writes them, and which of them a record must have.
#pragma once

#include <boost/json/object.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::proof {

// What a record or receipt conforms to.
enum class Profile { generic, euGdpr };

namespace schema {
inline constexpr std::string_view record = "https://w3id.org/dpv/schema/dpv-27560#record";
inline constexpr std::string_view recordEuGdpr = "https://w3id.org/dpv/schema/dpv-27560#record-eu-gdpr";
inline constexpr std::string_view receipt = "https://w3id.org/dpv/schema/dpv-27560#receipt";
inline constexpr std::string_view receiptEuGdpr = "https://w3id.org/dpv/schema/dpv-27560#receipt-eu-gdpr";
}  // namespace schema

// The prefixes of the terms, as JSON-LD has them.
[[nodiscard]] boost::json::object prefixes();

// Whether a value of "@type", one or several, names the type.
[[nodiscard]] bool hasType(const boost::json::object& object, std::string_view type);

// The mandatory fields that the record does not state, by their terms.
[[nodiscard]] std::vector<std::string> missingFields(const boost::json::object& record, Profile profile);

// Our own terms, for what the vocabulary does not know.
namespace term {
inline constexpr std::string_view missing = "quillon:missing";          // the mandatory fields that nobody has stated
inline constexpr std::string_view historyHead = "quillon:historyHead";  // the hash of the history's newest entry
inline constexpr std::string_view notices = "quillon:notices";          // by their hash; null for one gone by age
inline constexpr std::string_view decision = "quillon:decision";        // the entry of the history
}  // namespace term

// How a notice is referred to.
inline constexpr std::string_view noticePrefix = "urn:sha-256:";

}  // namespace quillon::proof
