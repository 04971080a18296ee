#include <string>

#include "EngineClient.h"

namespace {

constexpr DWORD kInvalidNetMask = 0x8032001F;
constexpr DWORD kZeroLengthArray = 0x80320022;
constexpr DWORD kOutOfBounds = 0x80320028;

constexpr auto kPrefix = static_cast<FWP_MATCH_TYPE>(11);
constexpr auto kNotPrefix = static_cast<FWP_MATCH_TYPE>(12);

class ConditionChecks : public EngineTest {
 protected:
  ConditionChecks() {
    filter_.numFilterConditions = 1;
    filter_.filterCondition = conditions_;
    value_.type = FWP_EMPTY;
  }

  DWORD Check(const GUID& field, FWP_MATCH_TYPE match) {
    conditions_[0].fieldKey = field;
    conditions_[0].matchType = match;
    conditions_[0].conditionValue = value_;
    const TestSession session(kDynamic);
    return Add(session, filter_);
  }

  static std::string Reason() { return EngineEmulator::LastRefusal(); }

  void SetNumber(UINT16 number) {
    value_.type = FWP_UINT16;
    value_.uint16 = number;
  }
  void SetNetwork(UINT32 mask) {
    network_ = {0x0A000000, mask};
    value_.type = FWP_V4_ADDR_MASK;
    value_.v4AddrMask = &network_;
  }
  void SetBytes() {
    value_.type = FWP_BYTE_BLOB_TYPE;
    value_.byteBlob = &blob_;
  }
  void SetPorts(UINT16 low, UINT16 high) {
    range_.valueLow.type = range_.valueHigh.type = FWP_UINT16;
    range_.valueLow.uint16 = low;
    range_.valueHigh.uint16 = high;
    value_.type = FWP_RANGE_TYPE;
    value_.rangeValue = &range_;
  }

  FWPM_FILTER0 filter_ = FilterRecord();
  FWPM_FILTER_CONDITION0 conditions_[2]{};
  FWP_CONDITION_VALUE0 value_{};
  FWP_V4_ADDR_AND_MASK network_{};
  FWP_V6_ADDR_AND_MASK network6_{};
  FWP_RANGE0 range_{};
  UINT8 bytes_[4]{'a', 0, 0, 0};
  FWP_BYTE_BLOB blob_{4, bytes_};
  UINT64 luid_ = 7;
};

TEST_F(ConditionChecks, DemandAFieldOfTheLayer) {
  value_.type = FWP_UINT64;
  value_.uint64 = &luid_;
  EXPECT_EQ(Check(kArrivalInterface, FWP_MATCH_EQUAL), kSuccess);
  filter_.layerKey = kFlowEstablishedV4;
  EXPECT_EQ(Check(kArrivalInterface, FWP_MATCH_EQUAL), kConditionNotFound);
  EXPECT_EQ(Reason(), "IP_ARRIVAL_INTERFACE is not a field of ALE_FLOW_ESTABLISHED_V4");
}

TEST_F(ConditionChecks, DemandAFieldThatExists) {
  SetNumber(53);
  EXPECT_EQ(Check(kFilterKey, FWP_MATCH_EQUAL), kConditionNotFound);
  EXPECT_EQ(Reason(), "0c000001-0000-0000-0000-000000000000 is not a field of ALE_AUTH_CONNECT_V4");
}

TEST_F(ConditionChecks, DemandTheExactTypeOfTheField) {
  SetNumber(6);
  EXPECT_EQ(Check(kProtocol, FWP_MATCH_EQUAL), kTypeMismatch);
  EXPECT_EQ(Reason(), "IP_PROTOCOL at ALE_AUTH_CONNECT_V4 is of type UINT8, not UINT16");
  value_.type = FWP_UINT8;
  value_.uint8 = 6;
  EXPECT_EQ(Check(kProtocol, FWP_MATCH_EQUAL), kSuccess);
}

TEST_F(ConditionChecks, DemandAddressesOfTheLayersVersion) {
  value_.type = FWP_UINT32;
  value_.uint32 = 0x0A000001;
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kSuccess);
  SetNetwork(0xFF000000);
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kSuccess);
  filter_.layerKey = kConnectV6;
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kTypeMismatch);
  EXPECT_EQ(Reason(), "IP_REMOTE_ADDRESS at ALE_AUTH_CONNECT_V6 is of type BYTE_ARRAY16, not V4_ADDR_MASK");
  value_.type = FWP_V6_ADDR_MASK;
  value_.v6AddrMask = &network6_;
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kSuccess);
}

TEST_F(ConditionChecks, TakeEmptyForAFieldThatIsNotSet) {
  EXPECT_EQ(Check(kAppId, FWP_MATCH_EQUAL), kSuccess);
  EXPECT_EQ(Check(kAppId, FWP_MATCH_NOT_EQUAL), kMatchTypeMismatch);
}

