/**
 * @file
 * The filters of experiments, as data.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>
#include <string>

#include "calibrate/Network.h"
#include "policy/Verdict.h"

namespace Calibrate {

/// Where a filter stands.
enum class Place {
  Connect,  ///< ALE_AUTH_CONNECT
  Accept,   ///< ALE_AUTH_RECV_ACCEPT
  FlowIn,   ///< ALE_FLOW_ESTABLISHED, of the end that accepts
  FlowOut,  ///< ALE_FLOW_ESTABLISHED, of the end that connects
};

/// What a condition compares with.
enum class Operand {
  Number,        ///< of the field's type
  AnyNumber,     ///< the range of all numbers of the field's type
  Nothing,       ///< FWP_EMPTY
  OwnAddress,    ///< the one that the connection goes to, and comes from
  OtherAddress,  ///< one that it does not
  ThirdAddress,  ///< nor this one
  OwnProtocol,
  OtherProtocol,
  ThirdProtocol,
  Descriptor,  ///< a security descriptor
};

/// A condition beside those that every filter has.
struct Extra {
  GUID field;
  FWP_MATCH_TYPE match;
  Operand operand;
  UINT64 number = 0;
  std::span<const UINT8> descriptor{};  ///< self-relative
};

/// Which of the two sublayers, by the weights that the engine gave them.
enum class Level { Upper, Lower };

/// A filter. Every one names this program and its own port, so that it concerns nobody else, and the protocol
/// and the address unless an extra condition is on these.
struct Rule {
  Place place = Place::Connect;
  Policy::Action action = Policy::Action::Block;
  std::span<const Extra> extras{};
  Level level = Level::Upper;
  bool isHard = false;    ///< with CLEAR_ACTION_RIGHT
  bool areApart = false;  ///< the first extra condition comes before all others, the rest after them
  UINT64 weight = 1000;   ///< within its sublayer
  UINT8 key = 0;          ///< a lower or higher key; 0 lets the engine choose
};

/// What rules name: this program, and the listener that an experiment connects to.
struct Target {
  const std::string& application;  ///< the bytes of its id
  Path path;
  UINT16 port;
};

}  // namespace Calibrate
