#include "emulator/Worker.h"

#include <condition_variable>
#include <mutex>
#include <queue>
#include <utility>

namespace EngineEmulator {

/// Shared with the thread, which may outlive the worker that it destroys.
struct Worker::Queue {
  std::mutex mutex;
  std::condition_variable changed;
  std::queue<std::function<void()>> works;
  bool stopped = false;

  /// Waits for the next work. Empty when there will be none.
  std::function<void()> Take() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return stopped || !works.empty(); });
    if (stopped) {
      return nullptr;
    }
    std::function<void()> work = std::move(works.front());
    works.pop();
    return work;
  }
};

Worker::Worker() : queue_(std::make_shared<Queue>()) {
  thread_ = std::thread([queue = queue_] {
    while (const std::function<void()> work = queue->Take()) {
      work();
    }
  });
}

Worker::~Worker() {
  {
    const std::lock_guard lock(queue_->mutex);
    queue_->stopped = true;
  }
  queue_->changed.notify_all();
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}

void Worker::Post(std::function<void()> work) {
  {
    const std::lock_guard lock(queue_->mutex);
    queue_->works.push(std::move(work));
  }
  queue_->changed.notify_all();
}

std::size_t Worker::CountWaiting() const {
  const std::lock_guard lock(queue_->mutex);
  return queue_->works.size();
}

}  // namespace EngineEmulator
