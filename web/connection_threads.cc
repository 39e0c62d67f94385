#include "web/connection_threads.h"

#include <system_error>
#include <thread>

namespace refgrove::web {

ConnectionThreads::ConnectionThreads(std::size_t max_threads, std::chrono::milliseconds idle_time)
    : max_threads_(max_threads), idle_time_(idle_time) {}

ConnectionThreads::~ConnectionThreads() { shutdown(); }

void ConnectionThreads::enqueue(std::function<void()> task) {
  std::lock_guard lock(mutex_);
  tasks_.push_back(std::move(task));
  if (idle_ >= tasks_.size()) {
    task_ready_.notify_one();
  } else if (threads_ < max_threads_) {
    try {
      std::thread([this] { work(); }).detach();
      ++threads_;
    } catch (const std::system_error&) {
      // The system has no thread to give: the task waits for one of ours.
    }
  }
}

void ConnectionThreads::shutdown() {
  std::unique_lock lock(mutex_);
  stopping_ = true;
  task_ready_.notify_all();
  thread_ended_.wait(lock, [this] { return threads_ == 0; });
}

void ConnectionThreads::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idle_;
    task_ready_.wait_for(lock, idle_time_, [this] { return !tasks_.empty() || stopping_; });
    --idle_;
    if (tasks_.empty()) break;  // idle too long, or stopping
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    lock.lock();
  }
  --threads_;
  thread_ended_.notify_all();
}

}  // namespace refgrove::web
