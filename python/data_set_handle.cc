#include "python/data_set_handle.h"

#include <sstream>

#include "core/data_view.h"
#include "python/errors.h"

namespace refgrove::python {

DataSetHandle::DataSetHandle(std::string path) : path_(std::move(path)) {
  if (const std::string problem = data_dir_problem(path_); !problem.empty()) {
    throw FaceError(FaceError::Kind::data_directory, problem);
  }
  std::ostringstream log;  // the loading messages are the tool's -v; nobody asks for them here
  set_ = load_data_set(path_.back() == '/' ? path_ : path_ + "/", log);  // not empty: it names a directory
}

DataSetPtr DataSetHandle::get() const {
  const std::lock_guard lock(mutex_);
  if (set_ == nullptr) throw FaceError(FaceError::Kind::closed, "the data set of " + path_ + " is closed");
  return set_;
}

void DataSetHandle::close() {
  DataSetPtr last;  // freed outside the lock
  const std::lock_guard lock(mutex_);
  last.swap(set_);
}

bool DataSetHandle::closed() const {
  const std::lock_guard lock(mutex_);
  return set_ == nullptr;
}

}  // namespace refgrove::python
