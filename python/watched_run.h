// A staged run (preprocessing, an import) made from Python: on a thread of
// its own, one at a time in the process as in the SWI-Prolog library, while
// the calling thread, holding the GIL only for that, reports progress and
// watches for an interrupt.
//
// An interrupt (Ctrl-C), or an exception from the report, stops the run at
// the next point where it can stop (between input files, or at the check
// of the data made), before the target is touched; the call returns once
// the run has ended, raising the caller's exception first.
#ifndef REFGROVE_PYTHON_WATCHED_RUN_H_
#define REFGROVE_PYTHON_WATCHED_RUN_H_

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "preproc/staged_preprocess.h"

namespace refgrove::python {

// The hooks of a watched run: the data made is checked as the tool checks
// it, and the check throws RunStopped once the caller asked to stop.
class WatchedRunHooks : public StagedRunHooks {
 public:
  std::vector<std::string> check(const std::string& dir) override;
  // Throws RunStopped when the caller asked the run to stop.
  void stop_point() const;

 private:
  friend void watched_run(const std::function<void(WatchedRunHooks&)>&, const std::function<void()>&);
  std::atomic<bool> stop_{false};
};

// Thrown by stop_point(); what the caller raised is raised instead.
struct RunStopped {};

// Runs `work` on a thread of its own and calls `report` (with the GIL)
// about ten times a second until it ends. Rethrows what `work` threw,
// after the interrupt or the exception of `report` when there was one.
void watched_run(const std::function<void(WatchedRunHooks&)>& work, const std::function<void()>& report);

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_WATCHED_RUN_H_
