#include "engine/Provider.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/LeftOf.h"
#include "unit/engine/Samples.h"

namespace WfpFirewall {
namespace {

TEST(Provider, GivesBackWhatItWasMadeOf) {
  const Provider provider = Samples::MakeProvider();
  EXPECT_EQ(provider.GetGuid(), kProviderKey);
  EXPECT_EQ(provider.GetName(), L"CorvaneService");
  EXPECT_EQ(provider.GetDisplayName(), L"Corvane");
  EXPECT_EQ(provider.GetDisplayDesc(), L"Corvane firewall provider");
}

TEST(Provider, TakesItsTextsOver) {
  const auto left = [](const auto& make) { return LeftOf(std::wstring(L"Corvane"), make); };
  EXPECT_EQ(left([](std::wstring&& text) { Provider(GUID(), std::move(text), L"", L""); }), L"");
  EXPECT_EQ(left([](std::wstring&& text) { Provider(GUID(), L"", std::move(text), L""); }), L"");
  EXPECT_EQ(left([](std::wstring&& text) { Provider(GUID(), L"", L"", std::move(text)); }), L"");
}

TEST(Provider, IsPersistentOnlyOnceTold) {
  Provider provider = Samples::MakeProvider();
  EXPECT_FALSE(provider.IsPersistent());
  provider.MakePersistent();
  EXPECT_TRUE(provider.IsPersistent());
}

TEST(Provider, CopiesAreWholeAndIndependent) {
  Provider original = Samples::MakeProvider();
  original.MakePersistent();
  const Provider persistent = original;
  EXPECT_EQ(persistent.GetDisplayName(), L"Corvane");
  EXPECT_TRUE(persistent.IsPersistent());

  Provider copy = Samples::MakeProvider();
  const Provider before = copy;
  copy.MakePersistent();
  EXPECT_FALSE(before.IsPersistent());
}

}  // namespace
}  // namespace WfpFirewall
