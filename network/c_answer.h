// The step shared by the C operations of the analyses (network/ and
// fronts/): an analysis that refuses an argument answers kNoAnswer instead
// of throwing into a C caller.
#ifndef REFGROVE_NETWORK_C_ANSWER_H_
#define REFGROVE_NETWORK_C_ANSWER_H_

#include "core/c_results.h"
#include "network/citation_graph.h"

namespace refgrove {

// Runs an analysis; a bad argument gives kNoAnswer.
template <class F>
int answer(F f) {
  try {
    return f();
  } catch (const NetworkArgumentError&) {
    return kNoAnswer;
  }
}

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_C_ANSWER_H_
