/**
 * @file
 * A section: all connections of one direction and IP version, and the filters that they meet.
 */
#pragma once

#include <array>
#include <deque>
#include <memory>
#include <span>
#include <vector>

#include "policy/Arbitration.h"
#include "policy/Circumstances.h"
#include "policy/Connection.h"
#include "policy/FieldTable.h"
#include "policy/Mark.h"
#include "policy/Snapshot.h"
#include "policy/Verdict.h"

namespace Policy {

/// The four sections, in the order of maps.
struct SectionKey {
  Direction direction;
  IpVersion ipVersion;
};
inline constexpr std::array kSectionKeys{
    SectionKey{Direction::Outbound, IpVersion::V4}, SectionKey{Direction::Outbound, IpVersion::V6},
    SectionKey{Direction::Inbound, IpVersion::V4}, SectionKey{Direction::Inbound, IpVersion::V6}};
constexpr std::size_t SectionIndex(Direction direction, IpVersion ipVersion) {
  return (direction == Direction::Outbound ? 0U : 2U) + (ipVersion == IpVersion::V4 ? 0U : 1U);
}

/// The two layers that connections of one direction and IP version pass, one after the other, with a table
/// for each field that some filter tests. The tables turn a connection into its state, that is, into the sets
/// of filters that match it and of marks that it bears; the layers turn the state into a verdict.
class Section {
 public:
  /// @param snapshot, marks must outlive the section.
  Section(const Snapshot& snapshot, SectionKey key, std::span<const Mark> marks = {},
          const Circumstances& circumstances = {});
  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;

  [[nodiscard]] SectionKey Key() const { return key_; }
  /// What is known of the engine: verdicts are those with these readings.
  [[nodiscard]] const SettledReadings& Settled() const { return settled_; }
  [[nodiscard]] const StateLayout& Layout() const { return layout_; }
  [[nodiscard]] const std::vector<Arbitration>& Layers() const { return layers_; }
  /// In the order of enum Field; only fields that something tests.
  [[nodiscard]] const std::vector<std::unique_ptr<FieldTable>>& Tables() const { return tables_; }
  /// The state before any field has been looked at: all filters match that can match at all.
  [[nodiscard]] const std::vector<BitWord>& BaseState() const { return base_; }

  /// The state of a connection.
  /// @param state has room for Layout().Width() words.
  void Read(const Connection& connection, BitWord* state) const;

  /// The verdict of a state.
  [[nodiscard]] Verdict Decide(const BitWord* state) const;
  /// The verdict of one layer.
  [[nodiscard]] Verdict DecideLayer(std::size_t layer, const BitWord* state) const;

  /// The filters of a layer that match in a world: surely, and perhaps.
  struct Matching {
    const BitWord* sure;
    const BitWord* perhaps;
  };
  [[nodiscard]] Matching MatchingIn(World world, std::size_t layer, const BitWord* state) const;
  /// The same by the number of a plane.
  [[nodiscard]] Matching MatchingIn(std::size_t plane, std::size_t layer, const BitWord* state) const;

  /// Where the words of a layer's filters that surely match begin in a state. Those that perhaps match follow
  /// after Layout().filterWords, if some can.
  [[nodiscard]] std::size_t WordAt(std::size_t plane, std::size_t layer) const {
    return plane * layout_.PlaneWords() + layerAt_[layer];
  }

  /// The planes of a layer in which different filters match, each by its first number.
  [[nodiscard]] std::vector<std::size_t> DistinctPlanes(std::size_t layer, const BitWord* state) const;

  /// A filter of a layer, by number, that does not match because of one field alone.
  struct NearMatch {
    std::size_t filter;
    Field field;
  };
  /// The near matches of a connection in a world, by field, without filters that would match only perhaps.
  [[nodiscard]] std::vector<NearMatch> NearMatchesIn(World world, std::size_t layer,
                                                     const Connection& connection) const;

 private:
  using GroupsByField = std::array<std::vector<TestGroup>, kFieldCount>;

  void AddLayers(const Snapshot& snapshot);
  void AddGroups(const Filter& filter, std::size_t bit, const Circumstances& circumstances,
                 GroupsByField& groups);
  void AddTest(std::size_t bit, Field field, const Test& test, GroupsByField& groups);
  void AddMarks(std::span<const Mark> marks, GroupsByField& groups);
  void ChoosePlanes(const GroupsByField& groups);
  void MakeBase(std::size_t marks);
  [[nodiscard]] std::size_t BitOf(std::size_t layer, std::size_t filter) const;
  /// Whether the same filters of a layer match in two planes.
  [[nodiscard]] bool AreSame(std::size_t plane, std::size_t other, std::size_t layer,
                             const BitWord* state) const;
  [[nodiscard]] std::optional<Action> DecideSurely(const BitWord* state) const;

  SectionKey key_;
  SettledReadings settled_;
  StateLayout layout_;
  std::vector<Arbitration> layers_;
  std::vector<std::size_t> layerAt_;  ///< first word of each layer's filters
  std::vector<const Test*> testsOfFlags_;
  std::deque<Test> derived_;             ///< tests that no condition has itself
  std::vector<std::size_t> impossible_;  ///< bits of filters that no connection of the section meets
  std::vector<std::size_t> doubtful_;    ///< bits of filters that match only perhaps
  std::vector<WorldSet> worldsOfPlane_;
  std::vector<std::size_t> planeOfWorld_;
  std::vector<BitWord> base_;
  std::vector<std::unique_ptr<FieldTable>> tables_;
};

}  // namespace Policy
