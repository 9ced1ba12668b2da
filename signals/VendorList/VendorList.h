// The Global Vendor List, version 3: the framework's vendors and what they declare.
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

// A set of IDs of purposes or features, from 1 to 64.
class DeclaredIds {
 public:
  DeclaredIds() = default;
  explicit DeclaredIds(std::uint64_t bits) : bits_(bits) {}

  [[nodiscard]] bool empty() const noexcept { return bits_ == 0; }
  [[nodiscard]] bool contains(std::int64_t id) const noexcept {
    return id >= 1 && id <= 64 && (bits_ >> (id - 1) & 1) != 0;
  }
  // Bit 0 is ID 1.
  [[nodiscard]] std::uint64_t bits() const noexcept { return bits_; }

 private:
  std::uint64_t bits_ = 0;
};

struct Vendor {
  std::int64_t id = 0;
  std::string name;
  DeclaredIds purposes;          // legal basis: consent
  DeclaredIds legIntPurposes;    // legal basis: legitimate interest
  DeclaredIds flexiblePurposes;  // a publisher may require the other basis
  DeclaredIds specialPurposes;
  DeclaredIds features;
  DeclaredIds specialFeatures;
  bool isDeleted = false;  // has left the framework
};

struct VendorList {
  using Items = std::map<std::string, VendorListItem, std::less<>>;  // by the ID in decimal

  std::int64_t vendorListVersion = 0;
  std::int64_t tcfPolicyVersion = 0;
  Items purposes;
  Items specialPurposes;
  Items features;
  Items specialFeatures;
  std::vector<Vendor> vendors;  // sorted by ID

  // Null if unknown or deleted.
  [[nodiscard]] const Vendor* vendor(std::int64_t id) const;
};

// Parses a vendor list as strictly as a configuration. A vendor that violates the list's rules makes the whole list
// invalid: "vendors.7: purpose 2 is declared twice". Thread-safe.
[[nodiscard]] std::expected<VendorList, std::string> readVendorList(std::string_view document);

}  // namespace quillon::signals
