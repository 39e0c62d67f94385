// A stand-in for the preprocessing run in the binding's tests: it records
// the directories it was called with, and throws for the input directory
// "throw/" so that tests can follow an exception out of a predicate.
#ifndef REFGROVE_MODULE_PREPROC_RECORDER_H_
#define REFGROVE_MODULE_PREPROC_RECORDER_H_

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

std::vector<std::pair<std::string, std::string>>& preproc_calls();

#endif  // REFGROVE_MODULE_PREPROC_RECORDER_H_
