#include "python/watched_run.h"

#include <pybind11/pybind11.h>

#include <chrono>
#include <exception>
#include <future>
#include <mutex>
#include <optional>

#include "core/validate.h"

namespace refgrove::python {
namespace {

namespace py = pybind11;

std::mutex run_mutex;

}  // namespace

std::vector<std::string> WatchedRunHooks::check(const std::string& dir) {
  stop_point();
  std::vector<std::string> problems;
  for (const Finding& f : validate_data_dir(dir)) problems.push_back(f.text());
  return problems;
}

void WatchedRunHooks::stop_point() const {
  if (stop_) throw RunStopped();
}

void watched_run(const std::function<void(WatchedRunHooks&)>& work, const std::function<void()>& report) {
  WatchedRunHooks hooks;
  std::future<void> run = std::async(std::launch::async, [&] {
    const std::lock_guard one_at_a_time(run_mutex);
    work(hooks);
  });
  std::optional<py::error_already_set> pending;  // the interrupt or the report's exception
  for (bool done = false; !done;) {
    {
      const py::gil_scoped_release release;
      done = run.wait_for(std::chrono::milliseconds(100)) == std::future_status::ready;
    }
    try {
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
      if (!pending) report();
    } catch (py::error_already_set& e) {
      if (!pending) pending = std::move(e);
      hooks.stop_ = true;
    }
  }
  // The caller's exception comes first: it may be why the run stopped.
  std::exception_ptr failure;
  try {
    run.get();
  } catch (...) {
    failure = std::current_exception();
  }
  if (pending) throw std::move(*pending);
  if (failure) std::rethrow_exception(failure);
}

}  // namespace refgrove::python
