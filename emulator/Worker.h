/**
 * @file
 * A thread that runs what it is given, one after the other.
 */
#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace EngineEmulator {

class Worker {
 public:
  Worker();
  /// What waits is dropped. What runs ends first, unless it is what destroys the worker.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void Post(std::function<void()> work);
  /// What has been posted and does not run yet.
  [[nodiscard]] std::size_t CountWaiting() const;

 private:
  struct Queue;
  std::shared_ptr<Queue> queue_;
  std::thread thread_;
};

}  // namespace EngineEmulator
