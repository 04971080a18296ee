#include <WfpPlatform.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

#include "catalog/Fields.h"
#include "catalog/Guid.h"
#include "catalog/Layers.h"
#include "catalog/Sublayers.h"

// The header is not for the Windows SDK, which has the keys itself.
#if !defined(_WIN32) || defined(__MINGW64_VERSION_MAJOR)
namespace {

/// The keys that the header defines, by name.
std::map<std::string, GUID, std::less<>>& Keys() {
  static std::map<std::string, GUID, std::less<>> keys;
  return keys;
}

struct DefinedKey {
  DefinedKey(const char* ofKey, const GUID& key) : name(ofKey) { Keys().emplace(ofKey, key); }
  std::string name;
};

}  // namespace

#undef DEFINE_GUID
#define DEFINE_GUID(name, data1, data2, data3, ...) \
  const DefinedKey name(#name, GUID{data1, data2, data3, {__VA_ARGS__}})
#include "catalog/FwpmKeys.h"

namespace Catalog {
namespace {

/// The keys whose names have a prefix, by their names without it.
std::map<std::string, GUID> KeysOf(std::string_view prefix) {
  std::map<std::string, GUID> keys;
  for (const auto& [name, key] : Keys()) {
    if (name.starts_with(prefix)) {
      keys.emplace(name.substr(prefix.size()), key);
    }
  }
  return keys;
}

template <class Table>
std::map<std::string, GUID> KeysIn(const Table& table) {
  std::map<std::string, GUID> keys;
  for (const auto& entry : table) {
    keys.emplace(entry.name, entry.key);
  }
  return keys;
}

TEST(FwpmKeys, AreFiftyLayersSixtyFiveFieldsAndEighteenSublayers) {
  EXPECT_EQ(KeysOf("FWPM_LAYER_").size(), 50u);
  EXPECT_EQ(KeysOf("FWPM_CONDITION_").size(), 65u);
  EXPECT_EQ(KeysOf("FWPM_SUBLAYER_").size(), 18u);
  EXPECT_EQ(Keys().size(), 50u + 65u + 18u);
}

void ExpectIn(const std::map<std::string, GUID>& table, const std::map<std::string, GUID>& keys) {
  for (const auto& [name, key] : keys) {
    const auto found = table.find(name);
    EXPECT_TRUE(found != table.end() && found->second == key) << name;
  }
}

TEST(FwpmKeys, AreThoseOfTheTables) {
  ExpectIn(KeysIn(AllLayers()), KeysOf("FWPM_LAYER_"));
  ExpectIn(KeysIn(kFields), KeysOf("FWPM_CONDITION_"));
  EXPECT_TRUE(KeysOf("FWPM_SUBLAYER_") == KeysIn(kBuiltInSublayers));
}

TEST(FwpmKeys, SecondNamesMeanTheFieldsOfTheTables) {
  const auto nameOf = [](std::string_view alias) {
    return "FWPM_CONDITION_" + std::string(FindField(alias)->name);
  };
  EXPECT_EQ(FWPM_CONDITION_ALE_SIO_FIREWALL_SOCKET_PROPERTY.name, nameOf("ALE_SIO_FIREWALL_SOCKET_PROPERTY"));
  EXPECT_EQ(FWPM_CONDITION_ARRIVAL_SUB_INTERFACE_INDEX.name, nameOf("ARRIVAL_SUB_INTERFACE_INDEX"));
  EXPECT_EQ(FWPM_CONDITION_ICMP_CODE.name, nameOf("ICMP_CODE"));
  EXPECT_EQ(FWPM_CONDITION_ICMP_TYPE.name, nameOf("ICMP_TYPE"));
  EXPECT_EQ(FWPM_CONDITION_LOCAL_INTERFACE_INDEX.name, nameOf("LOCAL_INTERFACE_INDEX"));
  EXPECT_EQ(FWPM_CONDITION_LOCAL_INTERFACE_TYPE.name, nameOf("LOCAL_INTERFACE_TYPE"));
  EXPECT_EQ(FWPM_CONDITION_LOCAL_TUNNEL_TYPE.name, nameOf("LOCAL_TUNNEL_TYPE"));
  EXPECT_EQ(kFieldAliases.size(), 7u);
}

}  // namespace
}  // namespace Catalog
#endif
