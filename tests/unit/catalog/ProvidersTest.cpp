#include "catalog/Providers.h"

#include <gtest/gtest.h>

namespace Catalog {
namespace {

TEST(BuiltInProviders, AreNineFoundByKeyAndName) {
  EXPECT_EQ(kBuiltInProviders.size(), 9U);
  for (const BuiltInProvider& provider : kBuiltInProviders) {
    EXPECT_EQ(FindBuiltInProvider(provider.key), &provider) << provider.name;
    EXPECT_EQ(FindBuiltInProvider(provider.name), &provider) << provider.name;
  }
}

TEST(BuiltInProviders, BelongToServices) {
  EXPECT_EQ(FindBuiltInProvider("decc16ca-3f33-4346-be1e-8fb4ae0f3d62"_guid)->name, "MPSSVC_WF");
  EXPECT_EQ(FindBuiltInProvider("MPSSVC_WSH")->service, "mpssvc");
  EXPECT_EQ(FindBuiltInProvider("TCP_TEMPLATES")->service, "");
  EXPECT_EQ(FindBuiltInProvider("MPSSVC_WF")->title, "Windows Firewall");
}

TEST(BuiltInProviders, AnUnknownKeyOrNameIsNone) {
  EXPECT_EQ(FindBuiltInProvider(GUID{}), nullptr);
  EXPECT_EQ(FindBuiltInProvider("MPSSVC"), nullptr);
}

}  // namespace
}  // namespace Catalog
