// The module's entry points and foreign predicates, as the host engine calls
// them: each predicate takes the machine, reads its arguments from the
// argument registers A1 .. A4 and returns 1 for success, 0 for failure.
#ifndef REFGROVE_MODULE_PREDICATES_H_
#define REFGROVE_MODULE_PREDICATES_H_

#include "core/predicate_table.h"
#include "module/host_machine.h"
#include "refgrove/export.h"

// The host's C entry points: global, as the host finds them by name.
#define REFGROVE_PREDICATE extern "C" REFGROVE_EXPORT int

// Called once by the host when it loads the module.
REFGROVE_PREDICATE lumox_module_init_appl_refgrove_refgrove(void);
// Prints the module's start lines.
extern "C" REFGROVE_EXPORT void init_refgrove(void);

// One foreign predicate per entry of the table, exported under its name.
#define REFGROVE_DECLARE_PREDICATE(name, arity, ...) REFGROVE_PREDICATE name(LumoxMachine* m);
REFGROVE_HOST_PREDICATES(REFGROVE_DECLARE_PREDICATE)
#undef REFGROVE_DECLARE_PREDICATE

#endif  // REFGROVE_MODULE_PREDICATES_H_
