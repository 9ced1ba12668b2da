// A vendor list, whatever it holds, is refused, or every vendor of it can be looked up and declares known purposes.
#include "signals/VendorList/VendorList.h"

#include "fuzz/Check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillon;
  const auto list = signals::readVendorList({reinterpret_cast<const char*>(data), size});
  if (!list) {
    fuzz::check(!list.error().empty() && list.error().size() < 4096, "an error is told in bounds");
    return 0;
  }
  for (const auto& vendor : list->vendors) {
    fuzz::check(list->vendor(vendor.id) == (vendor.isDeleted ? nullptr : &vendor), "a vendor is found by its ID");
    for (std::int64_t purpose = 1; purpose <= 64; ++purpose) {
      fuzz::check(!vendor.purposes.contains(purpose) || list->purposes.contains(std::to_string(purpose)),
                  "a purpose is one of the list");
    }
  }
  return 0;
}
