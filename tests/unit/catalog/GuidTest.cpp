#include "catalog/Guid.h"

#include <gtest/gtest.h>

namespace Catalog {
namespace {

TEST(Guid, TextAndFieldsAreTheSameKey) {
  constexpr GUID kExpected{0xc38d57d1, 0x05a7, 0x4c33, {0x90, 0x4f, 0x7f, 0xbc, 0xee, 0xe6, 0x0e, 0x82}};
  EXPECT_TRUE("c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid == kExpected);
}

TEST(Guid, OrderLooksAtEveryPart) {
  constexpr GUID kKey = "10000000-2000-3000-4000-500000000000"_guid;
  EXPECT_FALSE(Precedes(kKey, kKey));
  for (const GUID& greater :
       {"10000001-0000-0000-0000-000000000000"_guid, "10000000-2001-0000-0000-000000000000"_guid,
        "10000000-2000-3001-0000-000000000000"_guid, "10000000-2000-3000-4001-000000000000"_guid,
        "10000000-2000-3000-4000-500000000001"_guid}) {
    EXPECT_TRUE(Precedes(kKey, greater));
    EXPECT_FALSE(Precedes(greater, kKey));
  }
}

}  // namespace
}  // namespace Catalog
