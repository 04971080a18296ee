#include "calibrate/Experiment.h"

#include <iterator>

#include "catalog/Keys.h"

namespace Calibrate {
namespace {

using Policy::Action;

constexpr Expected kPassed = Expected::Passed;
constexpr Expected kDenied = Expected::Denied;
constexpr Expected kSilent = Expected::Silent;
constexpr Expected kStopped = Expected::Stopped;

constexpr Rule kBlock{};
constexpr Rule kPermit{.action = Action::Permit};
constexpr Rule kOneBlock[]{kBlock};
constexpr Rule kOnePermit[]{kPermit};
constexpr Rule kBlockAtAccept[]{{.place = Place::Accept}};

// What every experiment begins and ends with.

constexpr Case kControlCases[]{
    {"no filter", {}, Always(kPassed)},
    {"a block", kOneBlock, Always(kDenied)},
    {"a permit", kOnePermit, Always(kPassed)},
};
constexpr Trial kControls{kControlCases, kAllPaths, 1};

constexpr Case kAcceptControlCases[]{
    {"no filter", {}, Always(kPassed)},
    {"a block where connections are accepted", kBlockAtAccept, Always(kSilent)},
};
constexpr Trial kAcceptControls{kAcceptControlCases, kUdpPaths, 1};

// Filters of equal weight: newest first, block first, permit first.

constexpr Extra kAtOwnAddress[]{
    {Catalog::kIpLocalAddressFieldKey, FWP_MATCH_EQUAL, Operand::OwnAddress},
};
constexpr Rule kPermitBlock[]{kPermit, kBlock};
constexpr Rule kBlockPermit[]{kBlock, kPermit};
constexpr Rule kPermitBlockByKey[]{{.action = Action::Permit, .key = 2}, {.key = 1}};
constexpr Rule kBlockPermitByKey[]{{.key = 2}, {.action = Action::Permit, .key = 1}};
constexpr Rule kPermitBlockByRisingKey[]{{.action = Action::Permit, .key = 1}, {.key = 2}};
constexpr Rule kBlockPermitByRisingKey[]{{.key = 1}, {.action = Action::Permit, .key = 2}};
constexpr Rule kPermitNarrowBlock[]{kPermit, {.extras = kAtOwnAddress}};
constexpr Rule kNarrowBlockPermit[]{{.extras = kAtOwnAddress}, kPermit};
constexpr Rule kNarrowPermitBlock[]{{.action = Action::Permit, .extras = kAtOwnAddress}, kBlock};
constexpr Rule kBlockNarrowPermit[]{kBlock, {.action = Action::Permit, .extras = kAtOwnAddress}};
constexpr Rule kHeavierPermit[]{{.action = Action::Permit, .weight = 1001}, kBlock};
constexpr Rule kHeavierBlock[]{{.weight = 1001}, kPermit};

constexpr Predictions kBlockIsNewest{kDenied, kDenied, kPassed};
constexpr Predictions kPermitIsNewest{kPassed, kDenied, kPassed};

constexpr Case kTieCases[]{
    {"a heavier permit, then a block", kHeavierPermit, Always(kPassed)},
    {"a heavier block, then a permit", kHeavierBlock, Always(kDenied)},
    {"a permit, then a block of equal weight", kPermitBlock, kBlockIsNewest},
    {"a block, then a permit of equal weight", kBlockPermit, kPermitIsNewest},
    {"both in one transaction, the permit first", kPermitBlock, kBlockIsNewest, {.together = true}},
    {"both in one transaction, the block first", kBlockPermit, kPermitIsNewest, {.together = true}},
    {"a permit, then a block, then the permit once more", kPermitBlock, kPermitIsNewest, {.again = 0}},
    {"a block, then a permit, then the block once more", kBlockPermit, kBlockIsNewest, {.again = 0}},
    {"a permit, then a block with a lower key", kPermitBlockByKey, kBlockIsNewest},
    {"a block, then a permit with a lower key", kBlockPermitByKey, kPermitIsNewest},
    {"a permit, then a block with a higher key", kPermitBlockByRisingKey, kBlockIsNewest},
    {"a block, then a permit with a higher key", kBlockPermitByRisingKey, kPermitIsNewest},
    {"a permit, then a narrower block", kPermitNarrowBlock, kBlockIsNewest},
    {"a narrower block, then a permit", kNarrowBlockPermit, kPermitIsNewest},
    {"a narrower permit, then a block", kNarrowPermitBlock, kBlockIsNewest},
    {"a block, then a narrower permit", kBlockNarrowPermit, kPermitIsNewest},
};

constexpr Rule kPermitBlockAtAccept[]{{.place = Place::Accept, .action = Action::Permit},
                                      {.place = Place::Accept}};
constexpr Rule kBlockPermitAtAccept[]{{.place = Place::Accept},
                                      {.place = Place::Accept, .action = Action::Permit}};
constexpr Case kTieCasesAtAccept[]{
    {"where connections are accepted, a permit, then a block",
     kPermitBlockAtAccept,
     {kSilent, kSilent, kPassed}},
    {"where connections are accepted, a block, then a permit",
     kBlockPermitAtAccept,
     {kPassed, kSilent, kPassed}},
};
constexpr Trial kTies[]{{kTieCases, kAllPaths, 3}, {kTieCasesAtAccept, kUdpPaths, 3}};

// Several negations: any holds, all hold.

constexpr Extra kNotOwnAddress{Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_NOT_EQUAL, Operand::OwnAddress};
constexpr Extra kNotOtherAddress{Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_NOT_EQUAL,
                                 Operand::OtherAddress};
constexpr Extra kNotThirdAddress{Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_NOT_EQUAL,
                                 Operand::ThirdAddress};
constexpr Extra kNotOwnProtocol{Catalog::kIpProtocolFieldKey, FWP_MATCH_NOT_EQUAL, Operand::OwnProtocol};
constexpr Extra kNotOtherProtocol{Catalog::kIpProtocolFieldKey, FWP_MATCH_NOT_EQUAL, Operand::OtherProtocol};
constexpr Extra kNotThirdProtocol{Catalog::kIpProtocolFieldKey, FWP_MATCH_NOT_EQUAL, Operand::ThirdProtocol};

constexpr Extra kNotOwn[]{kNotOwnAddress};
constexpr Extra kNotOther[]{kNotOtherAddress};
constexpr Extra kNotOtherNotThird[]{kNotOtherAddress, kNotThirdAddress};
constexpr Extra kOwnOrOther[]{{Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_EQUAL, Operand::OwnAddress},
                              {Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_EQUAL, Operand::OtherAddress}};
constexpr Extra kNotOwnNotOther[]{kNotOwnAddress, kNotOtherAddress};
constexpr Extra kNotOtherNotOwn[]{kNotOtherAddress, kNotOwnAddress};
constexpr Extra kProtocolNotOwn[]{kNotOwnProtocol};
constexpr Extra kProtocolNotOther[]{kNotOtherProtocol};
constexpr Extra kProtocolNotOtherNotThird[]{kNotOtherProtocol, kNotThirdProtocol};
constexpr Extra kProtocolNotOwnNotOther[]{kNotOwnProtocol, kNotOtherProtocol};
constexpr Extra kProtocolNotOtherNotOwn[]{kNotOtherProtocol, kNotOwnProtocol};

constexpr Rule kBlockNotOwn[]{{.extras = kNotOwn}};
constexpr Rule kBlockNotOther[]{{.extras = kNotOther}};
constexpr Rule kBlockNotOtherNotThird[]{{.extras = kNotOtherNotThird}};
constexpr Rule kBlockOwnOrOther[]{{.extras = kOwnOrOther}};
constexpr Rule kBlockNotOwnNotOther[]{{.extras = kNotOwnNotOther}};
constexpr Rule kBlockNotOtherNotOwn[]{{.extras = kNotOtherNotOwn}};
constexpr Rule kBlockApart[]{{.extras = kNotOwnNotOther, .areApart = true}};
constexpr Rule kBlockProtocolNotOwn[]{{.extras = kProtocolNotOwn}};
constexpr Rule kBlockProtocolNotOther[]{{.extras = kProtocolNotOther}};
constexpr Rule kBlockProtocolNotOtherNotThird[]{{.extras = kProtocolNotOtherNotThird}};
constexpr Rule kBlockProtocolNotOwnNotOther[]{{.extras = kProtocolNotOwnNotOther}};
constexpr Rule kBlockProtocolNotOtherNotOwn[]{{.extras = kProtocolNotOtherNotOwn}};

constexpr Predictions kOneHolds{kDenied, kPassed, kPassed};

constexpr Case kNegationCases[]{
    {"a block of addresses other than the connection's", kBlockNotOwn, Always(kPassed)},
    {"a block of addresses other than a second one", kBlockNotOther, Always(kDenied)},
    {"a block of addresses other than a second and a third", kBlockNotOtherNotThird, Always(kDenied)},
    {"a block of the connection's address and a second one", kBlockOwnOrOther, Always(kDenied)},
    {"a block of addresses other than the connection's, other than a second", kBlockNotOwnNotOther,
     kOneHolds},
    {"a block of addresses other than a second, other than the connection's", kBlockNotOtherNotOwn,
     kOneHolds},
    {"the same with other conditions between the two", kBlockApart, kOneHolds},
    {"a block of protocols other than the connection's", kBlockProtocolNotOwn, Always(kPassed)},
    {"a block of protocols other than a second one", kBlockProtocolNotOther, Always(kDenied)},
    {"a block of protocols other than a second and a third", kBlockProtocolNotOtherNotThird, Always(kDenied)},
    {"a block of protocols other than the connection's, other than a second", kBlockProtocolNotOwnNotOther,
     kOneHolds},
    {"a block of protocols other than a second, other than the connection's", kBlockProtocolNotOtherNotOwn,
     kOneHolds},
};
constexpr Trial kNegations[]{{kNegationCases, kAllPaths, 3}};

// Fields without a value: a negation does not match, matches.

/// Of no interface.
constexpr UINT64 kNoLuid = 12345;

constexpr GUID kReauthorizeReasonFieldKey = [] {
  using Catalog::operator""_guid;
  return "11205e8c-11ae-457a-8a44-477026dd764a"_guid;
}();

constexpr Extra kArrivalNothing[]{{Catalog::kIpArrivalInterfaceFieldKey, FWP_MATCH_EQUAL, Operand::Nothing}};
constexpr Extra kArrivalAny[]{{Catalog::kIpArrivalInterfaceFieldKey, FWP_MATCH_RANGE, Operand::AnyNumber}};
constexpr Extra kArrivalNot[]{
    {Catalog::kIpArrivalInterfaceFieldKey, FWP_MATCH_NOT_EQUAL, Operand::Number, kNoLuid}};
constexpr Extra kNextHopNothing[]{{Catalog::kIpNextHopInterfaceFieldKey, FWP_MATCH_EQUAL, Operand::Nothing}};
constexpr Extra kNextHopAny[]{{Catalog::kIpNextHopInterfaceFieldKey, FWP_MATCH_RANGE, Operand::AnyNumber}};
constexpr Extra kNextHopNot[]{
    {Catalog::kIpNextHopInterfaceFieldKey, FWP_MATCH_NOT_EQUAL, Operand::Number, kNoLuid}};
constexpr Extra kReasonNothing[]{{kReauthorizeReasonFieldKey, FWP_MATCH_EQUAL, Operand::Nothing}};
constexpr Extra kReasonNone[]{{kReauthorizeReasonFieldKey, FWP_MATCH_FLAGS_NONE_SET, Operand::Number, 1}};
constexpr Extra kLocalNothing[]{{Catalog::kIpLocalInterfaceFieldKey, FWP_MATCH_EQUAL, Operand::Nothing}};
constexpr Extra kLocalAny[]{{Catalog::kIpLocalInterfaceFieldKey, FWP_MATCH_RANGE, Operand::AnyNumber}};
constexpr Extra kLocalNot[]{
    {Catalog::kIpLocalInterfaceFieldKey, FWP_MATCH_NOT_EQUAL, Operand::Number, kNoLuid}};

constexpr Rule kBlockArrivalNothing[]{{.extras = kArrivalNothing}};
constexpr Rule kBlockArrivalAny[]{{.extras = kArrivalAny}};
constexpr Rule kBlockArrivalNot[]{{.extras = kArrivalNot}};
constexpr Rule kBlockNextHopNothing[]{{.place = Place::Accept, .extras = kNextHopNothing}};
constexpr Rule kBlockNextHopAny[]{{.place = Place::Accept, .extras = kNextHopAny}};
constexpr Rule kBlockNextHopNot[]{{.place = Place::Accept, .extras = kNextHopNot}};
constexpr Rule kBlockReasonNothing[]{{.extras = kReasonNothing}};
constexpr Rule kBlockReasonNone[]{{.extras = kReasonNone}};
constexpr Rule kBlockLocalNothing[]{{.extras = kLocalNothing}};
constexpr Rule kBlockLocalAny[]{{.extras = kLocalAny}};
constexpr Rule kBlockLocalNot[]{{.extras = kLocalNot}};

constexpr Case kSetFieldCases[]{
    {"a block of connections without a local interface",
     kBlockLocalNothing,
     Always(kPassed),
     {},
     false,
     true},
    {"a block of any local interface", kBlockLocalAny, Always(kDenied)},
    {"a block of local interfaces other than one that does not exist", kBlockLocalNot, Always(kDenied)},
};
constexpr Case kArrivalCases[]{
    {"a block of connections without an arrival interface",
     kBlockArrivalNothing,
     Always(kDenied),
     {},
     true,
     true},
    {"a block of any arrival interface", kBlockArrivalAny, Always(kPassed), {}, true},
    {"a block of arrival interfaces other than one that does not exist",
     kBlockArrivalNot,
     {kPassed, kDenied, kDenied}},
};
constexpr Case kNextHopCases[]{
    {"where connections are accepted, a block of those without a next-hop interface",
     kBlockNextHopNothing,
     Always(kSilent),
     {},
     true,
     true},
    {"where connections are accepted, a block of any next-hop interface",
     kBlockNextHopAny,
     Always(kPassed),
     {},
     true},
    {"where connections are accepted, a block of next-hop interfaces other than one that does not exist",
     kBlockNextHopNot,
     {kPassed, kSilent, kSilent}},
};
constexpr Case kReasonCases[]{
    {"a block of connections that nothing has judged anew", kBlockReasonNothing, Always(kDenied), {}, true},
    {"a block of connections without the first reason to judge anew",
     kBlockReasonNone,
     {kPassed, kDenied, kDenied}},
};
constexpr Trial kUnset[]{
    {kSetFieldCases, kAllPaths, 1},
    {kArrivalCases, kAllPaths, 3, "IP_ARRIVAL_INTERFACE has a value at ALE_AUTH_CONNECT"},
    {kNextHopCases, kUdpPaths, 3, "IP_NEXTHOP_INTERFACE has a value at ALE_AUTH_RECV_ACCEPT"},
    {kReasonCases, kUdpPaths, 3,
     "tests of flags were not tried: REAUTHORIZE_REASON has a value at ALE_AUTH_CONNECT, or nobody knows it"},
};

// A static block below a hard permit: the permit stands, the block overrides it.

constexpr Rule kHardPermitAboveBlock[]{{.action = Action::Permit, .isHard = true}, {.level = Level::Lower}};
constexpr Rule kHardPermitAboveHardBlock[]{{.action = Action::Permit, .isHard = true},
                                           {.level = Level::Lower, .isHard = true}};
constexpr Rule kBlockThenHardPermitAbove[]{{.level = Level::Lower},
                                           {.action = Action::Permit, .isHard = true}};
constexpr Rule kSoftPermitAboveBlock[]{kPermit, {.level = Level::Lower}};
constexpr Rule kBlockAboveHardPermit[]{kBlock,
                                       {.action = Action::Permit, .level = Level::Lower, .isHard = true}};
constexpr Rule kHardBlockAbovePermit[]{{.isHard = true}, {.action = Action::Permit, .level = Level::Lower}};
constexpr Rule kHardPermitBelow[]{{.action = Action::Permit, .level = Level::Lower, .isHard = true}};

constexpr Case kStaticBlockCases[]{
    {"a soft permit above a block", kSoftPermitAboveBlock, Always(kDenied)},
    {"a block above a hard permit", kBlockAboveHardPermit, Always(kDenied)},
    {"a hard block above a permit", kHardBlockAbovePermit, Always(kDenied)},
    {"a hard permit in the lower sublayer alone", kHardPermitBelow, Always(kPassed)},
    {"a hard permit above a block", kHardPermitAboveBlock, {kPassed, kDenied, kDenied}},
    {"a block, then a hard permit above it", kBlockThenHardPermitAbove, {kPassed, kDenied, kDenied}},
    {"a hard permit above a hard block", kHardPermitAboveHardBlock, {kPassed, kDenied, kDenied}},
};
constexpr Trial kStaticBlocks[]{{kStaticBlockCases, kAllPaths, 3}};

// The loopback flag: alone, accompanied.

constexpr Extra AllSet(UINT32 bits) {
  return {Catalog::kFlagsFieldKey, FWP_MATCH_FLAGS_ALL_SET, Operand::Number, bits};
}
constexpr Extra kLoopback[]{AllSet(FWP_CONDITION_FLAG_IS_LOOPBACK)};
constexpr Extra kNoLoopback[]{
    {Catalog::kFlagsFieldKey, FWP_MATCH_FLAGS_NONE_SET, Operand::Number, FWP_CONDITION_FLAG_IS_LOOPBACK}};
constexpr Extra kCompanion[]{AllSet(FWP_CONDITION_FLAG_IS_NON_APPCONTAINER_LOOPBACK)};
constexpr Extra kContainer[]{AllSet(FWP_CONDITION_FLAG_IS_APPCONTAINER_LOOPBACK)};

constexpr Rule kBlockLoopback[]{{.extras = kLoopback}};
constexpr Rule kBlockNoLoopback[]{{.extras = kNoLoopback}};
constexpr Rule kBlockCompanion[]{{.extras = kCompanion}};
constexpr Rule kBlockContainer[]{{.extras = kContainer}};
constexpr Rule kBlockLoopbackAtAccept[]{{.place = Place::Accept, .extras = kLoopback}};
constexpr Rule kBlockCompanionAtAccept[]{{.place = Place::Accept, .extras = kCompanion}};
constexpr Rule kBlockContainerAtAccept[]{{.place = Place::Accept, .extras = kContainer}};
constexpr Rule kBlockAtFlow[]{{.place = Place::FlowOut}};
constexpr Rule kBlockLoopbackAtFlow[]{{.place = Place::FlowOut, .extras = kLoopback}};
constexpr Rule kBlockCompanionAtFlow[]{{.place = Place::FlowOut, .extras = kCompanion}};

constexpr Case kLoopbackCases[]{
    {"a block of IS_LOOPBACK", kBlockLoopback, Always(kDenied)},
    {"a block of what lacks IS_LOOPBACK", kBlockNoLoopback, Always(kPassed)},
    {"a block of IS_APPCONTAINER_LOOPBACK", kBlockContainer, Always(kPassed)},
    {"a block of IS_NON_APPCONTAINER_LOOPBACK", kBlockCompanion, {kPassed, kDenied, kDenied}},
};
// There the flag has its companion in either reading.
constexpr Case kLoopbackCasesAtAccept[]{
    {"where connections are accepted, a block of IS_LOOPBACK", kBlockLoopbackAtAccept, Always(kSilent)},
    {"where connections are accepted, a block of IS_NON_APPCONTAINER_LOOPBACK", kBlockCompanionAtAccept,
     Always(kSilent)},
    {"where connections are accepted, a block of IS_APPCONTAINER_LOOPBACK", kBlockContainerAtAccept,
     Always(kPassed)},
};
constexpr Case kLoopbackCasesAtFlow[]{
    {"at ALE_FLOW_ESTABLISHED, a block", kBlockAtFlow, Always(kStopped), {}, true},
    {"at ALE_FLOW_ESTABLISHED, a block of IS_LOOPBACK", kBlockLoopbackAtFlow, Always(kStopped)},
    {"at ALE_FLOW_ESTABLISHED, a block of IS_NON_APPCONTAINER_LOOPBACK",
     kBlockCompanionAtFlow,
     {kPassed, kStopped, kStopped}},
};
constexpr Trial kLoopbackBits[]{
    {kLoopbackCases, kAllPaths, 3},
    {kLoopbackCasesAtAccept, kUdpPaths, 3},
    {kLoopbackCasesAtFlow, kUdpPaths, 3,
     "at ALE_FLOW_ESTABLISHED blocks are ignored, so flags cannot be seen"},
};

// A block at ALE_FLOW_ESTABLISHED: honoured, ignored.

constexpr Rule kBlockAtFlowIn[]{{.place = Place::FlowIn}};
constexpr Rule kPermitAtFlow[]{{.place = Place::FlowOut, .action = Action::Permit}};
constexpr Rule kPermitOverBlockAtFlow[]{{.place = Place::FlowOut, .action = Action::Permit, .weight = 1001},
                                        {.place = Place::FlowOut}};
constexpr Case kFlowCases[]{
    {"a permit at ALE_FLOW_ESTABLISHED", kPermitAtFlow, Always(kPassed)},
    {"a permit there, heavier than a block", kPermitOverBlockAtFlow, Always(kPassed)},
    {"a block there, of the end that connects", kBlockAtFlow, {kStopped, kPassed, kPassed}},
    {"a block there, of the end that accepts", kBlockAtFlowIn, {kStopped, kPassed, kPassed}},
};
constexpr Trial kFlowBlocks[]{{kFlowCases, kAllPaths, 3}};

// Beside the assumptions: the order of sublayers.

constexpr Policy::AssumptionText::Reading kSublayerReadings[]{
    {"heaviest-first", "the sublayer that reads back heavier comes first"},
    {"lightest-first", "it comes last"},
};
constexpr Case kSublayerCases[]{
    {"a hard permit in the heavier sublayer, a block in the lighter",
     kHardPermitAboveBlock,
     {kPassed, kDenied, kDenied}},
    {"a block in the heavier sublayer, a hard permit in the lighter",
     kBlockAboveHardPermit,
     {kDenied, kPassed, kPassed}},
};
constexpr Trial kSublayers[]{{kSublayerCases, kAllPaths, 3}};

}  // namespace

const Trial& Controls() { return kControls; }
const Trial& AcceptControls() { return kAcceptControls; }

std::span<const Experiment> Experiments() {
  using enum Policy::Assumption;
  const auto of = [](Policy::Assumption assumption, std::span<const Trial> trials) {
    return Experiment{assumption, Policy::TextOf(assumption), trials};
  };
  static const Experiment kExperiments[]{
      of(FilterTies, kTies),
      of(SeveralNegations, kNegations),
      of(UnsetFields, kUnset),
      of(StaticBlocks, kStaticBlocks),
      of(LoopbackBits, kLoopbackBits),
      of(FlowBlocks, kFlowBlocks),
      {std::nullopt,
       {"sublayer-order", "In which order are sublayers asked?", kSublayerReadings},
       kSublayers},
  };
  return kExperiments;
}

}  // namespace Calibrate
