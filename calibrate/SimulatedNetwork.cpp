#include "calibrate/SimulatedNetwork.h"

#include <array>
#include <vector>

#include "policy/Section.h"

namespace Calibrate {
namespace {

using Policy::Direction;

/// The software loopback interface of IPv4 and IPv6.
constexpr UINT64 kLoopbackLuid = UINT64{24} << 48U;
constexpr UINT16 kClientPort = 61000;

Policy::Number OwnAddress(Policy::IpVersion ipVersion) {
  return ipVersion == Policy::IpVersion::V4 ? Policy::Number(0x7f000001) : Policy::Number(1);
}

/// The ids of the filters at the layer that authorises connections of a direction.
std::vector<UINT64> FiltersAt(const Policy::Snapshot& snapshot, Direction direction,
                              Policy::IpVersion ipVersion) {
  const Policy::Section section(snapshot, {direction, ipVersion});
  std::vector<UINT64> ids;
  for (const Policy::Filter* filter : section.Layers().front().Filters()) {
    ids.push_back(filter->id);
  }
  return ids;
}

/// One end of a connection, judged by what the engine holds.
class JudgedEnd {
 public:
  JudgedEnd(const Policy::Snapshot& snapshot, const Policy::Connection& end,
            const Policy::Circumstances& circumstances)
      : section_(snapshot, {end.direction, end.ipVersion}, {}, circumstances),
        state_(section_.Layout().Width()) {
    section_.Read(end, state_.data());
  }

  /// The verdict of one of the two layers that it passes.
  [[nodiscard]] Outcome At(std::size_t layer, Policy::World world, Outcome blocked) const {
    const auto action = section_.DecideLayer(layer, state_.data()).In(world);
    if (!action) {
      return Outcome::Unknown;
    }
    return *action == Policy::Action::Permit ? Outcome::Passed : blocked;
  }

 private:
  Policy::Section section_;
  std::vector<Policy::BitWord> state_;
};

}  // namespace

class SimulatedNetwork::SimulatedListener : public Listener {
 public:
  SimulatedListener(SimulatedNetwork& network, bool isUdp, UINT16 port)
      : network_(network), isUdp_(isUdp), port_(port) {
    network_.open_.emplace(isUdp_, port_);
  }
  ~SimulatedListener() override { network_.open_.erase({isUdp_, port_}); }

  [[nodiscard]] UINT16 Port() const override { return port_; }

 private:
  SimulatedNetwork& network_;
  bool isUdp_;
  UINT16 port_;
};

class SimulatedNetwork::SimulatedFlow : public Flow {
 public:
  SimulatedFlow(SimulatedNetwork& network, const Path& path, UINT16 port)
      : network_(network), path_(path), port_(port) {
    const Policy::Snapshot snapshot = Policy::ReadEngine(network_.engine_);
    for (std::size_t i = 0; i < kEnds.size(); ++i) {
      judged_[i] = FiltersAt(snapshot, kEnds[i], path_.ipVersion);
    }
  }

  Outcome Send() override {
    const Policy::Snapshot snapshot = Policy::ReadEngine(network_.engine_);
    for (std::size_t i = 0; i < kEnds.size() && outcome_ == Outcome::Passed; ++i) {
      std::vector<UINT64> filters = FiltersAt(snapshot, kEnds[i], path_.ipVersion);
      if (filters != judged_[i]) {
        judged_[i] = std::move(filters);
        Policy::Connection end = network_.End(kEnds[i], path_, port_);
        end.flags = *end.flags | FWP_CONDITION_FLAG_IS_REAUTHORIZE;
        outcome_ = JudgedEnd(snapshot, end, network_.circumstances_).At(0, network_.world_, Outcome::Reset);
      }
    }
    return outcome_;
  }

 private:
  static constexpr std::array kEnds{Direction::Outbound, Direction::Inbound};

  SimulatedNetwork& network_;
  Path path_;
  UINT16 port_;
  std::array<std::vector<UINT64>, 2> judged_;  ///< by end, the filters by which it was judged last
  Outcome outcome_ = Outcome::Passed;          ///< once it is broken off, it stays so
};

SimulatedNetwork::SimulatedNetwork(const Policy::EngineCalls& engine, Policy::World world,
                                   std::string application)
    : engine_(engine), world_(world), application_(std::move(application)) {
  circumstances_.token = Policy::UserProgram();
}

std::unique_ptr<Listener> SimulatedNetwork::Listen(const Path& path) {
  return std::make_unique<SimulatedListener>(*this, path.protocol == Policy::kUdp, ++lastPort_);
}

Outcome SimulatedNetwork::Probe(const Path& path, UINT16 port) {
  const Policy::Snapshot snapshot = Policy::ReadEngine(engine_);
  const JudgedEnd out(snapshot, End(Direction::Outbound, path, port), circumstances_);
  Outcome outcome = out.At(0, world_, Outcome::Denied);
  if (outcome == Outcome::Passed && !open_.contains({path.protocol == Policy::kUdp, port})) {
    outcome = Outcome::Refused;
  }
  if (outcome == Outcome::Passed) {
    const JudgedEnd in(snapshot, End(Direction::Inbound, path, port), circumstances_);
    outcome = in.At(0, world_, Outcome::Silent);
    outcome = outcome == Outcome::Passed ? in.At(1, world_, Outcome::Silent) : outcome;
  }
  if (outcome == Outcome::Passed) {
    outcome = out.At(1, world_, path.protocol == Policy::kTcp ? Outcome::Reset : Outcome::Silent);
  }
  if (outcome == Outcome::Silent) {
    waited_ += path.protocol == Policy::kTcp ? kTcpDeadline : kUdpDeadline;
  }
  return outcome;
}

std::unique_ptr<Flow> SimulatedNetwork::Open(const Path& path, UINT16 port) {
  return Probe(path, port) == Outcome::Passed ? std::make_unique<SimulatedFlow>(*this, path, port) : nullptr;
}

Policy::Connection SimulatedNetwork::End(Direction direction, const Path& path, UINT16 port) const {
  const bool isOutbound = direction == Direction::Outbound;
  Policy::Connection end = Policy::OrdinaryConnection(direction, path.ipVersion, path.protocol);
  end.localAddress = end.remoteAddress = OwnAddress(path.ipVersion);
  end.localPort = isOutbound ? kClientPort : port;
  end.remotePort = isOutbound ? port : kClientPort;
  end.application = application_;
  end.localInterface = kLoopbackLuid;
  end.arrivalInterface = isOutbound ? std::nullopt : std::optional(kLoopbackLuid);
  end.nextHopInterface = isOutbound ? std::optional(kLoopbackLuid) : std::nullopt;
  end.flags = FWP_CONDITION_FLAG_IS_LOOPBACK;
  return end;
}

}  // namespace Calibrate
