/**
 * @file
 * The kinds of layers.
 */
#pragma once

namespace Catalog {

/// Layers that differ only in IP version and direction, or in being a twin for discarded traffic.
enum class LayerFamily {
  InboundIpPacket,
  OutboundIpPacket,
  IpForward,
  InboundTransport,
  OutboundTransport,
  Stream,
  DatagramData,
  InboundIcmpError,
  OutboundIcmpError,
  AleResourceAssignment,
  AleAuthListen,
  AleAuthRecvAccept,
  AleAuthConnect,
  AleFlowEstablished,
  MacFrameEthernet,
  MacFrameNative,
  NameResolutionCache,
  AleResourceRelease,
  AleEndpointClosure,
  AleConnectRedirect,
  AleBindRedirect,
  StreamPacket,
  VswitchEthernet,
  VswitchTransport,
  Fast,
  Reserved,
  AleAcceptRedirect,
  NetworkConnectionPolicy,
  IpsecKmDemux,
  Ipsec,
  Ikeext,
  Rpc,
  KmAuthorization,
};

}  // namespace Catalog
