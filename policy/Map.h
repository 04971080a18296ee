/**
 * @file
 * The verdicts of all connections that can exist.
 */
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "policy/Connection.h"
#include "policy/Snapshot.h"
#include "policy/Verdict.h"

namespace Policy {

/// Values of a field that behave alike: wherever the rest of the connection is the same, so is the verdict.
struct ValueClass {
  /// Words of flags with certain bits: all whose bits under `mask` are `value`, but for some words, which
  /// have classes by their own right.
  struct Masked {
    UINT32 mask;
    UINT32 value;
    std::vector<UINT32> except;  ///< ascending
    bool operator==(const Masked&) const = default;
  };

  bool unset = false;                     ///< the field without a value is among them
  std::vector<Interval> intervals;        ///< the numbers among them, ascending, with gaps between
  std::vector<Masked> masked;             ///< of flags
  std::vector<std::string> applications;  ///< the ids that conditions name
  std::vector<std::string> endings;       ///< ids that end so, and that no longer ending and no name fits
  bool others = false;                    ///< all ids that no name and no ending fits

  /// One of the values, an ordinary one if there is one. Both without a value if the class is `unset` alone.
  std::optional<Number> exampleNumber;
  std::optional<std::string> exampleApplication;

  std::string text;  ///< "10.0.0.0/8, 172.16.0.0/12", "other than 53", "unset"
};

/// A field that makes a difference, with the classes that its values fall into.
struct FieldClasses {
  Field field;
  std::vector<ValueClass> classes;
};

/// Where a class of values leads: to the next field that makes a difference, or to a verdict.
struct MapTarget {
  bool isVerdict;
  std::size_t index;  ///< in Map::verdicts or in MapSection::nodes

  bool operator==(const MapTarget&) const = default;
};

/// A field that makes a difference at this point, with one target for each of its classes.
struct MapNode {
  std::size_t field;  ///< in MapSection::fields
  std::vector<MapTarget> targets;
};

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

/// The exact partition of all connections by verdict: four sections, outbound and inbound, IPv4 and IPv6.
struct Map {
  std::vector<Verdict> verdicts;  ///< each different from the others
  std::vector<MapSection> sections;

  /// The verdict of a connection, by following its section.
  const Verdict& At(const Connection& connection) const;
};

/// Maps the filters of a snapshot.
Map MakeMap(const Snapshot& snapshot, const Labels& labels = {});

/// How texts of a map are cut.
struct MapTextOptions {
  /// Of longer lists of values only so many are shown, with the count of the rest; 0 for all.
  std::size_t longestList = 0;
};

/// A map in words: for each section an indented tree, values that lead to the same place together, those that
/// take the most words last as "otherwise"; then the verdicts that need more than a word. Trees that are
/// reached in several ways stand once, with a number in brackets.
std::string Describe(const Map& map, const Labels& labels = {}, const MapTextOptions& options = {});

}  // namespace Policy
