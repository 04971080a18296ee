#include "catalog/Flags.h"

#include <gtest/gtest.h>

namespace Catalog {
namespace {

TEST(Flags, OfFiltersAreKnownByName) {
  EXPECT_EQ(FindFlag(kFilterFlags, "PERSISTENT")->bit, 0x1U);
  EXPECT_EQ(FindFlag(kFilterFlags, "INDEXED")->bit, 0x40U);
  EXPECT_EQ(FindFlag(kFilterFlags, "HAS_SECURITY_REALM_PROVIDER_CONTEXT")->bit, 0x80U);
  EXPECT_EQ(FindFlag(kFilterFlags, "SYSTEMOS_ONLY")->bit, 0x100U);
  EXPECT_EQ(FindFlag(kFilterFlags, "GAMEOS_ONLY")->bit, 0x200U);
  EXPECT_EQ(FindFlag(kFilterFlags, "SILENT_MODE")->bit, 0x400U);
  EXPECT_EQ(FindFlag(kFilterFlags, "IPSEC_NO_ACQUIRE_INITIATE")->bit, 0x800U);
  EXPECT_EQ(FindFlag(kFilterFlags, "RESERVED2")->bit, 0x4000U);
  EXPECT_EQ(FindFlag(kFilterFlags, "RESERVED3"), nullptr);
}

TEST(Flags, OfTwoNamesHaveNoPublicValue) {
  EXPECT_EQ(FindFlag(kFilterFlags, "HAS_FILTER_ORIGIN")->bit, std::nullopt);
  EXPECT_EQ(FindFlag(kFilterFlags, "HAS_PACKAGE_ID_CONDITION_CONVERTED_TO_PFN")->bit, std::nullopt);
}

TEST(Flags, OfOtherObjectsAreKnownByName) {
  EXPECT_EQ(FindFlag(kProviderFlags, "DISABLED")->bit, 0x10U);
  EXPECT_EQ(FindFlag(kSublayerFlags, "PERSISTENT")->bit, 0x1U);
  EXPECT_EQ(FindFlag(kLayerFlags, "BUFFERED")->bit, 0x8U);
  EXPECT_EQ(FindFlag(kCalloutFlags, "REGISTERED")->bit, 0x40000U);
  EXPECT_EQ(FindFlag(kCalloutFlags, "ALLOW_OFFLOAD")->bit, 0x2U);
  EXPECT_EQ(FindFlag(kConditionFlags, "IS_LOOPBACK")->bit, 0x1U);
}

TEST(Flags, AreNamedFromTheHighestToTheLowest) {
  EXPECT_EQ(FlagNames(kFilterFlags, 0x4481),
            "RESERVED2|SILENT_MODE|HAS_SECURITY_REALM_PROVIDER_CONTEXT|PERSISTENT");
  EXPECT_EQ(FlagNames(kLayerFlags, 0x100007), "CLASSIFY_MOSTLY|BUILTIN|KERNEL|0x00100000");
  EXPECT_EQ(FlagNames(kLayerFlags, 0), "-");
}

}  // namespace
}  // namespace Catalog
