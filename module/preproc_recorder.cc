#include "module/preproc_recorder.h"

#include "core/refgrove.h"

std::vector<std::pair<std::string, std::string>>& preproc_calls() {
  static std::vector<std::pair<std::string, std::string>> calls;
  return calls;
}

void refgrove_preproc_1(const char* a, const char* b) {
  preproc_calls().emplace_back(a, b);
  if (std::string(a) == "throw/") throw std::runtime_error("preprocessing failed");
}
