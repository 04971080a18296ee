#include "helpers/tarnwell/RegistryProperty.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "helpers/tarnwell/SetupApi.h"
#include "support/FakePlatform.h"

namespace Tarnwell {
namespace {

using FakePlatform::Bytes;
using testing::ThrowsMessage;

RegistryProperty Decode(DWORD type, const Bytes& bytes) {
  return DecodeRegistryProperty(type, std::as_bytes(std::span(bytes)));
}

/// The bytes of the characters. Zeros in `text` are kept, and none is added.
Bytes Characters(std::wstring_view text) {
  const auto* first = reinterpret_cast<const std::uint8_t*>(text.data());
  return {first, first + text.size() * sizeof(wchar_t)};
}

RegistryProperty Strings(std::vector<std::wstring> strings) { return strings; }
RegistryProperty Text(std::wstring text) { return text; }
RegistryProperty Number(std::uint32_t number) { return number; }
RegistryProperty RawBytes(std::vector<std::byte> bytes) { return bytes; }
const RegistryProperty kNothing;

TEST(RegistryTypeName, NamesTheTwelveTypes) {
  EXPECT_EQ(RegistryTypeName(0), L"REG_NONE");
  EXPECT_EQ(RegistryTypeName(1), L"REG_SZ");
  EXPECT_EQ(RegistryTypeName(2), L"REG_EXPAND_SZ");
  EXPECT_EQ(RegistryTypeName(3), L"REG_BINARY");
  EXPECT_EQ(RegistryTypeName(4), L"REG_DWORD");
  EXPECT_EQ(RegistryTypeName(5), L"REG_DWORD_BIG_ENDIAN");
  EXPECT_EQ(RegistryTypeName(6), L"REG_LINK");
  EXPECT_EQ(RegistryTypeName(7), L"REG_MULTI_SZ");
  EXPECT_EQ(RegistryTypeName(8), L"REG_RESOURCE_LIST");
  EXPECT_EQ(RegistryTypeName(9), L"REG_FULL_RESOURCE_DESCRIPTOR");
  EXPECT_EQ(RegistryTypeName(10), L"REG_RESOURCE_REQUIREMENTS_LIST");
  EXPECT_EQ(RegistryTypeName(11), L"REG_QWORD");
}

TEST(RegistryTypeName, UnknownTypesHaveNone) {
  EXPECT_EQ(RegistryTypeName(12), L"");
  EXPECT_EQ(RegistryTypeName(0xFFFFFFFF), L"");
}

TEST(RegistryDecoding, AlternativesHaveFixedPlaces) {
  EXPECT_EQ(Decode(0, {}).index(), 0u);
  EXPECT_EQ(Decode(4, {0, 0, 0, 0}).index(), 1u);
  EXPECT_EQ(Decode(1, {}).index(), 2u);
  EXPECT_EQ(Decode(3, {}).index(), 3u);
}

TEST(RegistryDecoding, StringTypesGiveText) {
  const Bytes bytes = Characters({L"%windir%\0", 9});
  EXPECT_EQ(Decode(1, bytes), Text(L"%windir%"));
  EXPECT_EQ(Decode(2, bytes), Text(L"%windir%")) << "environment variables are not expanded";
  EXPECT_EQ(Decode(6, bytes), Text(L"%windir%"));
}

TEST(RegistryDecoding, StringEndsAtItsFirstZero) {
  EXPECT_EQ(Decode(1, Characters({L"one\0two\0", 8})), Text(L"one"));
  EXPECT_EQ(Decode(1, Characters({L"\0two\0", 5})), Text(L""));
}

TEST(RegistryDecoding, StringNeedsNoTerminator) { EXPECT_EQ(Decode(1, Characters(L"one")), Text(L"one")); }

TEST(RegistryDecoding, StringOfNoBytesIsEmpty) {
  EXPECT_EQ(Decode(1, {}), Text(L""));
  EXPECT_EQ(Decode(1, {0x41}), Text(L"")) << "half a character is none";
}

TEST(RegistryDecoding, StringLeavesOutAnIncompleteLastCharacter) {
  Bytes bytes = Characters(L"one");
  bytes.push_back(0x41);
  EXPECT_EQ(Decode(1, bytes), Text(L"one"));
}

TEST(RegistryDecoding, StringListIsSplitAtItsZeros) {
  EXPECT_EQ(Decode(7, Characters({L"one\0two\0\0", 9})), Strings({L"one", L"two"}));
  EXPECT_EQ(Decode(7, Characters({L"i\0three\0two\0\0", 13})), Strings({L"i", L"three", L"two"}));
}

TEST(RegistryDecoding, StringListEndsAtItsFirstEmptyString) {
  EXPECT_EQ(Decode(7, Characters({L"one\0\0two\0\0", 10})), Strings({L"one"}));
  EXPECT_EQ(Decode(7, Characters({L"\0one\0\0", 6})), Strings({}));
}

TEST(RegistryDecoding, StringListNeedsNoTerminators) {
  EXPECT_EQ(Decode(7, Characters({L"one\0two\0", 8})), Strings({L"one", L"two"}));
  EXPECT_EQ(Decode(7, Characters({L"one\0two", 7})), Strings({L"one", L"two"}));
  Bytes odd = Characters({L"one\0two", 7});
  odd.push_back(0x41);
  EXPECT_EQ(Decode(7, odd), Strings({L"one", L"two"}));
}

TEST(RegistryDecoding, StringListOfNoBytesIsEmpty) {
  EXPECT_EQ(Decode(7, {}), Strings({}));
  EXPECT_EQ(Decode(7, {0x41}), Strings({}));
}

TEST(RegistryDecoding, BinaryTypesGiveRawBytes) {
  const RegistryProperty expected = RawBytes({std::byte{1}, std::byte{0}, std::byte{0xFF}});
  for (const DWORD type : {3u, 8u, 9u, 10u}) {
    EXPECT_EQ(Decode(type, {1, 0, 0xFF}), expected) << "type " << type;
    EXPECT_EQ(Decode(type, {}), RawBytes({})) << "type " << type;
  }
}

TEST(RegistryDecoding, NumberHasItsLeastByteFirst) {
  EXPECT_EQ(Decode(4, {0x04, 0x03, 0x02, 0x81}), Number(0x81020304));
}

TEST(RegistryDecoding, BigEndianNumberHasItsLeastByteLast) {
  EXPECT_EQ(Decode(5, {0, 0, 1, 2}), Number(0x00000102));
  EXPECT_EQ(Decode(5, {0x81, 0x02, 0x03, 0x04}), Number(0x81020304));
}

TEST(RegistryDecoding, LongNumberHasSixtyFourBits) {
  EXPECT_EQ(Decode(11, {8, 7, 6, 5, 4, 3, 2, 0x81}), RegistryProperty(std::uint64_t{0x8102030405060708}));
}

TEST(RegistryDecoding, BytesBehindANumberAreIgnored) {
  EXPECT_EQ(Decode(4, {1, 0, 0, 0, 9}), Number(1));
  EXPECT_EQ(Decode(5, {0, 0, 0, 1, 9}), Number(1));
  EXPECT_EQ(Decode(11, {1, 0, 0, 0, 0, 0, 0, 0, 9}), RegistryProperty(std::uint64_t{1}));
}

TEST(RegistryDecoding, ShortNumberFailsItsCheck) {
  for (const Bytes& bytes : {Bytes{}, Bytes{1, 2}, Bytes{1, 2, 3}}) {
    EXPECT_THAT([&bytes] { Decode(4, bytes); },
                ThrowsMessage<std::runtime_error>(
                    "Failed assertion { in_prop_data.size () >= sizeof (std::uint32_t) } on line 27 of "
                    "RegistryProperty.cpp (RegistryProperty)"));
  }
}

TEST(RegistryDecoding, ShortBigEndianNumberFailsItsCheck) {
  for (const Bytes& bytes : {Bytes{}, Bytes{1, 2}, Bytes{1, 2, 3}}) {
    EXPECT_THAT([&bytes] { Decode(5, bytes); },
                ThrowsMessage<std::runtime_error>(
                    "Failed assertion { in_prop_data.size () >= sizeof (std::uint32_t) } on line 31 of "
                    "RegistryProperty.cpp (RegistryProperty)"));
  }
}

TEST(RegistryDecoding, ShortLongNumberFailsItsCheck) {
  for (const Bytes& bytes : {Bytes{}, Bytes{1, 2, 3, 4}, Bytes{1, 2, 3, 4, 5, 6, 7}}) {
    EXPECT_THAT([&bytes] { Decode(11, bytes); },
                ThrowsMessage<std::runtime_error>(
                    "Failed assertion { in_prop_data.size () >= sizeof (std::uint64_t) } on line 35 of "
                    "RegistryProperty.cpp (RegistryProperty)"));
  }
}

TEST(RegistryDecoding, OtherTypesGiveNothing) {
  for (const DWORD type : {0u, 12u, 0xFFFFFFFFu}) {
    EXPECT_EQ(Decode(type, {1, 2, 3, 4}), kNothing) << "type " << type;
    EXPECT_EQ(Decode(type, {}), kNothing) << "type " << type;
  }
}

/// One device; its description and its value "Value" have the data of the test.
class RegistryReading : public testing::Test {
 protected:
  void SetUp() override {
    FakePlatform::Reset();
    FakePlatform::AddDevice(Holding(FakePlatform::Number(7)));
    set_ = OpenPresentDevices(GUID{});
    device_.cbSize = sizeof(device_);
    ASSERT_TRUE(SetupDiEnumDeviceInfo(set_.get(), 0, &device_));
    key_ = SetupDiOpenDevRegKey(set_.get(), &device_, DICS_FLAG_GLOBAL, 0, DIREG_DRV, KEY_READ);
  }

