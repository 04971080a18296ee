#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>

/// What is written to a stream, for another thread to wait for.
class WatchedOutput : public std::streambuf {
 public:
  explicit WatchedOutput(std::ostream& stream) : stream_(stream), before_(stream.rdbuf(this)) {}
  ~WatchedOutput() override { stream_.rdbuf(before_); }
  WatchedOutput(const WatchedOutput&) = delete;
  WatchedOutput& operator=(const WatchedOutput&) = delete;

  [[nodiscard]] std::string Text() const {
    const std::lock_guard lock(mutex_);
    return flushed_;
  }
  /// Waits for a text that has been flushed. @return whether it came.
  [[nodiscard]] bool WaitFor(const std::string& text) {
    std::unique_lock lock(mutex_);
    return written_.wait_for(lock, std::chrono::seconds(60),
                             [&] { return flushed_.find(text) != std::string::npos; });
  }

 protected:
  int_type overflow(int_type character) override {
    pending_ += traits_type::to_char_type(character);
    return character;
  }
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    pending_.append(text, static_cast<std::size_t>(count));
    return count;
  }
  int sync() override {
    const std::lock_guard lock(mutex_);
    flushed_ += std::exchange(pending_, {});
    written_.notify_all();
    return 0;
  }

 private:
  std::ostream& stream_;
  std::streambuf* before_;
  mutable std::mutex mutex_;
  std::condition_variable written_;
  std::string pending_;
  std::string flushed_;
};
