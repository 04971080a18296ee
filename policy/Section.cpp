// How a section is made: AddLayers numbers the filters of both layers, AddGroups and AddMarks collect the
// tests by field, ChoosePlanes sees which readings can make a difference, MakeBase writes the state that all
// connections begin with, and each field gets its table.
#include "policy/Section.h"

#include <algorithm>
#include <map>

#include "catalog/Keys.h"
#include "policy/Certainty.h"
#include "policy/FilterTests.h"
#include "policy/FlagsTable.h"
#include "policy/MakeFieldTable.h"

namespace Policy {
namespace {

/// By direction and IP version, in the order of kSectionKeys.
constexpr std::array<std::array<GUID, 2>, 4> kLayers{{
    {Catalog::kAleAuthConnectV4LayerKey, Catalog::kAleFlowEstablishedV4LayerKey},
    {Catalog::kAleAuthConnectV6LayerKey, Catalog::kAleFlowEstablishedV6LayerKey},
    {Catalog::kAleAuthRecvAcceptV4LayerKey, Catalog::kAleFlowEstablishedV4LayerKey},
    {Catalog::kAleAuthRecvAcceptV6LayerKey, Catalog::kAleFlowEstablishedV6LayerKey},
}};

const Test kUnreadableTest;

bool DependsOnUnset(const Test& test) { return test.negated || test.TestsFlags(); }

}  // namespace

Section::Section(const Snapshot& snapshot, SectionKey key, std::span<const Mark> marks,
                 const Circumstances& circumstances)
    : key_(key), settled_(snapshot.settled) {
  AddLayers(snapshot);
  GroupsByField groups;
  AddMarks(marks, groups);
  for (std::size_t layer = 0; layer < layers_.size(); ++layer) {
    const auto& filters = layers_[layer].Filters();
    for (std::size_t i = 0; i < filters.size(); ++i) {
      AddGroups(*filters[i], BitOf(layer, i), circumstances, groups);
    }
  }
  ChoosePlanes(groups);
  MakeBase(marks.size());
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    if (!groups[i].empty()) {
      tables_.push_back(MakeFieldTable(static_cast<Field>(i), key.ipVersion, layout_, std::move(groups[i])));
    }
  }
}

void Section::AddLayers(const Snapshot& snapshot) {
  for (const GUID& layer : kLayers[SectionIndex(key_.direction, key_.ipVersion)]) {
    layerAt_.push_back(layout_.filterWords);
    layers_.emplace_back(snapshot, *Catalog::FindLayer(layer));
    layout_.filterWords += layers_.back().WordCount();
  }
  if (key_.direction == Direction::Inbound) {
    layout_.acceptEnd = layers_.front().WordCount() * kBitsPerWord;
  }
}

std::size_t Section::BitOf(std::size_t layer, std::size_t filter) const {
  return layerAt_[layer] * kBitsPerWord + filter;
}

void Section::AddGroups(const Filter& filter, std::size_t bit, const Circumstances& circumstances,
                        GroupsByField& groups) {
  const FilterTests asked = TestsOf(filter, key_.direction, key_.ipVersion, circumstances, derived_);
  for (const auto& [field, tests] : asked.ofConnections) {
    for (const Test* test : tests) {
      AddTest(bit, field, *test, groups);
    }
  }
  bool inDoubt = false;
  for (const auto& conditions : asked.ofCircumstances) {
    const Certainty certainty = CertaintyOf(conditions, key_.direction, circumstances);
    inDoubt = inDoubt || certainty == Certainty::InDoubt;
    if (certainty == Certainty::Fails) {
      impossible_.push_back(bit);
    }
  }
  if (inDoubt) {
    doubtful_.push_back(bit);
  }
}

void Section::AddTest(std::size_t bit, Field field, const Test& test, GroupsByField& groups) {
  auto& ofField = groups[static_cast<std::size_t>(field)];
  if (ofField.empty() || ofField.back().isMark || ofField.back().bit != bit) {
    ofField.push_back({bit, false, false, {}});
  }
  testsOfFlags_.push_back(&test);
  const bool isReadable = FieldTable::CanJudge(field, test) &&
                          (field != Field::Flags || FieldTable::CanJudge(field, testsOfFlags_));
  if (field != Field::Flags || !isReadable) {
    testsOfFlags_.pop_back();
  }
  ofField.back().tests.push_back(isReadable ? &test : &kUnreadableTest);
}

