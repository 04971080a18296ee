// The weight of conditions: 60 bits, cut into a slot for each class of fields that the layer has. How they
// are cut depends on the layer's fields, never on the filter. In its slot a filter has the share of bits
// that its conditions pin down.
#include "emulator/Weights.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>
#include <vector>

#include "catalog/Layers.h"
#include "emulator/GuessedWeights.h"
#include "emulator/PinnedBits.h"
#include "emulator/WeightClasses.h"

namespace EngineEmulator {
namespace {

constexpr unsigned kBits = FWPM_AUTO_WEIGHT_BITS;
/// Of any filter at a layer without fields.
constexpr UINT64 kWeightWithoutFields = (UINT64{1} << (kBits - 1)) - 1;
constexpr std::size_t kMostFields = 64;

struct Slot {
  unsigned at = 0;         ///< its lowest bit
  unsigned width = 0;      ///< in bits
  unsigned fieldBits = 0;  ///< those of its fields together; 0: it holds 1 for any condition
};

/// How the weights of one layer are cut.
struct Layout {
  struct Place {
    unsigned slot;
    unsigned fieldBits;  ///< of this field; 0: any condition counts as one bit
  };
  std::vector<Slot> slots;    ///< from the lowest
  std::vector<Place> places;  ///< of the layer's fields, in their order
};

/// The bits of a field that has a size; 0 for any other.
unsigned BitsOf(const Catalog::LayerField& field) {
  if (!kFieldsWithSize.Has(*field.field)) {
    return 0;
  }
  switch (field.dataType) {
    case FWP_UINT8:
      return 8;
    case FWP_UINT16:
      return 16;
    case FWP_UINT32:
      return 32;
    default:
      return 128;
  }
}

/// 3 for 8 bits to 7 for 128.
unsigned SizeOf(unsigned fieldBits) { return static_cast<unsigned>(std::bit_width(fieldBits)) - 1; }

/// Gives each slot its bits: one to those without a size, shares of the others to the rest. Boundaries are
/// rounded to the nearest.
/// @param sizes of the slots; 0 for one bit.
void Cut(std::vector<Slot>& slots, const std::vector<unsigned>& sizes) {
  const auto singles = static_cast<unsigned>(std::ranges::count(sizes, 0U));
  unsigned total = 0;
  for (const unsigned size : sizes) {
    total += size;
  }
  unsigned ones = 0;
  unsigned sum = 0;
  unsigned at = 0;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    ones += sizes[i] == 0 ? 1 : 0;
    sum += sizes[i];
    const unsigned end = (2 * (ones * total + sum * (kBits - singles)) + total) / (2 * total);
    slots[i].at = at;
    slots[i].width = end - at;
    at = end;
  }
}

Layout MakeLayout(const Catalog::Layer& layer) {
  Layout layout{{}, std::vector<Layout::Place>(layer.fields.size())};
  std::vector<unsigned> sizes;
  const std::span classes = ClassesOf(layer.family);
  for (std::size_t place = classes.size(); place-- > 0;) {
    const FieldClass& fieldClass = classes[place];
    Slot slot;
    unsigned size = 0;
    bool isThere = false;
    for (std::size_t i = 0; i < layer.fields.size(); ++i) {
      if (fieldClass.Has(*layer.fields[i].field)) {
        const unsigned bits = BitsOf(layer.fields[i]);
        layout.places[i] = {static_cast<unsigned>(layout.slots.size()), bits};
        slot.fieldBits += bits;
        size += bits == 0 ? 0 : SizeOf(bits);
        isThere = true;
      }
    }
    if (isThere) {
      layout.slots.push_back(slot);
      sizes.push_back(size);
    }
  }
  Cut(layout.slots, sizes);
  return layout;
}

/// The layouts of all layers, made once for each version of Windows.
const Layout& LayoutOf(const Catalog::Layer& layer, Catalog::WindowsVersion version) {
  static const auto kLayouts = [] {
    std::array<std::vector<Layout>, Catalog::kWindowsVersions.size()> layouts;
    for (const auto each : Catalog::kWindowsVersions) {
      std::ranges::transform(Catalog::AllLayers(each),
                             std::back_inserter(layouts[static_cast<std::size_t>(each)]), MakeLayout);
    }
    return layouts;
  }();
  return kLayouts[static_cast<std::size_t>(version)][layer.id];
}

/// The share of a slot for so many pinned bits of its fields, rounded to the nearest; at least 1 if any
/// bit is pinned.
UINT64 ValueIn(const Slot& slot, double pinned) {
  const UINT64 most = (UINT64{1} << slot.width) - 1;
  const auto whole = static_cast<UINT64>(pinned);
  const bool isWhole = static_cast<double>(whole) == pinned;
  const UINT64 value =
      isWhole ? (2 * whole * most + slot.fieldBits) / (2 * UINT64{slot.fieldBits})
              : static_cast<UINT64>(std::floor(pinned / slot.fieldBits * static_cast<double>(most) + 0.5));
  return pinned > 0 ? std::max(value, UINT64{1}) : 0;
}

/// What the conditions on one field pin down: two add up, three count as all of it.
struct Pinned {
  unsigned conditions = 0;
  double bits = 0;

