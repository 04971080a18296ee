/**
 * @file
 * What the engine does with a connection, and why.
 */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "policy/Arbitration.h"
#include "policy/Circumstances.h"
#include "policy/Connection.h"
#include "policy/Snapshot.h"
#include "policy/Verdict.h"

namespace Policy {

/// A filter that does not match because of one field only. If it matched, it would end its sublayer's block
/// or turn the layer's verdict.
struct NearMiss {
  const Filter* filter;
  Field field;
  Action action;  ///< what the filter would do
};

/// What a sublayer does to a connection, in one world.
struct SublayerTrace {
  enum class Effect {
    None,        ///< no filter of it matches for certain
    Stands,      ///< its filter's action is the layer's verdict, or agrees with it
    Overridden,  ///< a lower sublayer's block came over its soft permit
    Ignored,     ///< a hard filter of a higher sublayer had decided already
  };

  const Sublayer* sublayer = nullptr;
  const Filter* deciding = nullptr;      ///< the one of its filters that counts; null if none
  Strength strength = Strength::Pass;    ///< what that filter does
  std::vector<const Filter*> outranked;  ///< matching filters that came too late, heaviest first
  std::vector<const Filter*> unjudged;  ///< filters that perhaps match, or whose callout lets the next decide
  std::vector<const Filter*> turning;   ///< those that perhaps match and could turn the layer's verdict
  std::vector<NearMiss> nearMisses;     ///< by field, heaviest first
  Effect effect = Effect::None;
  const Sublayer* by = nullptr;  ///< the sublayer that overrides it, or because of which it is ignored
};

/// What a layer does to a connection.
struct LayerTrace {
  const Catalog::Layer* layer;
  Verdict verdict;
  std::optional<Action> action;          ///< in the world of the trace; none where it is unsure
  std::vector<SublayerTrace> sublayers;  ///< those with filters at this layer, in the order of their turn
};

/// One of the outcomes of a verdict.
struct Ending {
  Verdict::Outcome outcome;
  const Filter* deciding =
      nullptr;  ///< the filter that it goes back to; null if none matches, or if it is unsure
};

/// The fate of a connection with the reasons, in one world.
struct Explanation {
  Connection connection;
  World world;
  Verdict verdict;
  std::vector<LayerTrace> layers;
  std::vector<Ending> endings;  ///< in the order of the verdict's outcomes
  Circumstances circumstances;

  /// The filter that the action in the explanation's world goes back to; null if none matches, or if it is
  /// unsure.
  [[nodiscard]] const Filter* Deciding() const;
};

/// Decides connections by the filters of a snapshot. An outbound connection passes ALE_AUTH_CONNECT, an
/// inbound one ALE_AUTH_RECV_ACCEPT, both then ALE_FLOW_ESTABLISHED. Disabled and boot-time filters are not
/// in force. Where no filter matches, the engine permits.
class Decider {
 public:
  /// @param snapshot must outlive the decider and its explanations.
  /// @param circumstances those of all connections that are asked about.
  explicit Decider(const Snapshot& snapshot, const Circumstances& circumstances = {});
  ~Decider();
  Decider(Decider&&) noexcept;
  Decider& operator=(Decider&&) noexcept;

  [[nodiscard]] Verdict Decide(const Connection& connection) const;

  /// @param asked the trace says what happens in this world, with the snapshot's settled readings; the
  ///        verdicts are for all worlds.
  [[nodiscard]] Explanation Explain(const Connection& connection, World asked = World()) const;

 private:
  struct Sections;
  std::unique_ptr<Sections> sections_;
};

/// An explanation in words, a line for each thing that happens.
std::string Describe(const Explanation& explanation, const Labels& labels = {});

}  // namespace Policy
