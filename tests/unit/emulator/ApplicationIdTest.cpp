#include <array>
#include <string>

#include "EngineClient.h"

namespace {

using ApplicationId = EngineTest;

DWORD Fail(const wchar_t* path) {
  FWP_BYTE_BLOB* blob = nullptr;
  const DWORD result = FwpmGetAppIdFromFileName0(path, &blob);
  EXPECT_EQ(blob, nullptr);
  return result;
}

/// The id as text, with its terminating zero.
std::u16string Get(const wchar_t* path) {
  EngineEmulator::PretendFileExists(path);
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(path, &blob), kSuccess);
  std::u16string text;
  for (UINT32 index = 0; index + 1 < blob->size; index += 2) {
    text += static_cast<char16_t>(blob->data[index] + blob->data[index + 1] * 256);
  }
  Free(blob);
  return text;
}

TEST_F(ApplicationId, IsTheDevicePathInLowerCaseWithItsTerminator) {
  using namespace std::string_literals;
  EXPECT_EQ(Get(L"C:\\Program Files\\App\\A.exe"),
            u"\\device\\harddiskvolume1\\program files\\app\\a.exe\0"s);
}

TEST_F(ApplicationId, IsUtf16WithTheLowByteFirst) {
  EngineEmulator::PretendFileExists(L"C:\\A");
  FWP_BYTE_BLOB* blob = nullptr;
  ASSERT_EQ(FwpmGetAppIdFromFileName0(L"C:\\A", &blob), kSuccess);
  EXPECT_EQ(blob->size, 52U);
  EXPECT_EQ(blob->data[0], '\\');
  EXPECT_EQ(blob->data[1], 0);
  EXPECT_EQ(blob->data[48], 'a');
  EXPECT_EQ(blob->data[50], 0);
  EXPECT_EQ(blob->data[51], 0);
  Free(blob);
}

TEST_F(ApplicationId, VolumeGoesWithTheDriveLetter) {
  using namespace std::string_literals;
  EXPECT_EQ(Get(L"d:\\a"), u"\\device\\harddiskvolume2\\a\0"s);
  EXPECT_EQ(Get(L"Z:\\a"), u"\\device\\harddiskvolume24\\a\0"s);
}

TEST_F(ApplicationId, LowersTheCaseOfOtherAlphabets) {
  using namespace std::string_literals;
  EXPECT_EQ(Get(L"C:\\\u00C9\u017D\u03A9\u0416\u0411\u042F.exe"),
            u"\\device\\harddiskvolume1\\\u00E9\u017E\u03C9\u0436\u0431\u044F.exe\0"s);
}

TEST_F(ApplicationId, LowersTheCaseOfEveryAlphabetThatHasTwo) {
  using namespace std::string_literals;
  // Accents, Latin letters whose lower case is not next to them, Greek, Cyrillic, Armenian, Georgian, full
  // width.
  EXPECT_EQ(
      Get(L"C:\\AZ\u00C0\u00D6\u00D8\u00DE\u0100\u012E\u0132\u0139\u0147\u014A\u0176\u0178\u0179\u017D"
          L"\u0181\u0186\u018F\u01C4\u01F1\u0220\u023A\u0386\u0388\u038A\u038C\u038E\u038F\u0391\u03A1"
          L"\u03A3\u03AB\u0400\u040F\u0410\u042F\u0460\u048A\u04C0\u04D0\u0531\u0556\u10A0\u1E00\u1EA0"
          L"\u1F08\u2160\uFF21\uFF3A"),
      u"\\device\\harddiskvolume1\\az\u00E0\u00F6\u00F8\u00FE\u0101\u012F\u0133\u013A\u0148\u014B\u0177"
      u"\u00FF\u017A\u017E\u0253\u0254\u0259\u01C6\u01F3\u019E\u2C65\u03AC\u03AD\u03AF\u03CC\u03CD\u03CE"
      u"\u03B1\u03C1\u03C3\u03CB\u0450\u045F\u0430\u044F\u0461\u048B\u04CF\u04D1\u0561\u0586\u2D00\u1E01"
      u"\u1EA1\u1F00\u2170\uFF41\uFF5A\0"s);
}

