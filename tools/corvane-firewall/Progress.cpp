#include "Progress.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "IsTerminal.h"

namespace {

constexpr std::chrono::seconds kPatience{2};

}  // namespace

Progress::Progress() : Progress(IsErrorsTerminal() ? &std::cerr : nullptr) {}

Progress::Progress(std::ostream* terminal, std::function<Clock::time_point()> now)
    : terminal_(terminal), now_(std::move(now)), begin_(now_()) {}

Progress::~Progress() {
  if (shown_ > 0) {
    *terminal_ << '\r' << std::string(shown_, ' ') << '\r' << std::flush;
  }
}

std::function<void(std::size_t, std::size_t)> Progress::Of(std::string work) {
  return [this, work = std::move(work)](std::size_t done, std::size_t total) { Show(work, done, total); };
}

void Progress::Show(const std::string& work, std::size_t done, std::size_t total) {
  if (terminal_ == nullptr || now_() - begin_ < kPatience) {
    return;
  }
  const std::string line = work + ": " + std::to_string(done) + " of " + std::to_string(total);
  *terminal_ << '\r' << line << std::string(line.size() < shown_ ? shown_ - line.size() : 0, ' ')
             << std::flush;
  shown_ = std::max(shown_, line.size());
}
