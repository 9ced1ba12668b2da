// The terms of ISO/IEC TS 27560:2023 in the Data Privacy Vocabulary, and the mandatory fields of a record.
#pragma once

#include <boost/json/object.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::proof {

// The schema that a record or receipt conforms to.
enum class Profile { generic, euGdpr };

namespace schema {
inline constexpr std::string_view record = "https://w3id.org/dpv/schema/dpv-27560#record";
inline constexpr std::string_view recordEuGdpr = "https://w3id.org/dpv/schema/dpv-27560#record-eu-gdpr";
inline constexpr std::string_view receipt = "https://w3id.org/dpv/schema/dpv-27560#receipt";
inline constexpr std::string_view receiptEuGdpr = "https://w3id.org/dpv/schema/dpv-27560#receipt-eu-gdpr";
}  // namespace schema

// The term prefixes, as a JSON-LD context.
[[nodiscard]] boost::json::object prefixes();

// Whether the value of "@type", a text or a list, includes the type.
[[nodiscard]] bool hasType(const boost::json::object& object, std::string_view type);

// The terms of mandatory fields that the record does not state.
[[nodiscard]] std::vector<std::string> missingFields(const boost::json::object& record, Profile profile);

// Our own terms, where the vocabulary has none.
namespace term {
inline constexpr std::string_view missing = "quillon:missing";          // unstated mandatory fields
inline constexpr std::string_view historyHead = "quillon:historyHead";  // hash of the history's newest entry
inline constexpr std::string_view notices = "quillon:notices";          // by hash; null for an expired one
inline constexpr std::string_view decision = "quillon:decision";        // the history entry
}  // namespace term

// The reference to a notice.
inline constexpr std::string_view noticePrefix = "urn:sha-256:";

}  // namespace quillon::proof
