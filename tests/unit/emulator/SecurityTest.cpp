#include <cstring>

#include "EngineClient.h"

namespace {

using Security = EngineTest;

constexpr SECURITY_INFORMATION kOwner = 1;
constexpr SECURITY_INFORMATION kDacl = 4;
constexpr SECURITY_INFORMATION kAll = 0xF;

const SID kLocalSystem{1, 1, {{0, 0, 0, 0, 0, 5}}, {18}};

/// A descriptor that the engine handed out.
struct Descriptor {
  PSID owner = nullptr;
  PSID group = nullptr;
  PACL dacl = nullptr;
  PACL sacl = nullptr;
  PSECURITY_DESCRIPTOR whole = nullptr;

  ~Descriptor() { FwpmFreeMemory0(&whole); }
};

DWORD GetOfSublayer(HANDLE session, const GUID* key, SECURITY_INFORMATION information, Descriptor& got) {
  return FwpmSubLayerGetSecurityInfoByKey0(session, key, information, &got.owner, &got.group, &got.dacl,
                                           &got.sacl, &got.whole);
}

bool IsLocalSystem(PSID sid) { return sid != nullptr && std::memcmp(sid, &kLocalSystem, sizeof(SID)) == 0; }

TEST_F(Security, OfAnObjectIsTheDefaultAtFirst) {
  const TestSession session;
  Descriptor got;
  ASSERT_EQ(GetOfSublayer(session, &kUniversalSublayer, kAll, got), kSuccess);
  const UINT8 administrators[]{1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 32, 2, 0, 0};
  ASSERT_NE(got.owner, nullptr);
  EXPECT_EQ(std::memcmp(got.owner, administrators, sizeof(administrators)), 0);
  ASSERT_NE(got.dacl, nullptr);
  EXPECT_EQ(got.dacl->AceCount, 3);
  EXPECT_EQ(got.sacl, nullptr);
}

TEST_F(Security, IsGivenInThePartsThatAreAskedFor) {
  const TestSession session;
  Descriptor got;
  ASSERT_EQ(GetOfSublayer(session, &kUniversalSublayer, kDacl, got), kSuccess);
  EXPECT_EQ(got.owner, nullptr);
  EXPECT_NE(got.dacl, nullptr);
}

TEST_F(Security, IsKeptAsItWasSet) {
  const TestSession session;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  ASSERT_EQ(FwpmSubLayerSetSecurityInfoByKey0(session, &kSublayerKey, kOwner, &kLocalSystem, nullptr, nullptr,
                                              nullptr),
            kSuccess);
  Descriptor got;
  ASSERT_EQ(GetOfSublayer(session, &kSublayerKey, kAll, got), kSuccess);
  EXPECT_TRUE(IsLocalSystem(got.owner));
  ASSERT_NE(got.dacl, nullptr);
  EXPECT_EQ(got.dacl->AceCount, 3);
}

TEST_F(Security, IsTakenBackWithItsTransaction) {
  const TestSession session;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  FwpmTransactionBegin0(session, 0);
  ASSERT_EQ(FwpmSubLayerSetSecurityInfoByKey0(session, &kSublayerKey, kOwner, &kLocalSystem, nullptr, nullptr,
                                              nullptr),
            kSuccess);
  FwpmTransactionAbort0(session);
  Descriptor got;
  ASSERT_EQ(GetOfSublayer(session, &kSublayerKey, kOwner, got), kSuccess);
  EXPECT_FALSE(IsLocalSystem(got.owner));
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(session, &kSublayerKey), kSuccess);
}

TEST_F(Security, CanBeGivenWithTheObject) {
  const TestSession session;
  struct {
    UINT8 head[20]{1, 0, 0, 0x80, 20};
    SID owner = kLocalSystem;
  } descriptor;
  const FWPM_SUBLAYER0 sublayer = SublayerRecord();
  ASSERT_EQ(FwpmSubLayerAdd0(session, &sublayer, &descriptor), kSuccess);
  Descriptor got;
  ASSERT_EQ(GetOfSublayer(session, &kSublayerKey, kAll, got), kSuccess);
  EXPECT_TRUE(IsLocalSystem(got.owner));
  EXPECT_EQ(got.dacl, nullptr);
}

