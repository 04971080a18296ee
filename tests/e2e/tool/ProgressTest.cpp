#include "Progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using std::chrono::seconds;

class ProgressTest : public testing::Test {
 protected:
  Progress::Clock::time_point now_;
  std::ostringstream terminal_;
};

TEST_F(ProgressTest, SaysNothingOfShortWork) {
  {
    Progress progress(&terminal_, [this] { return now_; });
    const auto show = progress.Of("map");
    show(1, 4);
    now_ += std::chrono::milliseconds(1999);
    show(2, 4);
  }
  EXPECT_EQ(terminal_.str(), "");
}

TEST_F(ProgressTest, TellsOfLongWorkOnOneLineAndWipesIt) {
  {
    Progress progress(&terminal_, [this] { return now_; });
    const auto show = progress.Of("promises");
    now_ += seconds(2);
    show(9, 10);
    progress.Of("map")(1, 4);
  }
  EXPECT_EQ(terminal_.str(),
            "\rpromises: 9 of 10"
            "\rmap: 1 of 4      "
            "\r                 \r");
}

TEST_F(ProgressTest, IsSilentWithoutATerminal) {
  Progress progress(nullptr, [this] { return now_; });
  now_ += seconds(9);
  progress.Of("map")(1, 4);
}

}  // namespace
