/**
 * @file
 * What callbacks of the engine have heard.
 */
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Collects texts that a callback notes on the engine's thread.
class CallbackLog {
 public:
  void Note(const std::string& text) {
    const std::lock_guard lock(mutex_);
    texts_.push_back(text);
    thread_ = std::this_thread::get_id();
    noted_.notify_all();
  }

  /// Waits until there are `count` texts.
  std::vector<std::string> Await(std::size_t count) {
    std::unique_lock lock(mutex_);
    noted_.wait(lock, [&] { return texts_.size() >= count; });
    return texts_;
  }

  std::vector<std::string> Texts() {
    const std::lock_guard lock(mutex_);
    return texts_;
  }

  /// Of the last text.
  std::thread::id Thread() {
    const std::lock_guard lock(mutex_);
    return thread_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable noted_;
  std::vector<std::string> texts_;
  std::thread::id thread_;
};
