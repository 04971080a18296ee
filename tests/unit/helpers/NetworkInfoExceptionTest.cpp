#include "helpers/NetworkInfoException.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace WfpFirewall::Helpers {
namespace {

TEST(NetworkInfoException, SaysNothingByDefault) {
  const NetworkInfoException exception;
  EXPECT_STREQ(exception.what(), "");
  EXPECT_EQ(exception.GetErrorCode(), 0);
}

TEST(NetworkInfoException, CopiesItsMessage) {
  std::string message = "no adapters";
  const NetworkInfoException exception(message.c_str());
  message = "overwritten";
  EXPECT_STREQ(exception.what(), "no adapters");
  EXPECT_EQ(exception.GetErrorCode(), 0);
}

TEST(NetworkInfoException, CarriesACode) {
  const NetworkInfoException exception("no adapters", 87);
  EXPECT_STREQ(exception.what(), "no adapters");
  EXPECT_EQ(exception.GetErrorCode(), 87);
}

TEST(NetworkInfoException, TakesOverTheMessageOfAnotherException) {
  const NetworkInfoException exception(std::runtime_error("device gone"));
  EXPECT_STREQ(exception.what(), "device gone");
  EXPECT_EQ(exception.GetErrorCode(), 0);
}

TEST(NetworkInfoException, IsCaughtAsAStandardException) {
  try {
    throw NetworkInfoException("no adapters", 87);
  } catch (const std::exception& exception) {
    EXPECT_STREQ(exception.what(), "no adapters");
  }
}

}  // namespace
}  // namespace WfpFirewall::Helpers
