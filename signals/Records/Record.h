// The values of one segment or sub-section.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "signals/Bits/IdRanges.h"
#include "signals/Records/Layout.h"

namespace quillon::signals {

// A publisher restriction: what vendors must not, or must, do for one purpose.
struct Restriction {
  std::uint8_t purposeId = 0;
  std::uint8_t type = 0;
  Ids vendorIds;

  bool operator==(const Restriction&) const = default;
};

// The members' names in JSON.
inline constexpr struct {
  std::string_view purposeId = "PurposeId";
  std::string_view type = "RestrictionType";
  std::string_view vendorIds = "VendorIds";
} restrictionNames;

// One of: integer, boolean (0 or 1), time (tenths of a second) | letters | set, vendors, values | restrictions.
using Numbers = Ids;
using FieldValue = std::variant<std::int64_t, std::string, Numbers, std::vector<Restriction>>;

class Record {
 public:
  // Fixed fields have their value, all others are empty: 0, "AA", no IDs.
  explicit Record(const Layout& layout);

  [[nodiscard]] const Layout& layout() const noexcept { return *layout_; }
  // In the layout's order.
  [[nodiscard]] const std::vector<FieldValue>& values() const noexcept { return values_; }
  [[nodiscard]] std::vector<FieldValue>& values() noexcept { return values_; }

  // The layout must have the field.
  template <class T = std::int64_t>
  [[nodiscard]] const T& get(std::string_view name) const {
    return std::get<T>(values_[indexOf(name)]);
  }
  template <class T>
  void set(std::string_view name, T value) {
    values_[indexOf(name)] = FieldValue(std::move(value));
  }
  [[nodiscard]] bool has(std::string_view name) const;

  bool operator==(const Record& other) const { return layout_ == other.layout_ && values_ == other.values_; }

 private:
  [[nodiscard]] std::size_t indexOf(std::string_view name) const;

  const Layout* layout_;
  std::vector<FieldValue> values_;
};

}  // namespace quillon::signals
