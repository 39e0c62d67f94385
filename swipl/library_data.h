// The data set of the library and the pieces shared by its predicates.
//
// The library keeps its own data set, apart from the module's global one,
// in a DataSetSlot: Prolog threads query it in parallel without taking a
// lock, and a load publishes a new set without disturbing the calls in
// progress. A deterministic predicate reads the set through the slot's
// per-thread reference for the length of its call (it copies every text
// into an atom before returning); a nondeterministic one holds its own
// reference across its redos.
#ifndef REFGROVE_SWIPL_LIBRARY_DATA_H_
#define REFGROVE_SWIPL_LIBRARY_DATA_H_

#include <SWI-Prolog.h>

#include <exception>
#include <new>
#include <span>

#include "core/data_set_slot.h"
#include "core/data_view.h"
#include "swipl/foreign_args.h"

namespace refgrove::swipl {

DataSetSlot& library_slot();

// Thrown by a query before any load; guarded() raises it as
// error(existence_error(refgrove_data_set, loaded), _).
struct NoDataSetLoaded {};

// The set to query: the published one.
inline const DataSetPtr& loaded_set() {
  const DataSetPtr& set = library_slot().current();
  if (!set) throw NoDataSetLoaded{};
  return set;
}
inline const RefgroveData& current_data() { return *loaded_set(); }

// Every foreign predicate has the variadic signature: its arguments are
// the `arity` term references from `args` on.
using ForeignFunction = foreign_t (*)(term_t args, int arity, control_t control);

// `function` with C++ exceptions turned into Prolog ones: none may cross
// into the Prolog engine (building a reverse index may run out of memory).
template <ForeignFunction function>
foreign_t guarded(term_t args, int arity, control_t control) noexcept {
  try {
    return function(args, arity, control);
  } catch (const NoDataSetLoaded&) {
    return raise_existence_error("refgrove_data_set", "loaded");
  } catch (const std::bad_alloc&) {
    return PL_resource_error("memory");
  } catch (const std::exception& e) {
    return raise_error("refgrove_error", {e.what()});
  } catch (...) {
    return raise_error("refgrove_error", {"unexpected exception"});
  }
}

struct ForeignPredicate {
  const char* name;
  int arity;
  ForeignFunction function;
  bool nondeterministic;
};

// The predicates of each source file, registered by install_refgrove4pl:
// those of the host binding's table (core/predicate_table.h), and the
// library's own.
std::span<const ForeignPredicate> host_predicates();
std::span<const ForeignPredicate> relation_predicates();

// refgrove_load/1 and refgrove_preproc/2.
foreign_t load_pred(term_t args, int arity, control_t control);
foreign_t preproc_pred(term_t args, int arity, control_t control);

std::span<const ForeignPredicate> network_predicates();
std::span<const ForeignPredicate> search_predicates();
std::span<const ForeignPredicate> fronts_predicates();

}  // namespace refgrove::swipl

#endif  // REFGROVE_SWIPL_LIBRARY_DATA_H_
