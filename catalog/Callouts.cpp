#include "catalog/Callouts.h"

#include <algorithm>
#include <array>

#include "catalog/KeyIndex.h"

namespace Catalog {
namespace {

// Ids 9 to 12 and 20 to 22: keys as the public headers have them, not compared with a second list.
constexpr auto kCallouts = std::to_array<BuiltInCallout>({
    {1, "IPSEC_INBOUND_TRANSPORT_V4", "5132900d-5e84-4b5f-80e4-01741e81ff10"_guid, "INBOUND_TRANSPORT_V4",
     0x40260},
    {2, "IPSEC_INBOUND_TRANSPORT_V6", "49d3ac92-2a6c-4dcf-955f-1c3be009dd99"_guid, "INBOUND_TRANSPORT_V6",
     0x40260},
    {3, "IPSEC_OUTBOUND_TRANSPORT_V4", "4b46bf0a-4523-4e57-aa38-a87987c910d9"_guid, "OUTBOUND_TRANSPORT_V4",
     0x40260},
    {4, "IPSEC_OUTBOUND_TRANSPORT_V6", "38d87722-ad83-4f11-a91f-df0fb077225b"_guid, "OUTBOUND_TRANSPORT_V6",
     0x40260},
    {5, "IPSEC_INBOUND_TUNNEL_V4", "191a8a46-0bf8-46cf-b045-4b45dfa6a324"_guid, "INBOUND_TRANSPORT_V4",
     0x60020},
    {6, "IPSEC_INBOUND_TUNNEL_V6", "80c342e3-1e53-4d6f-9b44-03df5aeee154"_guid, "INBOUND_TRANSPORT_V6",
     0x60020},
    {7, "IPSEC_OUTBOUND_TUNNEL_V4", "70a4196c-835b-4fb0-98e8-075f4d977d46"_guid, "OUTBOUND_TRANSPORT_V4",
     0x60020},
    {8, "IPSEC_OUTBOUND_TUNNEL_V6", "f1835363-a6a5-4e62-b180-23db789d8da6"_guid, "OUTBOUND_TRANSPORT_V6",
     0x60020},
    {9, "IPSEC_FORWARD_INBOUND_TUNNEL_V4", "28829633-c4f0-4e66-873f-844db2a899c7"_guid, "IPFORWARD_V4",
     0x60020},
    {10, "IPSEC_FORWARD_INBOUND_TUNNEL_V6", "af50bec2-c686-429a-884d-b74443e7b0b4"_guid, "IPFORWARD_V6",
     0x60020},
    {11, "IPSEC_FORWARD_OUTBOUND_TUNNEL_V4", "fb532136-15cb-440b-937c-1717ca320c40"_guid, "IPFORWARD_V4",
     0x60020},
    {12, "IPSEC_FORWARD_OUTBOUND_TUNNEL_V6", "dae640cc-e021-4bee-9eb6-a48b275c8c1d"_guid, "IPFORWARD_V6",
     0x60020},
    {13, "IPSEC_INBOUND_INITIATE_SECURE_V4", "7dff309b-ba7d-4aba-91aa-ae5c6640c944"_guid,
     "ALE_AUTH_RECV_ACCEPT_V4", 0x60000},
    {14, "IPSEC_INBOUND_INITIATE_SECURE_V6", "a9a0d6d9-c58c-474e-8aeb-3cfe99d6d53d"_guid,
     "ALE_AUTH_RECV_ACCEPT_V6", 0x60000},
    {15, "IPSEC_ALE_CONNECT_V4", "6ac141fc-f75d-4203-b9c8-48e6149c2712"_guid, "ALE_AUTH_CONNECT_V4", 0x60000},
    {16, "IPSEC_ALE_CONNECT_V6", "4c0dda05-e31f-4666-90b0-b3dfad34129a"_guid, "ALE_AUTH_CONNECT_V6", 0x60000},
    {17, "WFP_TRANSPORT_LAYER_V4_SILENT_DROP", "eda08606-2494-4d78-89bc-67837c03b969"_guid,
     "INBOUND_TRANSPORT_V4_DISCARD", 0x40242},
    {18, "WFP_TRANSPORT_LAYER_V6_SILENT_DROP", "8693cc74-a075-4156-b476-9286eece814e"_guid,
     "INBOUND_TRANSPORT_V6_DISCARD", 0x40242},
    {19, "TCP_CHIMNEY_CONNECT_LAYER_V4", "f3e10ab3-2c25-4279-ac36-c30fc181bec4"_guid, "ALE_AUTH_CONNECT_V4",
     0x0},
    {20, "TCP_CHIMNEY_CONNECT_LAYER_V6", "39e22085-a341-42fc-a279-aec94e689c56"_guid, "ALE_AUTH_CONNECT_V6",
     0x0},
    {21, "TCP_CHIMNEY_ACCEPT_LAYER_V4", "e183ecb2-3a7f-4b54-8ad9-76050ed880ca"_guid,
     "ALE_AUTH_RECV_ACCEPT_V4", 0x0},
    {22, "TCP_CHIMNEY_ACCEPT_LAYER_V6", "0378cf41-bf98-4603-81f2-7f12586079f6"_guid,
     "ALE_AUTH_RECV_ACCEPT_V6", 0x0},
    {23, "SET_OPTIONS_AUTH_CONNECT_LAYER_V4", "bc582280-1677-41e9-94ab-c2fcb15c2eeb"_guid,
     "ALE_AUTH_CONNECT_V4", 0x60300},
    {24, "SET_OPTIONS_AUTH_CONNECT_LAYER_V6", "98e5373c-b884-490f-b65f-2f6a4a575195"_guid,
     "ALE_AUTH_CONNECT_V6", 0x60300},
    {25, "IPSEC_INBOUND_TUNNEL_ALE_ACCEPT_V4", "3df6e7de-fd20-48f2-9f26-f854444cba79"_guid,
     "ALE_AUTH_RECV_ACCEPT_V4", 0x40000},
    {26, "IPSEC_INBOUND_TUNNEL_ALE_ACCEPT_V6", "a1e392d3-72ac-47bb-87a7-0122c69434ab"_guid,
     "ALE_AUTH_RECV_ACCEPT_V6", 0x40000},
    {27, "EDGE_TRAVERSAL_ALE_RESOURCE_ASSIGNMENT_V4", "079b1010-f1c5-4fcd-ae05-da41107abd0b"_guid,
     "ALE_RESOURCE_ASSIGNMENT_V4", 0x40014},
    {28, "TEREDO_ALE_RESOURCE_ASSIGNMENT_V6", "31b95392-066e-42a2-b7db-92f8acdd56f9"_guid,
     "ALE_RESOURCE_ASSIGNMENT_V6", 0x40014},
    {29, "EDGE_TRAVERSAL_ALE_LISTEN_V4", "33486ab5-6d5e-4e65-a00b-a7afed0ba9a1"_guid, "ALE_AUTH_LISTEN_V4",
     0x40014},
    {30, "TEREDO_ALE_LISTEN_V6", "81a434e7-f60c-4378-bab8-c625a30f0197"_guid, "ALE_AUTH_LISTEN_V6", 0x40014},
    {33, "TCP_TEMPLATES_CONNECT_LAYER_V4", "215a0b39-4b7e-4eda-8ce4-179679df6224"_guid, "ALE_AUTH_CONNECT_V4",
     0x40000},
    {34, "TCP_TEMPLATES_CONNECT_LAYER_V6", "838b37a1-5c12-4d34-8b38-078728b2d25c"_guid, "ALE_AUTH_CONNECT_V6",
     0x40000},
    {35, "TCP_TEMPLATES_ACCEPT_LAYER_V4", "2f23f5d0-40c4-4c41-a254-46d8dba8957c"_guid,
     "ALE_AUTH_RECV_ACCEPT_V4", 0x40000},
    {36, "TCP_TEMPLATES_ACCEPT_LAYER_V6", "b25152f0-991c-4f53-bbe7-d24b45fe632c"_guid,
     "ALE_AUTH_RECV_ACCEPT_V6", 0x40000},
    {37, "RESERVED_AUTH_CONNECT_LAYER_V4", "288b524d-0566-4e19-b612-8f441a2e5949"_guid, "ALE_AUTH_CONNECT_V4",
     0x40300},
    {38, "RESERVED_AUTH_CONNECT_LAYER_V6", "00b84b92-2b5e-4b71-ab0e-aaca43e387e6"_guid, "ALE_AUTH_CONNECT_V6",
     0x40300},
    {39, "SET_OPTIONS_AUTH_RECV_ACCEPT_LAYER_V4", "2d55f008-0c01-4f92-b26e-a08a94569b8d"_guid,
     "ALE_AUTH_RECV_ACCEPT_V4", 0x60300},
    {40, "SET_OPTIONS_AUTH_RECV_ACCEPT_LAYER_V6", "63018537-f281-4dc4-83d3-8dec18b7ade2"_guid,
     "ALE_AUTH_RECV_ACCEPT_V6", 0x60300},
    {41, "POLICY_SILENT_MODE_AUTH_CONNECT_LAYER_V4", "5fbfc31d-a51c-44dc-acb6-0624a030a700"_guid,
     "ALE_AUTH_CONNECT_V4", 0x40300},
    {42, "POLICY_SILENT_MODE_AUTH_CONNECT_LAYER_V6", "5fbfc31d-a51c-44dc-acb6-0624a030a701"_guid,
     "ALE_AUTH_CONNECT_V6", 0x40300},
    {43, "POLICY_SILENT_MODE_AUTH_RECV_ACCEPT_LAYER_V4", "5fbfc31d-a51c-44dc-acb6-0624a030a702"_guid,
     "ALE_AUTH_RECV_ACCEPT_V4", 0x40300},
    {44, "POLICY_SILENT_MODE_AUTH_RECV_ACCEPT_LAYER_V6", "5fbfc31d-a51c-44dc-acb6-0624a030a703"_guid,
     "ALE_AUTH_RECV_ACCEPT_V6", 0x40300},
    {45, "BUILT_IN_RESERVED_1", "779719a4-e695-47b6-a199-7999fec9163b"_guid, "ALE_ACCEPT_REDIRECT_V4",
     0x60300},
    {46, "BUILT_IN_RESERVED_2", "ef9661b6-7c5e-48fd-a130-96678ceacc41"_guid, "ALE_ACCEPT_REDIRECT_V6",
     0x60300},
    {47, "BUILT_IN_RESERVED_3", "18729c7a-2f62-4be0-966f-974b21b86df1"_guid, "ALE_AUTH_CONNECT_V4", 0x40300},
    {48, "BUILT_IN_RESERVED_4", "6c3fb801-daff-40e9-91e6-f7ff7e52f7d9"_guid, "ALE_AUTH_CONNECT_V6", 0x40300},
    {49, "OUTBOUND_NETWORK_CONNECTION_POLICY_LAYER_V4", "103090d4-8e28-4fd6-9894-d1d67d6b10c9"_guid,
     "OUTBOUND_NETWORK_CONNECTION_POLICY_V4", 0x60300},
    {50, "OUTBOUND_NETWORK_CONNECTION_POLICY_LAYER_V6", "4ed3446d-8dc7-459b-b09f-c1cb7a8f8689"_guid,
     "OUTBOUND_NETWORK_CONNECTION_POLICY_V6", 0x60300},
});

template <class Value>
const BuiltInCallout* FindBy(const Value& value, Value BuiltInCallout::*member) {
  const auto found = std::ranges::find(kCallouts, value, member);
  return found == kCallouts.end() ? nullptr : &*found;
}

}  // namespace

std::span<const BuiltInCallout> BuiltInCallouts() { return kCallouts; }

const BuiltInCallout* FindBuiltInCallout(const GUID& key) {
  static constexpr KeyIndex kIndex(kCallouts);
  return kIndex.Find(key);
}

const BuiltInCallout* FindBuiltInCallout(UINT32 id) { return FindBy(id, &BuiltInCallout::id); }

const BuiltInCallout* FindBuiltInCallout(std::string_view name) {
  return FindBy(name, &BuiltInCallout::name);
}

}  // namespace Catalog
