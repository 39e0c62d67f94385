// Stands in for preprocessing in the binding's tests: records the
// directories it is called with and throws for the input directory "throw/",
// so that tests can follow an exception out of a predicate.
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "refgrove/preprocess.h"

namespace refgrove {

std::vector<std::pair<std::string, std::string>>& preproc_calls() {
  static std::vector<std::pair<std::string, std::string>> calls;
  return calls;
}

}  // namespace refgrove

void refgrove_preproc_1(const char* a, const char* b) {
  refgrove::preproc_calls().emplace_back(a, b);
  if (std::string(a) == "throw/") throw std::runtime_error("preprocessing failed");
}
