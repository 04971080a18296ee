#include "helpers/tarnwell/IPHelper.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "support/FakePlatform.h"

namespace Tarnwell {
namespace {

using testing::ThrowsMessage;

class IPHelper : public testing::Test {
 protected:
  void SetUp() override {
    FakePlatform::Reset();
    FakePlatform::AddAdapter({L"Ethernet", L"Gigabit Adapter", 0x0006008000000000, 6, {}});
  }
};

TEST_F(IPHelper, FindsTheIndexOfALuid) { EXPECT_EQ(LuidToIndex(0x0006008000000000), 2u); }

TEST_F(IPHelper, UnknownLuidIsAnError) {
  EXPECT_THAT([] { LuidToIndex(0x0006008001000000); },
              ThrowsMessage<std::runtime_error>(
                  "[0x00000002] System message. (on line: 35 of IPHelper.cpp) ConvertInterfaceLuidToIndex"));
}

TEST_F(IPHelper, ErrorCodeIsTheResultOfTheCall) {
  FakePlatform::FailCall("ConvertInterfaceLuidToIndex", 1, ERROR_INVALID_PARAMETER, ERROR_ACCESS_DENIED);
  EXPECT_THAT([] { LuidToIndex(0x0006008000000000); },
              ThrowsMessage<std::runtime_error>(
                  "[0x00000057] System message. (on line: 35 of IPHelper.cpp) ConvertInterfaceLuidToIndex"));
}

}  // namespace
}  // namespace Tarnwell
