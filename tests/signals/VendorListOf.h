// Vendor lists for tests.
#pragma once

#include <string>

namespace quillon::signals::test {

// The purposes and features of a list, and these vendors, each "ID":{...}.
inline std::string vendorListOf(const std::string& vendors) {
  std::string purposes;
  for (int id = 1; id <= 11; ++id) {
    const auto number = std::to_string(id);
    purposes += (id > 1 ? ",\"" : "\"") + number + R"(":{"id":)" + number + R"(,"name":"Purpose )" + number + "\"}";
  }
  const std::string two = R"({"1":{"id":1,"name":"First"},"2":{"id":2,"name":"Second"}})";
  return R"({"gvlSpecificationVersion":3,"vendorListVersion":48,"tcfPolicyVersion":5,"purposes":{)" + purposes +
         R"(},"specialPurposes":)" + two + R"(,"features":)" + two + R"(,"specialFeatures":)" + two +
         R"(,"vendors":{)" + vendors + "}}";
}

}  // namespace quillon::signals::test
