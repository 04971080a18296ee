/**
 * @file
 * Keys of condition fields, from the platform's headers.
 */
#pragma once

inline constexpr const char* kAppIdKey = "d78e1e87-8644-4ea5-9437-d809ecefc971";
inline constexpr const char* kArrivalInterfaceKey = "618a9b6d-386b-4136-ad6e-b51587cfb1cd";
inline constexpr const char* kLocalInterfaceKey = "4cd62a49-59c3-4969-b7f3-bda5d32890a4";
inline constexpr const char* kInterfaceIndexKey = "667fd755-d695-434a-8af5-d3835a1259bc";
inline constexpr const char* kSubInterfaceIndexKey = "0cd42473-d621-4be3-ae8c-72a348d283e1";
inline constexpr const char* kProtocolKey = "3971ef2b-623e-4f9a-8cb1-6e79b806b9a7";
inline constexpr const char* kLocalAddressTypeKey = "6ec7f6c4-376b-45d7-9e9c-d337cedcd237";
inline constexpr const char* kFlagsKey = "632ce23b-5167-435c-86d7-e903684aa80c";
inline constexpr const char* kLocalAddressKey = "d9ee00de-c1ef-4617-bfe3-ffd8f5a08957";
inline constexpr const char* kRemoteAddressKey = "b235ae9a-1d64-49b8-a44c-5ff3d9095045";
inline constexpr const char* kDestinationAddressKey = "2d79133b-b390-45c6-8699-acaceaafed33";
inline constexpr const char* kSourceAddressKey = "ae96897e-2e94-4bc9-b313-b27ee80e574d";
inline constexpr const char* kLocalPortKey = "0c1ba1af-5765-453f-af22-a8f791ac775b";
inline constexpr const char* kRemotePortKey = "c35a604d-d22b-4e1a-91b4-68f674ee674b";
inline constexpr const char* kOriginalIcmpTypeKey = "076dfdbe-c56c-4f72-ae8a-2cfe7e5c8286";
