#include <WfpPlatform.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

/// The converted text. Its length must be the one that the function gives when it is called without a buffer.
std::string Convert(const std::wstring& text, DWORD flags = 0) {
  const int length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_UTF8, flags, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '?');
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, flags, text.data(), length, utf8.data(), size, nullptr, nullptr),
            size);
  return utf8;
}

constexpr auto kHighSurrogate = static_cast<wchar_t>(0xD83D);
constexpr auto kLowSurrogate = static_cast<wchar_t>(0xDE00);

TEST(WideText, CharactersTakeOneToFourBytes) {
  EXPECT_EQ(Convert(L"a\u007F"), "a\x7F");
  EXPECT_EQ(Convert(L"\u0080\u07FF"), "\xC2\x80\xDF\xBF");
  EXPECT_EQ(Convert(L"\u0800\uFFFD"), "\xE0\xA0\x80\xEF\xBF\xBD");
  EXPECT_EQ(Convert(L"\U00010000\U0010FFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(WideText, APairOfSurrogatesIsOneCharacter) {
  EXPECT_EQ(Convert({kHighSurrogate, kLowSurrogate}), "\xF0\x9F\x98\x80");
}

TEST(WideText, ALoneSurrogateBecomesTheReplacementCharacter) {
  EXPECT_EQ(Convert({L'a', kHighSurrogate}), "a\xEF\xBF\xBD");
  EXPECT_EQ(Convert({kLowSurrogate, L'b'}),
            "\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(Convert({kLowSurrogate, kHighSurrogate}), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(WideText, ALoneSurrogateFailsAStrictConversion) {
  const std::wstring text{L'a', kHighSurrogate};
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), 2, nullptr, 0, nullptr, nullptr),
            0);
  EXPECT_EQ(GetLastError(), 1113U);
  EXPECT_EQ(Convert(L"\u00E9", WC_ERR_INVALID_CHARS), "\xC3\xA9");
}

TEST(WideText, LengthMinusOneTakesTheTerminatorToo) {
  std::array<char, 3> buffer{'?', '?', '?'};
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a", -1, buffer.data(), 3, nullptr, nullptr), 2);
  EXPECT_EQ(buffer, (std::array<char, 3>{'a', '\0', '?'}));
}

TEST(WideText, ABufferTooSmallIsAnError) {
  std::array<char, 1> buffer{};
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"ab", 2, buffer.data(), 1, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), 122U);
}

TEST(WideText, NoTextIsAnError) {
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"", 0, nullptr, 0, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), 87U);
}

std::wstring LowerCase(const std::wstring& text) {
  std::wstring lower(text.size(), L'?');
  const int length = static_cast<int>(text.size());
  EXPECT_EQ(LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, text.data(), length, lower.data(), length,
                          nullptr, nullptr, 0),
            length);
  return lower;
}

TEST(WideText, HasALowerCase) {
  EXPECT_EQ(LowerCase(L"[A-Z] \u00C9\u00D7\u03A9\u042F"), L"[a-z] \u00E9\u00D7\u03C9\u044F");
}

TEST(WideText, LowerCaseThatDoesNotLeadBackIsNotTaken) {
  EXPECT_EQ(LowerCase(L"I\u0130\u0131"), L"i\u0130\u0131");
  EXPECT_EQ(LowerCase(L"K\u212A \u1E9E"), L"k\u212A \u1E9E");
}

TEST(WideText, LowerCaseOfNothingOrIntoTooLittleIsAnError) {
  const auto fails = [](int length, int size) {
    std::array<wchar_t, 2> buffer{};
    SetLastError(0);
    EXPECT_EQ(LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, L"AB", length, buffer.data(), size,
                            nullptr, nullptr, 0),
              0);
    return GetLastError();
  };
  EXPECT_EQ(fails(0, 2), 87U);
  EXPECT_EQ(fails(2, 1), 122U);
  EXPECT_EQ(LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, L"AB", 2, nullptr, 0, nullptr, nullptr, 0),
            2);
}

TEST(LastError, IsTheLatestThatWasSet) {
  SetLastError(5);
  EXPECT_EQ(GetLastError(), 5U);
  SetLastError(0);
  EXPECT_EQ(GetLastError(), 0U);
}

}  // namespace
