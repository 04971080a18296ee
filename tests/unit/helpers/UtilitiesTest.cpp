#include "helpers/tarnwell/Utilities.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

#include "support/FakePlatform.h"

namespace Tarnwell {
namespace {

class Utilities : public testing::Test {
 protected:
  void SetUp() override { FakePlatform::Reset(); }
};

std::string SystemErrorText(const char* unit, int line, DWORD code, const char* call) {
  try {
    RaiseSystemError(unit, line, code, call);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST_F(Utilities, SystemErrorNamesCodeMessageLineUnitAndCall) {
  FakePlatform::SetSystemMessage(5, "Access is denied.\r\n");
  EXPECT_EQ(SystemErrorText("Unit.cpp", 12, 5, "SomeCall"),
            "[0x00000005] Access is denied.\r\n (on line: 12 of Unit.cpp) SomeCall");
}

TEST_F(Utilities, SystemErrorShowsAllEightDigitsOfTheCode) {
  EXPECT_EQ(SystemErrorText("Unit.cpp", 12, 0xE000020B, "SomeCall"),
            "[0xE000020B] System message. (on line: 12 of Unit.cpp) SomeCall");
}

TEST_F(Utilities, SystemErrorTextIsNeverCutOff) {
  const std::string longMessage(100000, 'x');
  FakePlatform::SetSystemMessage(5, longMessage);
  EXPECT_EQ(SystemErrorText("Unit.cpp", 12, 5, "SomeCall"),
            "[0x00000005] " + longMessage + " (on line: 12 of Unit.cpp) SomeCall");
}

TEST_F(Utilities, PercentSignsOfTheSystemMessageAreText) {
  FakePlatform::SetSystemMessage(193, "%1 is not a valid Win32 application; %s%n");
  EXPECT_EQ(SystemErrorText("Unit.cpp", 12, 193, "SomeCall"),
            "[0x000000C1] %1 is not a valid Win32 application; %s%n (on line: 12 of Unit.cpp) SomeCall");
}

TEST_F(Utilities, SystemMessageIsAskedForInTheNeutralLanguageAndGivenBack) {
  SystemErrorText("Unit.cpp", 12, 5, "SomeCall");
  EXPECT_EQ(FakePlatform::GetCalls(),
            (std::vector<std::string>{"FormatMessageA(1100, 5, 400)", "LocalFree()"}));
  EXPECT_EQ(FakePlatform::GetOpenHandles(), FakePlatform::OpenHandles{});
}

TEST_F(Utilities, FailureToFindTheSystemMessageIsADoubleFailure) {
  FakePlatform::FailCall("FormatMessageA", 1, 0, ERROR_MR_MID_NOT_FOUND);
  EXPECT_EQ(SystemErrorText("Unit.cpp", 12, 5, "SomeCall"),
            "Double failure: failed FormatMessageA with code 0x0000013D.");
  EXPECT_EQ(FakePlatform::GetCalls(), std::vector<std::string>{"FormatMessageA(1100, 5, 400)"});
}

TEST_F(Utilities, FailedAssertionNamesExpressionLineUnitAndItsName) {
  EXPECT_THAT(
      [] { RaiseFailedAssertion("1 > 2", 40, "Unit.cpp", "Unit"); },
      testing::ThrowsMessage<std::runtime_error>("Failed assertion { 1 > 2 } on line 40 of Unit.cpp (Unit)"));
  EXPECT_TRUE(FakePlatform::GetCalls().empty());
}

}  // namespace
}  // namespace Tarnwell
