#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>

/// Tells a person at a terminal how far long work is. It says nothing before two seconds have passed, and
/// wipes its line at the end.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  /// On stderr, if that is a terminal.
  Progress();
  /// @param terminal null to say nothing.
  explicit Progress(std::ostream* terminal, std::function<Clock::time_point()> now = &Clock::now);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// To be called with each part that is done: "map: 2 of 4".
  std::function<void(std::size_t done, std::size_t total)> Of(std::string work);

 private:
  void Show(const std::string& work, std::size_t done, std::size_t total);

  std::ostream* terminal_;
  std::function<Clock::time_point()> now_;
  Clock::time_point begin_;
  std::size_t shown_ = 0;  ///< characters on the line
};
