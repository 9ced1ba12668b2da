#include "signals/VendorList/VendorList.h"

#include <algorithm>
#include <charconv>

#include "core/Json/JsonType.h"
#include "core/Json/Record.h"

namespace quillon {

template <>
inline constexpr auto fields<signals::VendorListItem> = std::tuple{
    Field<&signals::VendorListItem::id>{"id"},
    Field<&signals::VendorListItem::name>{"name"},
};

template <>
inline constexpr auto fields<signals::Vendor> = std::tuple{
    Field<&signals::Vendor::id>{"id"},
    Field<&signals::Vendor::name>{"name"},
    Field<&signals::Vendor::purposes>{"purposes"},
    Field<&signals::Vendor::legIntPurposes>{"legIntPurposes"},
    Field<&signals::Vendor::flexiblePurposes>{"flexiblePurposes"},
    Field<&signals::Vendor::specialPurposes>{"specialPurposes"},
    Field<&signals::Vendor::features>{"features"},
    Field<&signals::Vendor::specialFeatures>{"specialFeatures"},
    Field<&signals::Vendor::deletedDate>{"deletedDate"},
};

template <>
inline constexpr auto fields<signals::VendorList> = std::tuple{
    Field<&signals::VendorList::gvlSpecificationVersion>{"gvlSpecificationVersion"},
    Field<&signals::VendorList::vendorListVersion>{"vendorListVersion"},
    Field<&signals::VendorList::tcfPolicyVersion>{"tcfPolicyVersion"},
    Field<&signals::VendorList::purposes>{"purposes"},
    Field<&signals::VendorList::specialPurposes>{"specialPurposes"},
    Field<&signals::VendorList::features>{"features"},
    Field<&signals::VendorList::specialFeatures>{"specialFeatures"},
    Field<&signals::VendorList::vendors>{"vendors"},
};

namespace signals {
namespace {

constexpr std::int64_t kSpecificationVersion = 3;
// What fits into a string.
constexpr std::int64_t kLargestVersion = 4095;
constexpr std::int64_t kLargestPolicy = 63;
constexpr std::int64_t kMostPurposes = 24;
constexpr std::int64_t kMostFeatures = 64;
constexpr std::int64_t kMostSpecialFeatures = 12;
constexpr std::int64_t kLargestVendor = 65535;

using Numbers = std::optional<std::vector<std::int64_t>>;
using Complaint = std::optional<std::string>;

bool holds(const Numbers& numbers, std::int64_t number) {
  return numbers && std::ranges::find(*numbers, number) != numbers->end();
}

// A key of its map.
Complaint checkId(std::string_view key, std::int64_t id, std::int64_t largest) {
  if (id < 1 || id > largest) return "the ID " + std::to_string(id) + " is not from 1 to " + std::to_string(largest);
  char digits[8];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), id).ptr;
  if (key == std::string_view(digits, end)) return std::nullopt;
  return "has the ID " + std::to_string(id);
}

Complaint checkItems(std::string_view path, const VendorList::Items& items, std::int64_t largest) {
  for (const auto& [key, item] : items) {
    if (const auto what = checkId(key, item.id, largest)) {
      return std::string(path).append(".").append(std::to_string(item.id)).append(": ").append(*what);
    }
  }
  return std::nullopt;
}

// The IDs that the list describes, a bit for each.
std::uint64_t bitsOf(const VendorList::Items& items) {
  std::uint64_t bits = 0;
  for (const auto& [key, item] : items) bits |= std::uint64_t{1} << (item.id - 1);
  return bits;
}

bool areKnown(const Numbers& numbers, std::uint64_t known) {
  return !numbers || std::ranges::all_of(*numbers, [known](std::int64_t number) {
    return number >= 1 && number <= kMostFeatures && (known >> (number - 1) & 1) != 0;
  });
}

Complaint checkPurposes(const Vendor& vendor, std::uint64_t known) {
  for (const auto* const numbers : {&vendor.purposes, &vendor.legIntPurposes, &vendor.flexiblePurposes}) {
    if (!areKnown(*numbers, known)) return "names a purpose that the list does not have";
  }
  if (vendor.purposes) {
    for (const auto purpose : *vendor.purposes) {
      if (holds(vendor.legIntPurposes, purpose)) return "purpose " + std::to_string(purpose) + " is declared twice";
    }
  }
  if (vendor.flexiblePurposes) {
    for (const auto purpose : *vendor.flexiblePurposes) {
      if (!holds(vendor.purposes, purpose) && !holds(vendor.legIntPurposes, purpose)) {
        return "flexible purpose " + std::to_string(purpose) + " is not declared";
      }
    }
  }
  return std::nullopt;
}

Complaint checkVendors(const VendorList& list) {
  const auto purposes = bitsOf(list.purposes);
  const auto specialPurposes = bitsOf(list.specialPurposes);
  const auto features = bitsOf(list.features);
  const auto specialFeatures = bitsOf(list.specialFeatures);
  for (const auto& [key, vendor] : list.vendors) {
    auto what = checkId(key, vendor.id, kLargestVendor);
    if (!what) what = checkPurposes(vendor, purposes);
    if (!what && !areKnown(vendor.specialPurposes, specialPurposes)) {
      what = "names a special purpose that the list does not have";
    }
    if (!what && !areKnown(vendor.features, features)) what = "names a feature that the list does not have";
    if (!what && !areKnown(vendor.specialFeatures, specialFeatures)) {
      what = "names a special feature that the list does not have";
    }
    if (what) return "vendors." + std::to_string(vendor.id) + ": " + *what;
  }
  return std::nullopt;
}

Complaint check(const VendorList& list) {
  if (list.gvlSpecificationVersion != kSpecificationVersion) return "gvlSpecificationVersion: only 3 is known";
  if (list.vendorListVersion < 1 || list.vendorListVersion > kLargestVersion) {
    return "vendorListVersion: is not from 1 to 4095";
  }
  if (list.tcfPolicyVersion < 1 || list.tcfPolicyVersion > kLargestPolicy) {
    return "tcfPolicyVersion: is not from 1 to 63";
  }
  auto what = checkItems("purposes", list.purposes, kMostPurposes);
  if (!what) what = checkItems("specialPurposes", list.specialPurposes, kMostFeatures);
  if (!what) what = checkItems("features", list.features, kMostFeatures);
  if (!what) what = checkItems("specialFeatures", list.specialFeatures, kMostSpecialFeatures);
  if (!what) what = checkVendors(list);
  return what;
}

}  // namespace

const Vendor* VendorList::vendor(std::int64_t id) const {
  const auto found = vendors.find(std::to_string(id));
  return found == vendors.end() || found->second.deletedDate ? nullptr : &found->second;
}

std::expected<VendorList, std::string> readVendorList(std::string_view document) {
  auto list = decode<VendorList>(document);
  if (!list) return list;
  if (auto what = check(*list)) return std::unexpected(std::move(*what));
  return list;
}

}  // namespace signals
}  // namespace quillon
