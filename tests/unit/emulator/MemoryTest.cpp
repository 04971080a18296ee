#include "EngineClient.h"

namespace {

using Memory = EngineTest;

FWPM_SUBLAYER0* GetUniversal(HANDLE session) {
  FWPM_SUBLAYER0* found = nullptr;
  EXPECT_EQ(FwpmSubLayerGetByKey0(session, &kUniversalSublayer, &found), kSuccess);
  return found;
}

TEST_F(Memory, IsCountedUntilItIsFreed) {
  const TestSession session;
  FWPM_SUBLAYER0* first = GetUniversal(session);
  FWPM_SUBLAYER0* second = GetUniversal(session);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 2U);
  Free(first);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 1U);
  Free(second);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 0U);
}

TEST_F(Memory, PointerIsNullAfterwards) {
  const TestSession session;
  FWPM_SUBLAYER0* found = GetUniversal(session);
  Free(found);
  EXPECT_EQ(found, nullptr);
}

TEST_F(Memory, OutlivesItsSession) {
  FWPM_SUBLAYER0* found = nullptr;
  {
    const TestSession session;
    found = GetUniversal(session);
  }
  EXPECT_STREQ(found->displayData.name, L"UNIVERSAL");
  Free(found);
}

TEST_F(Memory, MayBeFreedThoughItIsNull) {
  void* null = nullptr;
  FwpmFreeMemory0(&null);
  FwpmFreeMemory0(nullptr);
  EXPECT_EQ(null, nullptr);
}

TEST_F(Memory, ThatIsNotTheEnginesIsLeftAlone) {
  int own = 5;
  void* pointer = &own;
  FwpmFreeMemory0(&pointer);
  EXPECT_EQ(own, 5);
  EXPECT_EQ(EngineEmulator::Journal().at(0).arguments, "not a block of the engine");
}

TEST_F(Memory, ThatATestKeepsOnPurposeIsDeclared) {
  const TestSession session;
  GetUniversal(session);
  ExpectOutstandingMemory(1);
}

}  // namespace
