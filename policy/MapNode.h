/**
 * @file
 * What diagrams and maps consist of.
 */
#pragma once

#include <cstddef>
#include <vector>

namespace Policy {

/// Where a class of values leads: to the next field that makes a difference, or to a verdict.
struct MapTarget {
  bool isVerdict;
  std::size_t index;  ///< of the verdict, or of the node

  bool operator==(const MapTarget&) const = default;
};

/// A field that makes a difference at this point, with one target for each of its classes.
struct MapNode {
  std::size_t field;  ///< its index in the map; in a diagram, its level
  std::vector<MapTarget> targets;
};

}  // namespace Policy
