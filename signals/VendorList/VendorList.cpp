#include "signals/VendorList/VendorList.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "core/Json/JsonMapping.h"
#include "core/Json/Record.h"

namespace quillon {
namespace signals {

using Complaint = std::optional<std::string>;

// Collects IDs while parsing, as bits: the list has thousands of arrays, so none is allocated.
class IdArray {
 public:
  // Where the parser writes the next ID.
  std::int64_t* append() {
    take();
    hasLatest_ = true;
    return &latest_;
  }
  // nullopt if an ID is not from 1 to 64. Duplicates count once.
  std::optional<DeclaredIds> declared() {
    take();
    return isSound_ ? std::optional(DeclaredIds(bits_)) : std::nullopt;
  }

 private:
  void take() {
    if (!std::exchange(hasLatest_, false)) return;
    isSound_ = isSound_ && latest_ >= 1 && latest_ <= 64;
    bits_ |= std::uint64_t{1} << ((latest_ - 1) & 63);
  }

  std::int64_t latest_ = 0;
  std::uint64_t bits_ = 0;
  bool hasLatest_ = false;
  bool isSound_ = true;
};

struct VendorRecord {
  // = default would zero-initialise every vendor's record first.
  VendorRecord() {}  // NOLINT(modernize-use-equals-default)

  std::int64_t id = 0;
  std::string name;
  std::optional<IdArray> purposes;
  std::optional<IdArray> legIntPurposes;
  std::optional<IdArray> flexiblePurposes;
  std::optional<IdArray> specialPurposes;
  std::optional<IdArray> features;
  std::optional<IdArray> specialFeatures;
  std::optional<std::string> deletedDate;
};

// The document's vendors. All are parsed into one record, which is stored when the next vendor begins.
struct VendorRecords {
  std::vector<Vendor> kept;
  Complaint complaint;  // the first error

  VendorRecord* begin(std::string_view key);
  void end();

