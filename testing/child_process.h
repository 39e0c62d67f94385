// Test support: runs a function in a child process whose standard output and
// standard error go to files, for code that may end the process itself.
#ifndef REFGROVE_TESTING_CHILD_PROCESS_H_
#define REFGROVE_TESTING_CHILD_PROCESS_H_

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "testing/test_files.h"

namespace refgrove {

struct ChildResult {
  int status = -1;  // the exit status; 128 + the signal when killed
  std::string out, err;
};

// Runs fn() in a forked child and exits with status 0 when it returns. The
// child's standard streams are files, so messages come back byte for byte.
template <class F>
ChildResult run_in_child(F fn) {
  TempDir dir;
  const std::string out_name = dir.path() + "stdout";
  const std::string err_name = dir.path() + "stderr";
  std::cout.flush();
  std::cerr.flush();
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    const int out = open(out_name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = open(err_name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (out < 0 || err < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) _exit(126);
    fn();
    std::exit(0);
  }
  ChildResult r;
  int status = 0;
  if (pid < 0 || waitpid(pid, &status, 0) != pid) return r;
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  r.out = read_file(out_name);
  r.err = read_file(err_name);
  return r;
}

}  // namespace refgrove

#endif  // REFGROVE_TESTING_CHILD_PROCESS_H_