/// Two letters have the lower case "i", and three have "\u01C6". A letter is changed only if it is the upper
/// case of its lower case.
TEST_F(ApplicationId, LeavesLettersAloneThatTheirLowerCaseDoesNotLeadBackTo) {
  using namespace std::string_literals;
  EXPECT_EQ(Get(L"C:\\\u0130\u01C5\u01C8\u01CB\u01F2\u03F4\u1E9E\u2126\u212A\u212B"),
            u"\\device\\harddiskvolume1\\\u0130\u01C5\u01C8\u01CB\u01F2\u03F4\u1E9E\u2126\u212A\u212B\0"s);
}

TEST_F(ApplicationId, LeavesCharactersBeyondTheBasicPlaneAlone) {
  using namespace std::string_literals;
  EXPECT_EQ(Get(L"C:\\\U00010000\U00010400\U0001F600\U0010FFFF"),
            u"\\device\\harddiskvolume1\\\xD800\xDC00\xD801\xDC00\xD83D\xDE00\xDBFF\xDFFF\0"s);
}

TEST_F(ApplicationId, LeavesSignsAndLowerCaseAlone) {
  using namespace std::string_literals;
  EXPECT_EQ(Get(L"C:\\\u00D7\u00F7\u017E@[`{1.exe"),
            u"\\device\\harddiskvolume1\\\u00D7\u00F7\u017E@[`{1.exe\0"s);
}

TEST_F(ApplicationId, TakesAPretendedFileInAnyCase) {
  EngineEmulator::PretendFileExists(L"C:\\Nowhere\\A.exe");
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(L"c:\\NOWHERE\\a.EXE", &blob), kSuccess);
  Free(blob);
}

#if defined(_WIN32)  // Other systems have no drive letters.
TEST_F(ApplicationId, TakesAFileThatIsThere) {
  std::array<wchar_t, 1024> program{};
  ASSERT_NE(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())), 0U);
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(program.data(), &blob), kSuccess);
  Free(blob);
}

TEST_F(ApplicationId, TellsAMissingFileFromAMissingFolder) {
  EXPECT_EQ(Fail(L"C:\\windows\\no such program.exe"), 2U);
  EXPECT_EQ(Fail(L"C:\\no such folder\\program.exe"), 3U);
}

TEST_F(ApplicationId, APretendedFileTakesNothingFromItsFolder) {
  EngineEmulator::PretendFileExists(L"C:\\windows\\no such program.exe");
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(L"C:\\windows\\regedit.exe", &blob), kSuccess);
  Free(blob);
  EXPECT_EQ(Fail(L"C:\\windows\\system32"), 5U);
  EXPECT_EQ(Fail(L"C:\\windows\\another.exe"), 2U);
}

TEST_F(ApplicationId, IsNotGivenForAFolder) { EXPECT_EQ(Fail(L"C:\\windows"), 5U); }
#endif

TEST_F(ApplicationId, TheFolderOfAPretendedFileIsThere) {
  EngineEmulator::PretendFileExists(L"C:\\Nowhere\\A.exe");
  EXPECT_EQ(Fail(L"C:\\Nowhere\\B.exe"), 2U);
  EXPECT_EQ(Fail(L"C:\\Nowhere else\\A.exe"), 3U);
}

TEST_F(ApplicationId, IsNotGivenForAPathThatIsNotFull) {
  EXPECT_EQ(Fail(L"program.exe"), 3U);
  EXPECT_EQ(Fail(L""), 3U);
  EXPECT_EQ(Fail(L"C:program.exe"), 3U);
}

TEST_F(ApplicationId, NullArgumentsAreRefused) {
  FWP_BYTE_BLOB* blob = nullptr;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(nullptr, &blob), kNullPointer);
  EXPECT_EQ(FwpmGetAppIdFromFileName0(L"C:\\a.exe", nullptr), kNullPointer);
}

}  // namespace
