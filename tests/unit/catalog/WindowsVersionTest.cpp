#include "catalog/WindowsVersion.h"

#include <gtest/gtest.h>

namespace Catalog {
namespace {

TEST(WindowsVersion, FollowsFromTheBuild) {
  EXPECT_EQ(VersionOfBuild(17134), WindowsVersion::Windows10);
  EXPECT_EQ(VersionOfBuild(19041), WindowsVersion::Windows10);
  EXPECT_EQ(VersionOfBuild(21999), WindowsVersion::Windows10);
  EXPECT_EQ(VersionOfBuild(22000), WindowsVersion::Windows11);
  EXPECT_EQ(VersionOfBuild(26099), WindowsVersion::Windows11);
  EXPECT_EQ(VersionOfBuild(26100), WindowsVersion::Windows24H2);
  EXPECT_EQ(VersionOfBuild(27000), WindowsVersion::Windows24H2);
}

TEST(WindowsVersion, HasAName) {
  EXPECT_EQ(WindowsVersionName(WindowsVersion::Windows10), "Windows 10");
  EXPECT_EQ(WindowsVersionName(WindowsVersion::Windows11), "Windows 11 before 24H2");
  EXPECT_EQ(WindowsVersionName(WindowsVersion::Windows24H2), "Windows 11 24H2");
}

}  // namespace
}  // namespace Catalog