 private:
  std::optional<VendorRecord> record_;
  std::string key_;
};

struct VendorListRecord {
  std::int64_t gvlSpecificationVersion = 0;
  std::int64_t vendorListVersion = 0;
  std::int64_t tcfPolicyVersion = 0;
  VendorList::Items purposes;
  VendorList::Items specialPurposes;
  VendorList::Items features;
  VendorList::Items specialFeatures;
  VendorRecords vendors;
};

}  // namespace signals

template <>
inline constexpr auto fields<signals::VendorListItem> = std::tuple{
    Field<&signals::VendorListItem::id>{"id"},
    Field<&signals::VendorListItem::name>{"name"},
};

template <>
inline constexpr auto fields<signals::VendorRecord> = std::tuple{
    Field<&signals::VendorRecord::id>{"id"},
    Field<&signals::VendorRecord::name>{"name"},
    Field<&signals::VendorRecord::purposes>{"purposes"},
    Field<&signals::VendorRecord::legIntPurposes>{"legIntPurposes"},
    Field<&signals::VendorRecord::flexiblePurposes>{"flexiblePurposes"},
    Field<&signals::VendorRecord::specialPurposes>{"specialPurposes"},
    Field<&signals::VendorRecord::features>{"features"},
    Field<&signals::VendorRecord::specialFeatures>{"specialFeatures"},
    Ignored{"usesCookies"},
    Ignored{"cookieMaxAgeSeconds"},
    Ignored{"cookieRefresh"},
    Ignored{"usesNonCookieAccess"},
    Ignored{"dataRetention"},
    Ignored{"urls"},
    Ignored{"dataDeclaration"},
    Ignored{"deviceStorageDisclosureUrl"},
    Field<&signals::VendorRecord::deletedDate>{"deletedDate"},
};

template <>
inline constexpr auto fields<signals::VendorListRecord> = std::tuple{
    Field<&signals::VendorListRecord::gvlSpecificationVersion>{"gvlSpecificationVersion"},
    Field<&signals::VendorListRecord::vendorListVersion>{"vendorListVersion"},
    Field<&signals::VendorListRecord::tcfPolicyVersion>{"tcfPolicyVersion"},
    Field<&signals::VendorListRecord::purposes>{"purposes"},
    Field<&signals::VendorListRecord::specialPurposes>{"specialPurposes"},
    Field<&signals::VendorListRecord::features>{"features"},
    Field<&signals::VendorListRecord::specialFeatures>{"specialFeatures"},
    Field<&signals::VendorListRecord::vendors>{"vendors"},
};

// Read-only types.
template <>
const JsonType& jsonType<signals::IdArray>() {
  static constexpr JsonType type{
      .kind = JsonType::Kind::array,
      .size = sizeof(signals::IdArray),
      .element = &json::describe<std::int64_t>,
      .append = [](void* array) -> void* { return static_cast<signals::IdArray*>(array)->append(); }};
  return type;
}

template <>
const JsonType& jsonType<signals::VendorRecords>() {
  static constexpr JsonType type{.kind = JsonType::Kind::map,
                                 .size = sizeof(signals::VendorRecords),
                                 .element = &json::describe<signals::VendorRecord>,
                                 .insert = [](void* records, std::string_view key) -> void* {
                                   return static_cast<signals::VendorRecords*>(records)->begin(key);
                                 }};
  return type;
}

namespace signals {
namespace {

constexpr std::int64_t kSpecificationVersion = 3;
// The limits of the TC string's fields.
constexpr std::int64_t kLargestVersion = 4095;
constexpr std::int64_t kLargestPolicy = 63;
constexpr std::int64_t kMostPurposes = 24;
constexpr std::int64_t kMostFeatures = 64;
constexpr std::int64_t kMostSpecialFeatures = 12;
constexpr std::int64_t kLargestVendor = 65535;

// The map key must equal the ID.
Complaint checkId(std::string_view key, std::int64_t id, std::int64_t largest) {
  if (id < 1 || id > largest) return "the ID " + std::to_string(id) + " is not from 1 to " + std::to_string(largest);
  char digits[8];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), id).ptr;
  if (key == std::string_view(digits, end)) return std::nullopt;
  return "has the ID " + std::to_string(id);
}

std::string atVendor(std::int64_t id, const std::string& what) {
  return "vendors." + std::to_string(id) + ": " + what;
}

Complaint checkItems(std::string_view path, const VendorList::Items& items, std::int64_t largest) {
  for (const auto& [key, item] : items) {
    if (const auto what = checkId(key, item.id, largest)) {
      return std::string(path).append(".").append(std::to_string(item.id)).append(": ").append(*what);
    }
  }
  return std::nullopt;
}

std::uint64_t bitsOf(const VendorList::Items& items) {
  std::uint64_t bits = 0;
  for (const auto& [key, item] : items) bits |= std::uint64_t{1} << (item.id - 1);
  return bits;
}

Complaint checkVendors(const VendorList& list) {
  const auto purposes = bitsOf(list.purposes);
  const auto specialPurposes = bitsOf(list.specialPurposes);
  const auto features = bitsOf(list.features);
  const auto specialFeatures = bitsOf(list.specialFeatures);
  const Vendor* previous = nullptr;
  for (const auto& vendor : list.vendors) {
    const auto own = vendor.purposes.bits() | vendor.legIntPurposes.bits();
    const char* what = nullptr;
    if (previous && previous->id == vendor.id) what = "is there twice";
    if ((own | vendor.flexiblePurposes.bits()) & ~purposes) what = "names a purpose that the list does not have";
    if (vendor.purposes.bits() & vendor.legIntPurposes.bits()) what = "declares a purpose twice";
    if (vendor.flexiblePurposes.bits() & purposes & ~own) what = "does not declare a flexible purpose";
    if (vendor.specialPurposes.bits() & ~specialPurposes) what = "names a special purpose that the list does not have";
    if (vendor.features.bits() & ~features) what = "names a feature that the list does not have";
    if (vendor.specialFeatures.bits() & ~specialFeatures) what = "names a special feature that the list does not have";
    if (what) return atVendor(vendor.id, what);
    previous = &vendor;
  }
  return std::nullopt;
}

Complaint check(const VendorList& list) {
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

VendorRecord* VendorRecords::begin(std::string_view key) {
  end();
  key_.assign(key.substr(0, 8));
  return &record_.emplace();
}

void VendorRecords::end() {
  if (!record_) return;
  VendorRecord& record = *record_;
  auto what = checkId(key_, record.id, kLargestVendor);
  const auto declared = [&what](std::optional<IdArray>& array) {
    const auto ids = array ? array->declared() : DeclaredIds();
    if (!ids && !what) what = "declares an ID that is not from 1 to 64";
    return ids.value_or(DeclaredIds());
  };
  kept.push_back({record.id, std::move(record.name), declared(record.purposes), declared(record.legIntPurposes),
                  declared(record.flexiblePurposes), declared(record.specialPurposes), declared(record.features),
                  declared(record.specialFeatures), record.deletedDate.has_value()});
  if (what && !complaint) complaint = atVendor(record.id, *what);
  record_.reset();
}

const Vendor* VendorList::vendor(std::int64_t id) const {
  const auto found = std::ranges::lower_bound(vendors, id, {}, &Vendor::id);
  return found == vendors.end() || found->id != id || found->isDeleted ? nullptr : &*found;
}

std::expected<VendorList, std::string> readVendorList(std::string_view document) {
  auto record = decode<VendorListRecord>(document);
  if (!record) return std::unexpected(std::move(record.error()));
  record->vendors.end();
  if (record->gvlSpecificationVersion != kSpecificationVersion) {
    return std::unexpected("gvlSpecificationVersion: only 3 is known");
  }
  if (record->vendors.complaint) return std::unexpected(std::move(*record->vendors.complaint));
  VendorList list{record->vendorListVersion,          record->tcfPolicyVersion,    std::move(record->purposes),
                  std::move(record->specialPurposes), std::move(record->features), std::move(record->specialFeatures),
                  std::move(record->vendors.kept)};
  if (!std::ranges::is_sorted(list.vendors, {}, &Vendor::id)) std::ranges::sort(list.vendors, {}, &Vendor::id);
  if (auto what = check(list)) return std::unexpected(std::move(*what));
  return list;
}

}  // namespace signals
}  // namespace quillon
