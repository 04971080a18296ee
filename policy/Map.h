/**
 * @file
 * The verdicts of all connections that can exist.
 */
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "policy/Circumstances.h"
#include "policy/Connection.h"
#include "policy/MapNode.h"
#include "policy/ShowProgress.h"
#include "policy/Snapshot.h"
#include "policy/ValueClass.h"
#include "policy/Verdict.h"

namespace Policy {

/// The map of one direction and IP version: a decision diagram. Follow `root` by the classes of a
/// connection's values to its verdict. Fields come in the order of enum Field; nodes come after those that
/// they lead to.
struct MapSection {
  Direction direction;
  IpVersion ipVersion;
  std::vector<FieldClasses> fields;
  std::vector<MapNode> nodes;
  MapTarget root;
};

/// All connections, sorted by their verdict: four sections, outbound and inbound, IPv4 and IPv6.
struct Map {
  std::vector<Verdict> verdicts;  ///< each different from the others
  std::vector<MapSection> sections;

  /// The verdict of a connection, by following its section.
  [[nodiscard]] const Verdict& At(const Connection& connection) const;
};

/// Maps the filters of a snapshot, for connections in these circumstances.
Map MakeMap(const Snapshot& snapshot, const Labels& labels = {}, const Circumstances& circumstances = {},
            const ShowProgress& show = {});

/// How much of long lists the text of a map shows.
struct MapTextOptions {
  /// The most values of a list that are shown; of the others only their count. 0 for all.
  std::size_t longestList = 0;
};

/// A map in words: for each section an indented tree, values that lead to the same place together, those that
/// take the most words last as "otherwise"; then the verdicts that need more than a word. Trees that are
/// reached in several ways stand once, with a number in brackets.
std::string Describe(const Map& map, const Labels& labels = {}, const MapTextOptions& options = {});

}  // namespace Policy
