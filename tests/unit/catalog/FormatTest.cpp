#include "catalog/Format.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace Catalog {
namespace {

std::string FormatUnits(const std::u16string& units) {
  std::vector<UINT8> bytes(units.size() * sizeof(char16_t));
  std::memcpy(bytes.data(), units.data(), bytes.size());
  return FormatTextOrBytes(bytes);
}

TEST(FormatHex, HasEightDigits) {
  EXPECT_EQ(FormatHex(0), "0x00000000");
  EXPECT_EQ(FormatHex(0x8032000A), "0x8032000a");
}

TEST(FormatBytes, HasTwoDigitsForEachByte) {
  EXPECT_EQ(FormatBytes(std::vector<UINT8>{0x00, 0x0f, 0xff}), "000fff");
  EXPECT_EQ(FormatBytes({}), "empty");
}

TEST(FormatIpV4, TakesHostByteOrder) {
  EXPECT_EQ(FormatIpV4(0x0a000001), "10.0.0.1");
  EXPECT_EQ(FormatIpV4(0xfffefdfc), "255.254.253.252");
}

TEST(FormatIpV6, ShortensTheLongestRunOfZeros) {
  constexpr UINT8 kLinkLocal[16]{0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 2};
  constexpr UINT8 kLoopback[16]{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  EXPECT_EQ(FormatIpV6(kLinkLocal), "fe80::1:0:2");
  EXPECT_EQ(FormatIpV6(kLoopback), "::1");
}

TEST(FormatSid, ListsEveryPart) {
  alignas(SID) UINT8 administrators[]{1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0};
  EXPECT_EQ(FormatSid(*reinterpret_cast<const SID*>(administrators)), "S-1-5-32-544");
}

TEST(FormatText, IsUtf8) { EXPECT_EQ(FormatText(L"b\u00e9\u20ac"), "b\xc3\xa9\xe2\x82\xac"); }

TEST(FormatText, ControlCharactersNeverReachTheLine) {
  EXPECT_EQ(FormatText(L"a\n").find('\n'), std::string::npos);
  EXPECT_EQ(FormatText(L"a\n").substr(0, 2), "61");
}

TEST(FormatTextOrBytes, ATerminatedStringIsText) {
  EXPECT_EQ(FormatUnits(std::u16string(u"\\device\\a.exe\0", 14)), "\\device\\a.exe");
  EXPECT_EQ(FormatUnits(std::u16string(u"a b\u00e9\u20ac\0", 6)), "a b\xc3\xa9\xe2\x82\xac");
}

TEST(FormatTextOrBytes, WithoutTerminatorItIsBytes) { EXPECT_EQ(FormatUnits(u"ab"), "61006200"); }

TEST(FormatTextOrBytes, WithMoreThanOneTerminatorItIsBytes) {
  EXPECT_EQ(FormatUnits(std::u16string(u"a\0\0", 3)), "610000000000");
}

TEST(FormatTextOrBytes, ControlCharactersNeverReachTheLine) {
  EXPECT_EQ(FormatUnits(std::u16string(u"a\n\0", 3)), "61000a000000");
}

TEST(FormatTextOrBytes, AnUnpairedSurrogateIsBytes) {
  EXPECT_EQ(FormatUnits({u'a', 0xd800, u'\0'}), "610000d80000");
}

TEST(FormatTextOrBytes, APairOfSurrogatesIsOneCharacter) {
  EXPECT_EQ(FormatUnits(std::u16string(u"\U0001F600\0", 3)), "\xf0\x9f\x98\x80");
}

TEST(FormatTextOrBytes, AnEmptyStringIsItsTerminator) { EXPECT_EQ(FormatUnits({u'\0'}), "0000"); }

TEST(FormatTextOrBytes, AnOddNumberOfBytesIsBytes) {
  EXPECT_EQ(FormatTextOrBytes(std::vector<UINT8>{0x61, 0x00, 0x00}), "610000");
}

TEST(FormatTextOrBytes, NoBytesAreEmpty) { EXPECT_EQ(FormatTextOrBytes({}), "empty"); }

}  // namespace
}  // namespace Catalog
