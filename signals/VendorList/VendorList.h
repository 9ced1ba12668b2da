// The global vendor list, version 3: who takes part in the framework, and with what.
#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::signals {

// A purpose or a feature.
struct VendorListItem {
  std::int64_t id = 0;
  std::string name;
};

// Purposes or features by their IDs, from 1 to 64.
class DeclaredIds {
 public:
  DeclaredIds() = default;
  explicit DeclaredIds(std::uint64_t bits) : bits_(bits) {}

  [[nodiscard]] bool empty() const noexcept { return bits_ == 0; }
  [[nodiscard]] bool contains(std::int64_t id) const noexcept {
    return id >= 1 && id <= 64 && (bits_ >> (id - 1) & 1) != 0;
  }
  // The lowest bit is ID 1.
  [[nodiscard]] std::uint64_t bits() const noexcept { return bits_; }

 private:
  std::uint64_t bits_ = 0;
};

struct Vendor {
  std::int64_t id = 0;
  std::string name;
  DeclaredIds purposes;          // on the basis of consent
  DeclaredIds legIntPurposes;    // on that of a legitimate interest
  DeclaredIds flexiblePurposes;  // where a publisher may demand the other one
  DeclaredIds specialPurposes;
  DeclaredIds features;
  DeclaredIds specialFeatures;
  bool isDeleted = false;  // no longer takes part
};

struct VendorList {
  using Items = std::map<std::string, VendorListItem, std::less<>>;  // by the ID's digits

  std::int64_t vendorListVersion = 0;
  std::int64_t tcfPolicyVersion = 0;
  Items purposes;
  Items specialPurposes;
  Items features;
  Items specialFeatures;
  std::vector<Vendor> vendors;  // by their IDs, ascending

  // Null when there is none of that ID, or it has been deleted.
  [[nodiscard]] const Vendor* vendor(std::int64_t id) const;
};

// The list of a document, as strict as for configurations: a vendor that contradicts the rules of the list refuses the
// whole list, as in "vendors.7: purpose 2 is declared twice". Thread-safe.
[[nodiscard]] std::expected<VendorList, std::string> readVendorList(std::string_view document);

}  // namespace quillon::signals
