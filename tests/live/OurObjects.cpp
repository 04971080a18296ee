#include "live/OurObjects.h"

#include <algorithm>
#include <map>
#include <regex>

#include "Identities.h"
#include "Text.h"
#include "catalog/Describe.h"

namespace {

using SublayerNames = std::map<GUID, std::string, Catalog::KeyOrder>;

bool IsOurs(const GUID* provider) { return provider != nullptr && *provider == kProvider.key; }

std::string TextOf(const wchar_t* text) { return text == nullptr ? "" : ToUtf8(text); }

std::string NameOf(const FWPM_DISPLAY_DATA0& data) {
  return '"' + TextOf(data.name) + "\" \"" + TextOf(data.description) + '"';
}

std::string LineOf(const FWPM_FILTER0& filter, const SublayerNames& sublayers) {
  static const std::regex volume(R"(\\device\\harddiskvolume\d+)");
  const std::string conditions =
      std::regex_replace(Catalog::DescribeFilter(filter), volume, R"(\device\harddiskvolume#)");
  const auto sublayer = sublayers.find(filter.subLayerKey);
  const FWP_VALUE0& weight = filter.effectiveWeight;
  const bool isWeighed = weight.type == FWP_UINT64 && weight.uint64 != nullptr;
  return "filter " + NameOf(filter.displayData) + " in " +
         (sublayer == sublayers.end() ? "no sublayer" : sublayer->second) + " | " + conditions +
         " | weighs " + (isWeighed ? std::to_string(*weight.uint64) : "nothing");
}

}  // namespace

std::vector<std::string> OurObjectsOf(const Dump::EngineState& state) {
  std::vector<std::string> lines;
  for (const FWPM_PROVIDER0& provider : state.providers) {
    if (provider.providerKey == kProvider.key) {
      lines.push_back("provider " + NameOf(provider.displayData) + " | flags " +
                      std::to_string(provider.flags));
    }
  }
  SublayerNames sublayers;
  for (const FWPM_SUBLAYER0& sublayer : state.subLayers) {
    sublayers[sublayer.subLayerKey] = TextOf(sublayer.displayData.name);
    if (IsRuleSet(sublayer.subLayerKey)) {
      lines.push_back("sublayer " + NameOf(sublayer.displayData) + " | weight " +
                      std::to_string(sublayer.weight) + " | flags " + std::to_string(sublayer.flags));
    }
  }
  for (const FWPM_FILTER0& filter : state.filters) {
    if (IsOurs(filter.providerKey)) {
      lines.push_back(LineOf(filter, sublayers));
    }
  }
  std::ranges::sort(lines);
  return lines;
}
