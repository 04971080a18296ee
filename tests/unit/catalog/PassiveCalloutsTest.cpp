#include "catalog/PassiveCallouts.h"

#include <gtest/gtest.h>

#include "catalog/Callouts.h"
#include "catalog/Guid.h"

namespace Catalog {
namespace {

TEST(PassiveCallouts, AreThoseThatMarkInformOrPermitOnly) {
  const auto purpose = [](const GUID& key) { return FindPassiveCallout(key)->purpose; };
  EXPECT_EQ(purpose("c3dbed20-0bb6-4bf3-828d-96732e1e0024"_guid), "notifies the user");
  EXPECT_EQ(purpose("c3dbed20-0bb6-4bf3-828d-96732e1e022c"_guid), "permits secondary connections");
  EXPECT_EQ(purpose("8e44982b-f477-11df-85ce-78e7d1810190"_guid), "counts usage");
}

TEST(PassiveCallouts, LeaveOutThoseThatMayBlockOrBelongToOthers) {
  EXPECT_EQ(FindPassiveCallout(FindBuiltInCallout("IPSEC_INBOUND_INITIATE_SECURE_V4")->key), nullptr);
  EXPECT_EQ(FindPassiveCallout(FindBuiltInCallout("IPSEC_INBOUND_TUNNEL_ALE_ACCEPT_V6")->key), nullptr);
  EXPECT_EQ(FindPassiveCallout("00000000-0000-0000-0000-000000000001"_guid), nullptr);
}

TEST(PassiveCallouts, IncludeTheseThoseThatAreBuiltIn) {
  std::string ids;
  for (const BuiltInCallout& callout : BuiltInCallouts()) {
    ids += FindPassiveCallout(callout.key) == nullptr ? "" : std::to_string(callout.id) + ' ';
  }
  EXPECT_EQ(ids, "15 16 17 18 19 20 21 22 23 24 27 28 29 30 33 34 35 36 37 38 39 40 41 42 43 44 47 48 ");
}

}  // namespace
}  // namespace Catalog
