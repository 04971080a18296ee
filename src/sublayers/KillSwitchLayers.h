#pragma once

#include <array>

#include "filtering/Layer.h"

namespace WfpFirewall::Sublayers {

// The layers that authorise outbound connections, established flows and inbound connections, in the
// order in which the kill switch and its variants fill them.
inline constexpr std::array kKillSwitchLayersV4{Filtering::LayerType::AleAuthConnectV4,
                                                Filtering::LayerType::AleFlowEstablishedV4,
                                                Filtering::LayerType::AleAuthRecvAcceptV4};
inline constexpr std::array kKillSwitchLayersV6{Filtering::LayerType::AleAuthConnectV6,
                                                Filtering::LayerType::AleFlowEstablishedV6,
                                                Filtering::LayerType::AleAuthRecvAcceptV6};

}  // namespace WfpFirewall::Sublayers
