// The global vendor list, version 3: who takes part in the framework, and with what.
#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::signals {

// A purpose or a feature.
struct VendorListItem {
  std::int64_t id = 0;
  std::string name;
};

struct Vendor {
  std::int64_t id = 0;
  std::string name;
  std::optional<std::vector<std::int64_t>> purposes;          // on the basis of consent
  std::optional<std::vector<std::int64_t>> legIntPurposes;    // on that of a legitimate interest
  std::optional<std::vector<std::int64_t>> flexiblePurposes;  // where a publisher may demand the other one
  std::optional<std::vector<std::int64_t>> specialPurposes;
  std::optional<std::vector<std::int64_t>> features;
  std::optional<std::vector<std::int64_t>> specialFeatures;
  std::optional<std::string> deletedDate;  // no longer takes part
};

struct VendorList {
  using Items = std::map<std::string, VendorListItem, std::less<>>;  // by the ID's digits

  std::int64_t gvlSpecificationVersion = 0;
  std::int64_t vendorListVersion = 0;
  std::int64_t tcfPolicyVersion = 0;
  Items purposes;
  Items specialPurposes;
  Items features;
  Items specialFeatures;
  std::map<std::string, Vendor, std::less<>> vendors;  // by the ID's digits

  // Null when there is none of that ID, or it has been deleted.
  [[nodiscard]] const Vendor* vendor(std::int64_t id) const;
};

// The list of a document, as strict as for configurations: a vendor that contradicts the rules of the list refuses the
// whole list, as in "vendors.7: purpose 2 is declared twice". Thread-safe.
[[nodiscard]] std::expected<VendorList, std::string> readVendorList(std::string_view document);

}  // namespace quillon::signals
