// DataSetHandle: what a Python DataSet holds, the loaded set shared with
// the arrays handed out from it.
//
// Every call takes its own reference to the set before it starts, so a
// close() from another thread meanwhile only keeps the set alive until
// that call is done; later calls raise ClosedError. Arrays keep references
// of their own (numpy_arrays.h), so closing frees the set only once the
// last of them is gone.
#ifndef REFGROVE_PYTHON_DATA_SET_HANDLE_H_
#define REFGROVE_PYTHON_DATA_SET_HANDLE_H_

#include <mutex>
#include <string>

#include "core/data_set_slot.h"

namespace refgrove::python {

class DataSetHandle {
 public:
  // Loads the data directory `path`; throws FaceError (data_directory) when
  // it is none. The caller releases the GIL.
  explicit DataSetHandle(std::string path);

  // The set; throws FaceError (closed) once closed.
  DataSetPtr get() const;
  void close();
  bool closed() const;
  const std::string& path() const { return path_; }

 private:
  const std::string path_;
  mutable std::mutex mutex_;  // guards set_
  DataSetPtr set_;
};

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_DATA_SET_HANDLE_H_
