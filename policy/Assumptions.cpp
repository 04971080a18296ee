#include "policy/Assumptions.h"

#include <algorithm>

namespace Policy {
namespace {

using Reading = AssumptionText::Reading;

constexpr Reading kFilterTies[]{{"newest-first", "the filter with the highest id decides"},
                                {"block-first", "a filter that blocks decides"},
                                {"permit-first", "a filter that permits decides"}};
constexpr Reading kSeveralNegations[]{{"any-holds", "one negation that holds is enough"},
                                      {"all-hold", "all negations must hold"}};
constexpr Reading kUnsetFields[]{{"no-match", "neither holds"},
                                 {"match", "a negation holds, and no flag is set"}};
constexpr Reading kStaticBlocks[]{{"permit-stands", "the hard permit stands"},
                                  {"block-overrides", "the block overrides it"}};
constexpr Reading kLoopbackBits[]{{"alone", "the flag reaches filters alone"},
                                  {"accompanied", "IS_NON_APPCONTAINER_LOOPBACK is set beside it"}};
constexpr Reading kFlowBlocks[]{{"honoured", "the connection ends"}, {"ignored", "the connection goes on"}};
constexpr Reading kCallouts[]{{"pass", "they let the connection pass"}, {"block", "they block it for good"}};

constexpr std::array<AssumptionText, kAssumptionCount> kTexts{{
    {"filter-ties", "Which of the matching filters of a sublayer decides when they weigh the same?",
     kFilterTies},
    {"several-negations", "Must all of several negations on one field hold, or is one enough?",
     kSeveralNegations},
    {"unset-fields", "Does a negation or a test of flags hold of a field that has no value?", kUnsetFields},
    {"static-block-below-hard-permit",
     "Does a block without a callout override a hard permit of a higher sublayer?", kStaticBlocks},
    {"loopback-bits",
     "At ALE_AUTH_CONNECT and ALE_FLOW_ESTABLISHED, do other flags ride beside the loopback flag?",
     kLoopbackBits},
    {"flow-established-blocks", "What does a block at ALE_FLOW_ESTABLISHED do to the connection?",
     kFlowBlocks},
    {"callouts", "What do drivers do whose callouts decide in place of filters?", kCallouts},
}};

/// How far apart the indexes of worlds are that differ in one assumption.
constexpr auto kSteps = [] {
  std::array<std::size_t, kAssumptionCount> steps{};
  std::size_t step = 1;
  for (std::size_t i = 0; i < kAssumptionCount; ++i) {
    steps[i] = step;
    step *= kTexts[i].readings.size();
  }
  return steps;
}();
static_assert(kSteps.back() * kTexts.back().readings.size() == World::kCount);

/// By world, the reading of each assumption.
constexpr auto kReadings = [] {
  std::array<std::array<std::size_t, kAssumptionCount>, World::kCount> readings{};
  for (std::size_t world = 0; world < World::kCount; ++world) {
    for (std::size_t i = 0; i < kAssumptionCount; ++i) {
      readings[world][i] = world / kSteps[i] % kTexts[i].readings.size();
    }
  }
  return readings;
}();

/// The worlds that agree with some choices.
class Box {
 public:
  [[nodiscard]] bool Contains(World world) const {
    return std::ranges::all_of(choices_, [world](const Choice& choice) {
      return world.ReadingOf(choice.assumption) == choice.reading;
    });
  }

  [[nodiscard]] WorldSet Worlds() const {
    WorldSet worlds;
    for (std::size_t i = 0; i < World::kCount; ++i) {
      worlds[i] = Contains(World::OfIndex(i));
    }
    return worlds;
  }

  [[nodiscard]] Box With(Choice choice) const {
    Box box = *this;
    box.choices_.push_back(choice);
    return box;
  }

  [[nodiscard]] const std::vector<Choice>& Choices() const { return choices_; }

 private:
  std::vector<Choice> choices_;
};

/// Every way to choose readings for some of the assumptions.
std::vector<Box> BoxesOver(const std::vector<Assumption>& assumptions) {
  std::vector<Box> boxes(1);
  for (const Assumption assumption : assumptions) {
    const std::vector<Box> before = boxes;
    for (std::size_t reading = 0; reading < TextOf(assumption).readings.size(); ++reading) {
      for (const Box& box : before) {
        boxes.push_back(box.With({assumption, reading}));
      }
    }
  }
  return boxes;
}

}  // namespace

const AssumptionText& TextOf(Assumption assumption) { return kTexts[static_cast<std::size_t>(assumption)]; }

World World::OfIndex(std::size_t index) {
  World world;
  world.index_ = index;
  return world;
}

std::size_t World::Index() const { return index_; }

std::size_t World::ReadingOf(Assumption assumption) const {
  return kReadings[index_][static_cast<std::size_t>(assumption)];
}

World World::With(Assumption assumption, std::size_t reading) const {
  const std::size_t step = kSteps[static_cast<std::size_t>(assumption)];
  return OfIndex(index_ - ReadingOf(assumption) * step + reading * step);
}

World SettledReadings::In(World world) const {
  for (std::size_t i = 0; i < kAssumptionCount; ++i) {
    world = readings_[i] ? world.With(static_cast<Assumption>(i), *readings_[i]) : world;
  }
  return world;
}

std::vector<Assumption> Distinguishing(const WorldSet& worlds) {
  std::vector<Assumption> found;
  if (worlds.all() || worlds.none()) {
    return found;
  }
  for (std::size_t i = 0; i < kAssumptionCount; ++i) {
    const auto assumption = static_cast<Assumption>(i);
    bool differs = false;
    for (std::size_t index = 0; index < World::kCount && !differs; ++index) {
      differs = worlds[index] != worlds[World::OfIndex(index).With(assumption, std::size_t{0}).Index()];
    }
    if (differs) {
      found.push_back(assumption);
    }
  }
  return found;
}

std::vector<std::vector<Choice>> Alternatives(const WorldSet& worlds) {
  std::vector<Box> boxes = BoxesOver(Distinguishing(worlds));
  std::ranges::stable_sort(boxes, {}, [](const Box& box) { return box.Choices().size(); });
  std::vector<std::vector<Choice>> alternatives;
  WorldSet covered;
  for (const Box& box : boxes) {
    const WorldSet inBox = box.Worlds();
    if ((inBox & ~worlds).none() && (inBox & ~covered).any()) {
      alternatives.push_back(box.Choices());
      covered |= inBox;
    }
  }
  return alternatives;
}

std::string Describe(std::span<const Choice> choices) {
  std::string text;
  for (const Choice& choice : choices) {
    const AssumptionText& words = TextOf(choice.assumption);
    text.append(text.empty() ? "" : ", ").append(words.name).append(" = ");
    text.append(words.readings[choice.reading].name);
  }
  return text.empty() ? "always" : text;
}

}  // namespace Policy