void Section::AddMarks(std::span<const Mark> marks, GroupsByField& groups) {
  layout_.markWords = WordsFor(marks.size());
  for (std::size_t i = 0; i < marks.size(); ++i) {
    for (const auto& [field, tests, isExcluded] : marks[i].fields) {
      TestGroup group{i, true, isExcluded, {}};
      for (const Test& test : tests) {
        group.tests.push_back(&test);
        if (field == Field::Flags) {
          testsOfFlags_.push_back(&test);
        }
      }
      groups[static_cast<std::size_t>(field)].push_back(std::move(group));
    }
  }
}

/// A plane for each combination of readings, of those assumptions only that are not settled and on which some
/// filter depends.
void Section::ChoosePlanes(const GroupsByField& groups) {
  std::size_t negations = 1;
  std::size_t unset = 1;
  std::size_t loopback = 1;
  layout_.hasDoubt = !doubtful_.empty();
  for (std::size_t field = 0; field < kFieldCount; ++field) {
    for (const TestGroup& group : groups[field]) {
      if (group.isMark) {
        continue;
      }
      const auto isNegated = [](const Test* test) { return test->negated; };
      const auto dependsOnUnset = [](const Test* test) { return DependsOnUnset(*test); };
      negations = std::ranges::count_if(group.tests, isNegated) > 1 ? 2 : negations;
      unset = std::ranges::any_of(group.tests, dependsOnUnset) ? 2 : unset;
      const auto dependsOnCompanion = [](const Test* test) { return FlagsTable::DependsOnCompanion(*test); };
      if (static_cast<Field>(field) == Field::Flags && group.bit >= layout_.acceptEnd) {
        loopback = std::ranges::any_of(group.tests, dependsOnCompanion) ? 2 : loopback;
      }
      layout_.hasDoubt =
          layout_.hasDoubt || std::ranges::find(group.tests, &kUnreadableTest) != group.tests.end();
    }
  }
  const auto knowing = [this](Assumption assumption, std::size_t& readings) {
    const auto settled = settled_.ReadingOf(assumption);
    readings = settled ? 1 : readings;
    return settled.value_or(0);
  };
  const std::size_t knownNegations = knowing(Assumption::SeveralNegations, negations);
  const std::size_t knownUnset = knowing(Assumption::UnsetFields, unset);
  const std::size_t knownLoopback = knowing(Assumption::LoopbackBits, loopback);
  layout_.planes.resize(negations * unset * loopback);
  worldsOfPlane_.resize(layout_.planes.size());
  for (std::size_t index = 0; index < World::kCount; ++index) {
    const World world = World::OfIndex(index);
    const std::size_t ofNegations = world.ReadingOf(Assumption::SeveralNegations) % negations;
    const std::size_t ofUnset = world.ReadingOf(Assumption::UnsetFields) % unset;
    const std::size_t ofLoopback = world.ReadingOf(Assumption::LoopbackBits) % loopback;
    const std::size_t plane = (ofNegations * unset + ofUnset) * loopback + ofLoopback;
    layout_.planes[plane] = {ofNegations + knownNegations == 1, ofUnset + knownUnset == 1,
                             ofLoopback + knownLoopback == 1};
    worldsOfPlane_[plane][index] = true;
    planeOfWorld_.push_back(plane);
  }
}

void Section::MakeBase(std::size_t marks) {
  base_.assign(layout_.Width(), 0);
  const auto setInPlanes = [this](std::size_t bit, bool sure, bool perhaps) {
    for (std::size_t plane = 0; plane < layout_.planes.size(); ++plane) {
      BitWord* words = base_.data() + plane * layout_.PlaneWords();
      SetBit(words, bit, sure);
      if (layout_.hasDoubt) {
        SetBit(words + layout_.filterWords, bit, perhaps);
      }
    }
  };
  for (std::size_t layer = 0; layer < layers_.size(); ++layer) {
    for (std::size_t i = 0; i < layers_[layer].Filters().size(); ++i) {
      setInPlanes(BitOf(layer, i), true, true);
    }
  }
  for (const std::size_t bit : doubtful_) {
    setInPlanes(bit, false, true);
  }
  for (const std::size_t bit : impossible_) {
    setInPlanes(bit, false, false);
  }
  for (std::size_t i = 0; i < marks; ++i) {
    SetBit(base_.data() + layout_.MarksAt(), i);
  }
}

void Section::Read(const Connection& connection, BitWord* state) const {
  const std::size_t width = layout_.Width();
  std::copy_n(base_.data(), width, state);
  for (const auto& table : tables_) {
    const BitWord* signature = table->Signatures()[table->SignatureOf(connection)];
    for (std::size_t i = 0; i < width; ++i) {
      state[i] &= signature[i];
    }
  }
}

Section::Matching Section::MatchingIn(World world, std::size_t layer, const BitWord* state) const {
  return MatchingIn(planeOfWorld_[world.Index()], layer, state);
}

