#include "host/toplevel.h"

#include <dlfcn.h>

#include <cstdio>
#include <iostream>
#include <stdexcept>

#include "core/predicate_table.h"
#include "host/host_engine.h"
#include "host/term_text.h"

namespace refgrove {

namespace toplevel {

const std::map<std::string, int>& predicate_arities() {
  static const std::map<std::string, int> arities = {
#define REFGROVE_ARITY(name, arity, ...) {#name, arity},
      REFGROVE_HOST_PREDICATES(REFGROVE_ARITY)
#undef REFGROVE_ARITY
  };
  return arities;
}

Toplevel::Toplevel(const std::string& module_path) {
  machine_ = lumox_sim::create_machine();
  handle_ = dlopen(module_path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const std::string why = dlerror();
    lumox_sim::destroy_machine(machine_);
    throw std::runtime_error("cannot load the module: " + why);
  }
  auto entry = reinterpret_cast<int (*)()>(dlsym(handle_, "lumox_module_init_appl_refgrove_refgrove"));
  if (entry == nullptr || entry() != 1) {
    dlclose(handle_);
    lumox_sim::destroy_machine(machine_);
    throw std::runtime_error("the module's entry is missing or failed: " + module_path);
  }
  std::fflush(stdout);
}

Toplevel::~Toplevel() {
  // The module stays loaded until the process ends, as under the host: its
  // data set and streams may still be referenced at exit.
  lumox_sim::destroy_machine(machine_);
}

Predicate Toplevel::predicate(const std::string& name) {
  auto it = loaded_.find(name);
  if (it != loaded_.end()) return it->second;
  Predicate p = reinterpret_cast<Predicate>(dlsym(handle_, name.c_str()));
  if (p != nullptr) loaded_.emplace(name, p);
  return p;
}

Toplevel::Outcome Toplevel::run(const std::string& goal, std::ostream& out, std::ostream& err) {
  LumoxMachine* m = machine_;
  lumox_sim::reset(m);
  Query query;
  try {
    query = parse_query(m, goal);
  } catch (const SyntaxError& e) {
    err << "ERROR: syntax error: " << e.what() << "\n";
    return Outcome::kError;
  } catch (const lumox_sim::HostLimitError& e) {
    err << "ERROR: host limit reached: " << e.what() << "\n";
    return Outcome::kError;
  }
  // The goal's variables are older than anything the calls create.
  lumox_sim::set_trail_boundary_to_heap_top(m);

  for (const Call& call : query.calls) {
    const int arity = static_cast<int>(call.args.size());
    if (call.name == "halt" && arity == 0) return Outcome::kHalt;
    if (call.name == "true" && arity == 0) continue;
    if ((call.name == "fail" || call.name == "false") && arity == 0) {
      out << "false.\n";
      return Outcome::kFalse;
    }
    auto known = predicate_arities().find(call.name);
    Predicate p = known != predicate_arities().end() && known->second == arity ? predicate(call.name) : nullptr;
    if (p == nullptr) {
      err << "ERROR: unknown procedure " << call.name << "/" << arity << "\n";
      return Outcome::kError;
    }
    for (int k = 0; k < 4; ++k) m->args[k] = k < arity ? call.args[static_cast<std::size_t>(k)] : nil_atom;
    int result = 0;
    try {
      result = p(m);
    } catch (const LumoxObjectCreationError& e) {
      err << "ERROR: " << e.message << "\n";
      return Outcome::kError;
    } catch (const std::exception& e) {
      err << "ERROR: " << call.name << "/" << arity << ": " << e.what() << "\n";
      return Outcome::kError;
    }
    // Root entries live for one foreign call.
    m->root_count = 0;
    std::fflush(stdout);
    std::cout.flush();
    if (result == 0) {
      out << "false.\n";
      return Outcome::kFalse;
    }
  }
  out << format_answer(query) << "\n";
  return Outcome::kTrue;
}

}  // namespace toplevel

}  // namespace refgrove
