// The module's registration with the host engine.
#include <cstdio>

#include "module/predicates.h"

void init_refgrove(void) {
  std::puts("init_refgrove:");
  std::puts("[]");
}

int lumox_module_init_appl_refgrove_refgrove(void) {
  init_refgrove();
  LUMOXRegisterAllTypes();
  return 1;
}

int refgrove_hello(LumoxMachine* m) {
  lumox_global_machine = m;
  init_refgrove();
  return 1;
}