TEST_F(ConditionChecks, TakeComparisonsOfWhatHasAnOrder) {
  SetNumber(1024);
  for (const FWP_MATCH_TYPE match :
       {FWP_MATCH_EQUAL, FWP_MATCH_GREATER, FWP_MATCH_LESS, FWP_MATCH_GREATER_OR_EQUAL,
        FWP_MATCH_LESS_OR_EQUAL, FWP_MATCH_NOT_EQUAL}) {
    EXPECT_EQ(Check(kRemotePort, match), kSuccess) << match;
  }
}

TEST_F(ConditionChecks, TakeInequalityOfInterfaces) {
  value_.type = FWP_UINT64;
  value_.uint64 = &luid_;
  EXPECT_EQ(Check(kLocalInterface, FWP_MATCH_NOT_EQUAL), kSuccess);
}

TEST_F(ConditionChecks, TakeFlagsOfUnsignedNumbersOnly) {
  SetNumber(1);
  for (const FWP_MATCH_TYPE match :
       {FWP_MATCH_FLAGS_ALL_SET, FWP_MATCH_FLAGS_ANY_SET, FWP_MATCH_FLAGS_NONE_SET}) {
    EXPECT_EQ(Check(kRemotePort, match), kSuccess) << match;
  }
  SetBytes();
  EXPECT_EQ(Check(kAppId, FWP_MATCH_FLAGS_ALL_SET), kMatchTypeMismatch);
  EXPECT_EQ(Reason(), "FLAGS_ALL_SET does not go with the type BYTE_BLOB of ALE_APP_ID");
}

TEST_F(ConditionChecks, TakeBytesRegardlessOfCaseFromNobody) {
  SetBytes();
  EXPECT_EQ(Check(kAppId, FWP_MATCH_EQUAL_CASE_INSENSITIVE), kMatchTypeMismatch);
  EXPECT_EQ(Check(kAppId, kPrefix), kSuccess);
  EXPECT_EQ(Check(kAppId, kNotPrefix), kSuccess);
  SetNumber(1);
  EXPECT_EQ(Check(kRemotePort, kPrefix), kMatchTypeMismatch);
}

TEST_F(ConditionChecks, RefuseToCompareNetworksUnlessToldOtherwise) {
  SetNetwork(0xFF000000);
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_NOT_EQUAL), kMatchTypeMismatch);
  EXPECT_EQ(Reason(), "NOT_EQUAL does not go with the type V4_ADDR_MASK of IP_REMOTE_ADDRESS");
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_GREATER), kMatchTypeMismatch);
  EngineEmulator::SetSwitches(EngineEmulator::LenientSwitches());
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_NOT_EQUAL), kSuccess);
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_GREATER), kSuccess);
}

TEST_F(ConditionChecks, TakeInequalityOfSidsButNotOfSecurityDescriptors) {
  SID sid{1, 1, {{0, 0, 0, 0, 0, 1}}, {0}};
  value_.type = FWP_SID;
  value_.sid = &sid;
  EXPECT_EQ(Check(kPackageId, FWP_MATCH_NOT_EQUAL), kSuccess);
  UINT8 descriptor[20]{1, 0, 0, 0x80};
  FWP_BYTE_BLOB blob{sizeof(descriptor), descriptor};
  value_.type = FWP_SECURITY_DESCRIPTOR_TYPE;
  value_.sd = &blob;
  EXPECT_EQ(Check(kUserId, FWP_MATCH_NOT_EQUAL), kMatchTypeMismatch);
  EngineEmulator::SetSwitches(EngineEmulator::LenientSwitches());
  EXPECT_EQ(Check(kUserId, FWP_MATCH_NOT_EQUAL), kSuccess);
}

TEST_F(ConditionChecks, DemandSelfRelativeSecurityDescriptors) {
  UINT8 descriptor[20]{1, 0, 0, 0x80};
  FWP_BYTE_BLOB blob{sizeof(descriptor), descriptor};
  value_.type = FWP_SECURITY_DESCRIPTOR_TYPE;
  value_.sd = &blob;
  EXPECT_EQ(Check(kUserId, FWP_MATCH_EQUAL), kSuccess);
  descriptor[3] = 0;
  EXPECT_EQ(Check(kUserId, FWP_MATCH_EQUAL), kInvalidSecurityDescriptor);
  descriptor[3] = 0x80;
  descriptor[4] = 0xFF;  // an owner beyond the end
  EXPECT_EQ(Check(kUserId, FWP_MATCH_EQUAL), kInvalidSecurityDescriptor);
  blob.size = 19;
  EXPECT_EQ(Check(kUserId, FWP_MATCH_EQUAL), kInvalidSecurityDescriptor);
}

TEST_F(ConditionChecks, DemandRangesForTheMatchOfThatNameAndForEqual) {
  SetPorts(1, 2);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_RANGE), kSuccess);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_NOT_EQUAL), kMatchTypeMismatch);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_LESS), kMatchTypeMismatch);
  SetNumber(1);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_RANGE), kMatchTypeMismatch);
}

