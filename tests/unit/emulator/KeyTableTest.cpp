#include "emulator/KeyTable.h"

#include <gtest/gtest.h>

namespace {

using EngineEmulator::KeyTable;

/// Keys with the same hash, which leads to the last slot of a small table.
constexpr GUID Alike(UINT8 number) { return {UINT32{8} ^ number, 0, 0, {number}}; }

KeyTable FourAlike() {
  KeyTable table;
  for (UINT8 each = 1; each <= 4; ++each) {
    table.Set(Alike(each), each);
  }
  return table;
}

TEST(KeyTable, ForgetsNothingWhenItGrows) {
  KeyTable table;
  for (UINT32 each = 1; each <= 1000; ++each) {
    table.Set({each, 0, 0, {}}, each);
  }
  for (UINT32 each = 1; each <= 1000; ++each) {
    EXPECT_EQ(table.Find({each, 0, 0, {}}), each);
  }
  EXPECT_EQ(table.Find({1001, 0, 0, {}}), std::nullopt);
}

TEST(KeyTable, IsEmptyAtFirst) { EXPECT_EQ(KeyTable().Find({1, 0, 0, {}}), std::nullopt); }

TEST(KeyTable, AKeyHasTheNumberThatItGotLast) {
  KeyTable table;
  table.Set({1, 0, 0, {}}, 5);
  table.Set({1, 0, 0, {}}, 0);
  EXPECT_EQ(table.Find({1, 0, 0, {}}), 0U);
}

TEST(KeyTable, TellsKeysWithTheSameHashApart) {
  const KeyTable table = FourAlike();
  EXPECT_EQ(table.Find(Alike(1)), 1U);
  EXPECT_EQ(table.Find(Alike(2)), 2U);
  EXPECT_EQ(table.Find(Alike(3)), 3U);
  EXPECT_EQ(table.Find(Alike(4)), 4U);
  EXPECT_EQ(table.Find(Alike(5)), std::nullopt);
}

TEST(KeyTable, ErasingAKeyLeavesThoseWithTheSameHash) {
  KeyTable table = FourAlike();
  table.Erase(Alike(2));
  table.Erase(Alike(1));
  EXPECT_EQ(table.Find(Alike(1)), std::nullopt);
  EXPECT_EQ(table.Find(Alike(2)), std::nullopt);
  EXPECT_EQ(table.Find(Alike(3)), 3U);
  EXPECT_EQ(table.Find(Alike(4)), 4U);
  table.Set(Alike(2), 20);
  EXPECT_EQ(table.Find(Alike(2)), 20U);
  EXPECT_EQ(table.Find(Alike(4)), 4U);
}

TEST(KeyTable, KeepsAFewThroughManyChanges) {
  KeyTable table;
  for (UINT32 each = 1; each <= 10'000; ++each) {
    table.Set({each, 0, 0, {}}, each);
    if (each > 5) {
      table.Erase({each - 5, 0, 0, {}});
    }
  }
  EXPECT_EQ(table.Find({9'995, 0, 0, {}}), std::nullopt);
  EXPECT_EQ(table.Find({9'996, 0, 0, {}}), 9'996U);
  EXPECT_EQ(table.Find({10'000, 0, 0, {}}), 10'000U);
}

}  // namespace
