// Which objects may refer to which others, and which sessions may delete them.
#include "EngineClient.h"

namespace {

using Lifetime = EngineTest;

FWPM_SUBLAYER0 SublayerOf(GUID& providerKey, UINT16 flags = 0) {
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.providerKey = &providerKey;
  sublayer.flags = flags;
  return sublayer;
}

FWPM_PROVIDER0 PersistentProvider(const GUID& key) {
  FWPM_PROVIDER0 provider = ProviderRecord(key);
  provider.flags = kPersistent;
  return provider;
}

FWPM_FILTER0 PersistentFilterIn(const GUID& sublayerKey, GUID* providerKey) {
  FWPM_FILTER0 filter = FilterRecord();
  filter.flags = kPersistent;
  filter.subLayerKey = sublayerKey;
  filter.providerKey = providerKey;
  return filter;
}

TEST_F(Lifetime, OfADynamicObjectFitsBehindAStaticOne) {
  const TestSession session;
  const TestSession dynamic(kDynamic);
  GUID providerKey = kProviderKey;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  EXPECT_EQ(Add(dynamic, SublayerOf(providerKey)), kSuccess);
}

TEST_F(Lifetime, OfAStaticObjectOutlastsADynamicOne) {
  const TestSession session;
  const TestSession dynamic(kDynamic);
  GUID providerKey = kProviderKey;
  ASSERT_EQ(Add(dynamic, ProviderRecord()), kSuccess);
  EXPECT_EQ(Add(session, SublayerOf(providerKey)), kLifetimeMismatch);
}

TEST_F(Lifetime, OfADynamicObjectMayNotHangOnAnotherSession) {
  const TestSession owner(kDynamic);
  const TestSession other(kDynamic);
  GUID providerKey = kProviderKey;
  ASSERT_EQ(Add(owner, ProviderRecord()), kSuccess);
  EXPECT_EQ(Add(other, SublayerOf(providerKey)), kLifetimeMismatch);
  EXPECT_EQ(Add(owner, SublayerOf(providerKey)), kSuccess);
}

TEST_F(Lifetime, OfAFilterMayNotHangOnAnotherSessionsSublayer) {
  const TestSession owner(kDynamic);
  const TestSession other(kDynamic);
  FWPM_FILTER0 filter = FilterRecord();
  filter.subLayerKey = kSublayerKey;
  ASSERT_EQ(Add(owner, SublayerRecord()), kSuccess);
  EXPECT_EQ(Add(other, filter), kLifetimeMismatch);
}

TEST_F(Lifetime, OfAPersistentObjectOutlastsAStaticOne) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  ASSERT_EQ(Add(session, ProviderRecord()), kSuccess);
  EXPECT_EQ(Add(session, SublayerOf(providerKey, kPersistent)), kLifetimeMismatch);
}

TEST_F(Lifetime, OfAPersistentObjectFitsBehindAPersistentOne) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  ASSERT_EQ(Add(session, PersistentProvider(kProviderKey)), kSuccess);
  EXPECT_EQ(Add(session, SublayerOf(providerKey, kPersistent)), kSuccess);
}

TEST_F(Lifetime, OfAPersistentFilterNeedsASublayerOfItsOwnProvider) {
  const TestSession session;
  GUID own = kProviderKey;
  GUID others = kOtherProviderKey;
  ASSERT_EQ(Add(session, PersistentProvider(kProviderKey)), kSuccess);
  ASSERT_EQ(Add(session, PersistentProvider(kOtherProviderKey)), kSuccess);
  ASSERT_EQ(Add(session, SublayerOf(own, kPersistent)), kSuccess);
  EXPECT_EQ(Add(session, PersistentFilterIn(kSublayerKey, &others)), kLifetimeMismatch);
  EXPECT_EQ(Add(session, PersistentFilterIn(kSublayerKey, nullptr)), kLifetimeMismatch);
  EXPECT_EQ(Add(session, PersistentFilterIn(kSublayerKey, &own)), kSuccess);
}

TEST_F(Lifetime, OfAPersistentFilterFitsInABuiltInSublayer) {
  const TestSession session;
  GUID providerKey = kProviderKey;
  ASSERT_EQ(Add(session, PersistentProvider(kProviderKey)), kSuccess);
  EXPECT_EQ(Add(session, PersistentFilterIn(kUniversalSublayer, &providerKey)), kSuccess);
}

TEST_F(Lifetime, OfABootTimeFilterIsThatOfAPersistentOne) {
  const TestSession session;
  FWPM_FILTER0 filter = FilterRecord();
  filter.flags = 2;
  filter.subLayerKey = kSublayerKey;
  ASSERT_EQ(Add(session, SublayerRecord()), kSuccess);
  EXPECT_EQ(Add(session, filter), kLifetimeMismatch);
}

TEST_F(Lifetime, CannotBePersistentInADynamicSession) {
  const TestSession dynamic(kDynamic);
  FWPM_SUBLAYER0 sublayer = SublayerRecord();
  sublayer.flags = kPersistent;
  FWPM_FILTER0 filter = FilterRecord();
  filter.flags = kPersistent;
  EXPECT_EQ(Add(dynamic, PersistentProvider(kProviderKey)), kLifetimeMismatch);
  EXPECT_EQ(Add(dynamic, sublayer), kLifetimeMismatch);
  EXPECT_EQ(Add(dynamic, filter), kLifetimeMismatch);
}

TEST_F(Lifetime, EndsByAnyStaticSessionForAStaticObject) {
  const TestSession owner;
  const TestSession other;
  ASSERT_EQ(Add(owner, SublayerRecord()), kSuccess);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(other, &kSublayerKey), kSuccess);
}

TEST_F(Lifetime, EndsByItsOwnSessionOnlyForADynamicObject) {
  const TestSession owner(kDynamic);
  const TestSession otherDynamic(kDynamic);
  const TestSession otherStatic;
  ASSERT_EQ(Add(owner, SublayerRecord()), kSuccess);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(otherDynamic, &kSublayerKey), kWrongSession);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(otherStatic, &kSublayerKey), kWrongSession);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(owner, &kSublayerKey), kSuccess);
}

TEST_F(Lifetime, OfAStaticObjectIsNotADynamicSessionsToEnd) {
  const TestSession owner;
  const TestSession dynamic(kDynamic);
  ASSERT_EQ(Add(owner, SublayerRecord()), kSuccess);
  EXPECT_EQ(FwpmSubLayerDeleteByKey0(dynamic, &kSublayerKey), kDynamicSessionInProgress);
}

TEST_F(Lifetime, DoesNotKeepOtherSessionsFromReading) {
  const TestSession owner(kDynamic);
  const TestSession other;
  ASSERT_EQ(Add(owner, SublayerRecord()), kSuccess);
  FWPM_SUBLAYER0* found = nullptr;
  EXPECT_EQ(FwpmSubLayerGetByKey0(other, &kSublayerKey, &found), kSuccess);
  Free(found);
}

}  // namespace
