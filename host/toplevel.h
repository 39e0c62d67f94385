// A Prolog-like toplevel over the simulated host: loads refgrove.so with
// dlopen, calls its entry, and runs goals against its foreign predicates.
#ifndef REFGROVE_HOST_TOPLEVEL_H_
#define REFGROVE_HOST_TOPLEVEL_H_

#include <map>
#include <ostream>
#include <string>

#include "module/host_machine.h"

namespace refgrove {

namespace toplevel {

using Predicate = int (*)(LumoxMachine*);

// The module's predicates by name, with their arities.
const std::map<std::string, int>& predicate_arities();

class Toplevel {
 public:
  // Loads the module and calls its entry; throws std::runtime_error when the
  // module cannot be loaded or its entry is missing or fails.
  explicit Toplevel(const std::string& module_path);
  ~Toplevel();
  Toplevel(const Toplevel&) = delete;
  Toplevel& operator=(const Toplevel&) = delete;

  enum class Outcome { kTrue, kFalse, kError, kHalt };

  // Runs one goal (without its final '.'), writing the answer ("X = 1." or
  // "true.", or "false.") to `out` and errors to `err`.
  Outcome run(const std::string& goal, std::ostream& out, std::ostream& err);

 private:
  Predicate predicate(const std::string& name);

  void* handle_ = nullptr;
  LumoxMachine* machine_ = nullptr;
  std::map<std::string, Predicate> loaded_;
};

}  // namespace toplevel

}  // namespace refgrove

#endif  // REFGROVE_HOST_TOPLEVEL_H_
