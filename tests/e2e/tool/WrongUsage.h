#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

/// A command line that is refused, with parts of the message and of the hint.
struct WrongUse {
  std::vector<std::wstring> arguments;
  const char* wrong;
  const char* right;
};

inline void PrintTo(const WrongUse& use, std::ostream* out) { *out << use.wrong; }

/// CommandLineTest.cpp says what becomes of each.
class WrongUsage : public testing::TestWithParam<WrongUse> {};
