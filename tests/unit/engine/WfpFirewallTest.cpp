// Included first, to show that it needs no other header before it.
#include <WfpFirewall.h>
#include <gtest/gtest.h>

#include "support/EngineTest.h"

namespace {

class WfpFirewallTest : public EngineTest {};

TEST_F(WfpFirewallTest, OneHeaderBringsTheWholeObjectModel) {
  using namespace WfpFirewall;
  using namespace WfpFirewall::Filtering;
  constexpr GUID kKey{0x20000000, 0x0002, 0x4002, {0x80, 0, 0, 0, 0, 0, 0, 2}};
  Sublayer ruleSet(kKey, L"Host's own", L"Blocks one host");
  ruleSet.AddFilter(FilterBuilder()
                        .CreateFilter(Action::Block)
                        .InLayer(LayerType::AleAuthConnectV4)
                        .WithCondition(ConditionEqual(new Values::RemoteIpAddressV4("192.168.0.1")))
                        .Get());
  Sublayers::EnableDhcp dhcp({0x30000000, 3, 3, {}}, L"DHCP", L"Lets DHCP through");
  Firewall firewall(Provider({0x10000000, 1, 1, {}}, L"Host", L"Host", L"A host of the library"));
  try {
    firewall.AddSublayer(ruleSet).AddSublayer(dhcp).Apply();
  } catch (const FirewallException& exception) {
    FAIL() << exception.what();
  }
  const std::vector<std::string> filters = FilterTexts();
  ASSERT_EQ(filters.size(), 7u);
  EXPECT_EQ(filters[0],
            "ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | IP_REMOTE_ADDRESS EQUAL UINT32 192.168.0.1");
}

}  // namespace
