// The fixed data set of the targets that query one: the sample's dumps
// (REFGROVE_SAMPLE_DIR), preprocessed into this process's scratch directory
// on first use, loaded, and prepared as the explorer prepares a set.
#ifndef REFGROVE_FUZZ_SAMPLE_SET_H_
#define REFGROVE_FUZZ_SAMPLE_SET_H_

#include <memory>
#include <sstream>
#include <string>

#include "core/data_set_slot.h"
#include "core/data_view.h"
#include "fuzz/fuzz_support.h"
#include "refgrove/preprocess.h"
#include "web/serve.h"

namespace refgrove::fuzz {

inline const refgrove::DataSetPtr& sample_set() {
  static const refgrove::DataSetPtr set = [] {
    const std::string dir = scratch_dir() + "sample/";
    Silence quiet;
    refgrove_preproc_1(REFGROVE_SAMPLE_DIR, dir.c_str());
    std::ostringstream log;
    refgrove::DataSetPtr loaded = refgrove::load_data_set(dir, log);
    FUZZ_CHECK(loaded != nullptr);
    refgrove::web::prepare_for_serving(*loaded);
    return loaded;
  }();
  return set;
}

}  // namespace refgrove::fuzz

#endif  // REFGROVE_FUZZ_SAMPLE_SET_H_
