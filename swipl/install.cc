// The entry point that use_foreign_library/1 calls: registers every
// foreign predicate in the module that loads the library (refgrove).
#include "refgrove/export.h"
#include "swipl/library_data.h"

namespace refgrove::swipl {

DataSetSlot& library_slot() {
  static DataSetSlot slot;
  return slot;
}

}  // namespace refgrove::swipl

extern "C" REFGROVE_EXPORT install_t install_refgrove4pl() {
  using namespace refgrove::swipl;
  for (const auto& predicates :
       {host_predicates(), relation_predicates(), network_predicates(), search_predicates(), fronts_predicates()}) {
    for (const ForeignPredicate& p : predicates) {
      const int flags = PL_FA_VARARGS | (p.nondeterministic ? PL_FA_NONDETERMINISTIC : 0);
      PL_register_foreign(p.name, p.arity, reinterpret_cast<pl_function_t>(p.function), flags);
    }
  }
}