TEST_F(Security, MustBeSelfRelative) {
  const TestSession session;
  UINT8 descriptor[40]{1};
  const FWPM_SUBLAYER0 sublayer = SublayerRecord();
  EXPECT_EQ(FwpmSubLayerAdd0(session, &sublayer, descriptor), kInvalidSecurityDescriptor);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(Security, MustHoldItsParts) {
  struct {
    UINT8 head[20]{1, 0, 4, 0x80, 20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 32};
    SID owner = kLocalSystem;
    ACL dacl{2, 0, 8, 0, 0};
  } descriptor;
  const FWPM_FILTER0 filter = [] {
    FWPM_FILTER0 record = FilterRecord();
    record.numFilterConditions = 1;
    return record;
  }();
  const auto check = [&](UINT32 size) {
    FWP_BYTE_BLOB blob{size, descriptor.head};
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = kUserId;
    condition.conditionValue.type = FWP_SECURITY_DESCRIPTOR_TYPE;
    condition.conditionValue.sd = &blob;
    FWPM_FILTER0 record = filter;
    record.filterCondition = &condition;
    const TestSession session(kDynamic);
    return Add(session, record);
  };
  EXPECT_EQ(check(40), kSuccess);
  EXPECT_EQ(check(39), kInvalidSecurityDescriptor);  // the last byte of the list is missing
  descriptor.dacl.AclSize = 7;
  EXPECT_EQ(check(40), kInvalidSecurityDescriptor);
  descriptor.dacl.AclSize = 9;
  EXPECT_EQ(check(40), kInvalidSecurityDescriptor);
  descriptor.dacl.AclSize = 8;
  descriptor.owner.SubAuthorityCount = 16;
  EXPECT_EQ(check(40), kInvalidSecurityDescriptor);
  descriptor.owner.SubAuthorityCount = 4;  // beyond the end
  EXPECT_EQ(check(40), kInvalidSecurityDescriptor);
}

TEST_F(Security, OfNoKeyIsThatOfTheContainer) {
  const TestSession session;
  ASSERT_EQ(
      FwpmSubLayerSetSecurityInfoByKey0(session, nullptr, kOwner, &kLocalSystem, nullptr, nullptr, nullptr),
      kSuccess);
  const GUID zero{};
  Descriptor got;
  ASSERT_EQ(GetOfSublayer(session, &zero, kOwner, got), kSuccess);
  EXPECT_TRUE(IsLocalSystem(got.owner));
}

TEST_F(Security, NeedsItsObjectAndPlaceForTheDescriptor) {
  const TestSession session;
  Descriptor got;
  EXPECT_EQ(GetOfSublayer(session, &kSublayerKey, kAll, got), kSublayerNotFound);
  EXPECT_EQ(
      FwpmFilterGetSecurityInfoByKey0(session, nullptr, kAll, nullptr, nullptr, nullptr, nullptr, nullptr),
      kNullPointer);
  EXPECT_EQ(FwpmSubLayerSetSecurityInfoByKey0(session, &kUniversalSublayer, kOwner, nullptr, nullptr, nullptr,
                                              nullptr),
            kInvalidSecurityDescriptor);
}

TEST_F(Security, OfTheEngineIsKept) {
  const TestSession session;
  ASSERT_EQ(FwpmEngineSetSecurityInfo0(session, kOwner, &kLocalSystem, nullptr, nullptr, nullptr), kSuccess);
  Descriptor got;
  ASSERT_EQ(FwpmEngineGetSecurityInfo0(session, kOwner, &got.owner, nullptr, nullptr, nullptr, &got.whole),
            kSuccess);
  EXPECT_TRUE(IsLocalSystem(got.owner));
  FwpmTransactionBegin0(session, 0);
  EXPECT_EQ(FwpmEngineSetSecurityInfo0(session, kOwner, &kLocalSystem, nullptr, nullptr, nullptr),
            kTransactionInProgress);
  FwpmTransactionAbort0(session);
}

}  // namespace