Section::Matching Section::MatchingIn(std::size_t plane, std::size_t layer, const BitWord* state) const {
  const BitWord* sure = state + WordAt(plane, layer);
  return {sure, layout_.hasDoubt ? sure + layout_.filterWords : sure};
}

std::vector<Section::NearMatch> Section::NearMatchesIn(World world, std::size_t layer,
                                                       const Connection& connection) const {
  const std::size_t at = WordAt(planeOfWorld_[world.Index()], layer);
  const std::size_t perhapsAt = layout_.hasDoubt ? at + layout_.filterWords : at;
  const std::size_t words = layers_[layer].WordCount();
  std::vector<BitWord> failing(tables_.size() * words);
  std::vector<BitWord> once(words);
  std::vector<BitWord> severally(words);
  for (std::size_t table = 0; table < tables_.size(); ++table) {
    const FieldTable& values = *tables_[table];
    const BitWord* signature = values.Signatures()[values.SignatureOf(connection)];
    for (std::size_t i = 0; i < words; ++i) {
      const BitWord unsure = ~signature[at + i];
      severally[i] |= once[i] & unsure;
      once[i] |= unsure;
      failing[table * words + i] = base_[at + i] & ~signature[perhapsAt + i];
    }
  }
  std::vector<NearMatch> found;
  for (std::size_t table = 0; table < tables_.size(); ++table) {
    ForEachBit(failing.data() + table * words, 0, layers_[layer].Filters().size(), [&](std::size_t filter) {
      if (!HasBit(severally.data(), filter)) {
        found.push_back({filter, tables_[table]->GetField()});
      }
    });
  }
  return found;
}

/// The action, if it is the same in all worlds and that can be seen quickly; otherwise none.
std::optional<Action> Section::DecideSurely(const BitWord* state) const {
  std::optional<Action> action;
  for (std::size_t plane = 0; plane < layout_.planes.size(); ++plane) {
    const BitWord* sure = state + plane * layout_.PlaneWords();
    if (plane > 0 && std::equal(sure, sure + layout_.PlaneWords(), state)) {
      continue;
    }
    if (layout_.hasDoubt && !std::equal(sure, sure + layout_.filterWords, sure + layout_.filterWords)) {
      return std::nullopt;
    }
    Action ofPlane = Action::Permit;
    for (std::size_t layer = 0; layer < layers_.size() && ofPlane == Action::Permit; ++layer) {
      const auto ofLayer = layers_[layer].DecideSurely(sure + layerAt_[layer]);
      if (!ofLayer) {
        return std::nullopt;
      }
      ofPlane = std::min(ofPlane, *ofLayer);
    }
    if (action.value_or(ofPlane) != ofPlane) {
      return std::nullopt;
    }
    action = ofPlane;
  }
  return action;
}

Verdict Section::Decide(const BitWord* state) const {
  if (const auto action = DecideSurely(state)) {
    return Verdict(*action);
  }
  return Both(DecideLayer(0, state), DecideLayer(1, state));
}

bool Section::AreSame(std::size_t plane, std::size_t other, std::size_t layer, const BitWord* state) const {
  const std::size_t words = layers_[layer].WordCount();
  const Matching one = MatchingIn(plane, layer, state);
  const Matching two = MatchingIn(other, layer, state);
  return std::equal(one.sure, one.sure + words, two.sure) &&
         std::equal(one.perhaps, one.perhaps + words, two.perhaps);
}

std::vector<std::size_t> Section::DistinctPlanes(std::size_t layer, const BitWord* state) const {
  std::vector<std::size_t> distinct;
  for (std::size_t plane = 0; plane < layout_.planes.size(); ++plane) {
    if (std::ranges::none_of(distinct,
                             [&](std::size_t other) { return AreSame(plane, other, layer, state); })) {
      distinct.push_back(plane);
    }
  }
  return distinct;
}

Verdict Section::DecideLayer(std::size_t layer, const BitWord* state) const {
  Verdict verdict;
  WorldSet done;
  for (std::size_t plane = 0; plane < layout_.planes.size(); ++plane) {
    // Planes in which the same filters match are decided at once.
    WorldSet worlds;
    for (std::size_t other = plane; other < layout_.planes.size(); ++other) {
      worlds |= AreSame(plane, other, layer, state) ? worldsOfPlane_[other] : WorldSet();
    }
    worlds &= ~done;
    if (worlds.any()) {
      const auto [sure, perhaps] = MatchingIn(plane, layer, state);
      layers_[layer].Decide(sure, perhaps, worlds, verdict);
      done |= worlds;
    }
  }
  return verdict.Knowing(settled_);
}

}  // namespace Policy
