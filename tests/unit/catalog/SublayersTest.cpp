#include "catalog/Sublayers.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "catalog/Names.h"

namespace Catalog {
namespace {

TEST(BuiltInSublayers, EachIsFoundByItsKeyAndItsName) {
  for (const BuiltInSublayer& sublayer : kBuiltInSublayers) {
    EXPECT_EQ(FindBuiltInSublayer(sublayer.key), &sublayer) << sublayer.name;
    EXPECT_EQ(FindBuiltInSublayer(sublayer.name), &sublayer) << sublayer.name;
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

TEST(BuiltInSublayers, WeighWhatLiveEnginesShow) {
  const std::vector<std::pair<std::string_view, UINT16>> expected{
      {"INSPECTION", UINT16{0}},
      {"TEREDO", UINT16{1}},
      {"MPSSVC_WF", UINT16{2}},
      {"MPSSVC_WSH", UINT16{3}},
      {"MPSSVC_QUARANTINE", UINT16{4}},
      {"MPSSVC_EDP", UINT16{5}},
      {"MPSSVC_TENANT_RESTRICTIONS", UINT16{6}},
      {"MPSSVC_APP_ISOLATION", UINT16{7}},
      {"TCP_CHIMNEY_OFFLOAD", UINT16{8192}},
      {"TCP_TEMPLATES", UINT16{8704}},
      {"IPSEC_SECURITY_REALM", UINT16{12288}},
      {"SECURE_SOCKET", UINT16{16384}},
      {"LIPS", UINT16{32767}},
      {"UNIVERSAL", UINT16{32768}},
      {"IPSEC_DOSP", UINT16{34816}},
      {"IPSEC_FORWARD_OUTBOUND_TUNNEL", UINT16{36864}},
      {"IPSEC_TUNNEL", UINT16{40960}},
      {"RPC_AUDIT", UINT16{49152}},
  };
  std::vector<std::pair<std::string_view, UINT16>> weights;
  for (const BuiltInSublayer& sublayer : kBuiltInSublayers) {
    weights.emplace_back(sublayer.name, sublayer.weight);
  }
  EXPECT_EQ(weights, expected);
}

TEST(BuiltInSublayers, OfWindowsFirewallHaveProviders) {
  EXPECT_EQ(ProviderName(*FindBuiltInSublayer("MPSSVC_WF")->providerKey), "MPSSVC_WF");
  EXPECT_EQ(ProviderName(*FindBuiltInSublayer("MPSSVC_WSH")->providerKey), "MPSSVC_WSH");
  EXPECT_EQ(ProviderName(*FindBuiltInSublayer("MPSSVC_QUARANTINE")->providerKey), "MPSSVC_WSH");
  EXPECT_EQ(ProviderName(*FindBuiltInSublayer("MPSSVC_EDP")->providerKey), "MPSSVC_EDP");
  EXPECT_EQ(ProviderName(*FindBuiltInSublayer("MPSSVC_TENANT_RESTRICTIONS")->providerKey),
            "MPSSVC_TENANT_RESTRICTIONS");
  EXPECT_EQ(ProviderName(*FindBuiltInSublayer("MPSSVC_APP_ISOLATION")->providerKey), "MPSSVC_APP_ISOLATION");
  EXPECT_EQ(FindBuiltInSublayer("UNIVERSAL")->providerKey, std::nullopt);
}

TEST(BuiltInSublayers, AZeroKeyIsUnknown) { EXPECT_EQ(FindBuiltInSublayer(GUID{}), nullptr); }

}  // namespace
}  // namespace Catalog
