#include "filtering/AppId.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>

#include "emulator/Control.h"
#include "filtering/Condition.h"
#include "support/EngineTest.h"
#include "support/LeftOf.h"
#include "unit/engine/FailsWith.h"
#include "unit/filtering/NativeForm.h"

namespace WfpFirewall::Filtering::Values {
namespace {

constexpr const wchar_t* kPath = L"C:\\Corvane\\service.exe";

std::size_t BlocksNotGivenBack() { return EngineEmulator::CountOutstanding().memoryBlocks; }

std::u16string Text(const FWP_BYTE_BLOB& blob) {
  return {reinterpret_cast<const char16_t*>(blob.data), blob.size / sizeof(char16_t)};
}

class AppIdTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    EngineEmulator::PretendFileExists(kPath);
  }
};

TEST_F(AppIdTest, PathBecomesTheEnginesIdentifier) {
  const AppId app{std::wstring(kPath)};
  using namespace std::string_literals;
  EXPECT_EQ(Text(*app.GetValue()), u"\\device\\harddiskvolume1\\corvane\\service.exe\0"s);
}

TEST_F(AppIdTest, TakesItsPathOver) {
  EXPECT_EQ(LeftOf(std::wstring(kPath), [](std::wstring&& path) { AppId{std::move(path)}; }), L"");
}

TEST_F(AppIdTest, FileThatDoesNotExistThrowsWithTheEnginesCode) {
  EXPECT_THAT([] { AppId{std::wstring(L"C:\\No such folder\\missing.exe")}; },
              FailsWith("Failed to retrieve app blob", ERROR_PATH_NOT_FOUND));
}

TEST_F(AppIdTest, AnyFailureOfTheEngineSurfacesWithItsCode) {
  for (const DWORD code : {DWORD{5}, DWORD{0x80320035}}) {
    EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", 1, code);
    EXPECT_THAT([] { AppId{std::wstring(kPath)}; }, FailsWith("Failed to retrieve app blob", code));
  }
}

TEST_F(AppIdTest, IdentifierIsGivenBackWithTheLastOwner) {
  auto app = std::make_unique<AppId>(std::wstring(kPath));
  auto copy = std::make_unique<AppId>(*app);
  EXPECT_EQ(copy->GetValue(), app->GetValue());
  app.reset();
  EXPECT_EQ(BlocksNotGivenBack(), 1u);
  copy.reset();
  EXPECT_EQ(BlocksNotGivenBack(), 0u);
}

TEST_F(AppIdTest, IdentifierLivesAsLongAsAnyCopyOfItsFilter) {
  auto form = std::make_unique<NativeForm>(std::vector{ConditionEqual(new AppId(std::wstring(kPath)))});
  auto copy = std::make_unique<Filter>(form->filter);
  const FWP_BYTE_BLOB* const blob = form->Condition().conditionValue.byteBlob;
  form.reset();
  EXPECT_EQ(BlocksNotGivenBack(), 1u);
  EXPECT_EQ(copy->ToNativeFilter().filterCondition[0].conditionValue.byteBlob, blob);
  copy.reset();
  EXPECT_EQ(BlocksNotGivenBack(), 0u);
}

TEST_F(AppIdTest, BlobIsCopiedButNotItsBytes) {
  UINT8 bytes[]{'a', 0, 0, 0};
  FWP_BYTE_BLOB blob{sizeof(bytes), bytes};
  const AppId app(blob);
  blob = {};
  EXPECT_EQ(app.GetValue()->size, 4u);
  EXPECT_EQ(app.GetValue()->data, bytes);
}

TEST_F(AppIdTest, BlobIsNotTheEnginesToTakeBack) {
  UINT8 bytes[]{0, 0};
  { const AppId app(FWP_BYTE_BLOB{sizeof(bytes), bytes}); }
  EXPECT_TRUE(EngineEmulator::Journal().empty());
}

}  // namespace
}  // namespace WfpFirewall::Filtering::Values
