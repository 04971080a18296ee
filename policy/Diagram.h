/**
 * @file
 * All connections of a section, sorted by what becomes of them.
 */
#pragma once

#include <functional>
#include <stdexcept>
#include <vector>

#include "policy/MapNode.h"
#include "policy/Pruner.h"
#include "policy/Section.h"
#include "policy/ValueClass.h"

namespace Policy {

/// A decision diagram over the tables of a section, with the signatures of each table sorted into classes
/// that lead to the same place everywhere.
struct Diagram {
  struct Level {
    std::vector<std::size_t> classOf;  ///< by signature
    std::size_t classCount = 0;        ///< 0 for a level without nodes: its field makes no difference
  };

  std::vector<Level> levels;   ///< one for each table
  std::vector<MapNode> nodes;  ///< each comes after the nodes that it leads to; its `field` is a level
  MapTarget root{true, 0};
};

/// Filters that tell apart more connections than a diagram can hold.
class DiagramTooLarge : public std::runtime_error {
 public:
  DiagramTooLarge() : std::runtime_error("The filters tell apart more connections than a map can hold") {}
};

/// For the states that a diagram is made from: 256 MB.
inline constexpr std::size_t kMostStateWords = 32 * 1024 * 1024;

/// @param purpose what the states that `leaf` is given must tell.
/// @param leaf gives the number of what becomes of a state.
/// @throws DiagramTooLarge when all states together take more than so many words.
Diagram MakeDiagram(const Section& section, Purpose purpose,
                    const std::function<std::size_t(const BitWord*)>& leaf,
                    std::size_t mostStateWords = kMostStateWords);

/// The classes of a level's table, by number, without a text.
/// @param ordinary its values are the examples of their classes.
std::vector<ValueClass> ClassesOf(const FieldTable& table, const Diagram::Level& level,
                                  const Connection& ordinary);

}  // namespace Policy
