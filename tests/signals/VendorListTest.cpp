#include "signals/VendorList/VendorList.h"

#include <gtest/gtest.h>

#include "tests/signals/ErrorOf.h"
#include "tests/signals/VendorListOf.h"

namespace quillon::signals::test {
namespace {

TEST(VendorListTest, FindsVendorsThatStillTakePart) {
  const auto list = readVendorList(vendorListOf(
      R"("7":{"id":7,"name":"Ads","purposes":[1,3],"legIntPurposes":[7],"flexiblePurposes":[7],"overflow":{}},
         "8":{"id":8,"name":"Gone","purposes":[1],"deletedDate":"2024-02-28T00:00:00Z"})"));
  ASSERT_TRUE(list) << list.error();
  ASSERT_NE(list->vendor(7), nullptr);
  EXPECT_EQ(list->vendor(7)->name, "Ads");
  EXPECT_EQ(list->vendor(8), nullptr);
  EXPECT_EQ(list->vendor(9), nullptr);
}

TEST(VendorListTest, ContradictionsRefuseTheList) {
  const struct {
    const char* vendors;
    const char* error;
  } cases[] = {
      {R"("7":{"id":8,"name":""})", "vendors.8: has the ID 8"},
      {R"("0":{"id":0,"name":""})", "vendors.0: the ID 0 is not from 1 to 65535"},
      {R"("65536":{"id":65536,"name":""})", "vendors.65536: the ID 65536 is not from 1 to 65535"},
      {R"("7":{"id":7,"name":"","purposes":[12]})", "vendors.7: names a purpose that the list does not have"},
      {R"("7":{"id":7,"name":"","purposes":[0]})", "vendors.7: declares an ID that is not from 1 to 64"},
      {R"("7":{"id":7,"name":"","purposes":[2],"legIntPurposes":[2]})", "vendors.7: declares a purpose twice"},
      {R"("7":{"id":7,"name":"","flexiblePurposes":[2]})", "vendors.7: does not declare a flexible purpose"},
      {R"("7":{"id":7,"name":"","specialFeatures":[3]})",
       "vendors.7: names a special feature that the list does not have"},
      {R"("7":{"id":7,"name":"","features":[-9]})", "vendors.7: declares an ID that is not from 1 to 64"},
      {R"("7":{"id":7,"name":""},"7":{"id":7,"name":""})", "vendors.7: is there twice"},
      {R"("7":{"id":7})", "vendors.7.name: is required"},
      {R"("7":{"id":7,"name":"","purposes":"1"})", "vendors.7.purposes: expected an array"},
  };
  for (const auto& [vendors, error] : cases) {
    EXPECT_EQ(errorOf(readVendorList(vendorListOf(vendors))), error) << vendors;
  }
}

TEST(VendorListTest, OnlyVersionThreeIsRead) {
  auto document = vendorListOf("");
  document.replace(document.find("\":3,"), 4, "\":2,");
  EXPECT_EQ(errorOf(readVendorList(document)), "gvlSpecificationVersion: only 3 is known");
}

}  // namespace
}  // namespace quillon::signals::test
