#include "catalog/Sublayers.h"

#include <gtest/gtest.h>

namespace Catalog {
namespace {

TEST(BuiltInSublayers, AreEighteen) { EXPECT_EQ(kBuiltInSublayers.size(), 18u); }

TEST(BuiltInSublayers, EachIsFoundByItsKey) {
  for (const BuiltInSublayer& sublayer : kBuiltInSublayers) {
    EXPECT_EQ(FindBuiltInSublayer(sublayer.key), &sublayer) << sublayer.name;
  }
}

TEST(BuiltInSublayers, KeysThatDifferInTheLastByteAreToldApart) {
  EXPECT_EQ(FindBuiltInSublayer("b3cdd441-af90-41ba-a745-7c6008ff2300"_guid)->name, "MPSSVC_WSH");
  EXPECT_EQ(FindBuiltInSublayer("b3cdd441-af90-41ba-a745-7c6008ff2301"_guid)->name, "MPSSVC_WF");
  EXPECT_EQ(FindBuiltInSublayer("b3cdd441-af90-41ba-a745-7c6008ff2302"_guid)->name, "MPSSVC_QUARANTINE");
  EXPECT_EQ(FindBuiltInSublayer("b3cdd441-af90-41ba-a745-7c6008ff2303"_guid), nullptr);
}

TEST(BuiltInSublayers, UniversalTakesFiltersWithoutSublayer) {
  EXPECT_TRUE(kUniversalSublayerKey == "eebecc03-ced4-4380-819a-2734397b2b74"_guid);
  EXPECT_EQ(FindBuiltInSublayer(kUniversalSublayerKey)->name, "UNIVERSAL");
}

TEST(BuiltInSublayers, AZeroKeyIsUnknown) { EXPECT_EQ(FindBuiltInSublayer(GUID{}), nullptr); }

}  // namespace
}  // namespace Catalog
