// ConnectionThreads: the task queue of the explorer's HTTP server, one
// thread per open connection.
//
// cpp-httplib serves a connection on one task for as long as the client
// keeps it open, waiting for its next request in between. With a fixed pool,
// a few hundred idle clients would hold every thread and nobody else would
// be answered. Here a connection that finds no idle thread starts one (up to
// `max_threads`; past that it waits for a thread to come free), and a thread
// that has had nothing to do for `idle_time` ends, which also releases the
// data set it last read (see core/data_set_slot.h).
#ifndef REFGROVE_WEB_CONNECTION_THREADS_H_
#define REFGROVE_WEB_CONNECTION_THREADS_H_

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace refgrove::web {

class ConnectionThreads : public httplib::TaskQueue {
 public:
  ConnectionThreads(std::size_t max_threads, std::chrono::milliseconds idle_time);
  ~ConnectionThreads() override;  // shutdown()

  void enqueue(std::function<void()> task) override;
  // Runs what is queued, then waits for every thread to end.
  void shutdown() override;

 private:
  void work();

  const std::size_t max_threads_;
  const std::chrono::milliseconds idle_time_;
  std::mutex mutex_;  // guards everything below
  std::condition_variable task_ready_, thread_ended_;
  std::deque<std::function<void()>> tasks_;
  std::size_t threads_ = 0;
  std::size_t idle_ = 0;  // threads waiting for a task
  bool stopping_ = false;
};

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_CONNECTION_THREADS_H_
