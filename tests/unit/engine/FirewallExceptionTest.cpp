#include "engine/FirewallException.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

namespace WfpFirewall {
namespace {

TEST(FirewallException, CarriesTextAndCode) {
  const FirewallException exception("Error opening engine.", 0x80320009);
  EXPECT_STREQ(exception.what(), "Error opening engine.");
  EXPECT_EQ(exception.GetErrorCode(), 0x80320009u);
}

TEST(FirewallException, CodeIsOneUnlessGiven) {
  EXPECT_EQ(FirewallException("Not supported Layer type.").GetErrorCode(), 1u);
  EXPECT_EQ(kNoEngineCode, 1u);
}

TEST(FirewallException, CopiesItsText) {
  auto text = std::make_unique<std::string>("a text long enough to be kept outside the string object");
  const FirewallException exception(*text);
  text.reset();
  EXPECT_STREQ(exception.what(), "a text long enough to be kept outside the string object");
}

TEST(FirewallException, CopiesAreWhole) {
  auto original = std::make_unique<FirewallException>("Failed to begin transaction.", 5);
  const FirewallException copy = *original;
  original.reset();
  EXPECT_STREQ(copy.what(), "Failed to begin transaction.");
  EXPECT_EQ(copy.GetErrorCode(), 5u);
}

TEST(FirewallException, IsCaughtAsTheStandardException) {
  static_assert(std::is_base_of_v<std::exception, FirewallException>);
  try {
    throw FirewallException("Failed to add provider");
  } catch (const std::exception& caught) {
    EXPECT_STREQ(caught.what(), "Failed to add provider");
  }
}

}  // namespace
}  // namespace WfpFirewall