TEST_F(ConditionChecks, TakeEqualityWithARangeUnlessToldOtherwise) {
  SetPorts(1, 2);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_EQUAL), kSuccess);
  SetPorts(2, 1);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_EQUAL), kInvalidRange);
  EngineEmulator::Switches switches;
  switches.refuseRangesInEqual = 1;
  EngineEmulator::SetSwitches(switches);
  SetPorts(1, 2);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_EQUAL), kMatchTypeMismatch);
  EXPECT_EQ(Reason(), "EQUAL does not go with the type RANGE of UINT16 of IP_REMOTE_PORT");
}

TEST_F(ConditionChecks, DemandRangesThatDoNotEndBeforeTheyBegin) {
  SetPorts(5, 5);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_RANGE), kSuccess);
  SetPorts(5, 4);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_RANGE), kInvalidRange);
  EXPECT_EQ(Reason(), "a range ends below its beginning");
}

TEST_F(ConditionChecks, RefuseRangesOfWhatHasNoOrder) {
  SID sid{1, 1, {{0, 0, 0, 0, 0, 1}}, {0}};
  range_.valueLow.type = range_.valueHigh.type = FWP_SID;
  range_.valueLow.sid = range_.valueHigh.sid = &sid;
  value_.type = FWP_RANGE_TYPE;
  value_.rangeValue = &range_;
  EXPECT_EQ(Check(kPackageId, FWP_MATCH_RANGE), kMatchTypeMismatch);
  EXPECT_EQ(Reason(), "RANGE does not go with the type RANGE of SID of ALE_PACKAGE_ID");
}

TEST_F(ConditionChecks, OrderIpV6AddressesFromTheFirstByte) {
  filter_.layerKey = kConnectV6;
  FWP_BYTE_ARRAY16 low{{1, 9}};
  FWP_BYTE_ARRAY16 high{{2, 0}};
  range_.valueLow.type = range_.valueHigh.type = FWP_BYTE_ARRAY16_TYPE;
  range_.valueLow.byteArray16 = &low;
  range_.valueHigh.byteArray16 = &high;
  value_.type = FWP_RANGE_TYPE;
  value_.rangeValue = &range_;
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_RANGE), kSuccess);
  std::swap(range_.valueLow, range_.valueHigh);
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_RANGE), kInvalidRange);
}

TEST_F(ConditionChecks, DemandRangesOfTheFieldsType) {
  SetPorts(1, 2);
  EXPECT_EQ(Check(kProtocol, FWP_MATCH_RANGE), kTypeMismatch);
  EXPECT_EQ(Reason(), "IP_PROTOCOL at ALE_AUTH_CONNECT_V4 is of type UINT8, not RANGE of UINT16");
}

TEST_F(ConditionChecks, RefuseNetMasksWithHolesUnlessToldOtherwise) {
  for (const UINT32 mask : {0U, 0x80000000U, 0xFFFFFF00U, 0xFFFFFFFFU}) {
    SetNetwork(mask);
    EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kSuccess) << mask;
  }
  SetNetwork(0xFF00FF00);
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kInvalidNetMask);
  SetNetwork(0x000000FF);
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kInvalidNetMask);
  EngineEmulator::SetSwitches(EngineEmulator::LenientSwitches());
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kSuccess);
}

TEST_F(ConditionChecks, RefusePrefixesLongerThanAnAddress) {
  filter_.layerKey = kConnectV6;
  value_.type = FWP_V6_ADDR_MASK;
  value_.v6AddrMask = &network6_;
  network6_.prefixLength = 128;
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kSuccess);
  network6_.prefixLength = 129;
  EXPECT_EQ(Check(kRemoteAddress, FWP_MATCH_EQUAL), kOutOfBounds);
}

TEST_F(ConditionChecks, TakeAFieldSeveralTimes) {
  SetNumber(53);
  conditions_[1].fieldKey = kRemotePort;
  conditions_[1].matchType = FWP_MATCH_EQUAL;
  conditions_[1].conditionValue = value_;
  filter_.numFilterConditions = 2;
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_EQUAL), kSuccess);
  EngineEmulator::Switches switches;
  switches.refuseExactDuplicates = 1;
  EngineEmulator::SetSwitches(switches);
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_EQUAL), kDuplicateCondition);
  conditions_[1].conditionValue.uint16 = 54;
  EXPECT_EQ(Check(kRemotePort, FWP_MATCH_EQUAL), kSuccess);
}

TEST_F(ConditionChecks, TakeEmptyBlobsUnlessToldOtherwise) {
  blob_.size = 0;
  SetBytes();
  EXPECT_EQ(Check(kAppId, FWP_MATCH_EQUAL), kSuccess);
  EngineEmulator::Switches switches;
  switches.refuseEmptyBlobs = 1;
  EngineEmulator::SetSwitches(switches);
  EXPECT_EQ(Check(kAppId, FWP_MATCH_EQUAL), kZeroLengthArray);
}

}  // namespace
