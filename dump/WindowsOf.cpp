#include "dump/WindowsOf.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "catalog/Layers.h"

namespace Dump {
namespace {

using Catalog::WindowsVersion;

/// Windows 11 gives this flag to filters of its firewall, and Windows 10 does not: observed on five machines.
constexpr std::string_view kFlagSinceWindows11 = "FWPM_FILTER_FLAG_HAS_FILTER_ORIGIN";

/// The versions for which something holds; all if it holds for none.
template <class Predicate>
std::vector<WindowsVersion> VersionsWith(Predicate holds) {
  std::vector<WindowsVersion> versions;
  std::ranges::copy_if(Catalog::kWindowsVersions, std::back_inserter(versions), holds);
  if (versions.empty()) {
    versions.assign(Catalog::kWindowsVersions.begin(), Catalog::kWindowsVersions.end());
  }
  return versions;
}

/// Whether a layer has the fields that it has in a version, in the same order.
bool IsOf(const FWPM_LAYER0& layer, WindowsVersion version) {
  const Catalog::Layer* known = Catalog::FindLayer(layer.layerKey, version);
  return known != nullptr && std::ranges::equal(
                                 std::span(layer.field, layer.numFields), known->fields, {},
                                 [](const FWPM_FIELD0& field) { return *field.fieldKey; },
                                 [](const Catalog::LayerField& field) { return field.field->key; });
}

std::vector<WindowsVersion> WithMostLayers(const EngineState& state) {
  const auto count = [&state](WindowsVersion version) {
    return std::ranges::count_if(state.layers,
                                 [version](const FWPM_LAYER0& layer) { return IsOf(layer, version); });
  };
  const auto most = std::ranges::max(Catalog::kWindowsVersions, {}, count);
  return VersionsWith(
      [&, highest = count(most)](WindowsVersion version) { return count(version) == highest; });
}

bool HasField(const GUID& layerKey, const GUID& fieldKey, WindowsVersion version) {
  const Catalog::Layer* layer = Catalog::FindLayer(layerKey, version);
  const Catalog::Field* field = Catalog::FindField(fieldKey);
  return layer != nullptr && field != nullptr && Catalog::FieldAt(*layer, *field) != nullptr;
}

/// Whether a version's filters can be such. A field that no version has there tells nothing.
bool MayHave(const FWPM_FILTER0& filter, WindowsVersion version) {
  const std::span conditions(filter.filterCondition, filter.numFilterConditions);
  return std::ranges::all_of(conditions, [&](const FWPM_FILTER_CONDITION0& condition) {
    const auto hasIt = [&](WindowsVersion other) {
      return HasField(filter.layerKey, condition.fieldKey, other);
    };
    return hasIt(version) || std::ranges::none_of(Catalog::kWindowsVersions, hasIt);
  });
}

}  // namespace

std::vector<WindowsVersion> WindowsOf(const EngineState& state) {
  if (!state.layers.empty()) {
    return WithMostLayers(state);
  }
  const bool isWindows11 = std::ranges::find(state.unknownFlags, kFlagSinceWindows11, &UnknownFlag::name) !=
                           state.unknownFlags.end();
  return VersionsWith([&](WindowsVersion version) {
    return (!isWindows11 || version != WindowsVersion::Windows10) &&
           std::ranges::all_of(state.filters,
                               [version](const FWPM_FILTER0& filter) { return MayHave(filter, version); });
  });
}

}  // namespace Dump
