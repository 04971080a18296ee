// Weights that live engines give, and properties of all weights.
#include <algorithm>
#include <array>
#include <random>

#include "ObservedWeights.h"
#include "WeighedFilter.h"
#include "emulator/ControlExports.h"

namespace {

constexpr UINT64 kMost = 0x0FFFFFFFFFFFFFFF;
constexpr std::array<UINT32, 3> kBuilds{19041, 22000, 26100};

class ObservedWeight : public EngineTest {
 protected:
  static void SetBuild(UINT32 build) { EngineEmulatorSetRule("windowsBuild", build); }
};

/// @returns the number of rows.
int ExpectRows(const char* table) {
  std::istringstream lines(table);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    std::istringstream row(line);
    std::string layer;
    std::string range;
    std::string weight;
    std::string conditions;
    UINT32 build = 0;
    row >> layer >> build >> range >> weight;
    std::getline(row, conditions);
    EngineEmulatorSetRule("windowsBuild", build);
    WeighedFilter filter(layer, build, conditions);
    EXPECT_EQ(filter.Weight(range == "-" ? -1 : std::stoi(range)), std::stoull(weight, nullptr, 16)) << line;
  }
  return count;
}

TEST_F(ObservedWeight, IsGivenInEveryCase) {
  EXPECT_EQ(ExpectRows(kObservedWeights1) + ExpectRows(kObservedWeights2), 249);
}

/// The layers at which the weights of conditions are known.
constexpr std::array<std::string_view, 11> kFamilies{"ALE_AUTH_CONNECT",
                                                     "ALE_AUTH_RECV_ACCEPT",
                                                     "ALE_AUTH_LISTEN",
                                                     "ALE_RESOURCE_ASSIGNMENT",
                                                     "ALE_FLOW_ESTABLISHED",
                                                     "ALE_CONNECT_REDIRECT",
                                                     "ALE_ENDPOINT_CLOSURE",
                                                     "OUTBOUND_ICMP_ERROR",
                                                     "INBOUND_ICMP_ERROR",
                                                     "INBOUND_TRANSPORT",
                                                     "IPFORWARD"};

const Catalog::Layer& LayerOf(std::string_view family, const char* suffix, UINT32 build) {
  return *Catalog::FindLayer(std::string(family) + suffix, Catalog::VersionOfBuild(build));
}

std::string ConditionOnEach(const Catalog::Layer& layer) {
  std::string text;
  for (const Catalog::LayerField& field : layer.fields) {
    // No public header has a type for values of the BITMAP fields.
    if (!field.field->name.starts_with("BITMAP")) {
      text.append(field.field->name).append(" ");
    }
  }
  return text;
}

TEST_F(ObservedWeight, OfExactValuesEverywhereFillsAllSixtyBits) {
  for (const UINT32 build : {22000U, 26100U}) {
    SetBuild(build);
    for (const std::string_view family : kFamilies) {
      for (const char* suffix : {"_V4", "_V6"}) {
        const Catalog::Layer& layer = LayerOf(family, suffix, build);
        EXPECT_EQ(WeighedFilter(layer.name, build, ConditionOnEach(layer)).Weight(), kMost) << layer.name;
      }
    }
  }
}

TEST_F(ObservedWeight, HasBitsForEachField) {
  for (const UINT32 build : kBuilds) {
    SetBuild(build);
    for (const std::string_view family : kFamilies) {
      const Catalog::Layer& layer = LayerOf(family, "_V6", build);
      for (const Catalog::LayerField& field : layer.fields) {
        if (!field.field->name.starts_with("BITMAP")) {
          const std::string name(field.field->name);
          EXPECT_NE(WeighedFilter(layer.name, build, name).Weight(), 0U) << name << " at " << layer.name;
        }
      }
    }
  }
}

TEST_F(ObservedWeight, OfFieldsOfDifferentClassesNeverOverlaps) {
  const std::array<std::string, 8> kConditions{
      "IP_REMOTE_ADDRESS/17", "IP_LOCAL_INTERFACE", "IP_PROTOCOL=", "IP_LOCAL_PORT#40000",
      "IP_REMOTE_PORT=",      "ALE_APP_ID",         "ALE_USER_ID",  "FLAGS&"};
  std::mt19937 random(1);
  for (int round = 0; round < 200; ++round) {
    const UINT32 build = kBuilds[random() % 3];
    const Catalog::Layer& layer = LayerOf(kFamilies[random() % 2], random() % 2 == 0 ? "_V4" : "_V6", build);
    SetBuild(build);
    std::string all;
    UINT64 sum = 0;
    for (const std::string& condition : kConditions) {
      if (random() % 2 == 0) {
        all += condition + ' ';
        const UINT64 weight = WeighedFilter(layer.name, build, condition).Weight();
        EXPECT_EQ(sum & weight, 0U) << condition;
        sum |= weight;
      }
    }
    EXPECT_EQ(WeighedFilter(layer.name, build, all).Weight(), sum) << all << " at " << layer.name;
  }
}

/// 0 for what is no number.
int BitsOf(FWP_DATA_TYPE type) {
  switch (type) {
    case FWP_UINT8:
      return 8;
    case FWP_UINT16:
      return 16;
    case FWP_UINT32:
      return 32;
    case FWP_BYTE_ARRAY16_TYPE:
      return 128;
    default:
      return 0;
  }
}

/// A condition of random width on a field, and one that pins down more bits.
std::pair<std::string, std::string> Narrowed(const Catalog::LayerField& field, std::mt19937& random) {
  const std::string name(field.field->name);
  const int bits = BitsOf(field.dataType);
  if (bits == 0 || field.type == FWPM_FIELD_FLAGS) {
    return {name, name};
  }
  const auto pinned = static_cast<int>(random() % static_cast<unsigned>(bits));
  return {name + '/' + std::to_string(pinned), name + '/' + std::to_string(pinned + 1)};
}

TEST_F(ObservedWeight, NeverFallsWithMoreBitsPinnedNorExceedsSixty) {
  std::mt19937 random(2);
  for (int round = 0; round < 1000; ++round) {
    const UINT32 build = kBuilds[random() % 3];
    const Catalog::Layer& layer =
        LayerOf(kFamilies[random() % kFamilies.size()], random() % 2 == 0 ? "_V4" : "_V6", build);
    SetBuild(build);
    std::string wide;
    std::string narrow;
    for (const Catalog::LayerField& field : layer.fields) {
      if (random() % 4 != 0 || field.field->name.starts_with("BITMAP")) {
        continue;
      }
      const auto [one, other] = Narrowed(field, random);
      const bool isNarrowed = random() % 2 == 0;
      wide += one + ' ';
      narrow += (isNarrowed ? other : one) + ' ';
    }
    const UINT64 least = WeighedFilter(layer.name, build, wide).Weight();
    const UINT64 most = WeighedFilter(layer.name, build, narrow).Weight();
    EXPECT_LE(least, most) << layer.name << '\n' << wide << '\n' << narrow;
    EXPECT_LE(most, kMost);
  }
}

TEST_F(ObservedWeight, NeverFallsWithAnotherField) {
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    const Catalog::Layer& layer = LayerOf(kFamilies[random() % kFamilies.size()], "_V4", 26100);
    std::string conditions;
    UINT64 before = 0;
    for (const Catalog::LayerField& field : layer.fields) {
      if (random() % 8 == 0) {
        conditions += Narrowed(field, random).first + ' ';
        const UINT64 weight = WeighedFilter(layer.name, 26100, conditions).Weight();
        EXPECT_GE(weight, before) << layer.name << ' ' << conditions;
        before = weight;
      }
    }
  }
}

}  // namespace
