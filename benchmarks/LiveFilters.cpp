#include "LiveFilters.h"

#include <algorithm>
#include <array>
#include <random>
#include <sstream>

#include "catalog/Guid.h"
#include "dump/ReadDump.h"
#include "support/FilterText.h"

namespace {

using Catalog::operator""_guid;

constexpr GUID kFirewall = "b3cdd441-af90-41ba-a745-7c6008ff2301"_guid;
constexpr GUID kIsolation = "ffe221c3-92a8-4564-a59f-dafb70756020"_guid;
constexpr GUID kProduct = "0d5e1f0a-0000-4000-8000-000000000001"_guid;

/// Collects filters; their ids rise.
class Collector {
 public:
  void Add(const GUID& sublayer, UINT64 weight, const std::string& text) {
    Policy::Filter filter = Policy::Decode(FilterText(text).Record());
    filter.id = filters_.size() + 1;
    filter.key.Data1 = static_cast<UINT32>(filter.id);
    filter.sublayerKey = sublayer;
    filter.effectiveWeight = weight;
    filters_.push_back(std::move(filter));
  }

  [[nodiscard]] std::size_t Count() const { return filters_.size(); }
  std::vector<Policy::Filter> Take() { return std::move(filters_); }

 private:
  std::vector<Policy::Filter> filters_;
};

constexpr const char* kHardPermit = " | PERMIT | EMPTY | CLEAR_ACTION_RIGHT | ";

constexpr std::array kLayers{"ALE_AUTH_RECV_ACCEPT_V4", "ALE_AUTH_RECV_ACCEPT_V6", "ALE_AUTH_CONNECT_V4",
                             "ALE_AUTH_CONNECT_V6"};

/// A rule of an application, as Windows Firewall turns it into conditions.
class Rules {
 public:
  explicit Rules(std::size_t count) : applications_(1 + count / 12) {}

  std::string Conditions(bool isV6) {
    std::string text = "IP_PROTOCOL EQUAL UINT8 ";
    text += Below(2) == 0 ? "6" : "17";
    if (Below(4) != 0) {
      text += " & ALE_APP_ID EQUAL BYTE_BLOB \\device\\app" + std::to_string(Below(applications_)) + ".exe";
    }
    if (Below(2) == 0) {
      text += " & IP_LOCAL_PORT EQUAL UINT16 " + std::to_string(1000 + Below(80));
    } else if (Below(4) == 0) {
      text += " & IP_LOCAL_PORT RANGE RANGE UINT16 49152 to UINT16 65535";
    }
    if (Below(5) == 0) {
      text += isV6 ? " & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::/10"
                   : " & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10." + std::to_string(Below(9)) +
                         ".0.0/255.255.0.0";
    }
    if (Below(12) == 0) {
      text += " & INTERFACE_TYPE EQUAL UINT32 131";
    }
    return text;
  }

  std::size_t Below(std::size_t bound) { return engine_() % bound; }

 private:
  std::size_t applications_;
  std::mt19937 engine_{1};
};

void AddExceptions(const std::string& layer, Collector& filters) {
  filters.Add(kIsolation, 0xFFFFFFFFFFFFFFFF,
              layer + " | PERMIT | EMPTY | - | FLAGS FLAGS_ALL_SET UINT32 0x800000");
  filters.Add(kIsolation, 0xFFFFFFFFFFFFFFFE,
              layer + " | BLOCK | EMPTY | - | FLAGS FLAGS_ALL_SET UINT32 0x400000");
  filters.Add(kFirewall, 0x8000000000000000, layer + " | PERMIT | EMPTY | - | FLAGS FLAGS_ALL_SET UINT32 1");
  filters.Add(kFirewall, 0x3000000000000000, layer + " | BLOCK | EMPTY | - | -");
}

}  // namespace

Policy::Snapshot LiveFilters(std::size_t count) {
  Collector filters;
  Rules rules(count);
  for (const std::string layer : kLayers) {
    AddExceptions(layer, filters);
  }
  while (filters.Count() < count) {
    const std::string layer = kLayers[rules.Below(kLayers.size())];
    const std::string conditions = rules.Conditions(layer.ends_with("V6"));
    const UINT64 narrowness = static_cast<UINT64>(std::ranges::count(conditions, '&')) << 32;
    const bool blocks = rules.Below(8) == 0;
    const UINT64 weight = (blocks ? 0xA000000000000000 : 0x8000000000000000) + narrowness;
    if (rules.Below(20) == 0) {
      filters.Add(kProduct, weight, layer + (blocks ? " | BLOCK | EMPTY | - | " : kHardPermit) + conditions);
    } else {
      filters.Add(kFirewall, weight,
                  layer + (blocks ? " | BLOCK" : " | PERMIT") + " | EMPTY | - | " + conditions);
    }
  }
  return Policy::MakeSnapshot(
      {{kFirewall, "Firewall", 2}, {kIsolation, "Isolation", 7}, {kProduct, "Product", 40000}},
      filters.Take());
}

Policy::Snapshot MergedDumps(const char* paths) {
  std::vector<Policy::Sublayer> sublayers;
  std::vector<Policy::Filter> filters;
  std::istringstream list(paths);
  UINT64 lastId = 0;
  for (std::string path; std::getline(list, path, ':');) {
    const Dump::EngineState state = Dump::ReadDumpFile(path);
    for (const FWPM_SUBLAYER0& sublayer : state.subLayers) {
      if (std::ranges::find(sublayers, sublayer.subLayerKey, &Policy::Sublayer::key) == sublayers.end()) {
        sublayers.push_back(Policy::Decode(sublayer));
      }
    }
    for (const FWPM_FILTER0& filter : state.filters) {
      filters.push_back(Policy::Decode(filter));
      filters.back().id = ++lastId;
    }
  }
  return Policy::MakeSnapshot(std::move(sublayers), std::move(filters));
}