  [[nodiscard]] double Of(unsigned fieldBits) const {
    return conditions > 2 ? fieldBits : std::min<double>(bits, fieldBits);
  }
};

UINT64 WeightOf(std::span<const FWPM_FILTER_CONDITION0> conditions, const Catalog::Layer& layer,
                const Switches& switches) {
  const Layout& layout = LayoutOf(layer, switches.Version());
  std::array<Pinned, kMostFields> pinned;
  UINT64 weight = 0;
  for (const FWPM_FILTER_CONDITION0& condition : conditions) {
    const Catalog::LayerField* field = Catalog::FieldAt(layer, *Catalog::FindField(condition.fieldKey));
    const auto index = static_cast<std::size_t>(field - layer.fields.data());
    const auto [slot, fieldBits] = layout.places[index];
    if (fieldBits == 0) {
      weight |= UINT64{1} << layout.slots[slot].at;
    } else {
      ++pinned[index].conditions;
      pinned[index].bits += PinnedBits(condition, fieldBits, switches);
    }
  }
  std::array<double, kBits> pinnedInSlot{};
  for (std::size_t i = 0; i < layout.places.size(); ++i) {
    pinnedInSlot[layout.places[i].slot] += pinned[i].Of(layout.places[i].fieldBits);
  }
  for (std::size_t i = 0; i < layout.slots.size(); ++i) {
    const Slot& slot = layout.slots[i];
    weight |= slot.fieldBits == 0 ? 0 : ValueIn(slot, pinnedInSlot[i]) << slot.at;
  }
  return weight;
}

UINT64 AutomaticWeight(const FWPM_FILTER0& filter, const Switches& switches) {
  const Catalog::Layer& layer = *Catalog::FindLayer(filter.layerKey, switches.Version());
  const std::span conditions(filter.filterCondition, filter.numFilterConditions);
  if (switches.guessWeights != 0) {
    return GuessedWeight(conditions, layer);
  }
  if (layer.fields.empty()) {
    return kWeightWithoutFields;
  }
  if (conditions.empty()) {
    return 0;
  }
  return ClassesOf(layer.family).empty() ? GuessedWeight(conditions, layer)
                                         : WeightOf(conditions, layer, switches);
}

}  // namespace

UINT64 EffectiveWeight(const FWPM_FILTER0& filter, const Switches& switches) {
  switch (filter.weight.type) {
    case FWP_UINT64:
      return *filter.weight.uint64;
    case FWP_UINT8:
      return UINT64{filter.weight.uint8} << kBits | AutomaticWeight(filter, switches);
    default:
      return AutomaticWeight(filter, switches);
  }
}

}  // namespace EngineEmulator