  static FakePlatform::Device Holding(const FakePlatform::RegistryData& data) {
    return {std::nullopt, data, {{L"Value", data}}};
  }
  static void Hold(const FakePlatform::RegistryData& data) { FakePlatform::ReplaceDevice(0, Holding(data)); }

  RegistryProperty ReadProperty() { return ReadDeviceProperty(set_.get(), device_, SPDRP_DEVICEDESC); }
  RegistryProperty ReadValue() { return ReadRegistryValue(key_, L"Value"); }

 private:
  DeviceInfoSetHandle set_;
  SP_DEVINFO_DATA device_{};
  HKEY key_ = nullptr;
};

TEST_F(RegistryReading, DecodesByTheReportedType) {
  EXPECT_EQ(ReadProperty(), Number(7));
  EXPECT_EQ(ReadValue(), Number(7));
  Hold(FakePlatform::String(L"Gigabit Adapter"));
  EXPECT_EQ(ReadProperty(), Text(L"Gigabit Adapter"));
  EXPECT_EQ(ReadValue(), Text(L"Gigabit Adapter"));
}

TEST_F(RegistryReading, EmptyDataIsRead) {
  Hold({REG_BINARY, {}});
  EXPECT_EQ(ReadProperty(), RawBytes({}));
  EXPECT_EQ(ReadValue(), RawBytes({}));
}

TEST_F(RegistryReading, UnknownTypeGivesNothing) {
  Hold({12, {1, 2, 3}});
  EXPECT_EQ(ReadProperty(), kNothing);
  EXPECT_EQ(ReadValue(), kNothing);
}

TEST_F(RegistryReading, ShortNumberIsAnError) {
  Hold({REG_DWORD, {1, 2}});
  const auto message =
      "Failed assertion { in_prop_data.size () >= sizeof (std::uint32_t) } on line 27 of "
      "RegistryProperty.cpp (RegistryProperty)";
  EXPECT_THAT([this] { ReadProperty(); }, ThrowsMessage<std::runtime_error>(message));
  EXPECT_THAT([this] { ReadValue(); }, ThrowsMessage<std::runtime_error>(message));
}

TEST_F(RegistryReading, DataThatShrankBetweenTheCallsIsReadAsItIsNow) {
  const auto shrink = [] { Hold({REG_BINARY, {9}}); };
  FakePlatform::OnCall("SetupDiGetDeviceRegistryPropertyW", 2, shrink);
  EXPECT_EQ(ReadProperty(), RawBytes({std::byte{9}}));
  Hold(FakePlatform::Number(7));
  FakePlatform::OnCall("RegQueryValueExW", 2, shrink);
  EXPECT_EQ(ReadValue(), RawBytes({std::byte{9}}));
}

TEST_F(RegistryReading, DataThatGrewBetweenTheCallsIsAnError) {
  const auto grow = [] { Hold({REG_BINARY, {1, 2, 3, 4, 5}}); };
  FakePlatform::OnCall("SetupDiGetDeviceRegistryPropertyW", 2, grow);
  EXPECT_THAT([this] { ReadProperty(); },
              ThrowsMessage<std::runtime_error>(
                  "[0x0000007A] System message. (on line: 56 of RegistryProperty.cpp) FromCallback"));
  Hold(FakePlatform::Number(7));
  FakePlatform::OnCall("RegQueryValueExW", 2, grow);
  EXPECT_THAT([this] { ReadValue(); },
              ThrowsMessage<std::runtime_error>(testing::HasSubstr("[0x000000EA] System message.")));
}

TEST_F(RegistryReading, PropertySizeQueryMayFailForWantOfABuffer) {
  for (const DWORD code : {0u, 122u, 234u}) {
    SetUp();
    FakePlatform::FailCall("SetupDiGetDeviceRegistryPropertyW", 1, code);
    EXPECT_EQ(ReadProperty(), Number(7)) << "code " << code;
  }
}

TEST_F(RegistryReading, OtherFailureOfThePropertySizeQueryIsAnError) {
  FakePlatform::FailCall("SetupDiGetDeviceRegistryPropertyW", 1, ERROR_INVALID_DATA);
  EXPECT_THAT([this] { ReadProperty(); },
              ThrowsMessage<std::runtime_error>(
                  "[0x0000000D] System message. (on line: 52 of RegistryProperty.cpp) FromCallback"));
}

TEST_F(RegistryReading, FailureOfThePropertyReadIsAnError) {
  for (const DWORD code : {5u, 122u, 234u}) {
    SetUp();
    FakePlatform::FailCall("SetupDiGetDeviceRegistryPropertyW", 2, code);
    EXPECT_THAT([this] { ReadProperty(); },
                ThrowsMessage<std::runtime_error>(
                    testing::HasSubstr("System message. (on line: 56 of RegistryProperty.cpp) FromCallback")))
        << "code " << code;
  }
}

TEST_F(RegistryReading, FailureOfEitherValueQueryIsAnError) {
  for (const int occurrence : {1, 2}) {
    SetUp();
    FakePlatform::FailCall("RegQueryValueExW", occurrence, ERROR_KEY_DELETED, ERROR_ACCESS_DENIED);
    EXPECT_THAT([this] { ReadValue(); },
                ThrowsMessage<std::runtime_error>(
                    testing::AllOf(testing::HasSubstr("[0x000003FA] System message. (on line: "),
                                   testing::HasSubstr(" of RegistryProperty.cpp) RegQueryValueExW"))))
        << "occurrence " << occurrence;
  }
}

}  // namespace
}  // namespace Tarnwell
